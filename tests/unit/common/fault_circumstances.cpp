// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/crash_filter.h"
#include "common/error_trap.h"
#include "tests/unit/common/fault_cases.h"

#include <QEventLoop>
#include <QTimer>
#include <cfenv>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <new>
#include <thread>

namespace folidex::test {

std::map<std::string, FaultCase> processor_faults();

namespace {

[[gnu::noinline]] void fault() {
    *nowhere = 1;
}

[[gnu::noinline]] void fault_under_noexcept() noexcept {
    fault();
    say("came back");
}

[[gnu::noinline]] void fail() {
    throw Error{3078, QStringLiteral("no such table")};
}

[[gnu::noinline]] void fail_under_noexcept() noexcept {
    fail();
}

[[gnu::noinline]] int recurse(int depth) {
    volatile char frame[500] = {};
    frame[depth % 500] = 1;
    return yes ? recurse(depth + 1) + frame[depth % 499] : 0;
}

/// A procedure's own trap, as that of open_database.
template <class Part> void survive(Part part) {
    try {
        called(part);
        say("came back");
    } catch (const Error& error) {
        say("caught %d %s from %s", error.number, qPrintable(error.description),
            qPrintable(error.source));
    }
}

struct FaultsWhenReleased {
    ~FaultsWhenReleased() { fault(); }
};

void fault_while_unwinding() {
    const FaultsWhenReleased local;
    fault();
}

void fault_with_locals() {
    const Local outer{"outer"};
    auto inner = [] {
        const Local local{"inner"};
        fault();
    };
    inner();
}

void survive_three_of_each() {
    for (int i = 0; i < 3; ++i) {
        survive(fault);
        survive([] { say("%d", recurse(0)); });
        survive([] { zero = 1 / zero; });
        survive([] { asm volatile("int3"); });
    }
}

void calculate_after_a_float_fault() {
    volatile double none = 0;
    unmask(FE_DIVBYZERO);
    survive([&] { none = 1 / none; });
    say("%f", 1 / none);
}

void fault_in_a_nested_event_loop() {
    QEventLoop loop;
    later(&loop, 0, [] {
        trapped("frmScanNew", "tmr1_Timer",
                [] { trapped("frmScanNew", "fill_me", [] { fault(); }); });
    });
    loop.exec();
    say("came back");
}

void fault_under_noexcept_in_a_nested_event_loop() {
    QEventLoop loop;
    later(&loop, 0, [] { trapped("frmScanNew", "tmr1_Timer", [] { fault_under_noexcept(); }); });
    loop.exec();
    say("came back");
}

void fault_in_a_handler_of_an_own_signal() {
    QObject sender;
    on(&sender, &QObject::objectNameChanged, &sender,
       [] { trapped("frmTags", "cmbTags_Change", [] { fault(); }); });
    sender.setObjectName(QStringLiteral("changed"));
    say("came back");
}

void fault_while_reporting() {
    static int times = 0;
    static const auto show = show_report;
    show_report = [](const Report& report) {
        if (times++ == 0)
            fault();
        show(report);
    };
    fail();
}

void on_another_thread(void (*part)()) {
    std::thread([part] { part(); }).join();
    say("came back");
}

/// The compiler may conclude that this body needs no trap.
void fault_in_what_cannot_fail() {
    outermost([] {
        trapped("Module1", "Main", [] {
            vbcsInstallFilter();
            trapped("frmTags", "fill_grid", [] { zero = static_cast<int>(std::strlen(no_text)); });
        });
    });
}

void run_out_of_traps() {
    outermost([] { trapped("Module1", "Main", [] { vbcsInstallFilter(); }); });
    say("trap disarmed");
    outermost([] { fault(); });
}

void install_twice() {
    say("flag %d", filter_installed());
    vbcsInstallFilter();
    say("flag %d", filter_installed());
    let_another_handler_take_faults();
    const auto before = std::get_terminate();
    vbcsInstallFilter();
    say("flag %d", filter_installed());
    say("same ending %d", std::get_terminate() == before);
    trapped("Module1", "Main", [] { fault(); });
}

void lose_the_stack() {
    asm volatile("xorl %%esp, %%esp\n\tpushq %%rax" ::: "memory");
}

} // namespace

std::map<std::string, FaultCase> cases_in_a_procedure() {
    auto cases = processor_faults();
    cases.merge(cases_of_this_system());
    cases.insert({
        {"no fault", [] {}},
        {"with locals", fault_with_locals},
        {"under noexcept", fault_under_noexcept},
        {"error under noexcept", fail_under_noexcept},
        {"while unwinding", fault_while_unwinding},
        {"while reporting", fault_while_reporting},
        {"own trap", [] { survive(fault); }},
        {"own trap, three times", survive_three_of_each},
        {"float after a float fault", calculate_after_a_float_fault},
        {"nested event loop", fault_in_a_nested_event_loop},
        {"noexcept in a nested event loop", fault_under_noexcept_in_a_nested_event_loop},
        {"handler of an own signal", fault_in_a_handler_of_an_own_signal},
        {"error",
         [] {
             throw Error{3078, QStringLiteral("no such table")};
         }},
        {"out of memory", [] { throw std::bad_alloc(); }},
        {"abort", [] { std::abort(); }},
        {"terminate", [] { std::terminate(); }},
        {"raised float fault", [] { std::raise(SIGFPE); }},
        {"another thread", [] { on_another_thread(fault); }},
        {"breakpoint on another thread", [] { on_another_thread([] { asm volatile("int3"); }); }},
        {"exception on another thread", [] { on_another_thread([] { throw 1; }); }},
        {"lost stack", lose_the_stack},
    });
    return cases;
}

std::map<std::string, FaultCase> cases_on_their_own() {
    return {
        {"no trap armed", run_out_of_traps},
        {"what cannot fail", fault_in_what_cannot_fail},
        {"installed twice", install_twice},
    };
}

} // namespace folidex::test
