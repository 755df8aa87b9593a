// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "common/error_trap.h"
#include "common/message_box.h"
#include "controls/active_link.h"
#include "controls/form_window.h"
#include "location/frmLocateDatabase.h"
#include "platform/safe_file.h"
#include "platform/shell.h"
#include "tests/support/planned_boxes.h"
#include "tests/support/test_station.h"

#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QTest>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

class TestFrmLocateDatabase : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> root_;
    int started_again_ = 0;
    QPointer<frmLocateDatabase> form_;

    QString at(const QString& name) const {
        return QDir::toNativeSeparators(root_->filePath(name));
    }
    template <class T> T* control(const char* name) const {
        return form_->findChild<T*>(QString::fromLatin1(name));
    }
    QLineEdit* text(const char* name) const { return control<QLineEdit>(name); }
    QRadioButton* option(const char* name) const { return control<QRadioButton>(name); }
    void press(const char* name) const {
        QTest::mouseClick(control<QPushButton>(name), Qt::LeftButton);
    }
    QString recorded() const {
        PreferencesDocument saved;
        return saved.load(preferences_path()) ? saved.child_text(u"dblocation"_s) : u"<no file>"_s;
    }
    void open() {
        form_ = new frmLocateDatabase([this] { ++started_again_; });
        form_->show();
        QVERIFY(QTest::qWaitForWindowExposed(form_));
    }
    void enter_new_folder(const QString& location, const QString& folder) {
        option("opt1")->setChecked(true);
        text("txtLocation")->setText(location);
        text("txtFolder")->setText(folder);
    }

private Q_SLOTS:
    void init() {
        root_ = std::make_unique<QTemporaryDir>();
        AppDataFolder = at(u"app"_s);
        create_folder_at(AppDataFolder);
        ProductTitle = u"Folidex"_s;
        DbOpenError.clear();
        DataFolder.clear();
        started_again_ = 0;
        Preferences() = PreferencesDocument{};
        Preferences().set_root_tag(u"folidex"_s);
        save_localXML();
        const QString installed = program_folder() + u"/dbm.mdb"_s;
        if (QFile::exists(installed))
            QFile::remove(installed);
        QVERIFY(QFile::copy(template_database(), installed));
    }
    void cleanup() {
        if (form_)
            form_->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void a_first_start_opens_on_option_1_with_the_note() {
        open();
        QVERIFY(option("opt1")->isChecked());
        QCOMPARE(control<QLabel>("pic1_title")->text(), u"Database Location"_s);
        QCOMPARE(control<QLabel>("pic1_description")->text(),
                 u"Select the folder where you data files reside."_s);
        QCOMPARE(form_->windowTitle(), u"Tell folidex where your data folder is."_s);
        QVERIFY(text("txtLocation2")->text().isEmpty());
        QVERIFY(
            control<QLabel>("lblExplanation")
                ->text()
                .contains(
                    u"PLEASE NOTE! Folidex will create sub folders to group all your scanned documents."_s));
    }

    void the_texts_of_the_controls_are_the_known_ones() {
        open();
        QCOMPARE(option("opt1")->text(), u"I want to create a new data base."_s);
        QCOMPARE(option("opt2")->text(), u"I would like to point to an existing data base."_s);
        QCOMPARE(control<QLabel>("lblLocation")->text(),
                 u"Create a new data folder in the following location."_s);
        QCOMPARE(control<QPushButton>("cmdBrowse1")->text(), u"Browse Location"_s);
        QCOMPARE(control<QPushButton>("cmdBrowse2")->text(), u"Browse Location"_s);
        QCOMPARE(control<QPushButton>("cmdSave")->text(), u"OK"_s);
        QCOMPARE(control<QPushButton>("cmdCancel")->text(), u"Cancel"_s);
        QCOMPARE(control<QPushButton>("cmdHelp")->text(), u"Help"_s);
    }

    void the_explanation_has_its_sentences_in_order() {
        QCOMPARE(
            location_explanation(u"Folidex"_s, true).remove(u'\n'),
            u"The Folidex database file and all scanned documents are stored in a single folder."
            u"In order to continue, you need to point Folidex to that folder. "
            u"If this is the first time you are installing Folidex then you will need to select "
            u"option 1 and create a new data folder. "
            u"If this is NOT your first installation and you already have a database file, then "
            u"you need to select option 2 and point Folidex to the correct location. "
            u"PLEASE NOTE! Folidex will create sub folders to group all your scanned documents."_s);
        QVERIFY(!location_explanation(u"Folidex"_s, false).contains(u"PLEASE NOTE"_s));
    }

    void a_recorded_folder_opens_option_2_showing_it() {
        Preferences().set_child_text(u"dblocation"_s, at(u"data"_s));
        open();
        QVERIFY(option("opt2")->isChecked());
        QCOMPARE(text("txtLocation2")->text(), at(u"data"_s));
        QCOMPARE(control<QLabel>("pic1_title")->text(), u"Database Location"_s);
    }

    void after_a_failed_open_it_shows_the_error_and_the_failing_path() {
        Preferences().set_child_text(u"dblocation"_s, at(u"gone"_s));
        DbOpenError = u"some failure"_s;
        open();
        QCOMPARE(control<QLabel>("pic1_title")->text(), u"ERROR opening database file"_s);
        QVERIFY(option("opt2")->isChecked());
        QCOMPARE(text("txtLocation2")->text(), at(u"gone"_s));
        QVERIFY(!control<QLabel>("lblExplanation")->text().contains(u"PLEASE NOTE"_s));
    }

    void a_new_folder_gets_the_template_and_start_up_runs_again() {
        open();
        enter_new_folder(QDir::toNativeSeparators(root_->path()), u"Docs"_s);
        press("cmdSave");
        QCOMPARE(started_again_, 1);
        QCOMPARE(DataFolder, at(u"Docs"_s));
        QCOMPARE(recorded(), at(u"Docs"_s));
        QFile made(at(u"Docs/db.mdb"_s));
        QFile from(template_database());
        QVERIFY(made.open(QIODevice::ReadOnly) && from.open(QIODevice::ReadOnly));
        QVERIFY(made.readAll() == from.readAll());
        QVERIFY(!form_ || !form_->isVisible());
    }

    void one_trailing_separator_is_taken_off_location_and_folder() {
        open();
        const QChar separator = QDir::separator();
        enter_new_folder(QDir::toNativeSeparators(root_->path()) + separator,
                         u"Docs"_s + separator);
        press("cmdSave");
        QCOMPARE(DataFolder, at(u"Docs"_s));
        QCOMPARE(recorded(), at(u"Docs"_s));
        QCOMPARE(without_trailing_separator(u"a"_s + separator + separator), u"a"_s + separator);
    }

    void an_existing_folder_name_is_refused_and_nothing_is_written() {
        create_folder_at(at(u"Docs"_s));
        open();
        enter_new_folder(QDir::toNativeSeparators(root_->path()), u"Docs"_s);
        PlannedBoxes boxes;
        boxes.expect(u"Folder already exists. Please choose another location or folder name."_s,
                     kInformationIcon, u"Error"_s);
        press("cmdSave");
        QVERIFY(boxes.verify());
        QCOMPARE(started_again_, 0);
        QCOMPARE(recorded(), QString());
        QVERIFY(QDir(at(u"Docs"_s)).isEmpty());
        QVERIFY(form_->isVisible());
    }

    void a_missing_location_is_named() {
        open();
        enter_new_folder(at(u"nowhere"_s), u"Docs"_s);
        PlannedBoxes boxes;
        boxes.expect(u"Cannot find the following location: "_s + at(u"nowhere"_s), kInformationIcon,
                     u"Error"_s);
        press("cmdSave");
        QVERIFY(boxes.verify());
        QVERIFY(!folder_exists(at(u"nowhere"_s)));
        QCOMPARE(started_again_, 0);
    }

    void an_empty_location_is_refused_and_gets_the_focus() {
        open();
        enter_new_folder({}, u"Docs"_s);
        PlannedBoxes boxes;
        boxes.expect(u"Please enter or select a valid location"_s, kInformationIcon, u"Error"_s);
        press("cmdSave");
        QVERIFY(boxes.verify());
        QCOMPARE(form_->focusWidget(), text("txtLocation"));
    }

    void an_empty_folder_name_is_refused_and_gets_the_focus() {
        open();
        enter_new_folder(root_->path(), {});
        PlannedBoxes boxes;
        boxes.expect(u"Please enter a valid folder name"_s, kInformationIcon, u"Error"_s);
        press("cmdSave");
        QVERIFY(boxes.verify());
        QCOMPARE(form_->focusWidget(), text("txtFolder"));
    }

    void option_2_takes_the_path_as_typed_without_a_check() {
        open();
        option("opt2")->setChecked(true);
        text("txtLocation2")->setText(at(u"not there"_s) + QDir::separator());
        press("cmdSave");
        QCOMPARE(started_again_, 1);
        QCOMPARE(recorded(), at(u"not there"_s) + QDir::separator());
    }

    void option_2_with_an_empty_path_stores_it_and_starts_again() {
        Preferences().set_child_text(u"dblocation"_s, at(u"data"_s));
        open();
        text("txtLocation2")->clear();
        press("cmdSave");
        QCOMPARE(started_again_, 1);
        QCOMPARE(recorded(), QString());
    }

    void cancelling_changes_nothing() {
        Preferences().set_child_text(u"dblocation"_s, at(u"data"_s));
        save_localXML();
        open();
        text("txtLocation2")->setText(at(u"other"_s));
        press("cmdCancel");
        QVERIFY(!form_ || !form_->isVisible());
        QCOMPARE(recorded(), at(u"data"_s));
        QCOMPARE(started_again_, 0);
    }

    void escape_cancels() {
        open();
        QTest::keyClick(form_, Qt::Key_Escape);
        QVERIFY(!form_ || !form_->isVisible());
        QCOMPARE(started_again_, 0);
    }

    void a_missing_template_is_reported_and_the_folder_stays_unrecorded() {
        QVERIFY(QFile::remove(program_folder() + u"/dbm.mdb"_s));
        open();
        enter_new_folder(QDir::toNativeSeparators(root_->path()), u"Docs"_s);
        int ended = 0;
        end_program = [&](const Error&) { ++ended; };
        PlannedBoxes boxes;
        boxes.expect_report(u"frmLocateDatabase"_s, u"cmdSave_Click"_s, kFileNotFound);
        press("cmdSave");
        QVERIFY(boxes.verify());
        QCOMPARE(ended, 1);
        QVERIFY(folder_exists(at(u"Docs"_s)));
        QCOMPARE(recorded(), QString());
        QVERIFY(boxes.shown().first().prompt.contains(u"dbm.mdb"_s));
    }

    void a_picked_folder_goes_into_its_field() {
        open();
        frmLocateDatabase::folder_picker = [this](QWidget*, const QString&) {
            return std::optional<QString>(root_->path());
        };
        press("cmdBrowse1");
        QCOMPARE(text("txtLocation")->text(), root_->path());
        QCOMPARE(form_->focusWidget(), text("txtFolder"));
        option("opt2")->setChecked(true);
        press("cmdBrowse2");
        QCOMPARE(text("txtLocation2")->text(), root_->path());
    }

    void a_cancelled_picker_changes_nothing() {
        open();
        text("txtLocation")->setText(u"/typed"_s);
        // The desktop has places that are no folders of the file system: they have no path.
        for (const std::optional<QString>& picked : {std::optional<QString>(), {QString()}}) {
            frmLocateDatabase::folder_picker = [picked](QWidget*, const QString&) {
                return picked;
            };
            press("cmdBrowse1");
            QCOMPARE(text("txtLocation")->text(), u"/typed"_s);
            QVERIFY(form_->focusWidget() != text("txtFolder"));
        }
    }

    void help_opens_the_help_page() {
        QDir(program_folder()).mkpath(u"site/help"_s);
        write_file(program_folder() + u"/site/help/index.html"_s, "<html></html>");
        QString opened;
        ActiveLink::opener = [&](const QString& target) { opened = target; };
        open();
        press("cmdHelp");
        QVERIFY2(opened.endsWith(u"/help/index.html"_s), qPrintable(opened));
    }

    void the_form_is_centred_the_first_time_and_its_place_is_stored() {
        open();
        // Placed before the window system has put its frame around it.
        const QSize room = QGuiApplication::primaryScreen()->size() - form_->size();
        const QPoint place = form_->pos();
        QVERIFY(qAbs(place.x() - room.width() / 2) <= 1);
        QVERIFY(qAbs(place.y() - room.height() / 2) <= 1);
        const auto stored = [](const QString& element) {
            return Preferences().child_text(element).toDouble();
        };
        QCOMPARE(to_pixels(stored(u"frmLocateDatabaseTop"_s)), place.y());
        QCOMPARE(to_pixels(stored(u"frmLocateDatabaseLeft"_s)), place.x());
    }

    void only_the_chosen_option_can_be_filled_in() {
        open();
        QVERIFY(text("txtLocation")->isEnabled());
        QVERIFY(!text("txtLocation2")->isEnabled());
        QTest::keyClick(option("opt1"), Qt::Key_Down);
        option("opt2")->setChecked(true);
        QVERIFY(!text("txtLocation")->isEnabled());
        QVERIFY(text("txtLocation2")->isEnabled());
    }
};

QTEST_MAIN(TestFrmLocateDatabase)
#include "test_frmLocateDatabase.moc"
