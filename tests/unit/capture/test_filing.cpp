// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/filing.h"
#include "common/day_number.h"

#include <QTest>
#include <limits>

using namespace folidex;
using namespace Qt::StringLiterals;

class TestFiling : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void the_month_folder_is_month_then_year_data() {
        QTest::addColumn<QDate>("date");
        QTest::addColumn<QString>("folder");
        QTest::newRow("October 2009") << QDate(2009, 10, 12) << u"1009"_s;
        QTest::newRow("one-digit month") << QDate(2010, 3, 1) << u"0310"_s;
        QTest::newRow("year 2000") << QDate(2000, 1, 31) << u"0100"_s;
        QTest::newRow("last century") << QDate(1899, 12, 30) << u"1299"_s;
    }
    void the_month_folder_is_month_then_year() {
        QFETCH(QDate, date);
        QTEST(filing_location(date), "folder");
    }

    void the_name_is_the_moment_of_saving_and_the_link_data() {
        QTest::addColumn<QDateTime>("moment");
        QTest::addColumn<int>("link");
        QTest::addColumn<QString>("name");
        QTest::newRow("afternoon")
            << QDateTime({2009, 10, 12}, {14, 30, 5}) << 57 << u"101209143005_57.pdf"_s;
        QTest::newRow("midnight is 00")
            << QDateTime({2031, 1, 2}, {0, 0, 0}) << 1 << u"010231000000_1.pdf"_s;
        QTest::newRow("no padding, no grouping")
            << QDateTime({1999, 12, 31}, {23, 59, 59}) << 1234567 << u"123199235959_1234567.pdf"_s;
    }
    void the_name_is_the_moment_of_saving_and_the_link() {
        QFETCH(QDateTime, moment);
        QFETCH(int, link);
        QTEST(filing_name(moment, link), "name");
    }

    void the_name_does_not_follow_the_language_of_the_station() {
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
        const QString name = filing_name(QDateTime({2009, 10, 12}, {14, 30, 5}), 57);
        const QString folder = filing_location({2009, 10, 12});
        QLocale::setDefault(before);
        QCOMPARE(name, u"101209143005_57.pdf"_s);
        QCOMPARE(folder, u"1009"_s);
    }

    void a_new_document_is_one_row_with_every_text_quoted() {
        QCOMPARE(insert_document_statement(
                     {57, u"O'Brien's"_s, 40098, u"101209143005_57.pdf"_s, u"1009"_s}),
                 u"INSERT INTO scans ([link], [description], [date], [fname], [location]) VALUES "
                 "(57, 'O''Brien''s', 40098, '101209143005_57.pdf', '1009')"_s);
        QCOMPARE(insert_document_statement({1, u"a"_s, 40098.5, u"it's.pdf"_s, u"'"_s}),
                 u"INSERT INTO scans ([link], [description], [date], [fname], [location]) VALUES "
                 "(1, 'a', 40098.5, 'it''s.pdf', '''')"_s);
    }

    void a_changed_document_keeps_folder_and_name() {
        QCOMPARE(
            update_document_statement(57, u"O'Brien"_s, 40239),
            u"UPDATE scans SET Description = 'O''Brien', scans.date = 40239 WHERE link = 57"_s);
    }

    void a_tag_is_the_leading_number_of_the_grid_text_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("number");
        QTest::newRow("number") << u"17"_s << u"17"_s;
        QTest::newRow("blanks before") << u" 17"_s << u"17"_s;
        QTest::newRow("words after") << u"17 letters"_s << u"17"_s;
        QTest::newRow("words") << u"letters"_s << u"0"_s;
        QTest::newRow("empty") << QString() << u"0"_s;
        QTest::newRow("largest link") << u"2147483647"_s << u"2147483647"_s;
    }
    void a_tag_is_the_leading_number_of_the_grid_text() {
        QFETCH(QString, text);
        QFETCH(QString, number);
        QCOMPARE(insert_tagged_statement(57, text),
                 u"INSERT INTO tagged (scan, tag) VALUES (57, "_s + number + u")"_s);
    }

    void a_stored_date_is_read_as_far_as_it_is_one_data() {
        QTest::addColumn<QVariant>("field");
        QTest::addColumn<QVariant>("number");
        QTest::newRow("whole") << QVariant(40098LL) << QVariant(40098.0);
        QTest::newRow("with a time") << QVariant(40098.25) << QVariant(40098.25);
        QTest::newRow("before 1900") << QVariant(-40000.0) << QVariant(-40000.0);
        QTest::newRow("after 9999") << QVariant(4000000.0) << QVariant(4000000.0);
        QTest::newRow("number as text") << QVariant(u"40098"_s) << QVariant(40098.0);
        QTest::newRow("date as text") << QVariant(u"2009-10-12"_s) << QVariant(40098.0);
        QTest::newRow("date and time") << QVariant(u"2009-10-12 12:00:00"_s) << QVariant(40098.5);
        QTest::newRow("words") << QVariant(u"yesterday"_s) << QVariant();
        QTest::newRow("empty") << QVariant(QString()) << QVariant();
        QTest::newRow("Null") << QVariant() << QVariant();
        QTest::newRow("no number") << QVariant(u"nan"_s) << QVariant();
        QTest::newRow("no end") << QVariant(std::numeric_limits<double>::infinity()) << QVariant();
    }
    void a_stored_date_is_read_as_far_as_it_is_one() {
        QFETCH(QVariant, field);
        QFETCH(QVariant, number);
        const std::optional<double> read = stored_date(field);
        QCOMPARE(read.has_value(), number.isValid());
        if (read)
            QCOMPARE(*read, number.toDouble());
    }
};

QTEST_APPLESS_MAIN(TestFiling)
#include "test_filing.moc"
