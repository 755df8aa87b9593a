// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/Module1.h"
#include "app/preferences_start.h"
#include "app/process_values.h"
#include "common/error_trap.h"
#include "common/message_box.h"
#include "data/database.h"
#include "platform/safe_file.h"
#include "tests/support/planned_boxes.h"
#include "tests/support/test_station.h"
#include "tests/support/test_system.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

class TestModule1 : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> root_;
    std::unique_ptr<AllUsersFolder> all_users_;
    int ended_ = 0;

    QString at(const QString& name) const {
        return QDir::toNativeSeparators(root_->filePath(name));
    }
    QString preferences_file() const { return at(u"all/Brightmoor/folidex_Preferences.xml"_s); }

    static QList<QWidget*> windows(const QString& name) {
        QList<QWidget*> found;
        for (QWidget* window : QApplication::topLevelWidgets())
            if (window->objectName() == name && window->isVisible())
                found << window;
        return found;
    }
    static QString title_of_location_form() {
        const QList<QWidget*> forms = windows(u"frmLocateDatabase"_s);
        return forms.size() == 1 ? forms[0]->findChild<QLabel*>(u"pic1_title"_s)->text()
                                 : u"%1 forms"_s.arg(forms.size());
    }
    void prefer(const QByteArray& content) const {
        QDir().mkpath(at(u"all/Brightmoor"_s));
        write_file(preferences_file(), content);
    }
    void prefer_data_folder(const QString& folder) const {
        PreferencesDocument document;
        document.set_root_tag(u"folidex"_s);
        document.set_child_text(u"dblocation"_s, folder);
        QDir().mkpath(at(u"all/Brightmoor"_s));
        document.save(preferences_file());
    }
    QString data_folder_with_template() const {
        const QString folder = at(u"data"_s);
        create_folder_at(folder);
        copy_file(template_database(), folder + u"/db.mdb"_s);
        return folder;
    }
    static QByteArray bytes_of(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<none>");
    }
    void start() { outermost(Main); }

private Q_SLOTS:
    void init() {
        root_ = std::make_unique<QTemporaryDir>();
        all_users_ = std::make_unique<AllUsersFolder>(at(u"all"_s));
        Preferences() = PreferencesDocument{};
        DataFolder.clear();
        DbOpenError.clear();
        set_database(nullptr);
        ended_ = 0;
        end_program = [this](const Error&) { ++ended_; };
    }
    void cleanup() {
        QApplication::closeAllWindows();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        set_database(nullptr);
        all_users_.reset();
    }

    void a_first_start_makes_folder_and_preferences_and_asks_for_the_data_folder() {
        PlannedBoxes no_boxes;
        start();
        QVERIFY(no_boxes.verify());
        QVERIFY(folder_exists(at(u"all/Brightmoor"_s)));
        QDomDocument dom;
        QVERIFY(dom.setContent(bytes_of(preferences_file())));
        QCOMPARE(dom.documentElement().tagName(), u"folidex"_s);
        QVERIFY(!dom.documentElement().hasChildNodes());
        QCOMPARE(title_of_location_form(), u"Database Location"_s);
        QCOMPARE(ProductTitle, u"Folidex"_s);
        QCOMPARE(AppDataFolder, at(u"all/Brightmoor"_s));
    }

    void a_data_folder_without_a_database_is_told_and_asked_for_again() {
        create_folder_at(at(u"data"_s));
        prefer_data_folder(at(u"data"_s));
        PlannedBoxes boxes;
        boxes.expect(u"Folidex cannot find or open your database file. If the file resides on a "
                     u"network drive please ensure that you are connected to that network drive."_s,
                     kOkOnly, u"Folidex"_s);
        start();
        QVERIFY(boxes.verify());
        QCOMPARE(title_of_location_form(), u"ERROR opening database file"_s);
    }

    void a_vanished_data_folder_is_told_and_asked_for_again() {
        prefer_data_folder(at(u"gone/away"_s));
        PlannedBoxes boxes;
        boxes.expect_containing(u"cannot find or open your database file"_s, kOkOnly, u"Folidex"_s);
        start();
        QVERIFY(boxes.verify());
        const QList<QWidget*> forms = windows(u"frmLocateDatabase"_s);
        QCOMPARE(forms.size(), 1);
        QCOMPARE(forms[0]->findChild<QLineEdit*>(u"txtLocation2"_s)->text(), at(u"gone/away"_s));
    }

    void a_name_of_one_character_counts_as_missing() {
        QVERIFY(!counts_as_present(QString()));
        QVERIFY(!counts_as_present(u"d"_s));
        QVERIFY(counts_as_present(u"db"_s));
        QVERIFY(counts_as_present(u"db.mdb"_s));
    }

    void a_folder_that_goes_away_while_opening_is_told_like_a_missing_one() {
        start();
        QVERIFY(database_open_message({52, u"Bad file name or number"_s})
                    .startsWith(u"Folidex cannot find or open your database file."_s));
        QCOMPARE(database_open_message({26, u"file is not a database"_s}),
                 u"Error 26: file is not a database"_s);
    }

    void a_recorded_data_folder_opens_the_main_window_without_asking() {
        prefer_data_folder(data_folder_with_template());
        PlannedBoxes no_boxes;
        start();
        QVERIFY(no_boxes.verify());
        QCOMPARE(windows(u"frmMain"_s).size(), 1);
        QVERIFY(windows(u"frmLocateDatabase"_s).isEmpty());
        QCOMPARE(DataFolder, at(u"data"_s));
        QCOMPARE(database().path(), at(u"data/db.mdb"_s));
    }

    void choosing_a_folder_runs_start_up_again_into_one_main_window() {
        PlannedBoxes no_boxes;
        start();
        QVERIFY(windows(u"frmMain"_s).isEmpty());
        QWidget* form = windows(u"frmLocateDatabase"_s).value(0);
        QVERIFY(form);
        const QString data = data_folder_with_template();
        form->findChild<QRadioButton*>(u"opt2"_s)->setChecked(true);
        form->findChild<QLineEdit*>(u"txtLocation2"_s)->setText(data);
        QTest::mouseClick(form->findChild<QPushButton*>(u"cmdSave"_s), Qt::LeftButton);
        QVERIFY(no_boxes.verify());
        QCOMPARE(windows(u"frmMain"_s).size(), 1);
        QVERIFY(windows(u"frmLocateDatabase"_s).isEmpty());
        QVERIFY(bytes_of(preferences_file()).contains(QFile::encodeName(data)));
    }

    void a_second_run_reads_the_preferences_from_the_disk_again() {
        start();
        Preferences().set_child_text(u"only_in_memory"_s, u"1"_s);
        prefer("<folidex><DoubleClick>Open</DoubleClick></folidex>");
        start();
        QCOMPARE(Preferences().child_text(u"DoubleClick"_s), u"Open"_s);
        QVERIFY(Preferences().child(u"only_in_memory"_s).is_null());
    }

    void a_file_that_is_no_database_is_told_with_its_path_and_left_alone_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("words") << QByteArray(5000, 'x');
        QTest::newRow("an old desktop database")
            << QByteArray("\0\1\0\0Standard Jet DB", 19) + QByteArray(4096, '\1');
    }

    void a_file_that_is_no_database_is_told_with_its_path_and_left_alone() {
        QFETCH(QByteArray, content);
        create_folder_at(at(u"data"_s));
        write_file(at(u"data/db.mdb"_s), content);
        prefer_data_folder(at(u"data"_s));
        PlannedBoxes boxes;
        boxes.expect_containing(at(u"data/db.mdb"_s), kOkOnly, u"Folidex"_s);
        start();
        QVERIFY(boxes.verify());
        QVERIFY2(boxes.shown().first().prompt.startsWith(u"Error 26: "_s),
                 qPrintable(boxes.shown().first().prompt));
        QCOMPARE(title_of_location_form(), u"ERROR opening database file"_s);
        QVERIFY(bytes_of(at(u"data/db.mdb"_s)) == content);
        QCOMPARE(QDir(at(u"data"_s)).entryList(QDir::Files), QStringList{u"db.mdb"_s});
    }

    void preferences_that_cannot_be_read_are_kept_and_told_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("not xml") << QByteArray("dblocation=/data");
        QTest::newRow("cut off") << QByteArray("<folidex><dblocation>/da");
        QTest::newRow("another document") << QByteArray("<html><body/></html>");
    }

    void preferences_that_cannot_be_read_are_kept_and_told() {
        QFETCH(QByteArray, content);
        prefer(content);
        PlannedBoxes boxes;
        boxes.expect_containing(preferences_file(), kCriticalIcon, u"Folidex"_s);
        start();
        QVERIFY(boxes.verify());
        QCOMPARE(bytes_of(preferences_file() + u".bad"_s), content);
        PreferencesDocument fresh;
        QVERIFY(fresh.load(preferences_file()));
        QVERIFY(fresh.cursor().children().isEmpty());
        QCOMPARE(title_of_location_form(), u"Database Location"_s);
    }

    void preferences_without_read_permission_are_kept_and_told() {
        prefer("<folidex><dblocation>/data</dblocation></folidex>");
        // Some file systems let nobody rename what he may not read; then that is told instead.
        const QString other = at(u"all/Brightmoor/other"_s);
        write_file(other, "x");
        bool renamed = false;
        {
            const LimitedRights unreadable(other, Rights::kNone);
            renamed = QFile::rename(other, other + u".bad"_s);
        }
        PlannedBoxes boxes;
        if (renamed)
            boxes.expect_containing(preferences_file(), kCriticalIcon, u"Folidex"_s);
        else
            boxes.expect_report(u"Module1"_s, u"Main"_s, kPermissionDenied);
        {
            const LimitedRights unreadable(preferences_file(), Rights::kNone);
            start();
        }
        QVERIFY(boxes.verify());
        QVERIFY(boxes.shown().first().prompt.contains(preferences_file()));
        QCOMPARE(QFile::exists(preferences_file() + u".bad"_s), renamed);
        QCOMPARE(title_of_location_form(), renamed ? u"Database Location"_s : u"0 forms"_s);
        QCOMPARE(ended_, renamed ? 0 : 1);
    }

    void an_earlier_bad_file_is_not_overwritten() {
        prefer("first");
        QCOMPARE(bad_file_name(preferences_file()), preferences_file() + u".bad"_s);
        write_file(preferences_file() + u".bad"_s, "kept");
        QCOMPARE(bad_file_name(preferences_file()), preferences_file() + u".2.bad"_s);
    }

    void a_folder_that_cannot_be_written_is_reported_with_its_path() {
        QDir().mkpath(at(u"all"_s));
        write_file(at(u"all/Brightmoor"_s), "a file in the way");
        PlannedBoxes boxes;
        boxes.expect_report(u"Module1"_s, u"Main"_s, kFileExists);
        start();
        QVERIFY(boxes.verify());
        QVERIFY(boxes.shown().first().prompt.contains(at(u"all/Brightmoor"_s)));
        QCOMPARE(ended_, 1);
    }

    void a_machine_without_a_folder_of_all_users_is_reported_to_the_end() {
        const NoAllUsersFolder none;
        PlannedBoxes boxes;
        boxes.expect_report(u"Utilities"_s, u"SpecialFolder"_s, 513);
        boxes.expect_report(u"Module1"_s, u"Main"_s, kPassedOn);
        start();
        QVERIFY(boxes.verify());
        QCOMPARE(ended_, 1);
        QVERIFY(windows(u"frmMain"_s).isEmpty());
        QVERIFY(windows(u"frmLocateDatabase"_s).isEmpty());
    }

    void no_data_folder_leaves_no_message_and_no_connection() {
        start();
        QVERIFY(DbOpenError.isEmpty());
        QVERIFY_EXCEPTION_THROWN(database(), Error);
        QCOMPARE(windows(u"frmLocateDatabase"_s).size(), 1);
    }
};

QTEST_MAIN(TestModule1)
#include "test_Module1.moc"
