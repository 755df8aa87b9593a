// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/unit/common/fault_endings.h"

#include <csignal>

namespace folidex::test {

QList<SystemEnding> endings_of_this_system() {
    return {
        {"abort", {}, 0, SIGABRT},
        {"sent segmentation fault", {}, 0, SIGSEGV},
        {"raised float fault", {}, 0, SIGFPE},
        {"another thread", {}, 0, SIGSEGV},
        {"breakpoint on another thread", {}, 0, SIGTRAP},
        {"exception on another thread", {}, 0, SIGABRT},
        {"lost stack", {}, 0, SIGSEGV},
        {"no trap armed", {QStringLiteral("trap disarmed")}, 0, SIGSEGV},
    };
}

QList<std::pair<const char*, const char*>> faults_of_this_system() {
    return {
        {"float denormal", "Float Denormal Operand (10141)"},
        {"lost page", "In Page Error (10006)"},
        {"misaligned read", "Data Type Misalignment (10002)"},
    };
}

} // namespace folidex::test
