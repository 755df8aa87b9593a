// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "common/drop_menu.h"
#include "common/message_box.h"
#include "common/paths.h"
#include "controls/grid.h"
#include "controls/tag_combo.h"
#include "data/database.h"
#include "tests/forms/browser/main_window.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QPushButton>
#include <QTest>
#include <QToolBar>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

/// The commands on the selected document.
class TestMainCommands : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void commands_do_nothing_without_a_document();
    void new_opens_an_empty_capture_form_and_refreshes();
    void edit_opens_the_selected_document_and_refreshes();
    void an_edited_document_stays_selected();
    void a_double_click_on_the_header_does_nothing();
    void a_double_click_edits_when_nothing_was_ever_chosen();
    void a_double_click_does_what_was_chosen_data();
    void a_double_click_does_what_was_chosen();
    void enter_does_what_a_double_click_does();
    void open_starts_the_associated_program_even_without_the_file();
    void locate_shows_the_file();
    void locate_says_when_the_file_is_missing();
    void deleting_asks_first();
    void deleting_keeps_the_pdf();
    void deleting_leaves_no_tag_of_the_document();
    void a_failure_between_the_deletions_leaves_the_tags();
    void add_all_adds_every_tag_once();
    void add_all_without_tags_changes_only_the_caption();
    void delete_all_empties_the_chosen_tags();

private:
    void list_bills();
    void press(const QString& button) const;
    QString pdf() const;

    std::unique_ptr<MainWindow> main_;
    int bills_ = 0;
    int power_ = 0;
};

void TestMainCommands::init() {
    main_ = std::make_unique<MainWindow>();
    bills_ = main_->station.add_tag(u"Bills"_s);
    power_ = main_->station.add_document(u"Power"_s, MainWindow::kDay, {bills_}, u"1009"_s,
                                         u"101209143005_57.pdf"_s);
}

void TestMainCommands::cleanup() {
    const bool as_planned = main_->boxes.verify();
    main_.reset();
    QVERIFY(as_planned);
}

void TestMainCommands::list_bills() {
    main_->open();
    (*main_)->chkDates->setChecked(true);
    main_->choose(u"Bills"_s);
    QCOMPARE(main_->documents().value(0), u"Power"_s);
}

void TestMainCommands::press(const QString& button) const {
    for (QAction* action : (*main_)->TB1->actions())
        if (action->objectName() == button)
            QTest::mouseClick((*main_)->TB1->widgetForAction(action), Qt::LeftButton);
}

QString TestMainCommands::pdf() const {
    return join_path(DataFolder, u"scanned_files"_s, u"1009"_s, u"101209143005_57.pdf"_s);
}

void TestMainCommands::commands_do_nothing_without_a_document() {
    list_bills();
    QCOMPARE((*main_)->fgR->row(), 0);
    for (const QString& button : {u"Edit"_s, u"Delete"_s, u"Locate File"_s, u"Open File"_s})
        press(button);
    QCOMPARE(main_->captured, QList<int>{});
    QCOMPARE(main_->opened, QStringList{});
    QCOMPARE(main_->shown_files, QStringList{});
    QCOMPARE(main_->documents(), QStringList{u"Power"_s});
}

void TestMainCommands::new_opens_an_empty_capture_form_and_refreshes() {
    list_bills();
    main_->in_capture = [this] {
        const int garden = main_->station.add_tag(u"Garden"_s);
        main_->station.add_document(u"Water"_s, MainWindow::kDay + 1, {bills_, garden});
    };
    sel_link = power_;
    press(u"New"_s);
    QCOMPARE(main_->captured, QList<int>{-1});
    QCOMPARE((*main_)->cmbTags->item_count(), 2);
    QCOMPARE(main_->documents(), (QStringList{u"Power"_s, u"Water"_s}));
}

void TestMainCommands::edit_opens_the_selected_document_and_refreshes() {
    list_bills();
    main_->click((*main_)->fgR, 1, 1);
    main_->in_capture = [this] {
        database().execute(u"UPDATE scans SET Description = 'Gas' WHERE link = "_s +
                           QString::number(power_));
        main_->station.add_tag(u"Garden"_s);
    };
    press(u"Edit"_s);
    QCOMPARE(main_->captured, QList<int>{power_});
    QCOMPARE(main_->documents(), QStringList{u"Gas"_s});
    QCOMPARE((*main_)->cmbTags->item_count(), 2);
}

void TestMainCommands::an_edited_document_stays_selected() {
    main_->station.add_document(u"Water"_s, MainWindow::kDay - 1, {bills_});
    main_->open();
    (*main_)->chkDates->setChecked(true);
    main_->choose(u"Bills"_s);
    main_->click((*main_)->fgR, 2, 1);
    main_->in_capture = [this] {
        database().execute(u"UPDATE scans SET scans.date = 40000 WHERE link = "_s +
                           QString::number(power_));
    };
    (*main_)->edit_scan();
    QCOMPARE(main_->documents(), (QStringList{u"Power"_s, u"Water"_s}));
    QCOMPARE((*main_)->fgR->row(), 1);
    QCOMPARE(main_->highlighted(), QStringList{u"Bills"_s});
}

void TestMainCommands::a_double_click_on_the_header_does_nothing() {
    list_bills();
    main_->click((*main_)->fgR, 1, 1);
    QHeaderView* header = (*main_)->fgR->horizontalHeader();
    const QPoint caption(header->sectionViewportPosition(1) + 20, header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, caption);
    QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, caption);
    QCOMPARE(main_->captured, QList<int>{});
}

void TestMainCommands::a_double_click_edits_when_nothing_was_ever_chosen() {
    list_bills();
    QCOMPARE(main_->preference(u"DoubleClick"_s), QString());
    const Grid* fgR = (*main_)->fgR;
    const QPoint cell = fgR->visualRect(fgR->model()->index(0, 1)).center();
    QTest::mouseClick(fgR->viewport(), Qt::LeftButton, {}, cell);
    QTest::mouseDClick(fgR->viewport(), Qt::LeftButton, {}, cell);
    QCOMPARE(main_->captured, QList<int>{power_});
}

void TestMainCommands::a_double_click_does_what_was_chosen_data() {
    QTest::addColumn<QString>("action");
    QTest::addColumn<int>("captured");
    QTest::addColumn<int>("opened");
    QTest::addColumn<int>("located");
    QTest::newRow("Edit") << u"Edit"_s << 1 << 0 << 0;
    QTest::newRow("Open") << u"Open"_s << 0 << 1 << 0;
    QTest::newRow("Locate") << u"Locate"_s << 0 << 0 << 1;
    QTest::newRow("anything else") << u"Print"_s << 0 << 0 << 0;
}

void TestMainCommands::a_double_click_does_what_was_chosen() {
    QFETCH(QString, action);
    QDir().mkpath(QFileInfo(pdf()).path());
    QFile file(pdf());
    QVERIFY(file.open(QFile::WriteOnly));
    list_bills();
    main_->set_preference(u"DoubleClick"_s, action);
    (*main_)->fgR->set_row(1);
    (*main_)->fgR_DblClick();
    QTEST(static_cast<int>(main_->captured.size()), "captured");
    QTEST(static_cast<int>(main_->opened.size()), "opened");
    QTEST(static_cast<int>(main_->shown_files.size()), "located");
}

void TestMainCommands::enter_does_what_a_double_click_does() {
    list_bills();
    (*main_)->fgR->set_row(1);
    QTest::keyClick((*main_)->fgR, Qt::Key_Return);
    QCOMPARE(main_->captured, QList<int>{power_});
}

void TestMainCommands::open_starts_the_associated_program_even_without_the_file() {
    list_bills();
    (*main_)->fgR->set_row(1);
    QVERIFY(!QFile::exists(pdf()));
    press(u"Open File"_s);
    QCOMPARE(main_->opened, QStringList{pdf()});
}

void TestMainCommands::locate_shows_the_file() {
    QDir().mkpath(QFileInfo(pdf()).path());
    QFile file(pdf());
    QVERIFY(file.open(QFile::WriteOnly));
    list_bills();
    (*main_)->fgR->set_row(1);
    press(u"Locate File"_s);
    QCOMPARE(main_->shown_files, QStringList{pdf()});
}

void TestMainCommands::locate_says_when_the_file_is_missing() {
    list_bills();
    (*main_)->fgR->set_row(1);
    main_->boxes.expect(u"Cannot find file: "_s + pdf(), kInformationIcon, u"Error"_s);
    press(u"Locate File"_s);
    QCOMPARE(main_->shown_files, QStringList{});
}

void TestMainCommands::deleting_asks_first() {
    list_bills();
    (*main_)->fgR->set_row(1);
    main_->boxes.expect(u"Are you sure you want to continue? There is NO UNDO !"_s,
                        kYesNo + kQuestionIcon, u"IMPORTANT !"_s, kAnswerNo);
    press(u"Delete"_s);
    QCOMPARE(main_->documents(), QStringList{u"Power"_s});
    QCOMPARE(main_->station.value(u"select count(*) from scans"_s), u"1"_s);
    QCOMPARE(sel_link, power_);
}

void TestMainCommands::deleting_keeps_the_pdf() {
    QDir().mkpath(QFileInfo(pdf()).path());
    QFile file(pdf());
    QVERIFY(file.open(QFile::WriteOnly));
    list_bills();
    (*main_)->fgR->set_row(1);
    main_->boxes.expect(u"Are you sure you want to continue? There is NO UNDO !"_s,
                        kYesNo + kQuestionIcon, u"IMPORTANT !"_s, kAnswerYes);
    press(u"Delete"_s);
    QCOMPARE(main_->documents(), QStringList{});
    QVERIFY(QFile::exists(pdf()));
}

void TestMainCommands::deleting_leaves_no_tag_of_the_document() {
    const int other = main_->station.add_document(u"Water"_s, MainWindow::kDay + 1, {bills_});
    list_bills();
    (*main_)->fgR->set_row(1);
    main_->boxes.expect(u"Are you sure you want to continue? There is NO UNDO !"_s,
                        kYesNo + kQuestionIcon, u"IMPORTANT !"_s, kAnswerYes);
    (*main_)->delete_scan();
    QCOMPARE(main_->station.rows(u"select scan from tagged"_s),
             QStringList{QString::number(other)});
    QCOMPARE(main_->documents(), QStringList{u"Water"_s});
}

void TestMainCommands::a_failure_between_the_deletions_leaves_the_tags() {
    list_bills();
    (*main_)->fgR->set_row(1);
    database().execute(u"create trigger locked before delete on tagged begin "
                       "select raise(abort, 'no'); end"_s);
    main_->boxes.expect(u"Are you sure you want to continue? There is NO UNDO !"_s,
                        kYesNo + kQuestionIcon, u"IMPORTANT !"_s, kAnswerYes);
    main_->boxes.expect_report(u"frmMain"_s, u"delete_scan"_s, 1811);
    main_->boxes.expect_report(u"frmMain"_s, u"TB1_ButtonClick"_s, 65535);
    press(u"Delete"_s);
    QCOMPARE(main_->ended, QList<int>{65535});
    QCOMPARE(main_->station.value(u"select count(*) from scans"_s), u"0"_s);
    QCOMPARE(main_->station.value(u"select count(*) from tagged"_s), u"1"_s);
}

void TestMainCommands::add_all_adds_every_tag_once() {
    main_->station.add_tag(u"Home"_s);
    main_->station.add_tag(u"Work"_s);
    main_->open();
    (*main_)->chkDates->setChecked(true);
    main_->choose(u"Home"_s);
    QTest::mouseClick((*main_)->Label1, Qt::LeftButton);
    QCOMPARE(main_->chosen(), (QStringList{u"Home"_s, u"Bills"_s, u"Work"_s}));
    QCOMPARE((*main_)->Label1->text(), u"Delete All"_s);
    QCOMPARE((*main_)->cmbTags->entered_text(), QString());
    QCOMPARE(main_->documents(), QStringList{u"Power"_s});
}

void TestMainCommands::add_all_without_tags_changes_only_the_caption() {
    database().execute(u"DELETE * FROM tags"_s);
    main_->open();
    QTest::mouseClick((*main_)->Label1, Qt::LeftButton);
    QCOMPARE((*main_)->Label1->text(), u"Delete All"_s);
    QCOMPARE((*main_)->fgL->rows(), 0);
    QCOMPARE((*main_)->fgR->rows(), 1);
}

void TestMainCommands::delete_all_empties_the_chosen_tags() {
    main_->open();
    (*main_)->chkDates->setChecked(true);
    QTest::mouseClick((*main_)->Label1, Qt::LeftButton);
    QCOMPARE(main_->documents(), QStringList{u"Power"_s});
    QTest::mouseClick((*main_)->Label1, Qt::LeftButton);
    QCOMPARE(main_->chosen(), QStringList{});
    QCOMPARE(main_->documents(), QStringList{});
    QCOMPARE((*main_)->Label1->text(), u"Add All"_s);
    QCOMPARE(main_->saved_flag(bills_), u"1"_s);
}

QTEST_MAIN(TestMainCommands)
#include "test_main_commands.moc"
