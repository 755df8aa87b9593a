// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "common/error.h"
#include "data/database.h"
#include "data/sql_dialect.h"
#include "tests/support/test_station.h"

#include <QTest>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

/// Every statement text of the program, through the connection as it stands.
class TestStatements : public QObject {
    Q_OBJECT

private slots:
    void init() { station_ = std::make_unique<TestStation>(); }
    void cleanup() { station_.reset(); }

    void the_counter_row_is_read();
    void a_stored_value_is_inserted_found_and_changed();
    void a_document_is_inserted_changed_and_found();
    void all_documents_are_listed();
    void deleting_a_document_leaves_no_pair_that_refers_to_it();
    void a_document_is_tagged_untagged_and_its_tags_come_in_order_of_tagging();
    void a_pair_may_repeat();
    void documents_of_a_tag_are_found();
    void the_result_list_is_read_word_for_word();
    void the_result_list_takes_a_range_of_dates();
    void a_tag_is_inserted_and_found_by_number_and_name();
    void tag_lists_are_read();
    void names_of_tables_and_columns_ignore_case();

    void texts_are_stored_and_found_unchanged_data();
    void texts_are_stored_and_found_unchanged();
    void a_name_is_found_without_regard_to_case_data();
    void a_name_is_found_without_regard_to_case();
    void tags_are_ordered_without_regard_to_case();
    void equal_names_keep_the_order_of_their_numbers();
    void dates_that_are_none_are_read_as_they_are();

private:
    void run(const QString& sql) { database().execute(sql); }
    QStringList rows(const QString& sql) { return station_->rows(sql); }

    std::unique_ptr<TestStation> station_;
};

void TestStatements::the_counter_row_is_read() {
    QCOMPARE(rows(u"Select * from comp"_s), QStringList{u"1"_s});
}

void TestStatements::a_stored_value_is_inserted_found_and_changed() {
    run(u"INSERT INTO settings ([form], [description], [user], [value]) "
        "VALUES ('frm''A', 'key', -1, 'one')"_s);
    const QString find =
        u"Select * from settings where form = 'FRM''a' and description = 'KEY' and user = -1"_s;
    QCOMPARE(rows(find), QStringList{u"1|frm'A|key|-1|one"_s});
    run(u"UPDATE settings SET form = 'frm''A', description = 'key', settings.user = 7, "
        "settings.value = 'it''s, [x] = settings.user' where id = 1"_s);
    QCOMPARE(rows(find), QStringList());
    QCOMPARE(rows(u"Select * from settings where form = 'frm''A' and description = 'key' "
                  "and user = 7"_s),
             QStringList{u"1|frm'A|key|7|it's, [x] = settings.user"_s});
}

void TestStatements::a_document_is_inserted_changed_and_found() {
    run(u"INSERT INTO scans ([link], [description], [date], [fname], [location]) "
        "VALUES (5, 'Bill', 40098.5, '101209120000_5.pdf', '0109')"_s);
    QCOMPARE(rows(u"Select * from scans where link = 5"_s),
             QStringList{u"5|Bill|40098.5|101209120000_5.pdf|0109"_s});
    run(u"UPDATE scans SET Description = 'Letter', date = 40099 WHERE link = 5"_s);
    QCOMPARE(rows(u"Select * from scans where link = 5"_s),
             QStringList{u"5|Letter|40099|101209120000_5.pdf|0109"_s});
    QCOMPARE(rows(u"Select * from scans where link = 6"_s), QStringList());
}

void TestStatements::all_documents_are_listed() {
    station_->add_document(u"a"_s, 40098, {});
    station_->add_document(u"b"_s, 40097, {});
    QCOMPARE(rows(u"select * from scans"_s).size(), 2);
}

void TestStatements::deleting_a_document_leaves_no_pair_that_refers_to_it() {
    const int kept = station_->add_document(u"kept"_s, 40098, {3, 4});
    const int gone = station_->add_document(u"gone"_s, 40098, {3, 4});
    run(u"DELETE * FROM tagged where scan = "_s + QString::number(gone));
    run(u"DELETE * FROM scans where link = "_s + QString::number(gone));
    QCOMPARE(rows(u"Select link from scans"_s), QStringList{QString::number(kept)});
    QCOMPARE(rows(u"Select * from tagged where scan = "_s + QString::number(gone)), QStringList());
    QCOMPARE(rows(u"Select * from tagged where scan = "_s + QString::number(kept)).size(), 2);
}

void TestStatements::a_document_is_tagged_untagged_and_its_tags_come_in_order_of_tagging() {
    for (const int tag : {30, 2, 17})
        run(u"INSERT INTO tagged (scan, tag) VALUES (9, %1)"_s.arg(tag));
    QCOMPARE(rows(u"Select * from tagged where scan = 9"_s),
             QStringList({u"9|30"_s, u"9|2"_s, u"9|17"_s}));
    run(u"DELETE * FROM tagged where scan = 9 and tag = 2"_s);
    QCOMPARE(rows(u"Select * from tagged where scan = 9"_s), QStringList({u"9|30"_s, u"9|17"_s}));
    run(u"DELETE * FROM tagged where scan = 9"_s);
    QCOMPARE(rows(u"Select * from tagged where scan = 9"_s), QStringList());
}

void TestStatements::a_pair_may_repeat() {
    run(u"INSERT INTO tagged (scan, tag) VALUES (9, 3)"_s);
    run(u"INSERT INTO tagged (scan, tag) VALUES (9, 3)"_s);
    QCOMPARE(rows(u"Select * from tagged where scan = 9"_s), QStringList({u"9|3"_s, u"9|3"_s}));
}

void TestStatements::documents_of_a_tag_are_found() {
    run(u"INSERT INTO tagged (scan, tag) VALUES (9, 3)"_s);
    run(u"INSERT INTO tagged (scan, tag) VALUES (8, 3)"_s);
    run(u"INSERT INTO tagged (scan, tag) VALUES (8, 4)"_s);
    QCOMPARE(rows(u"Select * from tagged where tag = 3"_s).size(), 2);
    QCOMPARE(rows(u"Select * from tagged where tag = 5"_s).size(), 0);
}

void TestStatements::the_result_list_is_read_word_for_word() {
    const int later = station_->add_document(u"later"_s, 40098, {3, 17}, u"1009"_s, u"l.pdf"_s);
    const int earlier = station_->add_document(u"earlier"_s, 40001, {17}, u"0709"_s, u"e.pdf"_s);
    station_->add_document(u"other"_s, 40001, {40});
    const QString statement =
        u"SELECT DISTINCT scans.date, scans.description, scans.fname, "
        "scans.location, scans.link FROM scans INNER JOIN tagged ON "
        "scans.link = tagged.scan WHERE tagged.tag In (3,17) ORDER BY scans.date, scans.link"_s;
    QCOMPARE(rows(statement), QStringList({u"40001|earlier|e.pdf|0709|%1"_s.arg(earlier),
                                           u"40098|later|l.pdf|1009|%1"_s.arg(later)}));
}

void TestStatements::the_result_list_takes_a_range_of_dates() {
    station_->add_document(u"before"_s, 40086.9, {3});
    station_->add_document(u"first"_s, 40087, {3});
    station_->add_document(u"last"_s, 40098, {3, 17});
    station_->add_document(u"after"_s, 40098.5, {17});
    const QStringList found = rows(
        u"SELECT DISTINCT scans.date, scans.description, scans.fname, scans.location, scans.link "
        "FROM scans INNER JOIN tagged ON scans.link = tagged.scan WHERE tagged.tag In (3,17) "
        "and scans.date >= 40087 and scans.date <= 40098 ORDER BY scans.date, scans.link"_s);
    QCOMPARE(found.size(), 2);
    QVERIFY(found[0].startsWith(u"40087|first|"_s));
    QVERIFY(found[1].startsWith(u"40098|last|"_s));
}

void TestStatements::a_tag_is_inserted_and_found_by_number_and_name() {
    run(u"INSERT into Tags ([Link], [Description]) VALUES (12, 'Children''s school')"_s);
    QCOMPARE(rows(u"Select * from tags where link = 12"_s), QStringList{u"12|Children's school"_s});
    QCOMPARE(rows(u"Select * from tags where description = 'Children''s school'"_s),
             QStringList{u"12|Children's school"_s});
}

void TestStatements::tag_lists_are_read() {
    run(u"INSERT into Tags ([Link], [Description]) VALUES (3, 'b')"_s);
    run(u"INSERT into Tags ([Link], [Description]) VALUES (4, 'a')"_s);
    QCOMPARE(rows(u"Select * from tags"_s).size(), 2);
    QCOMPARE(rows(u"Select * from Tags"_s).size(), 2);
    QCOMPARE(rows(u"Select * from tags order by description"_s), QStringList({u"4|a"_s, u"3|b"_s}));
    QCOMPARE(rows(u"Select Description, Link from Tags  order by description"_s),
             QStringList({u"a|4"_s, u"b|3"_s}));
}

void TestStatements::names_of_tables_and_columns_ignore_case() {
    run(u"INSERT into TAGS ([LINK], [description]) VALUES (3, 'b')"_s);
    Recordset found = database().open_recordset(u"SELECT * FROM tAgS"_s);
    QCOMPARE(found.text(u"lInK"_s), u"3"_s);
    QCOMPARE(found.text(u"DESCRIPTION"_s), u"b"_s);
}

void TestStatements::texts_are_stored_and_found_unchanged_data() {
    QTest::addColumn<QString>("text");
    QTest::newRow("apostrophe") << u"Peter's bill"_s;
    QTest::newRow("many apostrophes") << u"'a''b'''"_s;
    QTest::newRow("double quotes") << u"the \"big\" one \""_s;
    QTest::newRow("percent signs") << u"100 % %1 %s %%"_s;
    QTest::newRow("ampersand") << u"A & B &amp; <c>"_s;
    QTest::newRow("line breaks") << u"one\r\ntwo\nthree\ttabbed"_s;
    QTest::newRow("right to left") << u"חשבון 2009 فاتورة"_s;
    QTest::newRow("emoji") << u"bill 🧾👩‍👩‍👧 done"_s;
    QTest::newRow("backslashes") << u"C:\\new\\table \\' \\0"_s;
    QTest::newRow("brackets") << u"[form] and [description]"_s;
    QTest::newRow("another statement") << u"DELETE * FROM tagged; settings.user = [user] --"_s;
    QTest::newRow("question marks") << u"? ?1 :a @b $c"_s;
    QTest::newRow("blanks") << u"  two  blanks  "_s;
    QTest::newRow("empty") << u""_s;
    QTest::newRow("digits") << u"0042"_s;
    QTest::newRow("32,000 characters") << QString(32000, u'x');
    QTest::newRow("32,000 apostrophes") << QString(32000, u'\'');
}

void TestStatements::texts_are_stored_and_found_unchanged() {
    QFETCH(QString, text);
    run(u"INSERT into Tags ([Link], [Description]) VALUES (3, '"_s + quoted(text) + u"')"_s);
    run(u"INSERT INTO scans ([link], [description], [date], [fname], [location]) VALUES (5, '"_s +
        quoted(text) + u"', 40098, 'f', 'l')"_s);
    const QString where = u" where description = '"_s + quoted(text) + u"'"_s;
    for (const char* table : {"Tags", "scans"}) {
        const Recordset found =
            database().open_recordset(u"Select * from "_s + QString::fromLatin1(table) + where);
        QCOMPARE(found.record_count(), 1);
        QCOMPARE(found.text(u"Description"_s), text);
    }
    run(u"UPDATE scans SET Description = '"_s + quoted(text) + u"x' WHERE link = 5"_s);
    QCOMPARE(station_->value(u"select description from scans"_s), text + u'x');
    QCOMPARE(rows(u"select * from tagged"_s), QStringList());
}

void TestStatements::a_name_is_found_without_regard_to_case_data() {
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("asked");
    QTest::addColumn<bool>("same");
    QTest::newRow("ASCII") << u"Invoice"_s << u"iNVOICE"_s << true;
    QTest::newRow("umlaut") << u"Ärger & Öl"_s << u"ärger & öL"_s << true;
    QTest::newRow("Greek") << u"ΛΟΓΑΡΙΑΣΜΟΣ"_s << u"λογαριασμος"_s << true;
    QTest::newRow("Cyrillic") << u"Счёт"_s << u"СЧЁТ"_s << true;
    QTest::newRow("beyond the first plane") << u"𐐀𐐁"_s << u"𐐨𐐩"_s << true;
    QTest::newRow("another letter") << u"Öl"_s << u"Ol"_s << false;
    QTest::newRow("longer") << u"Öl"_s << u"öle"_s << false;
    QTest::newRow("shorter") << u"Öle"_s << u"öl"_s << false;
    QTest::newRow("@ and `") << u"a@"_s << u"a`"_s << false;
}

void TestStatements::a_name_is_found_without_regard_to_case() {
    QFETCH(QString, stored);
    QFETCH(QString, asked);
    QFETCH(bool, same);
    station_->add_tag(stored);
    const Recordset found =
        database().open_recordset(u"Select * from tags where description = '"_s + asked + u"'"_s);
    QCOMPARE(found.record_count(), same ? 1 : 0);
}

void TestStatements::tags_are_ordered_without_regard_to_case() {
    for (const QString& name : {u"ö"_s, u"b"_s, u"Ä"_s, u"Z"_s, u"C"_s, u"ä2"_s, u"a"_s, u""_s})
        station_->add_tag(name);
    Recordset sorted =
        database().open_recordset(u"Select Description, Link from Tags  order by description"_s);
    QStringList names;
    for (; !sorted.eof(); sorted.move_next())
        names.append(sorted.text_at(0));
    QCOMPARE(names, QStringList({u""_s, u"a"_s, u"b"_s, u"C"_s, u"Z"_s, u"Ä"_s, u"ä2"_s, u"ö"_s}));
}

void TestStatements::equal_names_keep_the_order_of_their_numbers() {
    for (const QString& name : {u"é"_s, u"É"_s, u"é"_s, u"É"_s})
        station_->add_tag(name);
    QCOMPARE(rows(u"Select Description, Link from Tags  order by description"_s),
             QStringList({u"é|1"_s, u"É|2"_s, u"é|3"_s, u"É|4"_s}));
}

void TestStatements::dates_that_are_none_are_read_as_they_are() {
    run(u"INSERT INTO scans ([link], [date]) VALUES (1, 'NaN')"_s);
    run(u"INSERT INTO scans ([link], [date]) VALUES (2, Null)"_s);
    run(u"INSERT INTO scans ([link], [date]) VALUES (3, -40000)"_s);
    run(u"INSERT INTO scans ([link], [date]) VALUES (4, 9e999)"_s);
    run(u"INSERT INTO scans ([link], [date]) VALUES (5, '12 October')"_s);
    QCOMPARE(rows(u"select date from scans order by link"_s),
             QStringList({u"NaN"_s, u""_s, u"-40000"_s, u"inf"_s, u"12 October"_s}));
}

QTEST_GUILESS_MAIN(TestStatements)
#include "test_statements.moc"
