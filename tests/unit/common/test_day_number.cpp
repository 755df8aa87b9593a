// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/day_number.h"
#include "common/error.h"

#include <QLocale>
#include <QTest>
#include <cmath>
#include <limits>

using namespace folidex;

class TestDayNumber : public QObject {
    Q_OBJECT

private slots:
    void a_date_is_the_number_of_days_since_30_december_1899_data();
    void a_date_is_the_number_of_days_since_30_december_1899();
    void an_invalid_date_or_time_has_no_number();
    void a_number_outside_the_calendar_is_no_date_data();
    void a_number_outside_the_calendar_is_no_date();
    void every_millisecond_survives_the_way_through_the_text();
    void a_text_has_a_point_and_no_exponent_data();
    void a_text_has_a_point_and_no_exponent();
    void a_text_does_not_follow_the_locale();
    void what_is_no_number_cannot_be_written();
    void the_value_of_a_text_is_its_leading_number_data();
    void the_value_of_a_text_is_its_leading_number();
};

void TestDayNumber::a_date_is_the_number_of_days_since_30_december_1899_data() {
    QTest::addColumn<QDate>("date");
    QTest::addColumn<QTime>("time");
    QTest::addColumn<double>("number");
    QTest::newRow("the first day") << QDate(1899, 12, 30) << QTime(0, 0) << 0.0;
    QTest::newRow("the day after") << QDate(1899, 12, 31) << QTime(0, 0) << 1.0;
    QTest::newRow("12 October 2009") << QDate(2009, 10, 12) << QTime(0, 0) << 40098.0;
    QTest::newRow("1 October 2009") << QDate(2009, 10, 1) << QTime(0, 0) << 40087.0;
    QTest::newRow("noon") << QDate(2009, 10, 12) << QTime(12, 0) << 40098.5;
    QTest::newRow("a quarter to midnight") << QDate(2009, 10, 12) << QTime(18, 0) << 40098.75;
    QTest::newRow("leap day") << QDate(2000, 2, 29) << QTime(0, 0) << 36585.0;
    QTest::newRow("1900 was no leap year") << QDate(1900, 3, 1) << QTime(0, 0) << 61.0;
    QTest::newRow("before the first day") << QDate(1899, 12, 29) << QTime(18, 0) << -0.25;
    QTest::newRow("the first year") << QDate(100, 1, 1) << QTime(0, 0) << -657434.0;
    QTest::newRow("the last year") << QDate(9999, 12, 31) << QTime(12, 0) << 2958465.5;
}

void TestDayNumber::a_date_is_the_number_of_days_since_30_december_1899() {
    QFETCH(QDate, date);
    QFETCH(QTime, time);
    QFETCH(double, number);
    QCOMPARE(day_number(date, time), number);
    const auto back = from_day_number(number);
    QVERIFY(back.has_value());
    QCOMPARE(back->date(), date);
    QCOMPARE(back->time(), time);
    QCOMPARE(back->timeSpec(), Qt::UTC);
}

void TestDayNumber::an_invalid_date_or_time_has_no_number() {
    QVERIFY(std::isnan(day_number(QDate())));
    QVERIFY(std::isnan(day_number(QDate(2009, 2, 29))));
    QVERIFY(std::isnan(day_number(QDate(2009, 10, 12), QTime())));
}

void TestDayNumber::a_number_outside_the_calendar_is_no_date_data() {
    QTest::addColumn<double>("number");
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity();
    QTest::newRow("minus infinity") << -std::numeric_limits<double>::infinity();
    QTest::newRow("a moment before year 100") << -657434.001;
    QTest::newRow("year 10000") << 2958466.0;
    QTest::newRow("less than half a millisecond before year 10000")
        << std::nextafter(2958466.0, 0.0);
    QTest::newRow("beyond any counter") << 1e300;
    QTest::newRow("below any counter") << -1e300;
}

void TestDayNumber::a_number_outside_the_calendar_is_no_date() {
    QFETCH(double, number);
    QVERIFY(!from_day_number(number).has_value());
}

void TestDayNumber::every_millisecond_survives_the_way_through_the_text() {
    for (const QDate date :
         {QDate(100, 1, 1), QDate(1899, 12, 30), QDate(2009, 10, 12), QDate(9999, 12, 31)}) {
        // 9973 is prime: the steps meet every millisecond of a second and every minute.
        for (int at = 0; at < 86'400'000; at += 9973) {
            const QTime time = QTime::fromMSecsSinceStartOfDay(at);
            const QString text = day_number_text(day_number(date, time));
            const auto back = from_day_number(numeric_value(text));
            if (!back || back->date() != date || back->time() != time)
                QFAIL(qPrintable(date.toString() + time.toString(Qt::ISODateWithMs) + text));
        }
    }
}

void TestDayNumber::a_text_has_a_point_and_no_exponent_data() {
    QTest::addColumn<double>("number");
    QTest::addColumn<QString>("text");
    QTest::newRow("a day") << 40098.0 << "40098";
    QTest::newRow("noon") << 40098.5 << "40098.5";
    QTest::newRow("zero") << 0.0 << "0";
    QTest::newRow("minus zero") << -0.0 << "0";
    QTest::newRow("trailing zeros of a whole number stay") << 40100.0 << "40100";
    QTest::newRow("15 digits") << 40098.123456789012 << "40098.123456789";
    QTest::newRow("the 15th digit is rounded") << 40098.12345678916 << "40098.1234567892";
    QTest::newRow("rounding into a longer number") << 99999.999999999999 << "100000";
    QTest::newRow("a third") << 1.0 / 3 << "0.333333333333333";
    QTest::newRow("a second") << 1.0 / 86400 << "0.0000115740740740741";
    QTest::newRow("a millisecond") << 1.0 / 86400000 << "0.0000000115740740740741";
    QTest::newRow("negative") << -0.25 << "-0.25";
    QTest::newRow("sum of tenths") << 0.1 + 0.2 << "0.3";
    QTest::newRow("fifteen digits before the point") << 999999999999999.0 << "999999999999999";
    QTest::newRow("too long to write out") << 1e15 << "1e+15";
}

void TestDayNumber::a_text_has_a_point_and_no_exponent() {
    QFETCH(double, number);
    QFETCH(QString, text);
    QCOMPARE(day_number_text(number), text);
}

void TestDayNumber::a_text_does_not_follow_the_locale() {
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const QString text = day_number_text(40098.5);
    const double value = numeric_value(QStringLiteral("40098.5"));
    QLocale::setDefault(before);
    QCOMPARE(text, QStringLiteral("40098.5"));
    QCOMPARE(value, 40098.5);
}

void TestDayNumber::what_is_no_number_cannot_be_written() {
    for (const double number :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        try {
            day_number_text(number);
            QFAIL("written");
        } catch (const Error& error) {
            QCOMPARE(error.number, 5);
            QCOMPARE(error.description, QStringLiteral("The date is not a valid date."));
        }
    }
}

void TestDayNumber::the_value_of_a_text_is_its_leading_number_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    QTest::newRow("empty") << "" << 0.0;
    QTest::newRow("no number") << "abc" << 0.0;
    QTest::newRow("whole") << "12" << 12.0;
    QTest::newRow("letters behind") << "12a" << 12.0;
    QTest::newRow("blanks before") << " \t\r\n12" << 12.0;
    QTest::newRow("blank behind") << "12 34" << 12.0;
    QTest::newRow("only blanks") << "   " << 0.0;
    QTest::newRow("minus") << "-12" << -12.0;
    QTest::newRow("plus") << "+12" << 12.0;
    QTest::newRow("two signs") << "--12" << 0.0;
    QTest::newRow("only a sign") << "-" << 0.0;
    QTest::newRow("fraction") << "40098.5" << 40098.5;
    QTest::newRow("nothing before the point") << ".5" << 0.5;
    QTest::newRow("sign before the point") << "-.5" << -0.5;
    QTest::newRow("nothing behind the point") << "5." << 5.0;
    QTest::newRow("only a point") << "." << 0.0;
    QTest::newRow("two points") << "1.5.7" << 1.5;
    QTest::newRow("a comma ends the number") << "1,5" << 1.0;
    QTest::newRow("exponent") << "1.5e3" << 1500.0;
    QTest::newRow("capital exponent with sign") << "15E-1x" << 1.5;
    QTest::newRow("exponent without digits") << "12e" << 12.0;
    QTest::newRow("exponent with a sign only") << "12e+" << 12.0;
    QTest::newRow("exponent without a number") << "e5" << 0.0;
    QTest::newRow("words for numbers") << "nan" << 0.0;
    QTest::newRow("infinity in words") << "inf" << 0.0;
    QTest::newRow("too large for any number") << "1e999" << 0.0;
    QTest::newRow("digits of another script") << u"\u0661\u0662"_qs << 0.0;
}

void TestDayNumber::the_value_of_a_text_is_its_leading_number() {
    QFETCH(QString, text);
    QFETCH(double, value);
    QCOMPARE(numeric_value(text), value);
}

QTEST_APPLESS_MAIN(TestDayNumber)
#include "test_day_number.moc"
