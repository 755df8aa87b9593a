// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "common/error_trap.h"
#include "data/database.h"
#include "data/settings_store.h"
#include "tests/support/test_station.h"
#include "tests/unit/data/thrown.h"

#include <QFile>
#include <QTest>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

class TestSettingsStore : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void a_freshly_written_value_reads_back_as_empty();
    void an_absent_value_is_empty();
    void even_two_values_read_back_as_empty();
    void writing_again_changes_the_value();
    void a_value_belongs_to_its_user();
    void a_name_is_found_without_regard_to_case();
    void texts_are_stored_unchanged_data();
    void texts_are_stored_unchanged();
    void of_two_values_the_first_is_changed();
    void a_row_whose_number_is_no_number_is_joined_by_a_new_one();
    void a_failure_is_reported_under_the_procedures_name_data();
    void a_failure_is_reported_under_the_procedures_name();

    void a_forms_value_is_the_element_of_both_names();
    void an_absent_forms_value_is_empty();
    void a_forms_value_is_found_wherever_the_cursor_stands();
    void a_new_element_comes_last_and_a_known_one_keeps_its_place();
    void storing_a_forms_value_writes_no_file();

private:
    QStringList stored() {
        return station_->rows(u"select form, description, user, value from settings order by id"_s);
    }

    std::unique_ptr<TestStation> station_;
    QList<Report> reports_;
};

void TestSettingsStore::init() {
    station_ = std::make_unique<TestStation>();
    reports_.clear();
    show_report = [this](const Report& report) { reports_.append(report); };
}

void TestSettingsStore::cleanup() {
    station_.reset();
}

void TestSettingsStore::a_freshly_written_value_reads_back_as_empty() {
    QVERIFY(set_pref(u"frmMain"_s, u"colour"_s, -1, u"blue"_s));
    QCOMPARE(stored(), QStringList{u"frmMain|colour|-1|blue"_s});
    QCOMPARE(get_pref(u"frmMain"_s, u"colour"_s, -1), QString());
}

void TestSettingsStore::an_absent_value_is_empty() {
    QCOMPARE(get_pref(u"frmMain"_s, u"colour"_s, -1), QString());
    QCOMPARE(stored(), QStringList());
}

// Nobody has read the set to its end, so it counts one however many rows there are.
void TestSettingsStore::even_two_values_read_back_as_empty() {
    for (const QString& value : {u"blue"_s, u"red"_s})
        database().execute(u"INSERT INTO settings ([form], [description], [user], [value]) "
                           "VALUES ('frmMain', 'colour', -1, '"_s +
                           value + u"')"_s);
    QCOMPARE(get_pref(u"frmMain"_s, u"colour"_s, -1), QString());
}

void TestSettingsStore::writing_again_changes_the_value() {
    QVERIFY(set_pref(u"frmMain"_s, u"colour"_s, -1, u"blue"_s));
    QVERIFY(set_pref(u"frmMain"_s, u"colour"_s, -1, u"red"_s));
    QCOMPARE(stored(), QStringList{u"frmMain|colour|-1|red"_s});
}

void TestSettingsStore::a_value_belongs_to_its_user() {
    set_pref(u"frmMain"_s, u"colour"_s, -1, u"blue"_s);
    set_pref(u"frmMain"_s, u"colour"_s, 4, u"red"_s);
    set_pref(u"frmMain"_s, u"colour"_s, 4, u"green"_s);
    QCOMPARE(stored(), QStringList({u"frmMain|colour|-1|blue"_s, u"frmMain|colour|4|green"_s}));
}

void TestSettingsStore::a_name_is_found_without_regard_to_case() {
    set_pref(u"Büro"_s, u"Größe"_s, -1, u"1"_s);
    set_pref(u"BÜRO"_s, u"GRÖßE"_s, -1, u"2"_s);
    QCOMPARE(stored(), QStringList{u"BÜRO|GRÖßE|-1|2"_s});
}

void TestSettingsStore::texts_are_stored_unchanged_data() {
    QTest::addColumn<QString>("text");
    QTest::newRow("apostrophe") << u"it's 'so'"_s;
    QTest::newRow("statement") << u"x', settings.user = 5 where id = 1 --"_s;
    QTest::newRow("percent and ampersand") << u"100 % & %1"_s;
    QTest::newRow("line break") << u"a\r\nb"_s;
    QTest::newRow("emoji") << u"🧾"_s;
    QTest::newRow("long") << QString(32000, u'y');
    QTest::newRow("empty") << u""_s;
}

void TestSettingsStore::texts_are_stored_unchanged() {
    QFETCH(QString, text);
    for (int pass = 0; pass < 2; ++pass) {
        QVERIFY(set_pref(u"f"_s + text, u"d"_s + text, -1, text));
        const Recordset set = database().open_recordset(u"Select * from settings"_s);
        QCOMPARE(set.text(u"form"_s), u"f"_s + text);
        QCOMPARE(set.text(u"description"_s), u"d"_s + text);
        QCOMPARE(set.text(u"value"_s), text);
        QCOMPARE(station_->value(u"select count(*) from settings"_s), u"1"_s);
    }
}

void TestSettingsStore::of_two_values_the_first_is_changed() {
    for (const QString& value : {u"blue"_s, u"red"_s})
        database().execute(u"INSERT INTO settings ([form], [description], [user], [value]) "
                           "VALUES ('frmMain', 'colour', -1, '"_s +
                           value + u"')"_s);
    QVERIFY(set_pref(u"frmMain"_s, u"colour"_s, -1, u"green"_s));
    QCOMPARE(stored(), QStringList({u"frmMain|colour|-1|green"_s, u"frmMain|colour|-1|red"_s}));
}

void TestSettingsStore::a_row_whose_number_is_no_number_is_joined_by_a_new_one() {
    database().execute(u"INSERT INTO settings ([id], [form], [description], [user], [value]) "
                       "VALUES (0, 'frmMain', 'colour', -1, 'blue')"_s);
    QVERIFY(set_pref(u"frmMain"_s, u"colour"_s, -1, u"red"_s));
    QCOMPARE(stored(), QStringList({u"frmMain|colour|-1|blue"_s, u"frmMain|colour|-1|red"_s}));
}

void TestSettingsStore::a_failure_is_reported_under_the_procedures_name_data() {
    QTest::addColumn<QString>("procedure");
    QTest::newRow("read") << u"get_pref"_s;
    QTest::newRow("write") << u"set_pref"_s;
}

void TestSettingsStore::a_failure_is_reported_under_the_procedures_name() {
    QFETCH(QString, procedure);
    database().execute(u"DROP TABLE settings"_s);
    const int number = thrown_number([&] {
        if (procedure == u"get_pref"_s)
            get_pref(u"a"_s, u"b"_s, -1);
        else
            set_pref(u"a"_s, u"b"_s, -1, u"c"_s);
    });
    QCOMPARE(number, kPassedOn);
    QCOMPARE(reports_.size(), 1);
    QCOMPARE(reports_[0].module, u"Utilities"_s);
    QCOMPARE(reports_[0].procedure, procedure);
    QVERIFY(reports_[0].description.contains(station_->database_path()));
}

void TestSettingsStore::a_forms_value_is_the_element_of_both_names() {
    set_FormSettings(u"frmMain"_s, u"Top"_s, u"120"_s);
    Preferences().move_to_root();
    QCOMPARE(Preferences().child_text(u"frmMainTop"_s), u"120"_s);
    QCOMPARE(get_FormSettings(u"frmMain"_s, u"Top"_s), u"120"_s);
}

void TestSettingsStore::an_absent_forms_value_is_empty() {
    QCOMPARE(get_FormSettings(u"frmMain"_s, u"Top"_s), QString());
    Preferences().move_to_root();
    QVERIFY(Preferences().child(u"frmMainTop"_s).is_null());
}

void TestSettingsStore::a_forms_value_is_found_wherever_the_cursor_stands() {
    set_FormSettings(u"frmMain"_s, u"Top"_s, u"120"_s);
    set_FormSettings(u"frmTags"_s, u"Top"_s, u"240"_s);
    QCOMPARE(get_FormSettings(u"frmMain"_s, u"Top"_s), u"120"_s);
    QCOMPARE(get_FormSettings(u"frmTags"_s, u"Top"_s), u"240"_s);
}

void TestSettingsStore::a_new_element_comes_last_and_a_known_one_keeps_its_place() {
    set_FormSettings(u"frmMain"_s, u"Top"_s, u"1"_s);
    set_FormSettings(u"frmMain"_s, u"Left"_s, u"2"_s);
    set_FormSettings(u"frmMain"_s, u"Top"_s, u"3"_s);
    Preferences().move_to_root();
    QStringList tags;
    for (const PreferencesElement& element : Preferences().cursor().children())
        tags.append(element.tag());
    QCOMPARE(tags, QStringList({u"dblocation"_s, u"frmMainTop"_s, u"frmMainLeft"_s}));
    QCOMPARE(get_FormSettings(u"frmMain"_s, u"Top"_s), u"3"_s);
}

void TestSettingsStore::storing_a_forms_value_writes_no_file() {
    set_FormSettings(u"frmMain"_s, u"Top"_s, u"1"_s);
    QVERIFY(!QFile::exists(preferences_path()));
}

QTEST_GUILESS_MAIN(TestSettingsStore)
#include "test_settings_store.moc"
