// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/preferences.h"
#include "app/process_values.h"
#include "common/day_number.h"
#include "common/drop_menu.h"
#include "common/pop_up_menu.h"
#include "controls/date_picker.h"
#include "controls/grid.h"
#include "controls/tag_combo.h"
#include "data/database.h"
#include "tests/forms/browser/main_window.h"

#include <QCheckBox>
#include <QFile>
#include <QTest>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

/// The filter kept from one run to the next, and the tag profiles.
class TestMainProfiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { main_ = std::make_unique<MainWindow>(); }
    void cleanup();

    void a_first_start_shows_the_last_six_months();
    void a_stored_day_below_ten_counts_as_missing_data();
    void a_stored_day_below_ten_counts_as_missing();
    void every_query_keeps_the_filter();
    void the_filter_comes_back_in_the_order_of_the_list();
    void the_chosen_tags_come_back_with_their_mark();
    void a_tag_deleted_from_the_catalogue_is_not_restored();
    void only_an_exact_one_restores_a_tag();
    void restoring_runs_one_query_with_the_whole_filter();
    void a_profile_holds_its_name_and_tags();
    void two_profiles_of_one_name_are_both_kept();
    void a_cancelled_name_stores_nothing();
    void the_profiles_menu_without_profiles();
    void the_profiles_menu_lists_every_profile_twice();
    void only_saving_is_acted_on();
    void the_entry_points_kept_empty_change_nothing();

private:
    void save_profile(const QString& name);
    PreferencesElement profiles() const;
    QStringList captions() const;

    std::unique_ptr<MainWindow> main_;
};

void TestMainProfiles::cleanup() {
    const bool as_planned = main_->boxes.verify();
    const QList<int> ended = main_->ended;
    main_.reset();
    QVERIFY(as_planned);
    QCOMPARE(ended, QList<int>{});
}

void TestMainProfiles::save_profile(const QString& name) {
    main_->boxes.expect_input(u"Enter a user friendly profile name."_s, u"Create new profile"_s,
                              name);
    (*main_)->mnu_profiles();
    const qsizetype index = pop_keys.indexOf(u"mnuProfileSave"_s);
    QVERIFY(index > 0);
    (*main_)->Dmnu->hide();
    Q_EMIT(*main_)->Dmnu->ItemClick(static_cast<int>(index));
}

PreferencesElement TestMainProfiles::profiles() const {
    Preferences().move_to_root();
    return Preferences().child(u"Profiles"_s);
}

QStringList TestMainProfiles::captions() const {
    QStringList texts;
    for (int index = 1; index <= (*main_)->Dmnu->ItemCount(); ++index)
        texts.append((*main_)->Dmnu->is_separator(index) ? u"-"_s
                                                         : (*main_)->Dmnu->ItemCaption(index));
    return texts;
}

void TestMainProfiles::a_first_start_shows_the_last_six_months() {
    const QDateTime before = QDateTime::currentDateTime();
    main_->open();
    const QDateTime after = QDateTime::currentDateTime();
    QVERIFY(!(*main_)->chkDates->isChecked());
    QVERIFY((*main_)->dtTo->value() >= day_number(before.date(), before.time()));
    QVERIFY((*main_)->dtTo->value() <= day_number(after.date(), after.time()));
    QVERIFY((*main_)->dtFrom->value() >= day_number(before.date().addMonths(-6), before.time()));
    QVERIFY((*main_)->dtFrom->value() <= day_number(after.date().addMonths(-6), after.time()));
}

void TestMainProfiles::a_stored_day_below_ten_counts_as_missing_data() {
    QTest::addColumn<QString>("stored");
    QTest::addColumn<double>("shown");
    QTest::newRow("9") << u"9"_s << 0.0;
    QTest::newRow("9.5") << u"9.5"_s << 0.0;
    QTest::newRow("no number") << u"yesterday"_s << 0.0;
    QTest::newRow("10") << u"10"_s << 10.0;
    QTest::newRow("with a time") << u"40098.5"_s << 40098.5;
}

void TestMainProfiles::a_stored_day_below_ten_counts_as_missing() {
    QFETCH(QString, stored);
    QFETCH(double, shown);
    main_->set_preference(u"dtFrom"_s, stored);
    main_->set_preference(u"dtTo"_s, stored);
    const QDate before = QDate::currentDate();
    main_->open();
    if (shown > 0) {
        QCOMPARE((*main_)->dtFrom->value(), shown);
        QCOMPARE((*main_)->dtTo->value(), shown);
    } else {
        const QDate today = (*main_)->dtTo->date();
        QVERIFY(today >= before && today <= QDate::currentDate());
        QVERIFY((*main_)->dtFrom->date() == today.addMonths(-6) ||
                (*main_)->dtFrom->date() == before.addMonths(-6));
    }
}

void TestMainProfiles::every_query_keeps_the_filter() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    const int home = main_->station.add_tag(u"Home"_s);
    main_->open();
    main_->choose(u"Home"_s);
    (*main_)->dtFrom->set_value(40087);
    (*main_)->dtTo->set_value(40098.5);
    QCOMPARE(main_->preference(u"chkDates"_s), u"0"_s);
    QCOMPARE(main_->preference(u"dtFrom"_s), u"40087"_s);
    QCOMPARE(main_->preference(u"dtTo"_s), u"40098.5"_s);
    QCOMPARE(main_->saved_flag(bills), u"0"_s);
    QCOMPARE(main_->saved_flag(home), u"1"_s);
    (*main_)->chkDates->setChecked(true);
    QCOMPARE(main_->preference(u"chkDates"_s), u"1"_s);
    main_->choose(u"Bills"_s);
    main_->click((*main_)->fgL, 0, 0);
    QCOMPARE(main_->saved_flag(bills), u"1"_s);
    QCOMPARE(main_->saved_flag(home), u"0"_s);
}

void TestMainProfiles::the_filter_comes_back_in_the_order_of_the_list() {
    main_->station.add_tag(u"Work"_s);
    main_->station.add_tag(u"Bills"_s);
    main_->station.add_tag(u"Home"_s);
    main_->open();
    for (const QString& tag : {u"Work"_s, u"Home"_s, u"Bills"_s})
        main_->choose(tag);
    (*main_)->chkDates->setChecked(true);
    main_->open();
    QCOMPARE(main_->chosen(), (QStringList{u"Bills"_s, u"Home"_s, u"Work"_s}));
    QVERIFY((*main_)->chkDates->isChecked());
}

void TestMainProfiles::the_chosen_tags_come_back_with_their_mark() {
    main_->station.add_tag(u"Bills"_s);
    main_->open();
    main_->choose(u"Bills"_s);
    main_->open();
    const Grid* fgL = (*main_)->fgL;
    QVERIFY(!fgL->model()->index(0, 0).data(Qt::DecorationRole).value<QPixmap>().isNull());
    main_->click((*main_)->fgL, 0, 0);
    QCOMPARE(main_->chosen(), QStringList{});
}

void TestMainProfiles::a_tag_deleted_from_the_catalogue_is_not_restored() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    main_->station.add_tag(u"Home"_s);
    main_->open();
    main_->choose(u"Bills"_s);
    main_->choose(u"Home"_s);
    database().execute(u"DELETE * FROM tags where link = "_s + QString::number(bills));
    main_->open();
    QCOMPARE(main_->chosen(), QStringList{u"Home"_s});
}

void TestMainProfiles::only_an_exact_one_restores_a_tag() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    Preferences().move_to_root();
    Preferences()
        .cursor()
        .child_or_new(u"tagprofiles"_s)
        .child_or_new(u"fdxloadfilter"_s)
        .set_child_text(u"Tag"_s + QString::number(bills), u"1 "_s);
    main_->open();
    QCOMPARE(main_->chosen(), QStringList{});
}

void TestMainProfiles::restoring_runs_one_query_with_the_whole_filter() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    main_->station.add_document(u"Power"_s, MainWindow::kDay, {bills});
    main_->open();
    main_->choose(u"Bills"_s);
    (*main_)->dtFrom->set_value(MainWindow::kDay - 1);
    (*main_)->dtTo->set_value(MainWindow::kDay + 1);
    main_->open();
    QCOMPARE(main_->documents(), QStringList{u"Power"_s});
    QCOMPARE((*main_)->dtTo->value(), MainWindow::kDay + 1);
    QCOMPARE(main_->saved_flag(bills), u"1"_s);
}

void TestMainProfiles::a_profile_holds_its_name_and_tags() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    const int home = main_->station.add_tag(u"Home"_s);
    main_->open();
    main_->choose(u"Home"_s);
    main_->choose(u"Bills"_s);
    const int next = main_->station.value(u"select NewLink from comp"_s).toInt();
    QVERIFY(QFile::remove(preferences_path()));
    save_profile(u"Household & more"_s);
    const QList<PreferencesElement> saved = profiles().children();
    QCOMPARE(saved.size(), 1);
    QCOMPARE(saved[0].tag(), u"profile"_s + QString::number(next));
    QStringList tags;
    for (const PreferencesElement& tag : saved[0].children())
        tags.append(tag.tag());
    QCOMPARE(tags,
             (QStringList{u"tag"_s + QString::number(home), u"tag"_s + QString::number(bills)}));
    QVERIFY(QFile::exists(preferences_path()));
    (*main_)->mnu_profiles();
    QVERIFY(captions().contains(u"Household & more"_s));
}

void TestMainProfiles::two_profiles_of_one_name_are_both_kept() {
    main_->open();
    save_profile(u"Mine"_s);
    save_profile(u"Mine"_s);
    const QList<PreferencesElement> saved = profiles().children();
    QCOMPARE(saved.size(), 2);
    QVERIFY(saved[0].tag() != saved[1].tag());
    (*main_)->mnu_profiles();
    QCOMPARE(captions().count(u"Mine"_s), 4);
}

void TestMainProfiles::a_cancelled_name_stores_nothing() {
    main_->open();
    QVERIFY(QFile::remove(preferences_path()));
    const QString next = main_->station.value(u"select NewLink from comp"_s);
    save_profile({});
    QCOMPARE(profiles().children().size(), 0);
    QVERIFY(!QFile::exists(preferences_path()));
    QCOMPARE(main_->station.value(u"select NewLink from comp"_s), next);
}

void TestMainProfiles::the_profiles_menu_without_profiles() {
    main_->open();
    (*main_)->mnu_profiles();
    QTRY_VERIFY((*main_)->Dmnu->isVisible());
    QCOMPARE(captions(), (QStringList{u"Add All Tags"_s, u"-"_s, u"Save as new profile"_s}));
    QCOMPARE(pop_keys,
             (QStringList{QString(), u"mnuProfileAdd"_s, QString(), u"mnuProfileSave"_s}));
}

void TestMainProfiles::the_profiles_menu_lists_every_profile_twice() {
    main_->open();
    save_profile(u"Home"_s);
    save_profile(u"Work"_s);
    const QString home = profiles().children()[0].tag().mid(7);
    const QString work = profiles().children()[1].tag().mid(7);
    (*main_)->mnu_profiles();
    QCOMPARE(captions(), (QStringList{u"Add All Tags"_s, u"-"_s, u"Open Profile"_s, u"Home"_s,
                                      u"Work"_s, u"Save as new profile"_s, u"-"_s,
                                      u"Delete Profile"_s, u"Home"_s, u"Work"_s}));
    QCOMPARE(pop_keys.mid(1),
             (QStringList{u"mnuProfileAdd"_s, QString(), u"mnuProfileOpen"_s,
                          u"mnuProfileOpen"_s + home, u"mnuProfileOpen"_s + work,
                          u"mnuProfileSave"_s, QString(), u"mnuProfileDelete"_s,
                          u"mnuProfileDelete"_s + home, u"mnuProfileDelete"_s + work}));
    for (int index = 1; index <= 10; ++index)
        if (!(*main_)->Dmnu->is_separator(index))
            QCOMPARE((*main_)->Dmnu->item_fore_color(index), QColor(128, 128, 128));
}

void TestMainProfiles::only_saving_is_acted_on() {
    main_->station.add_tag(u"Bills"_s);
    main_->open();
    save_profile(u"Home"_s);
    const QString before = Preferences().xml();
    (*main_)->mnu_profiles();
    for (int index = 1; index < pop_keys.size(); ++index)
        if (pop_keys[index] != u"mnuProfileSave"_s)
            (*main_)->Dmnu_ItemClick(index);
    QCOMPARE(Preferences().xml(), before);
    QCOMPARE(main_->chosen(), QStringList{});
}

void TestMainProfiles::the_entry_points_kept_empty_change_nothing() {
    main_->station.add_tag(u"Bills"_s);
    main_->open();
    main_->choose(u"Bills"_s);
    const QString before = Preferences().xml();
    (*main_)->load_profile();
    (*main_)->save_profile();
    QCOMPARE(Preferences().xml(), before);
    QCOMPARE(main_->chosen(), QStringList{u"Bills"_s});
}

QTEST_MAIN(TestMainProfiles)
#include "test_main_profiles.moc"
