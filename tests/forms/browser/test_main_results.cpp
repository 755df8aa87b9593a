// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "browser/late_wait_cursor.h"
#include "browser/results_model.h"
#include "controls/date_picker.h"
#include "controls/grid.h"
#include "controls/tag_combo.h"
#include "data/database.h"
#include "tests/forms/browser/main_window.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

/// What the main window lists for its filter, and how it shows it.
class TestMainResults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void a_document_with_two_chosen_tags_is_listed_once();
    void a_document_with_any_chosen_tag_is_listed();
    void documents_are_listed_oldest_first_then_by_link();
    void with_all_dates_the_dates_are_not_looked_at();
    void both_bounds_belong_to_the_range();
    void a_later_time_on_the_last_day_is_left_out();
    void a_day_chosen_after_a_first_start_is_listed_whole();
    void the_hidden_columns_hold_file_folder_and_link();
    void a_damaged_database_ends_the_program_after_its_reports();
    void odd_dates_are_listed();
    void any_text_is_stored_and_found_again();
    void an_empty_list_says_what_to_do_next();
    void a_new_query_does_not_scroll_the_list();
    void only_a_long_wait_changes_the_cursor();

private:
    void all_dates() { (*main_)->chkDates->setChecked(true); }

    std::unique_ptr<MainWindow> main_;
};

void TestMainResults::init() {
    main_ = std::make_unique<MainWindow>();
}

void TestMainResults::cleanup() {
    const bool as_planned = main_->boxes.verify();
    main_.reset();
    QVERIFY(as_planned);
}

void TestMainResults::a_document_with_two_chosen_tags_is_listed_once() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    const int home = main_->station.add_tag(u"Home"_s);
    main_->station.add_document(u"Power"_s, MainWindow::kDay, {bills, home});
    main_->open();
    all_dates();
    main_->choose(u"Bills"_s);
    main_->choose(u"Home"_s);
    QCOMPARE(main_->documents(), QStringList{u"Power"_s});
}

void TestMainResults::a_document_with_any_chosen_tag_is_listed() {
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

void TestMainResults::documents_are_listed_oldest_first_then_by_link() {
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

void TestMainResults::with_all_dates_the_dates_are_not_looked_at() {
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

void TestMainResults::both_bounds_belong_to_the_range() {
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

void TestMainResults::a_later_time_on_the_last_day_is_left_out() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    main_->station.add_document(u"morning"_s, MainWindow::kDay + 0.25, {bills});
    main_->station.add_document(u"evening"_s, MainWindow::kDay + 0.75, {bills});
    main_->open();
    main_->choose(u"Bills"_s);
    (*main_)->dtFrom->set_value(MainWindow::kDay);
    (*main_)->dtTo->set_value(MainWindow::kDay + 0.5);
    QCOMPARE(main_->documents(), QStringList{u"morning"_s});
}

// A first start sets both bounds to moments; the days that the user chooses are days.
void TestMainResults::a_day_chosen_after_a_first_start_is_listed_whole() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    main_->station.add_document(u"Power"_s, 40098, {bills});
    main_->open();
    (*main_)->dtFrom->set_value(40087.5);
    (*main_)->dtTo->set_value(40100.5);
    main_->choose(u"Bills"_s);
    (*main_)->dtFrom->setDate(QDate(2009, 10, 12));
    (*main_)->dtTo->setDate(QDate(2009, 10, 12));
    QCOMPARE(main_->documents(), QStringList{u"Power"_s});
    QCOMPARE(main_->preference(u"dtFrom"_s), u"40098"_s);
    QCOMPARE(main_->preference(u"dtTo"_s), u"40098"_s);
}

void TestMainResults::the_hidden_columns_hold_file_folder_and_link() {
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

void TestMainResults::a_damaged_database_ends_the_program_after_its_reports() {
    main_->station.add_tag(u"Bills"_s);
    main_->open();
    main_->choose(u"Bills"_s);
    database().execute(u"drop table tagged"_s);
    main_->boxes.expect_report(u"frmMain"_s, u"fill_me"_s, 1);
    main_->boxes.expect_report(u"frmMain"_s, u"chkDates_Click"_s, 65535);
    all_dates();
    QCOMPARE(main_->ended, QList<int>{65535});
}

void TestMainResults::odd_dates_are_listed() {
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

void TestMainResults::any_text_is_stored_and_found_again() {
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

void TestMainResults::an_empty_list_says_what_to_do_next() {
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

void TestMainResults::a_new_query_does_not_scroll_the_list() {
    const int bills = main_->station.add_tag(u"Bills"_s);
    for (int i = 0; i < 45; ++i)
        main_->station.add_document(u"Power"_s, MainWindow::kDay + i, {bills});
    main_->open();
    all_dates();
    main_->choose(u"Bills"_s);
    QScrollBar* bar = (*main_)->fgR->verticalScrollBar();
    bar->setValue(12);
    (*main_)->fill_me();
    QCOMPARE(bar->value(), 12);
    QCOMPARE((*main_)->fgR->row(), 0);
}

void TestMainResults::only_a_long_wait_changes_the_cursor() {
    const auto shown = [](LateWaitCursor& wait) {
        wait.passing();
        return QGuiApplication::overrideCursor() != nullptr;
    };
    LateWaitCursor quick(std::chrono::hours(1));
    QVERIFY(!shown(quick));
    QCOMPARE(LateWaitCursor::kPatience, std::chrono::milliseconds(200));
    {
        LateWaitCursor wait;
        QTRY_VERIFY(shown(wait));
    }
    QVERIFY(!shown(quick));
}

QTEST_MAIN(TestMainResults)
#include "test_main_results.moc"
