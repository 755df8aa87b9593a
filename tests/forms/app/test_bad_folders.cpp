// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/Module1.h"
#include "app/process_values.h"
#include "common/error_trap.h"
#include "common/message_box.h"
#include "common/paths.h"
#include "data/database.h"
#include "platform/safe_file.h"
#include "tests/support/planned_boxes.h"
#include "tests/support/test_station.h"
#include "tests/support/test_system.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QTemporaryDir>
#include <QTest>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

/// Start-up with folders as users have them: far away, long, in other alphabets, or locked.
class TestBadFolders : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> root_;
    std::unique_ptr<AllUsersFolder> all_users_;
    const QTemporaryDir data_; // one for all rows, which are made before each test's init()
    int ended_ = 0;

    QString at(const QString& name) const {
        return QDir::toNativeSeparators(root_->filePath(name));
    }
    QString data_at(const QString& name) const {
        return QDir::toNativeSeparators(data_.filePath(name));
    }
    QString application_folder() const { return join_path(at(u"all"_s), u"Brightmoor"_s); }
    static bool windows_paths() { return QDir::separator() == u'\\'; }

    void prefer_data_folder(const QString& folder) const {
        PreferencesDocument document;
        document.set_root_tag(u"folidex"_s);
        document.set_child_text(u"dblocation"_s, folder);
        QDir().mkpath(application_folder());
        document.save(join_path(application_folder(), u"folidex_Preferences.xml"_s));
    }
    static QWidget* window(const QString& name) {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (window->objectName() == name && window->isVisible())
                return window;
        return nullptr;
    }
    void start() { outermost(Main); }

private Q_SLOTS:
    void init() {
        root_ = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir().mkpath(at(u"all"_s)));
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

    void a_data_folder_out_of_reach_is_told_and_asked_for_again_data() {
        QTest::addColumn<QString>("folder");
        QTest::newRow("gone") << data_at(u"gone"_s);
        QTest::newRow("a name that is too long") << data_at(QString(300, u'n'));
        QTest::newRow("a file") << QCoreApplication::applicationFilePath();
        if (windows_paths()) {
            QTest::newRow("a drive letter that is gone") << u"Q:\\Documents"_s;
            QTest::newRow("a drive letter alone") << u"Q:"_s;
            QTest::newRow("a station that is off") << u"\\\\no-such-station\\share\\Documents"_s;
            QTest::newRow("no such device") << u"\\\\?\\Volume{0}\\Documents"_s;
            QTest::newRow("no path at all") << u"C:\\<Documents>|?*"_s;
        }
    }

    void a_data_folder_out_of_reach_is_told_and_asked_for_again() {
        QFETCH(QString, folder);
        prefer_data_folder(folder);
        PlannedBoxes boxes;
        boxes.expect(u"Folidex cannot find or open your database file. If the file resides on a "
                     u"network drive please ensure that you are connected to that network drive."_s,
                     kOkOnly, u"Folidex"_s);
        start();
        QVERIFY(boxes.verify());
        const QWidget* form = window(u"frmLocateDatabase"_s);
        QVERIFY(form);
        QCOMPARE(form->findChild<QLabel*>(u"pic1_title"_s)->text(),
                 u"ERROR opening database file"_s);
        QCOMPARE(ended_, 0);
    }

    void a_data_folder_with_an_unusual_name_opens_and_is_worked_in_data() {
        QTest::addColumn<QString>("folder");
        QTest::newRow("Greek") << data_at(u"Έγγραφα"_s);
        QTest::newRow("Japanese") << data_at(u"書類の棚"_s);
        QTest::newRow("Hebrew") << data_at(u"מסמכים"_s);
        QTest::newRow("emoji") << data_at(u"\U0001F4C1 papers"_s);
        QTest::newRow("signs of SQL and addresses") << data_at(u"O'Brien & 100% #1; [x]"_s);
        for (const int length : {230, 245, 250, 255, 270, 300}) {
            QString folder = data_at(u"long"_s);
            while (folder.size() < length)
                folder += QDir::separator() + QString(qMin(100, length - folder.size() - 1), u'f');
            QTest::addRow("%d characters", length) << folder.left(length);
        }
        if (windows_paths()) {
            QTest::newRow("slashes") << QDir::fromNativeSeparators(data_at(u"slashes/data"_s));
            QTest::newRow("a share of another station")
                << qEnvironmentVariable("FOLIDEX_SHARE") + u"\\Documents"_s;
        }
    }

    void a_data_folder_with_an_unusual_name_opens_and_is_worked_in() {
        QFETCH(QString, folder);
        QVERIFY(QDir().mkpath(folder));
        copy_file(template_database(), join_path(folder, u"db.mdb"_s));
        prefer_data_folder(folder);
        PlannedBoxes no_boxes;
        start();
        QVERIFY(no_boxes.verify());
        QVERIFY(window(u"frmMain"_s));
        QCOMPARE(DataFolder, folder);
        database().execute(u"UPDATE comp SET NewLink = 7"_s);
        QCOMPARE(database().open_recordset(u"Select * from comp"_s).text_at(0), u"7"_s);
        QVERIFY(folder_exists(join_path(folder, u"scanned_files"_s)));
        write_file(document_path({}, u"page.pdf"_s), "filed");
        QCOMPARE(lookup(document_path({}, u"page.pdf"_s)), u"page.pdf"_s);
        QCOMPARE(ended_, 0);
    }

    void no_right_to_make_the_application_folder_is_told_with_its_path() {
        const LimitedRights locked(at(u"all"_s), Rights::kRead);
        PlannedBoxes boxes;
        boxes.expect_report(u"Module1"_s, u"Main"_s, kPermissionDenied);
        start();
        QVERIFY(boxes.verify());
        const QString report = boxes.shown().first().prompt;
        QVERIFY2(report.contains(u"Cannot create the folder "_s + application_folder() + u": "_s),
                 qPrintable(report));
        QCOMPARE(ended_, 1);
    }

    void no_right_to_write_into_the_application_folder_is_told_with_the_path() {
        QVERIFY(QDir().mkpath(application_folder()));
        const LimitedRights locked(application_folder(), Rights::kRead);
        PlannedBoxes boxes;
        boxes.expect_report(u"Utilities"_s, u"save_localXML"_s, kPermissionDenied);
        boxes.expect_report(u"Module1"_s, u"Main"_s, kPassedOn);
        start();
        QVERIFY(boxes.verify());
        const QString file = join_path(application_folder(), u"folidex_Preferences.xml"_s);
        const QString report = boxes.shown().first().prompt;
        QVERIFY2(report.contains(u"Cannot write "_s + file + u": "_s), qPrintable(report));
        QCOMPARE(ended_, 1);
    }
};

QTEST_MAIN(TestBadFolders)
#include "test_bad_folders.moc"
