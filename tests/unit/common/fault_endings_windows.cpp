// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/unit/common/fault_endings.h"

#include <windows.h>

namespace folidex::test {

namespace {

// The C library's own end, without the crash that the system would show.
constexpr int kAborted = 3;

int crash(DWORD exception) {
    return static_cast<int>(exception);
}

} // namespace

QList<SystemEnding> endings_of_this_system() {
    return {
        {"abort", {}, kAborted, 0},
        {"raised float fault", {}, kAborted, 0},
        {"another thread", {}, 0, crash(EXCEPTION_ACCESS_VIOLATION)},
        {"breakpoint on another thread", {}, 0, crash(EXCEPTION_BREAKPOINT)},
        {"exception on another thread", {}, kAborted, 0},
        {"no trap armed", {QStringLiteral("trap disarmed")}, 0, crash(EXCEPTION_ACCESS_VIOLATION)},
        {"fault that the system deals with",
         {QStringLiteral("bad memory: 1"), QStringLiteral("ENDED WELL")},
         0,
         0},
    };
}

QList<std::pair<const char*, const char*>> faults_of_this_system() {
    return {
        {"nobody's exception", "Unknown (&H12345678) (10104)"},
        {"exception that cannot be continued", "Invalid Disposition (10038)"},
    };
}

} // namespace folidex::test
