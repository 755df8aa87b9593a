// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/error_trap.h"
#include "platform/shell.h"

#include <QDBusConnection>
#include <QDesktopServices>
#include <QProcess>
#include <QScopeGuard>
#include <QTest>

using namespace folidex;
using namespace Qt::StringLiterals;

namespace {

constexpr int kLongestWait = 60'000;

} // namespace

/// Stands in for the program that the desktop would start.
class Opener : public QObject {
    Q_OBJECT

public:
    QList<QUrl> opened;

public Q_SLOTS:
    void open(const QUrl& url) { opened << url; }
};

/// A file manager on a session bus.
class FileManager : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    QStringList shown;

public Q_SLOTS:
    void ShowItems(const QStringList& items, const QString& /*startup_id*/) { shown << items; }
};

class TestDesktop : public QObject {
    Q_OBJECT

    QProcess bus_;
    Opener opener_;

private Q_SLOTS:
    void initTestCase() {
        bus_.start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address"_s});
        QVERIFY(bus_.waitForStarted());
        while (!bus_.canReadLine())
            QVERIFY(bus_.waitForReadyRead(kLongestWait));
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus_.readLine().trimmed());
        QDesktopServices::setUrlHandler(u"file"_s, &opener_, "open");
        QDesktopServices::setUrlHandler(u"https"_s, &opener_, "open");
    }
    void cleanupTestCase() {
        QDesktopServices::unsetUrlHandler(u"file"_s);
        QDesktopServices::unsetUrlHandler(u"https"_s);
        bus_.kill();
        bus_.waitForFinished();
    }
    void init() { opener_.opened.clear(); }

    void a_path_with_any_characters_is_opened_as_that_file_data() {
        QTest::addColumn<QString>("path");
        QTest::newRow("plain") << u"/data/a.pdf"_s;
        QTest::newRow("percent, hash and question mark") << u"/data/100% #1?.pdf"_s;
        QTest::newRow("quote and ampersand") << u"/data/O'Brien & Sons.pdf"_s;
        QTest::newRow("right to left and emoji") << u"/data/שלום \U0001F4C4.pdf"_s;
    }

    void a_path_with_any_characters_is_opened_as_that_file() {
        QFETCH(QString, path);
        open_with_desktop(path);
        QCOMPARE(opener_.opened.size(), 1);
        QVERIFY(opener_.opened[0].isLocalFile());
        QCOMPARE(opener_.opened[0].toLocalFile(), path);
    }

    void a_web_address_is_opened_as_it_stands() {
        open_with_desktop(u"https://example.org/help/index.html?a=1"_s);
        QCOMPARE(opener_.opened, QList<QUrl>{QUrl(u"https://example.org/help/index.html?a=1"_s)});
    }

    void an_installed_page_is_opened_as_a_file() {
        open_with_desktop(u"file:///usr/share/a%20b.html"_s);
        QCOMPARE(opener_.opened.size(), 1);
        QCOMPARE(opener_.opened[0].toLocalFile(), u"/usr/share/a b.html"_s);
    }

    void without_a_file_manager_the_folder_is_opened() {
        const QTemporaryDir folder;
        show_in_file_manager(folder.filePath(u"a.pdf"_s));
        QTRY_COMPARE_WITH_TIMEOUT(opener_.opened.size(), 1, kLongestWait);
        QCOMPARE(opener_.opened[0].toLocalFile(), folder.path());
    }

    void a_desktop_that_can_show_nothing_is_reported_before_the_program_ends() {
        QStringList reports;
        int reports_at_the_end = -1;
        const auto former_report = std::exchange(show_report, [&](const Report& report) {
            reports << report.module + u' ' + report.procedure + u": "_s + report.description;
        });
        const auto former_end = std::exchange(
            end_program, [&](const Error&) { reports_at_the_end = int(reports.size()); });
        QDesktopServices::unsetUrlHandler(u"file"_s);
        const QTemporaryDir folder;
        show_in_file_manager(folder.filePath(u"a.pdf"_s));
        const auto restored = qScopeGuard([&] {
            QDesktopServices::setUrlHandler(u"file"_s, &opener_, "open");
            show_report = former_report;
            end_program = former_end;
        });
        QTRY_COMPARE_WITH_TIMEOUT(reports_at_the_end, 1, kLongestWait);
        QVERIFY2(reports[0].startsWith(u"frmMain locate_scan: ") &&
                     reports[0].contains(folder.path()),
                 qPrintable(reports[0]));
    }

    void the_file_manager_is_asked_to_show_the_file() {
        QDBusConnection bus = QDBusConnection::connectToBus(
            qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), u"file manager"_s);
        FileManager manager;
        QVERIFY(bus.registerObject(u"/org/freedesktop/FileManager1"_s, &manager,
                                   QDBusConnection::ExportAllSlots));
        QVERIFY(bus.registerService(u"org.freedesktop.FileManager1"_s));
        show_in_file_manager(u"/data/O'Brien 100% #1.pdf"_s);
        QTRY_COMPARE_WITH_TIMEOUT(manager.shown.size(), 1, kLongestWait);
        QCOMPARE(QUrl(manager.shown[0]).toLocalFile(), u"/data/O'Brien 100% #1.pdf"_s);
        QVERIFY(opener_.opened.isEmpty());
        QDBusConnection::disconnectFromBus(u"file manager"_s);
    }
};

QTEST_MAIN(TestDesktop)
#include "test_desktop.moc"
