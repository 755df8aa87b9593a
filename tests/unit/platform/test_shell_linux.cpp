// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/shell.h"
#include "tests/support/test_system.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace folidex;
using namespace Qt::StringLiterals;

class TestShellLinux : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void the_given_data_home_is_the_folder_of_all_users_and_is_made_when_missing() {
        const QTemporaryDir root;
        const QString given = root.filePath(u"new/data"_s);
        const test::AllUsersFolder all_users(given);
        QCOMPARE(shell_folder(kCommonAppData), given);
        QVERIFY(QFileInfo(given).isDir());
    }

    void a_relative_data_home_is_not_followed() {
        const test::AllUsersFolder all_users(u"relative/folder"_s);
        QVERIFY(QDir::isAbsolutePath(shell_folder(kCommonAppData)));
        QVERIFY(!shell_folder(kCommonAppData).contains(u"relative/folder"_s));
    }

    void other_shell_folders_are_not_known() { QCOMPARE(shell_folder(7), QString()); }
};

QTEST_GUILESS_MAIN(TestShellLinux)
#include "test_shell_linux.moc"
