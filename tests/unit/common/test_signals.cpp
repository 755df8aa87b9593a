// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/crash_filter_linux.h"

#include <QTest>
#include <csignal>

using namespace folidex;
using namespace folidex::crash_filter;

namespace {

constexpr std::uintptr_t kStackLimit = 0x7ffc00000000;

SignalFault signal_fault(int signal, int code) {
    SignalFault fault;
    fault.signal = signal;
    fault.code = code;
    fault.address = 0x1000;
    fault.stack_pointer = kStackLimit + 0x10000;
    fault.stack_limit = kStackLimit;
    return fault;
}

} // namespace

/// What a signal is called in the words of exception codes, from made-up signals.
class TestSignals : public QObject {
    Q_OBJECT

private slots:
    void every_fault_has_its_exception_code_data();
    void every_fault_has_its_exception_code();
    void a_general_protection_fault_is_told_by_its_instruction_data();
    void a_general_protection_fault_is_told_by_its_instruction();
    void an_underflow_is_told_from_a_denormal_operand_by_the_status();
    void a_stack_overflow_lies_below_the_limit_and_near_the_pointer_data();
    void a_stack_overflow_lies_below_the_limit_and_near_the_pointer();
    void what_another_process_sends_is_no_fault();
};

void TestSignals::every_fault_has_its_exception_code_data() {
    QTest::addColumn<int>("signal");
    QTest::addColumn<int>("code");
    QTest::addColumn<quint32>("expected");
    const auto add = [](const char* name, int signal, int code, quint32 expected) {
        QTest::newRow(name) << signal << code << expected;
    };
    add("unmapped", SIGSEGV, SEGV_MAPERR, 0xC0000005U);
    add("protected", SIGSEGV, SEGV_ACCERR, 0xC0000005U);
    add("alignment", SIGBUS, BUS_ADRALN, 0x80000002U);
    add("no such page", SIGBUS, BUS_ADRERR, 0xC0000006U);
    add("bad hardware page", SIGBUS, BUS_OBJERR, 0xC0000006U);
    add("opcode", SIGILL, ILL_ILLOPN, 0xC000001DU);
    add("privileged opcode", SIGILL, ILL_PRVOPC, 0xC0000096U);
    add("privileged register", SIGILL, ILL_PRVREG, 0xC0000096U);
    add("step", SIGTRAP, TRAP_TRACE, 0x80000004U);
    add("watchpoint", SIGTRAP, TRAP_HWBKPT, 0x80000004U);
    add("breakpoint", SIGTRAP, TRAP_BRKPT, 0x80000003U);
    add("breakpoint instruction", SIGTRAP, SI_KERNEL, 0x80000003U);
    add("integer division", SIGFPE, FPE_INTDIV, 0xC0000094U);
    add("integer overflow", SIGFPE, FPE_INTOVF, 0xC0000095U);
    add("float division", SIGFPE, FPE_FLTDIV, 0xC000008EU);
    add("float overflow", SIGFPE, FPE_FLTOVF, 0xC0000091U);
    add("float underflow", SIGFPE, FPE_FLTUND, 0xC0000093U);
    add("float inexact", SIGFPE, FPE_FLTRES, 0xC000008FU);
    add("float invalid", SIGFPE, FPE_FLTINV, 0xC0000090U);
    add("subscript", SIGFPE, FPE_FLTSUB, 0xC000008CU);
}

void TestSignals::every_fault_has_its_exception_code() {
    QFETCH(int, signal);
    QFETCH(int, code);
    QFETCH(quint32, expected);
    const SignalFault fault = signal_fault(signal, code);
    QVERIFY(from_the_processor(fault));
    QCOMPARE(exception_code(fault), expected);
}

void TestSignals::a_general_protection_fault_is_told_by_its_instruction_data() {
    QTest::addColumn<int>("opcode");
    QTest::addColumn<quint32>("expected");
    QTest::newRow("halt") << 0xF4 << 0xC0000096U;
    QTest::newRow("interrupts off") << 0xFA << 0xC0000096U;
    QTest::newRow("interrupts on") << 0xFB << 0xC0000096U;
    QTest::newRow("in") << 0xEC << 0xC0000096U;
    QTest::newRow("out") << 0xE6 << 0xC0000096U;
    QTest::newRow("move to no possible address") << 0x8B << 0xC0000005U;
}

void TestSignals::a_general_protection_fault_is_told_by_its_instruction() {
    QFETCH(int, opcode);
    QFETCH(quint32, expected);
    SignalFault fault = signal_fault(SIGSEGV, SI_KERNEL);
    fault.opcode = static_cast<std::uint8_t>(opcode);
    QCOMPARE(exception_code(fault), expected);
    fault.code = SEGV_MAPERR;
    QCOMPARE(exception_code(fault), 0xC0000005U);
}

void TestSignals::an_underflow_is_told_from_a_denormal_operand_by_the_status() {
    SignalFault fault = signal_fault(SIGFPE, FPE_FLTUND);
    fault.float_status = 0x02;
    QCOMPARE(exception_code(fault), 0xC000008DU);
    fault.float_status = 0x12;
    QCOMPARE(exception_code(fault), 0xC0000093U);
}

void TestSignals::a_stack_overflow_lies_below_the_limit_and_near_the_pointer_data() {
    QTest::addColumn<quint64>("address");
    QTest::addColumn<quint64>("stack_pointer");
    QTest::addColumn<bool>("overflow");
    const quint64 limit = kStackLimit;
    QTest::newRow("a call below the limit") << limit - 8 << limit << true;
    QTest::newRow("a large frame's far end") << limit - 0x500000 << limit - 0x500000 << true;
    QTest::newRow("a large frame's middle") << limit - 0x1000 << limit - 0x500000 << true;
    QTest::newRow("above the limit") << limit << limit + 8 << false;
    QTest::newRow("a wild address") << quint64{0x1000} << limit << false;
    QTest::newRow("null") << quint64{0} << limit + 0x1000 << false;
}

void TestSignals::a_stack_overflow_lies_below_the_limit_and_near_the_pointer() {
    QFETCH(quint64, address);
    QFETCH(quint64, stack_pointer);
    QFETCH(bool, overflow);
    SignalFault fault = signal_fault(SIGSEGV, SEGV_MAPERR);
    fault.address = address;
    fault.stack_pointer = stack_pointer;
    QCOMPARE(ran_out_of_stack(fault), overflow);
    QCOMPARE(exception_code(fault), overflow ? 0xC00000FDU : 0xC0000005U);
    fault.stack_limit = 0; // a stack without a known end
    QVERIFY(!ran_out_of_stack(fault));
}

void TestSignals::what_another_process_sends_is_no_fault() {
    QVERIFY(!from_the_processor(signal_fault(SIGSEGV, SI_USER)));
    QVERIFY(!from_the_processor(signal_fault(SIGFPE, SI_TKILL)));
    QVERIFY(!from_the_processor(signal_fault(SIGSEGV, SI_QUEUE)));
}

QTEST_APPLESS_MAIN(TestSignals)
#include "test_signals.moc"
