// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/unit/common/fault_cases.h"

#include <QObject>
#include <QString>
#include <cfenv>
#include <cfloat>
#include <climits>
#include <cstdint>
#include <cstring>

namespace folidex::test {

int* volatile nowhere = nullptr;
const char* volatile no_text = nullptr;
volatile int zero = 0;
volatile bool yes = true;

namespace {

using Procedure = void (*)();

// The bits of what was met, and those that mask it.
constexpr unsigned int kConditionsMet = 0x3F;
constexpr unsigned int kMaskShift = 7;

volatile double result = 0;
const char kConstant[] = "constant";
alignas(16) char data_bytes[64] = {};

void call(std::uintptr_t address) {
    volatile std::uintptr_t hidden = address;
    const std::uintptr_t value = hidden;
    Procedure procedure = nullptr;
    std::memcpy(&procedure, &value, sizeof procedure);
    procedure();
    say("came back");
}

void read(std::uintptr_t address) {
    volatile std::uintptr_t hidden = address;
    const std::uintptr_t value = hidden;
    const volatile int* place = nullptr;
    std::memcpy(&place, &value, sizeof place);
    say("%d", *place);
}

[[gnu::noinline]] int recurse(int depth) {
    volatile char frame[500] = {};
    frame[depth % 500] = 1;
    return yes ? recurse(depth + 1) + frame[depth % 499] : 0;
}

[[gnu::noinline]] qsizetype recurse_with_text(int depth) {
    const QString text = QStringLiteral("a text of level %1 that needs the allocator").arg(depth);
    return yes ? recurse_with_text(depth + 1) + text.size() : 0;
}

[[gnu::noinline]] int larger_than_the_stack(int index) {
    volatile char frame[16 * 1024 * 1024];
    frame[index] = 1;
    return frame[index];
}

void step() {
    asm volatile("pushfq\n\t"
                 "orl $0x100, (%%rsp)\n\t"
                 "popfq\n\t"
                 "nop" ::
                     : "memory", "cc");
}

/// Lets a floating-point condition stop the program while `calculate` runs.
template <class Calculate> void unmasked(int condition, Calculate calculate) {
    unmask(static_cast<unsigned int>(condition));
    calculate();
    mask_all_conditions();
}

void divide_on_the_old_unit() {
    const std::uint16_t control = 0x037B;
    asm volatile("fldcw %0\n\tfld1\n\tfldz\n\tfdivrp\n\tfwait\n\tfstp %%st(0)" ::"m"(control));
}

unsigned int conditions_register() {
    unsigned int control = 0;
    asm volatile("stmxcsr %0" : "=m"(control));
    return control;
}

void set_conditions_register(unsigned int control) {
    asm volatile("ldmxcsr %0" ::"m"(control));
}

} // namespace

// In the register itself: not every system's library offers it.
void unmask(unsigned int conditions) {
    set_conditions_register((conditions_register() & ~kConditionsMet) &
                            ~(conditions << kMaskShift));
}

void mask_all_conditions() {
    set_conditions_register(conditions_register() | kConditionsMet << kMaskShift);
}

std::map<std::string, FaultCase> processor_faults() {
    volatile static double none = 0;
    volatile static double huge = DBL_MAX;
    volatile static double tiny = DBL_MIN;
    return {
        {"null read", [] { say("%d", *nowhere); }},
        {"null write", [] { *nowhere = 1; }},
        {"unmapped read", [] { read(0x5A5A00000000); }},
        {"read at no possible address", [] { read(0x4141414141414141); }},
        {"write to a constant", [] { const_cast<volatile char&>(kConstant[zero]) = 'x'; }},
        {"null call", [] { call(0); }},
        {"call of data", [] { call(reinterpret_cast<std::uintptr_t>(data_bytes)); }},
        {"call of no possible address", [] { call(0x4141414141414141); }},
        {"null object of the toolkit", [] { reinterpret_cast<QObject*>(nowhere)->objectName(); }},
        {"text at null", [] { say("%d", static_cast<int>(std::strlen(no_text))); }},
        {"copy from null", [] { std::memcpy(data_bytes, no_text, 48); }},
        {"division by zero", [] { zero = 1 / zero; }},
        {"largest quotient", [] { zero = (INT_MIN + zero) / (zero - 1); }},
        {"stack overflow", [] { say("%d", recurse(0)); }},
        {"stack overflow in the allocator", [] { zero = static_cast<int>(recurse_with_text(0)); }},
        {"frame larger than the stack", [] { zero = larger_than_the_stack(zero); }},
        {"illegal instruction", [] { asm volatile("ud2"); }},
        {"breakpoint", [] { asm volatile("int3"); }},
        {"privileged instruction", [] { asm volatile("hlt"); }},
        {"single step", step},
        {"float division", [] { unmasked(FE_DIVBYZERO, [] { result = 1 / none; }); }},
        {"float overflow", [] { unmasked(FE_OVERFLOW, [] { result = huge * huge; }); }},
        {"float underflow", [] { unmasked(FE_UNDERFLOW, [] { result = tiny * tiny; }); }},
        {"float inexact", [] { unmasked(FE_INEXACT, [] { result = 1 / (none + 3); }); }},
        {"float invalid", [] { unmasked(FE_INVALID, [] { result = none / none; }); }},
        {"old float unit", divide_on_the_old_unit},
    };
}

} // namespace folidex::test
