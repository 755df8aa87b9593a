// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "data/database.h"
#include "tests/support/test_station.h"
#include "tests/unit/data/pairs.h"

#include <QTest>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

class TestRecordset : public QObject {
    Q_OBJECT

private slots:
    void init() { station_ = std::make_unique<TestStation>(); }
    void cleanup() { station_.reset(); }

    void an_empty_set_counts_nothing_and_is_at_its_end();
    void a_set_counts_one_until_it_was_read_to_its_end();
    void walking_to_the_end_makes_the_count_exact();
    void moving_in_an_empty_set_is_allowed();
    void moving_past_the_end_is_an_error();
    void fields_are_found_by_name_without_regard_to_case();
    void a_field_has_its_type_and_its_text();
    void null_is_an_empty_text();
    void find_first_positions_on_the_first_match_data();
    void find_first_positions_on_the_first_match();
    void find_first_without_a_match_says_so_and_stays();
    void a_criterion_that_is_none_is_an_error_data();
    void a_criterion_that_is_none_is_an_error();
    void all_rows_come_from_the_current_one_on();
    void a_set_keeps_the_rows_of_its_moment();
    void an_open_set_holds_no_lock();

private:
    std::unique_ptr<TestStation> station_;
};

void TestRecordset::an_empty_set_counts_nothing_and_is_at_its_end() {
    const Recordset set = open_set(u"Select * from tags"_s);
    QCOMPARE(set.record_count(), 0);
    QVERIFY(set.eof());
    QCOMPARE(thrown_number([&] { set.field(u"link"_s); }), 3021);
}

void TestRecordset::a_set_counts_one_until_it_was_read_to_its_end() {
    add_three_pairs();
    Recordset set = open_set(u"Select * from tagged"_s);
    QCOMPARE(set.record_count(), 1);
    set.move_next();
    QCOMPARE(set.record_count(), 1);
    set.move_last();
    QCOMPARE(set.text(u"tag"_s), u"17"_s);
    QCOMPARE(set.record_count(), 3);
    set.move_first();
    QCOMPARE(set.text(u"tag"_s), u"30"_s);
    QCOMPARE(set.record_count(), 3);
}

void TestRecordset::walking_to_the_end_makes_the_count_exact() {
    add_three_pairs();
    Recordset set = open_set(u"Select * from tagged"_s);
    QStringList tags;
    for (; !set.eof(); set.move_next())
        tags.append(set.text(u"Tag"_s));
    QCOMPARE(tags, QStringList({u"30"_s, u"2"_s, u"17"_s}));
    QCOMPARE(set.record_count(), 3);
}

void TestRecordset::moving_in_an_empty_set_is_allowed() {
    Recordset set = open_set(u"Select * from tags"_s);
    set.move_last();
    set.move_first();
    QCOMPARE(set.record_count(), 0);
    QVERIFY(set.eof());
    QVERIFY(set.get_rows().empty());
}

void TestRecordset::moving_past_the_end_is_an_error() {
    add_pair(1, 1);
    Recordset set = open_set(u"Select * from tagged"_s);
    set.move_next();
    QVERIFY(set.eof());
    QCOMPARE(thrown_number([&] { set.move_next(); }), 3021);
}

void TestRecordset::fields_are_found_by_name_without_regard_to_case() {
    add_pair(4, 5);
    const Recordset set = open_set(u"Select * from tagged"_s);
    QCOMPARE(set.text(u"SCAN"_s), u"4"_s);
    QCOMPARE(set.field_index(u"Tag"_s), 1);
    QCOMPARE(set.field_count(), 2);
    const auto error = thrown([&] { set.field(u"rowid"_s); });
    QVERIFY(error);
    QCOMPARE(error->number, 3265);
    QVERIFY(error->description.contains(u"rowid"_s));
}

void TestRecordset::a_field_has_its_type_and_its_text() {
    database().execute(u"INSERT INTO scans ([link], [description], [date], [fname], [location]) "
                       "VALUES (5, 'x', 40098.123456789012, '0', '0109')"_s);
    const Recordset set = open_set(u"Select * from scans"_s);
    QCOMPARE(set.field(u"link"_s).typeId(), static_cast<int>(QMetaType::LongLong));
    QCOMPARE(set.field(u"date"_s).typeId(), static_cast<int>(QMetaType::Double));
    QCOMPARE(set.field(u"location"_s).typeId(), static_cast<int>(QMetaType::QString));
    QCOMPARE(set.text(u"date"_s), u"40098.123456789"_s);
    QCOMPARE(set.text(u"location"_s), u"0109"_s);
}

void TestRecordset::null_is_an_empty_text() {
    database().execute(u"INSERT INTO scans ([link]) VALUES (5)"_s);
    const Recordset set = open_set(u"Select * from scans"_s);
    QVERIFY(set.field(u"description"_s).isNull());
    QCOMPARE(set.text(u"description"_s), QString());
    QCOMPARE(set.text(u"date"_s), QString());
}

void TestRecordset::find_first_positions_on_the_first_match_data() {
    QTest::addColumn<QString>("criterion");
    QTest::addColumn<QString>("link");
    QTest::newRow("number") << u"link = 3"_s << u"3"_s;
    QTest::newRow("without blanks") << u"link=3"_s << u"3"_s;
    QTest::newRow("text") << u"description = 'beta'"_s << u"2"_s;
    QTest::newRow("text in another case") << u"Description = 'ÄRGER'"_s << u"3"_s;
    QTest::newRow("text with apostrophe") << u"description = 'it''s'"_s << u"4"_s;
    QTest::newRow("bracketed name") << u"[link] = 2"_s << u"2"_s;
    QTest::newRow("qualified name") << u"tags.link = 2"_s << u"2"_s;
    QTest::newRow("greater") << u"link > 1"_s << u"2"_s;
    QTest::newRow("at least") << u"link >= 3"_s << u"3"_s;
    QTest::newRow("unequal") << u"link <> 1"_s << u"2"_s;
    QTest::newRow("less than a negative") << u"link > -1"_s << u"1"_s;
}

void TestRecordset::find_first_positions_on_the_first_match() {
    QFETCH(QString, criterion);
    QFETCH(QString, link);
    for (const QString& name : {u"Alpha"_s, u"Beta"_s, u"Ärger"_s, u"it's"_s, u"beta"_s})
        station_->add_tag(name);
    Recordset set = open_set(u"Select * from tags"_s);
    set.move_last();
    set.find_first(criterion);
    QVERIFY(!set.no_match());
    QCOMPARE(set.text(u"link"_s), link);
}

void TestRecordset::find_first_without_a_match_says_so_and_stays() {
    add_three_pairs();
    add_pair(9, 40);
    database().execute(u"INSERT INTO tagged (scan) VALUES (9)"_s);
    Recordset set = open_set(u"Select * from tagged"_s);
    set.find_first(u"tag = 2"_s);
    QVERIFY(!set.no_match());
    for (const QString& criterion : {u"tag = 3"_s, u"tag = 'x'"_s, u"tag < 2"_s}) {
        set.find_first(criterion);
        QVERIFY(set.no_match());
        QCOMPARE(set.text(u"tag"_s), u"2"_s);
    }
    set.find_first(u"tag <= 2"_s);
    QVERIFY(!set.no_match());
}

void TestRecordset::a_criterion_that_is_none_is_an_error_data() {
    QTest::addColumn<QString>("criterion");
    QTest::addColumn<int>("number");
    QTest::newRow("empty") << u""_s << 3077;
    QTest::newRow("no value") << u"tag = "_s << 3077;
    QTest::newRow("no comparison") << u"tag 17"_s << 3077;
    QTest::newRow("two") << u"tag = 17 and scan = 2"_s << 3077;
    QTest::newRow("negative text") << u"tag = -'x'"_s << 3077;
    QTest::newRow("unknown field") << u"link = 17"_s << 3265;
}

void TestRecordset::a_criterion_that_is_none_is_an_error() {
    QFETCH(QString, criterion);
    QFETCH(int, number);
    add_three_pairs();
    Recordset set = open_set(u"Select * from tagged"_s);
    QCOMPARE(thrown_number([&] { set.find_first(criterion); }), number);
}

void TestRecordset::all_rows_come_from_the_current_one_on() {
    add_three_pairs();
    Recordset set = open_set(u"Select * from tagged"_s);
    set.move_next();
    const auto rows = set.get_rows();
    QCOMPARE(rows.size(), std::size_t(2));
    QCOMPARE(rows[0], (std::vector<QVariant>{qlonglong(9), qlonglong(2)}));
    QCOMPARE(rows[1], (std::vector<QVariant>{qlonglong(9), qlonglong(17)}));
    QVERIFY(set.eof());
    QCOMPARE(set.record_count(), 3);
}

void TestRecordset::a_set_keeps_the_rows_of_its_moment() {
    add_three_pairs();
    Recordset set = open_set(u"Select * from tagged"_s);
    database().execute(u"DELETE * FROM tagged where scan = 9"_s);
    set.move_last();
    QCOMPARE(set.record_count(), 3);
    QCOMPARE(set.text(u"tag"_s), u"17"_s);
}

void TestRecordset::an_open_set_holds_no_lock() {
    add_three_pairs();
    const Recordset set = open_set(u"Select * from tagged"_s);
    QVERIFY(can_write_elsewhere(*station_));
    QVERIFY(!set.eof());
}

QTEST_GUILESS_MAIN(TestRecordset)
#include "test_recordset.moc"
