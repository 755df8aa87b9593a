// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/crash_filter.h"
#include "common/error.h"

#include <QTest>

using namespace folidex;

class TestCrashFilter : public QObject {
    Q_OBJECT

private slots:
    void an_exception_code_has_a_name_and_a_number_data();
    void an_exception_code_has_a_name_and_a_number();
    void an_unknown_code_is_named_by_eight_digits_data();
    void an_unknown_code_is_named_by_eight_digits();
    void different_codes_can_share_a_number();
    void the_last_record_of_a_chain_counts();
    void the_filter_raises_an_ordinary_error();
    void the_filter_takes_the_code_of_the_last_record();
};

void TestCrashFilter::an_exception_code_has_a_name_and_a_number_data() {
    QTest::addColumn<quint32>("code");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("number");
    QTest::newRow("80000001") << 0x80000001U << "Guard Page Violation" << 10001;
    QTest::newRow("80000002") << 0x80000002U << "Data Type Misalignment" << 10002;
    QTest::newRow("80000003") << 0x80000003U << "Breakpoint" << 10003;
    QTest::newRow("80000004") << 0x80000004U << "Single Step" << 10004;
    QTest::newRow("C0000005") << 0xC0000005U << "Access Violation" << 10005;
    QTest::newRow("C0000006") << 0xC0000006U << "In Page Error" << 10006;
    QTest::newRow("C0000008") << 0xC0000008U << "Invalid Handle" << 10008;
    QTest::newRow("C000001D") << 0xC000001DU << "Illegal Instruction" << 10013;
    QTest::newRow("C0000025") << 0xC0000025U << "Non Continuable Exception" << 10037;
    QTest::newRow("C0000026") << 0xC0000026U << "Invalid Disposition" << 10038;
    QTest::newRow("C000008C") << 0xC000008CU << "Array Bounds Exceeded" << 10140;
    QTest::newRow("C000008D") << 0xC000008DU << "Float Denormal Operand" << 10141;
    QTest::newRow("C000008E") << 0xC000008EU << "Divide By Zero" << 10142;
    QTest::newRow("C000008F") << 0xC000008FU << "Floating Point Inexact Result" << 10143;
    QTest::newRow("C0000090") << 0xC0000090U << "Invalid Operation" << 10128;
    QTest::newRow("C0000091") << 0xC0000091U << "Float Overflow" << 10129;
    QTest::newRow("C0000092") << 0xC0000092U << "Float Stack Check" << 10130;
    QTest::newRow("C0000093") << 0xC0000093U << "Float Underflow" << 10131;
    QTest::newRow("C0000094") << 0xC0000094U << "Integer Divide By Zero" << 10132;
    QTest::newRow("C0000095") << 0xC0000095U << "Integer Overflow" << 10133;
    QTest::newRow("C0000096") << 0xC0000096U << "Privileged Instruction" << 10134;
    QTest::newRow("C00000FD") << 0xC00000FDU << "Stack Overflow" << 10237;
    QTest::newRow("C000013A") << 0xC000013AU << "Control-C Exit" << 10042;
}

void TestCrashFilter::an_exception_code_has_a_name_and_a_number() {
    QFETCH(quint32, code);
    QFETCH(QString, name);
    QFETCH(int, number);
    QCOMPARE(vbcsExceptionName(code), name);
    QCOMPARE(exception_number(code), number);
}

void TestCrashFilter::an_unknown_code_is_named_by_eight_digits_data() {
    QTest::addColumn<quint32>("code");
    QTest::addColumn<QString>("name");
    QTest::newRow("eight digits") << 0x12345678U << "Unknown (&H12345678)";
    QTest::newRow("padded with zeros") << 0xABCDU << "Unknown (&H0000ABCD)";
    QTest::newRow("none") << 0U << "Unknown (&H00000000)";
    QTest::newRow("all bits") << 0xFFFFFFFFU << "Unknown (&HFFFFFFFF)";
    QTest::newRow("a gap of the table") << 0xC0000007U << "Unknown (&HC0000007)";
}

void TestCrashFilter::an_unknown_code_is_named_by_eight_digits() {
    QFETCH(quint32, code);
    QFETCH(QString, name);
    QCOMPARE(vbcsExceptionName(code), name);
}

void TestCrashFilter::different_codes_can_share_a_number() {
    QCOMPARE(exception_number(0xC000001D), exception_number(0xC000000D));
    QCOMPARE(exception_number(0xFFFFFFFF), 10000 + 0x8EF);
    QCOMPARE(exception_number(0), 10000);
}

void TestCrashFilter::the_last_record_of_a_chain_counts() {
    ExceptionRecord third;
    third.code = kStackOverflow;
    ExceptionRecord second;
    second.code = kBreakpoint;
    second.nested = &third;
    ExceptionRecord first;
    first.code = kAccessViolation;
    QCOMPARE(last_record(first).code, std::uint32_t{kAccessViolation});
    first.nested = &second;
    const ExceptionRecord last = last_record(first);
    QCOMPARE(last.code, std::uint32_t{kStackOverflow});
    QCOMPARE(last.nested, nullptr);
    QCOMPARE(first.code, std::uint32_t{kAccessViolation});
}

void TestCrashFilter::the_filter_raises_an_ordinary_error() {
    ExceptionRecord record;
    record.code = 0xABCD;
    const ExceptionPointers exception{&record, nullptr};
    try {
        vbcsExceptionFilter(&exception);
        QFAIL("returned");
    } catch (const Error& error) {
        QCOMPARE(error.number, exception_number(0xABCD));
        QCOMPARE(error.description, QStringLiteral("Unknown (&H0000ABCD)"));
        QCOMPARE(error.source, QStringLiteral("vbcsExceptionFilter"));
    }
}

void TestCrashFilter::the_filter_takes_the_code_of_the_last_record() {
    ExceptionRecord cause;
    cause.code = kIntegerDivideByZero;
    ExceptionRecord record;
    record.code = kNonContinuableException;
    record.nested = &cause;
    const ExceptionPointers exception{&record, nullptr};
    try {
        vbcsExceptionFilter(&exception);
        QFAIL("returned");
    } catch (const Error& error) {
        QCOMPARE(error.number, 10132);
        QCOMPARE(error.description, QStringLiteral("Integer Divide By Zero"));
    }
}

QTEST_APPLESS_MAIN(TestCrashFilter)
#include "test_crash_filter.moc"
