// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "common/drop_menu.h"
#include "common/message_box.h"
#include "common/pop_up_menu.h"
#include "controls/grid.h"
#include "data/database.h"
#include "data/settings_store.h"
#include "tags/frmTags.h"
#include "tests/support/planned_boxes.h"
#include "tests/support/test_station.h"

#include <QAction>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

class TestFrmTags : public QObject {
    Q_OBJECT

    std::unique_ptr<TestStation> station_;
    std::unique_ptr<frmTags> form_;

    template <class T> T* control(const char* name) const {
        return form_->findChild<T*>(QString::fromLatin1(name));
    }
    Grid* grid() const { return control<Grid>("fg1"); }
    QLineEdit* box() const { return control<QLineEdit>("txtDescription"); }
    QGroupBox* frame() const { return control<QGroupBox>("Frame1"); }
    void button(const char* key) const {
        control<QAction>((QByteArray("TB1_") + key).constData())->trigger();
    }
    void press(const char* name) const {
        QTest::mouseClick(control<QPushButton>(name), Qt::LeftButton);
    }
    bool browsing() const { return grid()->isEnabled() && !frame()->isEnabled(); }
    bool editing() const { return !grid()->isEnabled() && frame()->isEnabled(); }
    QStringList listed() const {
        QStringList names;
        for (int row = 1; row < grid()->rows(); ++row)
            names << grid()->text(row, 0);
        return names;
    }
    QStringList stored() const {
        return station_->rows(u"Select Description from tags order by Link"_s);
    }
    void open() {
        form_ = std::make_unique<frmTags>();
        form_->show();
        QVERIFY(QTest::qWaitForWindowExposed(form_.get()));
    }
    void double_click(int row) const {
        grid()->set_row(row);
        Q_EMIT grid()->dbl_click();
    }

private Q_SLOTS:
    void init() { station_ = std::make_unique<TestStation>(); }
    void cleanup() {
        form_.reset();
        station_.reset();
    }

    void an_empty_catalogue_shows_only_the_header_and_refuses_edit_and_delete() {
        open();
        QCOMPARE(grid()->rows(), 1);
        for (const char* key : {"Edit", "Delete"}) {
            PlannedBoxes boxes;
            boxes.expect(u"Please select valid record from the list below."_s, kInformationIcon,
                         u"Error"_s);
            button(key);
            QVERIFY(boxes.verify());
        }
        QVERIFY(browsing());
    }

    void tags_are_listed_by_name_with_the_first_one_current() {
        station_->add_tag(u"water"_s);
        const int first = station_->add_tag(u"Bills"_s);
        open();
        QCOMPARE(listed(), (QStringList{u"Bills"_s, u"water"_s}));
        QCOMPARE(grid()->row(), 1);
        QCOMPARE(grid()->text(1, 1), QString::number(first));
        QVERIFY(browsing());
    }

    void a_new_tag_with_an_apostrophe_is_stored_once_and_found_as_duplicate() {
        open();
        button("New");
        QVERIFY(editing());
        QCOMPARE(frame()->title(), u"Add New"_s);
        QTest::keyClicks(box(), u"O'Brien"_s);
        press("cmdSave");
        QCOMPARE(stored(), QStringList{u"O'Brien"_s});
        QVERIFY(browsing());
        button("New");
        QTest::keyClicks(box(), u"O'Brien"_s);
        PlannedBoxes boxes;
        boxes.expect(u"Another record called O'Brien already on file. Cannot create."_s,
                     kInformationIcon, u"Error"_s);
        press("cmdSave");
        QVERIFY(boxes.verify());
        QCOMPARE(stored().size(), 1);
        QCOMPARE(box()->text(), u"O'Brien"_s);
        QVERIFY(editing());
    }

    void an_existing_name_is_refused_for_a_new_tag_but_accepted_for_a_renamed_one() {
        station_->add_tag(u"Bills"_s);
        station_->add_tag(u"Water"_s);
        open();
        button("New");
        QTest::keyClicks(box(), u"bills"_s);
        {
            PlannedBoxes boxes;
            boxes.expect(u"Another record called bills already on file. Cannot create."_s,
                         kInformationIcon, u"Error"_s);
            press("cmdSave");
            QVERIFY(boxes.verify());
        }
        press("cmdCancel");
        double_click(2);
        box()->setText(u"Bills"_s);
        PlannedBoxes none;
        press("cmdSave");
        QVERIFY(none.verify());
        QCOMPARE(stored(), (QStringList{u"Bills"_s, u"Bills"_s}));
    }

    void a_used_tag_cannot_be_deleted() {
        const int tag = station_->add_tag(u"Bills"_s);
        station_->add_document(u"Invoice"_s, 40098, {tag});
        open();
        PlannedBoxes boxes;
        boxes.expect(u"Are you sure you want to delete Bills"_s, kYesNo + kQuestionIcon,
                     u"Confirm"_s, kAnswerYes);
        boxes.expect(u"There are documents linked to this tag. Cannot delete."_s, kInformationIcon,
                     u"Error"_s);
        button("Delete");
        QVERIFY(boxes.verify());
        QCOMPARE(stored(), QStringList{u"Bills"_s});
    }

    void an_unused_tag_is_deleted_and_the_list_reloaded() {
        station_->add_tag(u"Bills"_s);
        station_->add_tag(u"Water"_s);
        open();
        PlannedBoxes boxes;
        boxes.expect(u"Are you sure you want to delete Bills"_s, kYesNo + kQuestionIcon,
                     u"Confirm"_s, kAnswerYes);
        button("Delete");
        QVERIFY(boxes.verify());
        QCOMPARE(stored(), QStringList{u"Water"_s});
        QCOMPARE(listed(), QStringList{u"Water"_s});
    }

    void answering_no_deletes_nothing() {
        station_->add_tag(u"Bills"_s);
        open();
        PlannedBoxes boxes;
        boxes.expect(u"Are you sure you want to delete Bills"_s, kYesNo + kQuestionIcon,
                     u"Confirm"_s, kAnswerNo);
        button("Delete");
        QVERIFY(boxes.verify());
        QCOMPARE(stored(), QStringList{u"Bills"_s});
    }

    // Enter has always read a column that the list does not fill; stations' users know it.
    void enter_ends_in_the_message_and_a_double_click_opens_the_tag() {
        station_->add_tag(u"Bills"_s);
        open();
        grid()->setFocus();
        {
            PlannedBoxes boxes;
            boxes.expect(u"Cannot find record: "_s, kCriticalIcon, u"Error"_s);
            QTest::keyClick(grid(), Qt::Key_Return);
            QVERIFY(boxes.verify());
        }
        QVERIFY(browsing());
        double_click(1);
        QVERIFY(editing());
        QCOMPARE(box()->text(), u"Bills"_s);
        QCOMPARE(box()->selectedText(), u"Bills"_s);
        QCOMPARE(frame()->title(), u"Editing Bills"_s);
    }

    void other_keys_in_the_list_do_nothing() {
        station_->add_tag(u"Bills"_s);
        open();
        PlannedBoxes none;
        QTest::keyClick(grid(), Qt::Key_F2);
        QVERIFY(none.verify());
        QVERIFY(browsing());
    }

    void a_double_click_on_the_header_does_nothing() {
        station_->add_tag(u"Bills"_s);
        open();
        double_click(0);
        QVERIFY(browsing());
    }

    void renaming_keeps_the_number() {
        const int tag = station_->add_tag(u"Bills"_s);
        open();
        double_click(1);
        box()->setText(u"Invoices"_s);
        press("cmdSave");
        QCOMPARE(station_->rows(u"Select Link, Description from tags"_s),
                 QStringList{QString::number(tag) + u"|Invoices"_s});
    }

    void an_empty_name_is_refused_and_blanks_are_accepted() {
        open();
        button("New");
        {
            PlannedBoxes boxes;
            boxes.expect(u"Please enter a valid description"_s, kInformationIcon, u"Error"_s);
            press("cmdSave");
            QVERIFY(boxes.verify());
        }
        QVERIFY(editing());
        QTest::keyClicks(box(), u"  "_s);
        press("cmdSave");
        QCOMPARE(stored(), QStringList{u"  "_s});
    }

    void save_and_new_stays_ready_for_the_next_tag() {
        open();
        button("New");
        QTest::keyClicks(box(), u"One"_s);
        press("cmdSaveNew");
        QVERIFY(editing());
        QVERIFY(box()->text().isEmpty());
        QTest::keyClicks(box(), u"Two"_s);
        press("cmdSaveNew");
        QCOMPARE(stored(), (QStringList{u"One"_s, u"Two"_s}));
        QCOMPARE(listed(), (QStringList{u"One"_s, u"Two"_s}));
    }

    void cancel_keeps_the_typed_text_and_writes_nothing() {
        open();
        button("New");
        QTest::keyClicks(box(), u"half"_s);
        press("cmdCancel");
        QVERIFY(browsing());
        QCOMPARE(box()->text(), u"half"_s);
        QVERIFY(stored().isEmpty());
    }

    void a_tag_deleted_by_another_station_cannot_be_updated() {
        const int tag = station_->add_tag(u"Bills"_s);
        station_->add_tag(u"Water"_s);
        open();
        double_click(1);
        database().execute(u"DELETE * FROM tags where link = "_s + QString::number(tag));
        box()->setText(u"Invoices"_s);
        PlannedBoxes boxes;
        boxes.expect(u"Cannot find record: "_s + QString::number(tag), kCriticalIcon,
                     u"Cannot Update"_s);
        press("cmdSave");
        QVERIFY(boxes.verify());
        QCOMPARE(stored(), QStringList{u"Water"_s});
        QVERIFY(editing());
    }

    void preferences_does_nothing() {
        station_->add_tag(u"Bills"_s);
        open();
        PlannedBoxes none;
        button("Preferences");
        QVERIFY(none.verify());
        QVERIFY(browsing());
    }

    // Only the stored value changes: other versions read it.
    void show_inactive_toggles_the_stored_value_only() {
        open();
        auto* menu = control<DropMenu>("Dmnu");
        pop_keys = QStringList{{}, u"mnuShowInactive"_s};
        Q_EMIT menu->ItemClick(1);
        QCOMPARE(get_FormSettings(u"frmTags"_s, u"ShowInActive"_s), u"1"_s);
        Q_EMIT menu->ItemClick(1);
        QCOMPARE(get_FormSettings(u"frmTags"_s, u"ShowInActive"_s), u"0"_s);
        pop_keys = QStringList{{}, u"mnuOther"_s};
        Q_EMIT menu->ItemClick(1);
        QCOMPARE(get_FormSettings(u"frmTags"_s, u"ShowInActive"_s), u"0"_s);
    }

    void the_place_is_restored_and_stored() {
        open();
        const QString top = get_FormSettings(u"frmTags"_s, u"Top"_s);
        QVERIFY(!top.isEmpty());
        form_->move(33, 44);
        form_->close();
        QCOMPARE(get_FormSettings(u"frmTags"_s, u"Left"_s), u"495"_s);
        QCOMPARE(get_FormSettings(u"frmTags"_s, u"Top"_s), u"660"_s);
    }

    void odd_names_come_back_unchanged_data() {
        QTest::addColumn<QString>("name");
        QTest::newRow("percent and ampersand") << u"100% R&D"_s;
        QTest::newRow("right to left") << u"חשבונות"_s;
        QTest::newRow("emoji") << u"\U0001F4C4"_s;
        QTest::newRow("long") << QString(32000, u'x');
    }

    void odd_names_come_back_unchanged() {
        QFETCH(QString, name);
        open();
        button("New");
        box()->setText(name);
        press("cmdSave");
        QCOMPARE(stored(), QStringList{name});
        QCOMPARE(grid()->text(1, 0), name);
    }
};

QTEST_MAIN(TestFrmTags)
#include "test_frmTags.moc"
