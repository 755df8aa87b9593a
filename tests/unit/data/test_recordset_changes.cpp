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

/// Changes through a record set, and what they leave behind.
class TestRecordsetChanges : public QObject {
    Q_OBJECT

private slots:
    void init() { station_ = std::make_unique<TestStation>(); }
    void cleanup() { station_.reset(); }

    void an_edit_reads_the_row_afresh_and_writes_it();
    void an_edit_holds_the_file_until_it_is_written();
    void an_abandoned_edit_changes_nothing_and_lets_go_data();
    void an_abandoned_edit_changes_nothing_and_lets_go();
    void an_exception_in_an_edit_leaves_no_lock();
    void a_failed_update_leaves_no_lock();
    void editing_a_row_that_another_station_deleted_says_so();
    void editing_without_a_current_row_is_an_error();
    void a_field_is_set_only_in_an_edit();
    void a_new_row_is_added();
    void a_new_row_that_fails_is_not_in_the_set();
    void the_current_row_is_deleted_and_the_walk_goes_on();
    void deleting_twice_says_so();
    void a_row_that_another_station_deleted_cannot_be_deleted();
    void a_join_cannot_be_changed_data();
    void a_join_cannot_be_changed();
    void a_closed_set_cannot_be_used();
    void a_set_outlives_the_connection_that_made_it();

private:
    std::unique_ptr<TestStation> station_;
};

void TestRecordsetChanges::an_edit_reads_the_row_afresh_and_writes_it() {
    Recordset set = open_set(u"Select * from comp"_s);
    QCOMPARE(set.text(u"NewLink"_s), u"1"_s);
    Database::open(station_->database_path())->execute(u"UPDATE comp SET comp.NewLink = 70"_s);
    QCOMPARE(set.text(u"NewLink"_s), u"1"_s);
    set.edit();
    QCOMPARE(set.text(u"NewLink"_s), u"70"_s);
    set.set_field(u"newlink"_s, 71);
    QCOMPARE(set.text(u"NewLink"_s), u"71"_s);
    set.update();
    QCOMPARE(set.text(u"NewLink"_s), u"71"_s);
    QCOMPARE(station_->value(u"Select * from comp"_s), u"71"_s);
}

void TestRecordsetChanges::an_edit_holds_the_file_until_it_is_written() {
    Recordset set = open_set(u"Select * from comp"_s);
    set.edit();
    QVERIFY(!can_write_elsewhere(*station_));
    set.set_field(u"NewLink"_s, 5);
    set.update();
    QVERIFY(can_write_elsewhere(*station_));
}

void TestRecordsetChanges::an_abandoned_edit_changes_nothing_and_lets_go_data() {
    QTest::addColumn<int>("way");
    QTest::newRow("destroyed") << 0;
    QTest::newRow("closed") << 1;
    QTest::newRow("moved") << 2;
    QTest::newRow("replaced") << 3;
    QTest::newRow("all rows taken") << 4;
}

void TestRecordsetChanges::an_abandoned_edit_changes_nothing_and_lets_go() {
    QFETCH(int, way);
    auto set = std::make_unique<Recordset>(open_set(u"Select * from comp"_s));
    set->edit();
    set->set_field(u"NewLink"_s, 5);
    switch (way) {
    case 0:
        set.reset();
        break;
    case 1:
        set->close();
        break;
    case 2:
        set->move_first();
        break;
    case 3:
        *set = open_set(u"Select * from comp"_s);
        break;
    default:
        set->get_rows();
    }
    QVERIFY(can_write_elsewhere(*station_));
    QCOMPARE(station_->value(u"Select * from comp"_s), u"1"_s);
}

void TestRecordsetChanges::an_exception_in_an_edit_leaves_no_lock() {
    QCOMPARE(thrown_number([&] {
                 Recordset set = open_set(u"Select * from comp"_s);
                 set.edit();
                 set.set_field(u"no such field"_s, 5);
             }),
             3265);
    QVERIFY(can_write_elsewhere(*station_));
}

void TestRecordsetChanges::a_failed_update_leaves_no_lock() {
    station_->add_tag(u"one"_s);
    station_->add_tag(u"two"_s);
    Recordset set = open_set(u"Select * from tags where link = 2"_s);
    set.edit();
    set.set_field(u"Link"_s, 1);
    const auto error = thrown([&] { set.update(); });
    QVERIFY(error);
    QVERIFY(error->description.contains(u"UNIQUE"_s));
    QVERIFY(error->description.contains(station_->database_path()));
    QVERIFY(can_write_elsewhere(*station_));
    QCOMPARE(station_->rows(u"Select * from tags"_s), QStringList({u"1|one"_s, u"2|two"_s}));
}

void TestRecordsetChanges::editing_a_row_that_another_station_deleted_says_so() {
    add_three_pairs();
    Recordset set = open_set(u"Select * from tagged"_s);
    database().execute(u"DELETE * FROM tagged where tag = 30"_s);
    const auto error = thrown([&] { set.edit(); });
    QVERIFY(error);
    QCOMPARE(error->number, 3167);
    QCOMPARE(error->description, u"Record is deleted."_s);
    QVERIFY(can_write_elsewhere(*station_));
}

void TestRecordsetChanges::editing_without_a_current_row_is_an_error() {
    Recordset set = open_set(u"Select * from tags"_s);
    QCOMPARE(thrown_number([&] { set.edit(); }), 3021);
    QVERIFY(can_write_elsewhere(*station_));
}

void TestRecordsetChanges::a_field_is_set_only_in_an_edit() {
    Recordset set = open_set(u"Select * from comp"_s);
    QCOMPARE(thrown_number([&] { set.set_field(u"NewLink"_s, 5); }), 3020);
    QCOMPARE(thrown_number([&] { set.update(); }), 3020);
    QCOMPARE(station_->value(u"Select * from comp"_s), u"1"_s);
}

void TestRecordsetChanges::a_new_row_is_added() {
    station_->add_tag(u"one"_s);
    Recordset set = open_set(u"Select * from tags"_s);
    set.add_new();
    QVERIFY(set.field(u"link"_s).isNull());
    set.set_field(u"link"_s, 8);
    set.set_field(u"Description"_s, u"it's 100 % [new]"_s);
    set.update();
    QCOMPARE(set.text(u"link"_s), u"1"_s);
    set.move_last();
    QCOMPARE(set.text(u"Description"_s), u"it's 100 % [new]"_s);
    QCOMPARE(set.record_count(), 2);
    QCOMPARE(station_->rows(u"Select * from tags"_s),
             QStringList({u"1|one"_s, u"8|it's 100 % [new]"_s}));
}

void TestRecordsetChanges::a_new_row_that_fails_is_not_in_the_set() {
    station_->add_tag(u"one"_s);
    Recordset set = open_set(u"Select * from tags"_s);
    set.add_new();
    set.set_field(u"link"_s, 1);
    QVERIFY(thrown([&] { set.update(); }));
    set.move_last();
    QCOMPARE(set.record_count(), 1);
    QVERIFY(can_write_elsewhere(*station_));
}

void TestRecordsetChanges::the_current_row_is_deleted_and_the_walk_goes_on() {
    add_three_pairs();
    Recordset set = open_set(u"Select * from tagged where scan = 9"_s);
    QStringList seen;
    for (; !set.eof(); set.move_next()) {
        seen.append(set.text(u"tag"_s));
        if (seen.back() != u"2"_s)
            set.delete_current();
    }
    QCOMPARE(seen, QStringList({u"30"_s, u"2"_s, u"17"_s}));
    QCOMPARE(set.record_count(), 1);
    QCOMPARE(station_->rows(u"Select * from tagged"_s), QStringList{u"9|2"_s});
}

void TestRecordsetChanges::deleting_twice_says_so() {
    add_three_pairs();
    Recordset set = open_set(u"Select * from tagged"_s);
    set.delete_current();
    QVERIFY(!set.eof());
    QCOMPARE(thrown_number([&] { set.delete_current(); }), 3167);
    QCOMPARE(thrown_number([&] { set.text(u"tag"_s); }), 3167);
    QCOMPARE(station_->rows(u"Select * from tagged"_s).size(), 2);
}

void TestRecordsetChanges::a_row_that_another_station_deleted_cannot_be_deleted() {
    add_three_pairs();
    Recordset set = open_set(u"Select * from tagged"_s);
    database().execute(u"DELETE * FROM tagged where tag = 30"_s);
    QCOMPARE(thrown_number([&] { set.delete_current(); }), 3167);
    QCOMPARE(station_->rows(u"Select * from tagged"_s).size(), 2);
}

void TestRecordsetChanges::a_join_cannot_be_changed_data() {
    QTest::addColumn<QString>("sql");
    QTest::newRow("join") << u"Select tags.Link from tags inner join tagged on tag = Link"_s;
    QTest::newRow("two tables") << u"Select * from tags, tagged where tag = Link"_s;
    QTest::newRow("distinct") << u"Select distinct Link from tags"_s;
    QTest::newRow("count") << u"Select count(*) from tags"_s;
}

void TestRecordsetChanges::a_join_cannot_be_changed() {
    QFETCH(QString, sql);
    add_pair(9, station_->add_tag(u"one"_s));
    Recordset set = open_set(sql);
    QVERIFY(!set.eof());
    const auto error = thrown([&] { set.edit(); });
    QVERIFY(error);
    QCOMPARE(error->number, 3027);
    QVERIFY(error->description.contains(station_->database_path()));
    QCOMPARE(thrown_number([&] { set.delete_current(); }), 3027);
    QCOMPARE(thrown_number([&] { set.add_new(); }), 3027);
}

void TestRecordsetChanges::a_closed_set_cannot_be_used() {
    Recordset set = open_set(u"Select * from comp"_s);
    set.close();
    set.close();
    QCOMPARE(thrown_number([&] { set.text(u"NewLink"_s); }), 3420);
    QCOMPARE(thrown_number([&] { set.edit(); }), 3420);
}

void TestRecordsetChanges::a_set_outlives_the_connection_that_made_it() {
    Recordset set = open_set(u"Select * from comp"_s);
    set.edit();
    set_database(nullptr);
    set.set_field(u"NewLink"_s, 9);
    set.update();
    set.close();
    set_database(Database::open(station_->database_path()));
    QCOMPARE(station_->value(u"Select * from comp"_s), u"9"_s);
}

QTEST_GUILESS_MAIN(TestRecordsetChanges)
#include "test_recordset_changes.moc"
