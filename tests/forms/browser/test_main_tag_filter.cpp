// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "browser/late_wait_cursor.h"
#include "browser/results_model.h"
#include "common/day_number.h"
#include "common/message_box.h"
#include "controls/date_picker.h"
#include "controls/grid.h"
#include "controls/tag_combo.h"
#include "data/database.h"
#include "tests/forms/browser/main_window.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

/// Choosing tags and dates in the main window, and what is listed for them.
class TestMainTagFilter : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void without_a_chosen_tag_nothing_is_listed();
    void a_document_with_two_chosen_tags_is_listed_once();
    void a_document_with_any_chosen_tag_is_listed();
    void documents_are_listed_oldest_first_then_by_link();
    void with_all_dates_the_dates_are_not_looked_at();
    void both_bounds_belong_to_the_range();
    void a_later_time_on_the_last_day_is_left_out();
    void the_hidden_columns_hold_file_folder_and_link();
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
    void the_last_tag_removed_comes_back_at_the_next_start();
    void the_first_start_makes_the_folders();
    void an_empty_catalogue_leaves_the_combo_empty();
    void a_damaged_database_ends_the_program_after_its_reports();
    void odd_dates_are_listed();
    void any_text_is_stored_and_found_again();
    void an_empty_list_says_what_to_do_next();
    void only_a_long_wait_changes_the_cursor();

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

void TestMainTagFilter::a_document_with_two_chosen_tags_is_listed_once() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    const int home = main_->station.add_tag(u"Home"_s);
    main_->station.add_document(u"Power"_s, MainWindow::kDay, {bills, home});
    main_->open();
    all_dates();
    main_->choose(u"Bills"_s);
    main_->choose(u"Home"_s);
    QCOMPARE(main_->documents(), QStringList{u"Power"_s});
}

void TestMainTagFilter::a_document_with_any_chosen_tag_is_listed() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    const int home = main_->station.add_tag(u"Home"_s);
    const int work = main_->station.add_tag(u"Work"_s);
    main_->station.add_document(u"Power"_s, MainWindow::kDay, {bills});
    main_->station.add_document(u"Lease"_s, MainWindow::kDay + 1, {home});
    main_->station.add_document(u"Pay"_s, MainWindow::kDay + 2, {work});
    main_->open();
    all_dates();
    main_->choose(u"Bills"_s);
    QCOMPARE(main_->documents(), QStringList{u"Power"_s});
    main_->choose(u"Home"_s);
    QCOMPARE(main_->documents(), (QStringList{u"Power"_s, u"Lease"_s}));
}

void TestMainTagFilter::documents_are_listed_oldest_first_then_by_link() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    main_->station.add_document(u"late"_s, MainWindow::kDay + 1, {bills});
    main_->station.add_document(u"same day, first"_s, MainWindow::kDay, {bills});
    main_->station.add_document(u"same day, second"_s, MainWindow::kDay, {bills});
    main_->open();
    all_dates();
    main_->choose(u"Bills"_s);
    QCOMPARE(main_->documents(),
             (QStringList{u"same day, first"_s, u"same day, second"_s, u"late"_s}));
}

void TestMainTagFilter::with_all_dates_the_dates_are_not_looked_at() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    main_->station.add_document(u"Power"_s, MainWindow::kDay, {bills});
    main_->open();
    (*main_)->dtFrom->set_value(MainWindow::kDay + 10);
    (*main_)->dtTo->set_value(MainWindow::kDay + 20);
    main_->choose(u"Bills"_s);
    QCOMPARE(main_->documents(), QStringList{});
    QTest::mouseClick((*main_)->chkDates, Qt::LeftButton, {}, QPoint(8, 8));
    QVERIFY((*main_)->chkDates->isChecked());
    QCOMPARE(main_->documents(), QStringList{u"Power"_s});
}

void TestMainTagFilter::both_bounds_belong_to_the_range() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    main_->station.add_document(u"first day"_s, MainWindow::kDay, {bills});
    main_->station.add_document(u"last day"_s, MainWindow::kDay + 5, {bills});
    main_->station.add_document(u"after"_s, MainWindow::kDay + 6, {bills});
    main_->open();
    main_->choose(u"Bills"_s);
    (*main_)->dtFrom->set_value(MainWindow::kDay);
    (*main_)->dtTo->set_value(MainWindow::kDay + 5);
    QCOMPARE(main_->documents(), (QStringList{u"first day"_s, u"last day"_s}));
}

void TestMainTagFilter::a_later_time_on_the_last_day_is_left_out() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    main_->station.add_document(u"morning"_s, MainWindow::kDay + 0.25, {bills});
    main_->station.add_document(u"evening"_s, MainWindow::kDay + 0.75, {bills});
    main_->open();
    main_->choose(u"Bills"_s);
    (*main_)->dtFrom->set_value(MainWindow::kDay);
    (*main_)->dtTo->set_value(MainWindow::kDay + 0.5);
    QCOMPARE(main_->documents(), QStringList{u"morning"_s});
}

void TestMainTagFilter::the_hidden_columns_hold_file_folder_and_link() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    const int link = main_->station.add_document(u"Power"_s, MainWindow::kDay, {bills}, u"0311"_s,
                                                 u"031011_1.pdf"_s);
    main_->open();
    all_dates();
    main_->choose(u"Bills"_s);
    const Grid* fgR = (*main_)->fgR;
    QCOMPARE(fgR->text(1, 0), short_date(MainWindow::kDay, short_date_format()));
    QCOMPARE(fgR->text(1, 2), u"031011_1.pdf"_s);
    QCOMPARE(fgR->text(1, 3), u"0311"_s);
    QCOMPARE(fgR->text(1, 4), QString::number(link));
    for (int column = 0; column < 5; ++column)
        QCOMPARE(fgR->isColumnHidden(column), column > 1);
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
    QTest::keyClicks((*main_)->cmbTags->lineEdit(), u"Bills"_s);
    QTest::keyClick((*main_)->cmbTags->lineEdit(), Qt::Key_End);
    QCOMPARE((*main_)->fgL->rows(), 0);
    QTest::keyClick((*main_)->cmbTags->lineEdit(), Qt::Key_Enter);
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
    main_->open();
    QCOMPARE(main_->chosen(), QStringList{u"Bills"_s});
    QCOMPARE((*main_)->dtFrom->value(), MainWindow::kDay);
}

void TestMainTagFilter::the_first_start_makes_the_folders() {
    const QString scanned = DataFolder + u"/scanned_files"_s;
    QVERIFY(QDir(scanned).removeRecursively());
    main_->open();
    QVERIFY(QDir(scanned + QDate::currentDate().toString(u"/MMyy"_s)).exists());
    QVERIFY(QFile::exists(preferences_path()));
}

void TestMainTagFilter::an_empty_catalogue_leaves_the_combo_empty() {
    main_->open();
    QCOMPARE((*main_)->cmbTags->item_count(), 0);
    QCOMPARE((*main_)->fgL->rows(), 0);
}

void TestMainTagFilter::a_damaged_database_ends_the_program_after_its_reports() {
    main_->station.add_tag(u"Bills"_s);
    main_->open();
    main_->choose(u"Bills"_s);
    database().execute(u"drop table tagged"_s);
    main_->boxes.expect_report(u"frmMain"_s, u"fill_me"_s, 1);
    main_->boxes.expect_report(u"frmMain"_s, u"chkDates_Click"_s, 65535);
    all_dates();
    QCOMPARE(main_->ended, QList<int>{65535});
}

void TestMainTagFilter::odd_dates_are_listed() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    main_->station.add_document(u"early"_s, -18000, {bills});
    main_->station.add_document(u"beyond"_s, 4000000, {bills});
    const int text = main_->station.add_document(u"text"_s, MainWindow::kDay, {bills});
    const int none = main_->station.add_document(u"none"_s, MainWindow::kDay, {bills});
    database().execute(u"UPDATE scans SET scans.date = 'last spring' WHERE link = "_s +
                       QString::number(text));
    database().execute(u"UPDATE scans SET scans.date = null WHERE link = "_s +
                       QString::number(none));
    main_->open();
    all_dates();
    main_->choose(u"Bills"_s);
    QCOMPARE(main_->documents(), (QStringList{u"none"_s, u"early"_s, u"beyond"_s, u"text"_s}));
    QCOMPARE((*main_)->fgR->text(1, 0), QString());
    QCOMPARE((*main_)->fgR->text(2, 0), short_date(-18000.0, short_date_format()));
    QCOMPARE((*main_)->fgR->text(3, 0), u"4000000"_s);
    QCOMPARE((*main_)->fgR->text(4, 0), u"last spring"_s);
}

void TestMainTagFilter::any_text_is_stored_and_found_again() {
    const QString text = u"50 % & \"more\" \u05E9\u05DC\u05D5\u05DD \U0001F4C4 O'Brien"_s;
    main_->open();
    all_dates();
    (*main_)->cmbTags->set_entered_text(text);
    QTest::mouseClick((*main_)->cmdAdd, Qt::LeftButton);
    QCOMPARE(main_->chosen(), QStringList{text});
    const int tag = main_->station.value(u"select Link from tags"_s).toInt();
    const QString long_text = text + u"\n"_s + QString(32000, u'w');
    main_->station.add_document(long_text, MainWindow::kDay, {tag});
    (*main_)->fill_me();
    QCOMPARE(main_->documents(), QStringList{long_text});
    const QAbstractItemDelegate* delegate = (*main_)->fgR->itemDelegate();
    const auto* one_line = qobject_cast<const QStyledItemDelegate*>(delegate);
    QVERIFY(one_line != nullptr);
    QVERIFY(!one_line->displayText(long_text, QLocale::c()).contains(u'\n'));
}

void TestMainTagFilter::an_empty_list_says_what_to_do_next() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    main_->station.add_document(u"Power"_s, MainWindow::kDay, {bills});
    main_->open();
    const auto* note = (*main_)->fgR->viewport()->findChild<QLabel*>();
    QVERIFY(note != nullptr && note->isVisible());
    QCOMPARE(note->text(), u"Choose a tag to list its documents."_s);
    all_dates();
    main_->choose(u"Bills"_s);
    QVERIFY(!note->isVisible());
    QCOMPARE((*main_)->findChild<QLabel*>(u"lblCount"_s)->text(), u"1 document"_s);
    (*main_)->chkDates->setChecked(false);
    QVERIFY(note->isVisible());
    QVERIFY(note->text().contains(u"All Dates"_s));
    QCOMPARE((*main_)->findChild<QLabel*>(u"lblCount"_s)->text(), u"0 documents"_s);
}

void TestMainTagFilter::only_a_long_wait_changes_the_cursor() {
    LateWaitCursor wait;
    wait.passing();
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
    QTRY_VERIFY((wait.passing(), QGuiApplication::overrideCursor() != nullptr));
    QVERIFY(wait.is_long());
}

QTEST_MAIN(TestMainTagFilter)
#include "test_main_tag_filter.moc"
