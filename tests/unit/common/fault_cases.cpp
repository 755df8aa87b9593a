// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// A program that fails on purpose, in the way its argument names. test_faults runs it and
// reads what it says; it asserts nothing itself.

#include "tests/unit/common/fault_cases.h"

#include "common/crash_filter.h"
#include "common/error_trap.h"
#include "tests/support/test_system.h"

#include <QCoreApplication>
#include <QString>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>

using namespace folidex;
using namespace folidex::test;

namespace {

void say_report(const Report& report) {
    say("REPORT %s %s %d: %s (%d)", qPrintable(report.module), qPrintable(report.procedure),
        report.line, qPrintable(report.description), report.number);
}

void in_a_procedure(const FaultCase& fault) {
    outermost([&] {
        trapped("Module1", "Main", [&] {
            vbcsInstallFilter();
            trapped("frmTags", "fill_grid", [&](Trap& at) {
                at.line(120);
                fault();
            });
        });
    });
}

} // namespace

int main(int argc, char** argv) {
    fail_quietly();
    std::setvbuf(stdout, nullptr, _IONBF, 0); // a program that dies writes out nothing more
    show_report = say_report;
    QCoreApplication application(argc, argv);
    const std::string name = argc > 1 ? argv[1] : "";

    const auto inner = cases_in_a_procedure();
    const auto whole = cases_on_their_own();
    if (const auto found = inner.find(name); found != inner.end())
        in_a_procedure(found->second);
    else if (const auto alone = whole.find(name); alone != whole.end())
        alone->second();
    else {
        say("no such case: %s", name.c_str());
        return 2;
    }
    say("ENDED WELL");
    return 0;
}
