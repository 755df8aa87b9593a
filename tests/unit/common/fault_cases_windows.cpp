// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/unit/common/fault_cases.h"

#include <windows.h>

#include <cstdlib>

namespace folidex::test {

namespace {

constexpr DWORD kNobodysException = 0x12345678;

/// The system itself meets the fault and deals with it.
void ask_about_bad_memory() {
    say("bad memory: %d", IsBadReadPtr(nowhere, sizeof *nowhere) != 0);
}

LONG CALLBACK end_at_once(EXCEPTION_POINTERS*) {
    std::_Exit(3);
}

} // namespace

std::map<std::string, FaultCase> cases_of_this_system() {
    return {
        {"nobody's exception", [] { RaiseException(kNobodysException, 0, 0, nullptr); }},
        {"exception that cannot be continued",
         [] {
             RaiseException(EXCEPTION_INVALID_DISPOSITION, EXCEPTION_NONCONTINUABLE, 0, nullptr);
         }},
        {"fault that the system deals with", ask_about_bad_memory},
    };
}

void let_another_handler_take_faults() {
    SetUnhandledExceptionFilter(end_at_once);
}

} // namespace folidex::test
