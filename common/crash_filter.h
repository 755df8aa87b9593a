// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <array>
#include <cstdint>

namespace folidex {

/// The crash filter turns processor faults of the UI thread into ordinary errors, raised where
/// the fault happened, so that the trap of the running procedure reports them. What it cannot
/// convert (see docs/crash-filter.md) ends the way the system ends it.

/// The operating system's standard exception codes; other systems' faults are given these too.
enum ExceptionCode : std::uint32_t {
    kGuardPageViolation = 0x80000001,
    kDataTypeMisalignment = 0x80000002,
    kBreakpoint = 0x80000003,
    kSingleStep = 0x80000004,
    kAccessViolation = 0xC0000005,
    kInPageError = 0xC0000006,
    kInvalidHandle = 0xC0000008,
    kIllegalInstruction = 0xC000001D,
    kNonContinuableException = 0xC0000025,
    kInvalidDisposition = 0xC0000026,
    kArrayBoundsExceeded = 0xC000008C,
    kFloatDenormalOperand = 0xC000008D,
    kFloatDivideByZero = 0xC000008E,
    kFloatInexactResult = 0xC000008F,
    kFloatInvalidOperation = 0xC0000090,
    kFloatOverflow = 0xC0000091,
    kFloatStackCheck = 0xC0000092,
    kFloatUnderflow = 0xC0000093,
    kIntegerDivideByZero = 0xC0000094,
    kIntegerOverflow = 0xC0000095,
    kPrivilegedInstruction = 0xC0000096,
    kStackOverflow = 0xC00000FD,
    kControlCExit = 0xC000013A
};

/// One fault, laid out like the operating system's exception record of a 64-bit process.
struct ExceptionRecord {
    std::uint32_t code = 0;
    std::uint32_t flags = 0;
    const ExceptionRecord* nested = nullptr;
    const void* address = nullptr;
    std::uint32_t parameter_count = 0;
    std::array<std::uintptr_t, 15> parameters{};
};

struct ExceptionPointers {
    const ExceptionRecord* record = nullptr;
    void* context = nullptr;
};

/// Makes vbcsExceptionFilter the process's answer to unhandled faults, once: later calls change
/// nothing. The calling thread is the one whose faults are converted.
void vbcsInstallFilter();
/// 0 before vbcsInstallFilter, -1 ever after.
std::int16_t filter_installed() noexcept;

/// Raises the fault as an Error of source "vbcsExceptionFilter". Runs at the place of the fault.
/// Never returns; the result is what the system's interface asks for.
long vbcsExceptionFilter(const ExceptionPointers* exception);

/// The name of an exception code: "Access Violation", "Unknown (&H0000ABCD)".
QString vbcsExceptionName(std::uint32_t code);
/// The error number of an exception code: 10000 and some of the code's bits, 10005 for an
/// access violation. Different codes can share a number.
int exception_number(std::uint32_t code) noexcept;
/// A copy of the last record of a chain of nested ones.
ExceptionRecord last_record(const ExceptionRecord& first) noexcept;

} // namespace folidex
