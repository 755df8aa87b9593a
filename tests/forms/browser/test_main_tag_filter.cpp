// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "common/message_box.h"
#include "controls/date_picker.h"
#include "controls/grid.h"
#include "controls/tag_combo.h"
#include "tests/forms/browser/main_window.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

/// Choosing tags in the main window, and what is kept of the choice.
class TestMainTagFilter : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void without_a_chosen_tag_nothing_is_listed();
    void entering_a_chosen_tag_selects_its_row();
    void entering_a_chosen_tag_in_other_letters_selects_its_row();
    void a_new_name_becomes_a_tag_at_once();
    void an_apostrophe_is_stored_as_one();
    void an_empty_entry_is_refused();
    void enter_adds_and_other_keys_do_not();
    void only_the_first_column_removes_a_tag();
    void the_delete_key_removes_the_current_tag();
    void the_selected_document_highlights_its_tags();
    void a_new_query_clears_the_highlight();
    void selecting_the_header_clears_every_highlight();
    void the_highlight_keeps_its_meaning_in_a_dark_palette();
    void add_all_can_be_read_on_a_dark_ground();
    void the_last_tag_removed_comes_back_at_the_next_start();
    void the_first_start_makes_the_folders();
    void an_empty_catalogue_leaves_the_combo_empty();

private:
    void all_dates() { (*main_)->chkDates->setChecked(true); }

    std::unique_ptr<MainWindow> main_;
};

void TestMainTagFilter::init() {
    main_ = std::make_unique<MainWindow>();
}

void TestMainTagFilter::cleanup() {
    const bool as_planned = main_->boxes.verify();
    main_.reset();
    QVERIFY(as_planned);
}

void TestMainTagFilter::without_a_chosen_tag_nothing_is_listed() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    main_->station.add_document(u"Power"_s, MainWindow::kDay, {bills});
    main_->open();
    QCOMPARE((*main_)->fgR->rows(), 1);
    all_dates();
    QCOMPARE((*main_)->fgR->rows(), 1);
    (*main_)->dtFrom->set_value(MainWindow::kDay - 1);
    QCOMPARE((*main_)->fgR->rows(), 1);
}

void TestMainTagFilter::entering_a_chosen_tag_selects_its_row() {
    main_->station.add_tag(u"Bills"_s);
    main_->station.add_tag(u"Home"_s);
    main_->open();
    main_->choose(u"Bills"_s);
    main_->choose(u"Home"_s);
    main_->choose(u"Bills"_s);
    QCOMPARE(main_->chosen(), (QStringList{u"Bills"_s, u"Home"_s}));
    QCOMPARE((*main_)->fgL->row(), 0);
    QCOMPARE((*main_)->cmbTags->entered_text(), QString());
}

void TestMainTagFilter::entering_a_chosen_tag_in_other_letters_selects_its_row() {
    main_->station.add_tag(u"Bills"_s);
    main_->open();
    main_->choose(u"Bills"_s);
    main_->choose(u"bILLS"_s);
    QCOMPARE(main_->chosen(), QStringList{u"Bills"_s});
    QCOMPARE(main_->station.value(u"select count(*) from tags"_s), u"1"_s);
}

void TestMainTagFilter::a_new_name_becomes_a_tag_at_once() {
    main_->station.add_tag(u"Bills"_s);
    main_->open();
    main_->choose(u"Garden"_s);
    const QString link =
        main_->station.value(u"select Link from tags where Description = 'Garden'"_s);
    QVERIFY(!link.isEmpty());
    QCOMPARE(main_->chosen(), QStringList{u"Garden"_s});
    QCOMPARE((*main_)->fgL->text(0, 2), link);
    QCOMPARE((*main_)->cmbTags->item_count(), 2);
    QCOMPARE((*main_)->cmbTags->entered_text(), QString());
    QCOMPARE(main_->saved_flag(link.toInt()), u"1"_s);
}

void TestMainTagFilter::an_apostrophe_is_stored_as_one() {
    main_->open();
    main_->choose(u"Mary's school"_s);
    QCOMPARE(main_->station.rows(u"select Description from tags"_s),
             QStringList{u"Mary's school"_s});
}

void TestMainTagFilter::an_empty_entry_is_refused() {
    main_->open();
    main_->boxes.expect(u"Please or select a valid tag in the drop down list."_s, kInformationIcon,
                        u"Error"_s);
    QTest::mouseClick((*main_)->cmdAdd, Qt::LeftButton);
    QCOMPARE((*main_)->fgL->rows(), 0);
    QCOMPARE((*main_)->focusWidget(), (*main_)->cmbTags);
}

void TestMainTagFilter::enter_adds_and_other_keys_do_not() {
    main_->station.add_tag(u"Bills"_s);
    main_->open();
    QCOMPARE((*main_)->focusWidget(), (*main_)->cmbTags);
    QTest::keyClicks((*main_)->focusWidget(), u"Bills"_s);
    QTest::keyClick((*main_)->focusWidget(), Qt::Key_End);
    QCOMPARE((*main_)->fgL->rows(), 0);
    QTest::keyClick((*main_)->focusWidget(), Qt::Key_Enter);
    QCOMPARE(main_->chosen(), QStringList{u"Bills"_s});
}

void TestMainTagFilter::only_the_first_column_removes_a_tag() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    main_->station.add_tag(u"Home"_s);
    main_->station.add_document(u"Power"_s, MainWindow::kDay, {bills});
    main_->open();
    all_dates();
    main_->choose(u"Bills"_s);
    main_->choose(u"Home"_s);
    main_->click((*main_)->fgL, 0, 1);
    QCOMPARE(main_->chosen().size(), 2);
    (*main_)->fgL->setColumnHidden(2, false);
    main_->click((*main_)->fgL, 0, 2);
    QCOMPARE(main_->chosen().size(), 2);
    main_->click((*main_)->fgL, 0, 0);
    QCOMPARE(main_->chosen(), QStringList{u"Home"_s});
    QCOMPARE(main_->documents(), QStringList{});
    QCOMPARE((*main_)->focusWidget(), (*main_)->cmbTags);
}

void TestMainTagFilter::the_delete_key_removes_the_current_tag() {
    main_->station.add_tag(u"Bills"_s);
    main_->station.add_tag(u"Home"_s);
    main_->open();
    main_->choose(u"Bills"_s);
    main_->choose(u"Home"_s);
    (*main_)->fgL->set_row(1);
    QTest::keyClick((*main_)->fgL, Qt::Key_Delete);
    QCOMPARE(main_->chosen(), QStringList{u"Bills"_s});
}

void TestMainTagFilter::the_selected_document_highlights_its_tags() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    const int home = main_->station.add_tag(u"Home"_s);
    main_->station.add_tag(u"Work"_s);
    main_->station.add_document(u"Power"_s, MainWindow::kDay, {bills, home});
    main_->station.add_document(u"Rent"_s, MainWindow::kDay + 1, {home});
    main_->open();
    all_dates();
    for (const QString& tag : {u"Bills"_s, u"Home"_s, u"Work"_s})
        main_->choose(tag);
    QCOMPARE(main_->highlighted(), QStringList{});
    main_->click((*main_)->fgR, 1, 1);
    QCOMPARE(main_->highlighted(), (QStringList{u"Bills"_s, u"Home"_s}));
    QCOMPARE((*main_)->fgL->cell_color(0, 0), QColor(240, 240, 250));
    QCOMPARE((*main_)->fgL->cell_color(2, 0), QColor(255, 255, 255));
    QTest::keyClick((*main_)->fgR, Qt::Key_Down);
    QCOMPARE(main_->highlighted(), QStringList{u"Home"_s});
}

void TestMainTagFilter::a_new_query_clears_the_highlight() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    main_->station.add_document(u"Power"_s, MainWindow::kDay, {bills});
    main_->open();
    all_dates();
    main_->choose(u"Bills"_s);
    main_->click((*main_)->fgR, 1, 1);
    QCOMPARE(main_->highlighted(), QStringList{u"Bills"_s});
    (*main_)->fill_me();
    QCOMPARE(main_->highlighted(), QStringList{});
    QCOMPARE(main_->documents(), QStringList{u"Power"_s});
}

void TestMainTagFilter::selecting_the_header_clears_every_highlight() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    main_->station.add_document(u"Power"_s, MainWindow::kDay, {bills});
    main_->open();
    all_dates();
    main_->choose(u"Bills"_s);
    (*main_)->fgR->set_row(1);
    QCOMPARE(main_->highlighted(), QStringList{u"Bills"_s});
    (*main_)->fgR->set_row(0);
    QCOMPARE(main_->highlighted(), QStringList{});
}

void TestMainTagFilter::add_all_can_be_read_on_a_dark_ground() {
    main_->open();
    const auto color = [this] { return (*main_)->Label1->palette().color(QPalette::ButtonText); };
    QPalette light = (*main_)->palette();
    light.setColor(QPalette::Window, QColor(240, 240, 240));
    light.setColor(QPalette::Link, QColor(0, 0, 255));
    (*main_)->setPalette(light);
    QTRY_COMPARE(color(), QColor(0, 0, 255));
    QPalette dark = light;
    dark.setColor(QPalette::Window, Qt::black);
    dark.setColor(QPalette::WindowText, QColor(255, 255, 0));
    (*main_)->setPalette(dark);
    QTRY_COMPARE(color(), QColor(255, 255, 0));
}

void TestMainTagFilter::the_highlight_keeps_its_meaning_in_a_dark_palette() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    main_->station.add_document(u"Power"_s, MainWindow::kDay, {bills});
    main_->open();
    all_dates();
    main_->choose(u"Bills"_s);
    main_->click((*main_)->fgR, 1, 1);
    const auto colors = [&] {
        const QImage image = (*main_)->fgL->viewport()->grab().toImage();
        return std::pair(image.pixelColor(2, 2), image.pixelColor(2, image.height() - 2));
    };
    const auto [carried, ground] = colors();
    QCOMPARE(carried, QColor(240, 240, 250));
    QCOMPARE(ground, QColor(255, 255, 255));
    QPalette dark = (*main_)->palette();
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, Qt::white);
    dark.setColor(QPalette::Window, QColor(45, 45, 45));
    dark.setColor(QPalette::WindowText, Qt::white);
    (*main_)->setPalette(dark);
    QTRY_VERIFY(colors().first.lightness() < 128);
    QVERIFY(colors().first != colors().second);
    QCOMPARE(main_->highlighted(), QStringList{u"Bills"_s});
}

void TestMainTagFilter::the_last_tag_removed_comes_back_at_the_next_start() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    main_->open();
    main_->choose(u"Bills"_s);
    (*main_)->dtFrom->set_value(MainWindow::kDay);
    main_->click((*main_)->fgL, 0, 0);
    QCOMPARE((*main_)->fgL->rows(), 0);
    (*main_)->dtFrom->set_value(MainWindow::kDay + 100);
    QCOMPARE(main_->saved_flag(bills), u"1"_s);
    main_->window->close();
    QVERIFY(Preferences().load(preferences_path()));
    main_->open();
    QCOMPARE(main_->chosen(), QStringList{u"Bills"_s});
    QCOMPARE((*main_)->dtFrom->value(), MainWindow::kDay);
}

void TestMainTagFilter::the_first_start_makes_the_folders() {
    const QString scanned = DataFolder + u"/scanned_files"_s;
    QVERIFY(QDir(scanned).removeRecursively());
    const auto this_month = [&] {
        return QDir(scanned + QDate::currentDate().toString(u"/MMyy"_s));
    };
    const QDir before = this_month();
    main_->open();
    QVERIFY(before.exists() || this_month().exists());
    QVERIFY(QFile::exists(preferences_path()));
}

void TestMainTagFilter::an_empty_catalogue_leaves_the_combo_empty() {
    main_->open();
    QCOMPARE((*main_)->cmbTags->item_count(), 0);
    QCOMPARE((*main_)->fgL->rows(), 0);
}

QTEST_MAIN(TestMainTagFilter)
#include "test_main_tag_filter.moc"
