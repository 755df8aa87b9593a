// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/error.h"
#include "platform/shell.h"

#include <QDir>
#include <QTest>

using namespace folidex;
using namespace Qt::StringLiterals;

class TestShell : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void the_program_folder_holds_the_running_program() {
        QCOMPARE(program_folder(), QDir::toNativeSeparators(
                                       QFileInfo(QCoreApplication::applicationFilePath()).path()));
    }

    void a_page_that_is_not_installed_is_named_in_the_error() {
        try {
            site_page(u"/no/such.html"_s);
            QFAIL("no error");
        } catch (const Error& error) {
            QCOMPARE(error.number, kFileNotFound);
            QVERIFY(error.description.contains(QDir::toNativeSeparators(u"/no/such.html"_s)));
        }
    }
};

QTEST_GUILESS_MAIN(TestShell)
#include "test_shell.moc"
