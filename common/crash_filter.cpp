// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/crash_filter.h"
#include "common/crash_filter_system.h"
#include "common/error_trap.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iterator>
#include <thread>

namespace folidex {

namespace {

struct NamedCode {
    ExceptionCode code;
    const char* name;
};

constexpr NamedCode kNames[] = {
    {kGuardPageViolation, "Guard Page Violation"},
    {kDataTypeMisalignment, "Data Type Misalignment"},
    {kBreakpoint, "Breakpoint"},
    {kSingleStep, "Single Step"},
    {kAccessViolation, "Access Violation"},
    {kInPageError, "In Page Error"},
    {kInvalidHandle, "Invalid Handle"},
    {kIllegalInstruction, "Illegal Instruction"},
    {kNonContinuableException, "Non Continuable Exception"},
    {kInvalidDisposition, "Invalid Disposition"},
    {kArrayBoundsExceeded, "Array Bounds Exceeded"},
    {kFloatDenormalOperand, "Float Denormal Operand"},
    {kFloatDivideByZero, "Divide By Zero"},
    {kFloatInexactResult, "Floating Point Inexact Result"},
    {kFloatInvalidOperation, "Invalid Operation"},
    {kFloatOverflow, "Float Overflow"},
    {kFloatStackCheck, "Float Stack Check"},
    {kFloatUnderflow, "Float Underflow"},
    {kIntegerDivideByZero, "Integer Divide By Zero"},
    {kIntegerOverflow, "Integer Overflow"},
    {kPrivilegedInstruction, "Privileged Instruction"},
    {kStackOverflow, "Stack Overflow"},
    {kControlCExit, "Control-C Exit"},
};

// Support reads these numbers over the telephone; they have always been made this way.
constexpr std::uint32_t kCodeBits = 0x8EF;
constexpr std::uint32_t kNumberBase = 0x2710;
static_assert((kCodeBits & kNumberBase) == 0);

std::int16_t installed = 0;
std::thread::id watched_thread;
std::terminate_handler system_ending = nullptr;

/// An Error that gives the system its chance to recover once somebody has dealt with it.
class Fault : public Error {
public:
    explicit Fault(std::uint32_t code)
        : Error(exception_number(code), vbcsExceptionName(code),
                QStringLiteral("vbcsExceptionFilter")),
          code_(code) {}
    Fault(const Fault&) = delete;
    Fault& operator=(const Fault&) = delete;
    ~Fault() override { crash_filter::recover_from(code_); }

private:
    std::uint32_t code_;
};

/// The reports and the end that the traps would have given, where no exception can reach them.
[[noreturn]] void report_armed_traps(Error error) {
    while (const Trap* trap = Trap::innermost) {
        // First, so that a failure of the report itself does not come back to it.
        Trap::innermost = trap->outer();
        trap->report(error.number, error.description);
        error = passed_on();
    }
    end_program(error);
    std::abort();
}

void report_instead_of_terminating() {
    if (std::this_thread::get_id() == watched_thread && crash_filter::a_trap_is_armed())
        report_armed_traps(current_error());
    system_ending();
}

} // namespace

namespace crash_filter {

ExceptionRecord interrupted;
volatile bool raising = false;

bool a_trap_is_armed() noexcept {
    return Trap::innermost != nullptr;
}

void folidex_raise_fault() {
    const ExceptionPointers fault{&interrupted, nullptr};
    vbcsExceptionFilter(&fault);
    std::abort();
}

} // namespace crash_filter

void vbcsInstallFilter() {
    trapped("modvbCodeShieldSupport", "vbcsInstallFilter", [] {
        if (installed)
            return;
        watched_thread = std::this_thread::get_id();
        system_ending = std::set_terminate(report_instead_of_terminating);
        crash_filter::watch_this_thread();
        installed = -1;
    });
}

std::int16_t filter_installed() noexcept {
    return installed;
}

long vbcsExceptionFilter(const ExceptionPointers* exception) {
    const ExceptionRecord record = last_record(*exception->record);
    crash_filter::raising = false;
    // A second exception during the unwinding for a first one would only be refused.
    if (std::uncaught_exceptions() > 0)
        report_armed_traps({exception_number(record.code), vbcsExceptionName(record.code)});
    throw Fault{record.code};
}

QString vbcsExceptionName(std::uint32_t code) {
    const auto* named = std::find_if(std::begin(kNames), std::end(kNames),
                                     [code](const NamedCode& entry) { return entry.code == code; });
    if (named != std::end(kNames))
        return QString::fromLatin1(named->name);
    const QString digits = QStringLiteral("%1").arg(code, 8, 16, QLatin1Char('0')).toUpper();
    return QStringLiteral("Unknown (&H") + digits + QStringLiteral(")");
}

int exception_number(std::uint32_t code) noexcept {
    return static_cast<int>((code & kCodeBits) | kNumberBase);
}

ExceptionRecord last_record(const ExceptionRecord& first) noexcept {
    ExceptionRecord record = first;
    while (record.nested)
        record = *record.nested;
    return record;
}

} // namespace folidex
