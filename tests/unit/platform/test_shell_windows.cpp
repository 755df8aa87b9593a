// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/preferences.h"
#include "common/error_trap.h"
#include "platform/shell.h"
#include "tests/support/test_system.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace folidex;
using namespace Qt::StringLiterals;

class TestShellWindows : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void folder_35_is_the_program_data_of_all_users() {
        QCOMPARE(SpecialFolder(kCommonAppData).toLower(),
                 qEnvironmentVariable("ProgramData").toLower());
        QVERIFY(QFileInfo(SpecialFolder(kCommonAppData)).isDir());
    }

    void a_redirected_folder_of_all_users_is_followed() {
        const QTemporaryDir elsewhere;
        const QString given = QDir::toNativeSeparators(elsewhere.filePath(u"Παντες 共有"_s));
        const test::AllUsersFolder all_users(given);
        QCOMPARE(shell_folder(kCommonAppData), given);
    }

    void a_number_that_names_no_folder_is_error_513() {
        const auto report = std::exchange(show_report, [](const Report&) {});
        int number = 0;
        QString description;
        show_report = [&](const Report& shown) {
            number = shown.number;
            description = shown.description;
        };
        QVERIFY_EXCEPTION_THROWN(SpecialFolder(0x7ff), Error);
        show_report = report;
        QCOMPARE(number, 513);
        QCOMPARE(description, u"The folder path could not be detected"_s);
    }
};

QTEST_GUILESS_MAIN(TestShellWindows)
#include "test_shell_windows.moc"
