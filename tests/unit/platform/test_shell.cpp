// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/error.h"
#include "platform/shell.h"

#include <QTest>

using namespace folidex;
using namespace Qt::StringLiterals;

class TestShell : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void the_given_data_home_is_the_folder_of_all_users_and_is_made_when_missing() {
        const QTemporaryDir root;
        const QString given = root.filePath(u"new/data"_s);
        qputenv("XDG_DATA_HOME", QFile::encodeName(given));
        QCOMPARE(shell_folder(kCommonAppData), given);
        QVERIFY(QFileInfo(given).isDir());
    }

    void a_relative_data_home_is_not_followed() {
        qputenv("XDG_DATA_HOME", "relative/folder");
        QVERIFY(QDir::isAbsolutePath(shell_folder(kCommonAppData)));
        QVERIFY(!shell_folder(kCommonAppData).contains(u"relative/folder"_s));
    }

    void other_shell_folders_are_not_known() { QCOMPARE(shell_folder(7), QString()); }

    void the_program_folder_holds_the_running_program() {
        QCOMPARE(program_folder(), QFileInfo(QCoreApplication::applicationFilePath()).path());
    }

    void a_page_that_is_not_installed_is_named_in_the_error() {
        try {
            site_page(u"/no/such.html"_s);
            QFAIL("no error");
        } catch (const Error& error) {
            QCOMPARE(error.number, kFileNotFound);
            QVERIFY(error.description.contains(u"/no/such.html"_s));
        }
    }
};

QTEST_GUILESS_MAIN(TestShell)
#include "test_shell.moc"
