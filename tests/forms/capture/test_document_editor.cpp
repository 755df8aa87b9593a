// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "common/day_number.h"
#include "data/database.h"
#include "data/settings_store.h"
#include "tests/forms/capture/capture_desk.h"

#include <QTimer>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

namespace {

constexpr double kOctober12 = 40098;
const QString kNoTagEntered = u"Please or select a valid tag in the drop down list."_s;

} // namespace

class TestDocumentEditor : public QObject {
    Q_OBJECT

    std::unique_ptr<CaptureDesk> desk_;

    QString scan_label() const { return desk_->control<QLabel>("lblScan")->text(); }
    bool can_view() const { return desk_->control<QPushButton>("cmdView")->isEnabled(); }
    QStringList tag_names() const {
        return desk_->station.rows(u"Select description from tags order by link"_s);
    }

private Q_SLOTS:
    void init() { desk_ = std::make_unique<CaptureDesk>(); }
    void cleanup() { leave(desk_); }

    void a_new_document_opens_empty_with_the_date_of_today() {
        desk_->station.add_tag(u"Letters"_s);
        desk_->open();
        QCOMPARE(desk_->form->windowTitle(), u"New Scan"_s);
        QCOMPARE(desk_->date()->value(), kOctober12);
        QCOMPARE(desk_->description()->text(), QString());
        QVERIFY(desk_->has_focus("txtDescription"));
        QCOMPARE(desk_->assigned_tags(), QStringList());
        QCOMPARE(desk_->tags()->item_count(), 1);
        QCOMPARE(desk_->tags()->entered_text(), QString());
        QCOMPARE(scan_label(), u"Scan"_s);
        QVERIFY(!can_view());
    }

    // The grid belongs to one opening of the form.
    void kept_tags_end_with_the_form() {
        Preferences().move_to_root();
        Preferences().set_child_text(u"retaintags"_s, u"1"_s);
        desk_->open();
        desk_->fill_in(u"First"_s, u"Letters"_s);
        desk_->click("cmdSave2");
        QCOMPARE(desk_->assigned_tags().size(), 1);
        desk_->click("cmdCancel");
        desk_->open();
        QCOMPARE(desk_->assigned_tags(), QStringList());
    }

    void a_document_is_loaded_once_the_form_is_on_screen() {
        const int letters = desk_->station.add_tag(u"Letters"_s);
        const int bills = desk_->station.add_tag(u"Bills"_s);
        const int link = desk_->station.add_document(u"Old letter"_s, 40238, {letters, bills},
                                                     u"0310"_s, u"a.pdf"_s);
        desk_->show(link);
        const auto* timer = desk_->control<QTimer>("Timer1");
        QCOMPARE(timer->interval(), 100);
        QTRY_COMPARE(desk_->description()->text(), u"Old letter"_s);
        QVERIFY(!timer->isActive());
        QCOMPARE(desk_->form->windowTitle(), u"Edit Scan"_s);
        QCOMPARE(desk_->date()->date(), QDate(2010, 3, 1));
        QCOMPARE(desk_->assigned_tags(),
                 QStringList({u"Letters=%1"_s.arg(letters), u"Bills=%1"_s.arg(bills)}));
        QCOMPARE(scan_label(), u"Re-Scan"_s);
        QVERIFY(can_view());
    }

    void the_constructor_alone_loads_no_document() {
        sel_link = desk_->station.add_document(u"Old letter"_s, kOctober12, {});
        desk_->form = std::make_unique<frmScanNew>();
        QCOMPARE(desk_->description()->text(), QString());
        QVERIFY(desk_->control<QTimer>("Timer1")->isActive());
    }

    void a_new_document_starts_no_timer() {
        desk_->show(-1);
        QVERIFY(!desk_->control<QTimer>("Timer1")->isActive());
        desk_->show(0);
        QVERIFY(!desk_->control<QTimer>("Timer1")->isActive());
    }

    void a_document_that_is_gone_leaves_an_empty_form() {
        desk_->station.add_tag(u"Letters"_s);
        desk_->open(4711);
        QCOMPARE(desk_->form->windowTitle(), u"New Scan"_s);
        QCOMPARE(desk_->description()->text(), QString());
        QCOMPARE(scan_label(), u"Scan"_s);
        desk_->describe(u"Letter"_s);
        desk_->add_tag(u"Letters"_s);
        desk_->boxes.expect(u"You have no scanned document."_s, kInformationIcon, u"Error"_s);
        desk_->click("cmdSave");
    }

    void fields_that_are_null_are_empty() {
        database().execute(
            u"INSERT INTO scans ([link], [description], [date], [fname], [location]) VALUES "
            "(900, Null, 40098, Null, Null)"_s);
        desk_->open(900);
        QCOMPARE(desk_->description()->text(), QString());
        QCOMPARE(scan_label(), u"Scan"_s);
        QVERIFY(!can_view());
        QCOMPARE(desk_->form->windowTitle(), u"Edit Scan"_s);
    }

    void a_tag_that_is_gone_shows_no_name_and_stays_assigned() {
        const int link = desk_->station.add_document(u"Old"_s, kOctober12, {4711});
        desk_->open(link);
        QCOMPARE(desk_->assigned_tags(), QStringList(u"=4711"_s));
        desk_->click("cmdSave");
        QCOMPARE(desk_->station.rows(u"Select tag from tagged"_s), QStringList(u"4711"_s));
    }

    void a_date_beyond_the_picker_stays_as_stored_data() {
        QTest::addColumn<QString>("stored");
        QTest::newRow("before 1900") << u"-40000"_s;
        QTest::newRow("after 9999") << u"4000000"_s;
        QTest::newRow("before the calendar") << u"-900000"_s;
        QTest::newRow("with a time") << u"40098.25"_s;
    }
    void a_date_beyond_the_picker_stays_as_stored() {
        QFETCH(QString, stored);
        const int letters = desk_->station.add_tag(u"Letters"_s);
        const int link =
            desk_->station.add_document(u"Old"_s, stored.toDouble(), {letters}, u"1009"_s);
        desk_->open(link);
        desk_->click("cmdSave");
        QCOMPARE(desk_->station.value(u"Select date from scans"_s), stored);
        desk_->open(link);
        desk_->set_date({2010, 3, 1});
        desk_->click("cmdSave");
        QCOMPARE(desk_->station.value(u"Select date from scans"_s), u"40238"_s);
    }

    void a_date_that_is_none_shows_today_data() {
        QTest::addColumn<QString>("stored");
        QTest::newRow("Null") << u"Null"_s;
        QTest::newRow("words") << u"'yesterday'"_s;
        QTest::newRow("empty") << u"''"_s;
        QTest::newRow("words that read as a number") << u"'nan'"_s;
        QTest::newRow("no end") << u"9e999"_s;
    }
    void a_date_that_is_none_shows_today() {
        QFETCH(QString, stored);
        const int letters = desk_->station.add_tag(u"Letters"_s);
        database().execute(
            u"INSERT INTO scans ([link], [description], [date], [fname], [location]) VALUES "
            "(900, 'Old', "_s +
            stored + u", 'a.pdf', '1009')"_s);
        database().execute(u"INSERT INTO tagged (scan, tag) VALUES (900, "_s +
                           QString::number(letters) + u")"_s);
        desk_->open(900);
        QCOMPARE(desk_->description()->text(), u"Old"_s);
        QCOMPARE(desk_->date()->value(), kOctober12);
        desk_->click("cmdSave");
        QCOMPARE(desk_->station.value(u"Select date from scans"_s), u"40098"_s);
    }

    void enter_adds_a_tag_and_saves_nothing() {
        desk_->station.add_tag(u"Letters"_s);
        desk_->open();
        desk_->describe(u"Letter"_s);
        desk_->scan();
        desk_->add_tag(u"Letters"_s);
        QVERIFY(desk_->form->isVisible());
        QCOMPARE(desk_->assigned()->rows(), 1);
        QCOMPARE(desk_->tags()->entered_text(), QString());
        QVERIFY(desk_->has_focus("cmbTags"));
        QCOMPARE(desk_->station.rows(u"Select link from scans"_s), QStringList());
    }

    void the_button_adds_a_tag_chosen_from_the_list() {
        const int letters = desk_->station.add_tag(u"Letters"_s);
        desk_->station.add_tag(u"Bills"_s);
        desk_->open();
        QCOMPARE(desk_->tags()->item(1).description, u"Letters"_s);
        desk_->tags()->set_list_index(1);
        desk_->click("cmdAdd");
        QCOMPARE(desk_->assigned_tags(), QStringList(u"Letters=%1"_s.arg(letters)));
        QVERIFY(desk_->has_focus("cmbTags"));
    }

    void a_typed_tag_is_found_without_regard_to_case() {
        const int letters = desk_->station.add_tag(u"Letters"_s);
        desk_->open();
        desk_->add_tag(u"lettERS"_s);
        desk_->add_tag(u"LETTERS"_s);
        QCOMPARE(desk_->assigned_tags(), QStringList(u"Letters=%1"_s.arg(letters)));
        QCOMPARE(tag_names(), QStringList(u"Letters"_s));
    }

    void adding_a_tag_twice_points_at_its_row() {
        for (const QString& name : {u"A"_s, u"B"_s, u"C"_s})
            desk_->station.add_tag(name);
        desk_->open();
        for (const QString& name : {u"A"_s, u"B"_s, u"C"_s, u"B"_s})
            desk_->add_tag(name);
        QCOMPARE(desk_->assigned()->rows(), 3);
        QCOMPARE(desk_->assigned()->row(), 1);
        QCOMPARE(desk_->tags()->entered_text(), QString());
        QVERIFY(desk_->has_focus("cmbTags"));
    }

    void nothing_entered_is_no_tag() {
        desk_->open();
        desk_->description()->setFocus();
        desk_->boxes.expect(kNoTagEntered, kInformationIcon, u"Error"_s);
        desk_->click("cmdAdd");
        QVERIFY(desk_->has_focus("cmbTags"));
        QCOMPARE(desk_->assigned_tags(), QStringList());
        QCOMPARE(tag_names(), QStringList());
    }

    void a_new_tag_is_created_at_once_and_can_be_chosen() {
        desk_->station.add_tag(u"Letters"_s);
        desk_->open();
        const QString link = desk_->station.value(u"Select NewLink from comp"_s);
        desk_->add_tag(u"Children's"_s);
        QCOMPARE(desk_->assigned_tags(), QStringList(u"Children's="_s + link));
        QCOMPARE(desk_->station.rows(u"Select link, description from tags order by link"_s).last(),
                 link + u"|Children's"_s);
        QCOMPARE(desk_->tags()->item_count(), 2);
        QCOMPARE(desk_->tags()->item(0).description, u"Children's"_s);
        QCOMPARE(desk_->station.value(u"Select NewLink from comp"_s).toInt(), link.toInt() + 1);
    }

    void a_new_tag_outlives_cancel() {
        desk_->open();
        desk_->add_tag(u"Letters"_s);
        desk_->click("cmdCancel");
        QCOMPARE(tag_names(), QStringList(u"Letters"_s));
        QCOMPARE(desk_->station.rows(u"Select scan from tagged"_s), QStringList());
    }

    void a_click_on_the_picture_removes_the_row() {
        desk_->open();
        for (const QString& name : {u"A"_s, u"B"_s, u"C"_s})
            desk_->add_tag(name);
        desk_->click_cell(1, 1);
        QCOMPARE(desk_->assigned()->rows(), 3);
        QVERIFY(desk_->has_focus("cmbTags"));
        desk_->click_cell(1, 0);
        QCOMPARE(desk_->assigned()->rows(), 2);
        QCOMPARE(desk_->assigned()->text(0, 1), u"A"_s);
        QCOMPARE(desk_->assigned()->text(1, 1), u"C"_s);
        QVERIFY(desk_->has_focus("cmbTags"));
    }

    void a_click_beside_the_rows_removes_none() {
        desk_->open();
        desk_->add_tag(u"A"_s);
        const QWidget* ground = desk_->assigned()->viewport();
        QTest::mouseClick(desk_->assigned()->viewport(), Qt::LeftButton, {},
                          QPoint(4, ground->height() - 4));
        QCOMPARE(desk_->assigned()->rows(), 1);
    }

    void delete_removes_the_current_row() {
        desk_->open();
        for (const QString& name : {u"A"_s, u"B"_s})
            desk_->add_tag(name);
        desk_->assigned()->setFocus();
        desk_->assigned()->set_row(0);
        QTest::keyClick(desk_->assigned(), Qt::Key_Delete);
        QCOMPARE(desk_->assigned()->rows(), 1);
        QCOMPARE(desk_->assigned()->text(0, 1), u"B"_s);
        desk_->assigned()->set_row(0);
        QTest::keyClick(desk_->assigned(), Qt::Key_Delete);
        QCOMPARE(desk_->assigned()->rows(), 0);
        QVERIFY(desk_->has_focus("cmbTags"));
    }

    void every_row_carries_the_remove_picture() {
        const int letters = desk_->station.add_tag(u"Letters"_s);
        const int link = desk_->station.add_document(u"Old"_s, kOctober12, {letters});
        desk_->open(link);
        desk_->add_tag(u"More"_s);
        const QAbstractItemModel* rows = desk_->assigned()->model();
        for (int row = 0; row < 2; ++row)
            QVERIFY(!rows->index(row, 0).data(Qt::DecorationRole).value<QPixmap>().isNull());
        QVERIFY(!desk_->control<QLabel>("Picture1")->isVisible());
    }

    void every_way_of_closing_drops_the_scan_without_asking_data() {
        QTest::addColumn<QString>("way");
        QTest::newRow("Cancel") << u"cancel"_s;
        QTest::newRow("Escape") << u"escape"_s;
        QTest::newRow("the window's own button") << u"window"_s;
    }
    void every_way_of_closing_drops_the_scan_without_asking() {
        QFETCH(QString, way);
        desk_->open();
        desk_->fill_in(u"Letter"_s, u"Letters"_s);
        QVERIFY(QFile::exists(desk_->temporary_scan()));
        if (way == u"cancel"_s)
            desk_->click("cmdCancel");
        else if (way == u"escape"_s)
            QTest::keyClick(desk_->description(), Qt::Key_Escape);
        else
            desk_->form->close();
        QVERIFY(!desk_->form->isVisible());
        QVERIFY(!QFile::exists(desk_->temporary_scan()));
        QCOMPARE(desk_->station.rows(u"Select link from scans"_s), QStringList());
    }

    // Without a scan of its own the form leaves the file to whoever made it.
    void closing_without_a_scan_leaves_a_temporary_file_alone() {
        desk_->open();
        QFile file(desk_->temporary_scan());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        desk_->click("cmdCancel");
        QVERIFY(QFile::exists(desk_->temporary_scan()));
        desk_->open();
        QVERIFY(!QFile::exists(desk_->temporary_scan()));
    }

    void the_form_comes_back_where_it_was_closed() {
        desk_->open();
        desk_->form->move(120, 90);
        desk_->click("cmdCancel");
        QCOMPARE(get_FormSettings(u"frmScanNew"_s, u"Top"_s).toDouble(), 90 * 15.0);
        QCOMPARE(get_FormSettings(u"frmScanNew"_s, u"Left"_s).toDouble(), 120 * 15.0);
        desk_->open();
        QCOMPARE(desk_->form->pos(), QPoint(120, 90));
    }

    void a_modal_form_gives_the_caller_back_control() {
        sel_link = -1;
        desk_->form = std::make_unique<frmScanNew>();
        later(desk_->form.get(), 0, [this] { desk_->click("cmdCancel"); });
        desk_->form->exec();
        QVERIFY(!desk_->form->isVisible());
    }

    void any_description_is_filed_and_loaded_unchanged_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("quotes") << u"'He said \"it's\"'"_s;
        QTest::newRow("percent and ampersand") << u"100 % of A&B && %1 %s &amp;"_s;
        QTest::newRow("markup") << u"<b>bold</b>"_s;
        QTest::newRow("line breaks") << u"first\nsecond\r\nthird\tfourth"_s;
        QTest::newRow("right to left") << QString::fromUtf8("עברית وعربي \xE2\x80\x8F.");
        QTest::newRow("emoji") << QString::fromUtf8(
            "\xF0\x9F\x93\x84 \xF0\x9F\x91\xA9\xE2\x80\x8D"
            "\xF0\x9F\x91\xA7 \xF0\x9F\x87\xA9\xF0\x9F\x87\xAA");
        QTest::newRow("32,000 characters") << QString(31000, u'x') + QString(1000, u'\'');
        QTest::newRow("40,000 characters") << QString(40000, u'y');
    }
    void any_description_is_filed_and_loaded_unchanged() {
        QFETCH(QString, text);
        desk_->station.add_tag(u"Letters"_s);
        desk_->open();
        desk_->fill_in(text, u"Letters"_s);
        desk_->click("cmdSave");
        QCOMPARE(desk_->station.value(u"Select description from scans"_s), text);
        const int link = desk_->station.value(u"Select link from scans"_s).toInt();
        desk_->open(link);
        QCOMPARE(desk_->description()->text(), text);
        const int height = desk_->description()->height();
        desk_->add_tag(u"More"_s);
        desk_->click("cmdSave");
        QCOMPARE(desk_->station.value(u"Select description from scans"_s), text);
        desk_->open();
        QCOMPARE(desk_->description()->height(), height);
    }

    void any_tag_is_stored_and_found_unchanged_data() {
        any_description_is_filed_and_loaded_unchanged_data();
    }
    void any_tag_is_stored_and_found_unchanged() {
        QFETCH(QString, text);
        desk_->open();
        for (int time = 0; time < 2; ++time) {
            desk_->tags()->set_entered_text(text);
            desk_->click("cmdAdd");
        }
        QCOMPARE(tag_names(), QStringList(text));
        QCOMPARE(desk_->assigned()->rows(), 1);
        QCOMPARE(desk_->assigned()->text(0, 1), text);
        QCOMPARE(desk_->tags()->item(0).description, text);
    }
};

QTEST_MAIN(TestDocumentEditor)
#include "test_document_editor.moc"
