// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/page_spool.h"
#include "common/error.h"
#include "page_tools.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace folidex;
using namespace folidex::testing;

class TestPageSpool : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void five_hundred_pages_stay_in_the_order_of_acquisition();
    void pages_are_read_in_any_order_while_more_come();
    void clearing_drops_the_pages_and_the_next_scan_begins_at_one();
    void a_page_that_is_not_there_is_refused();
    void the_file_goes_with_the_spool();
    void the_file_goes_with_a_program_that_is_killed();
    void nobody_else_can_read_the_file();
    void an_unusable_temporary_folder_is_named();
    void a_full_disk_names_the_folder_and_keeps_the_pages_so_far();

private:
    QStringList temporary_files() const;
    QFileInfo open_file(const QString& process = QStringLiteral("self")) const;
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<test::TemporaryFolder> temporary_;
};

namespace {

EncodedPage page_of(const QByteArray& data, int width = 10) {
    return {EncodedPage::Filter::kGroup4, PixelType::kBilevel, width, 20, 300, 200, data};
}

} // namespace

QStringList TestPageSpool::temporary_files() const {
    return QDir(folder_->path()).entryList(QDir::Files | QDir::Hidden);
}

/// The spool's file: among the process's open files on Linux, where it need not have a name.
QFileInfo TestPageSpool::open_file(const QString& process) const {
    for (const QFileInfo& file :
         QDir(QStringLiteral("/proc/%1/fd").arg(process)).entryInfoList(QDir::Files | QDir::System))
        if (file.symLinkTarget().startsWith(folder_->path()))
            return file;
    const QFileInfoList named = QDir(folder_->path()).entryInfoList(QDir::Files | QDir::Hidden);
    return named.isEmpty() ? QFileInfo() : named.first();
}

void TestPageSpool::init() {
    folder_ = std::make_unique<QTemporaryDir>();
    temporary_ = std::make_unique<test::TemporaryFolder>(folder_->path());
}

void TestPageSpool::cleanup() {
    temporary_.reset();
}

void TestPageSpool::five_hundred_pages_stay_in_the_order_of_acquisition() {
    PageSpool spool;
    QCOMPARE(spool.count(), 0);
    for (int i = 1; i <= 500; ++i) {
        spool.add(page_of(QByteArray::number(i).repeated(i), i));
        QCOMPARE(spool.count(), i);
    }
    for (int i = 1; i <= 500; ++i) {
        const EncodedPage page = spool.page(i);
        QCOMPARE(page.data, QByteArray::number(i).repeated(i));
        QCOMPARE(page.width, i);
        QCOMPARE(page.height, 20);
        QCOMPARE(page.x_resolution, 300.0);
        QCOMPARE(page.y_resolution, 200.0);
    }
}

void TestPageSpool::pages_are_read_in_any_order_while_more_come() {
    PageSpool spool;
    spool.add(page_of("first"));
    spool.add(page_of("second"));
    QCOMPARE(spool.page(2).data, QByteArray("second"));
    QCOMPARE(spool.page(1).data, QByteArray("first"));
    spool.add(page_of("third"));
    QCOMPARE(spool.page(3).data, QByteArray("third"));
    QCOMPARE(spool.page(2).data, QByteArray("second"));
}

void TestPageSpool::clearing_drops_the_pages_and_the_next_scan_begins_at_one() {
    PageSpool spool;
    spool.clear();
    spool.add(page_of("old"));
    spool.clear();
    QCOMPARE(spool.count(), 0);
    QVERIFY(open_file().exists());
    QCOMPARE(open_file().size(), 0);
    spool.add(page_of("new"));
    QCOMPARE(spool.count(), 1);
    QCOMPARE(spool.page(1).data, QByteArray("new"));
}

void TestPageSpool::a_page_that_is_not_there_is_refused() {
    PageSpool spool;
    QVERIFY_EXCEPTION_THROWN(spool.page(1), Error);
    spool.add(page_of("only"));
    QVERIFY_EXCEPTION_THROWN(spool.page(0), Error);
    QVERIFY_EXCEPTION_THROWN(spool.page(2), Error);
    QCOMPARE(spool.page(1).data, QByteArray("only"));
}

void TestPageSpool::the_file_goes_with_the_spool() {
    {
        PageSpool spool;
        QVERIFY(!open_file().exists());
        spool.add(page_of("page"));
        QCOMPARE(open_file().size(), 4);
    }
    QVERIFY(!open_file().exists());
    QCOMPARE(temporary_files(), QStringList());
}

void TestPageSpool::the_file_goes_with_a_program_that_is_killed() {
    QProcess program;
    program.start(QStringLiteral(PAGES_PROBE), {QStringLiteral("keep")});
    QVERIFY(program.waitForReadyRead(-1));
    QCOMPARE(program.readLine().trimmed(), "kept");
    QVERIFY(open_file(QString::number(program.processId())).size() > 0);
    program.kill();
    QVERIFY(program.waitForFinished(-1));
    QCOMPARE(program.exitStatus(), QProcess::CrashExit);
    // On Windows the system tidies up after the end.
    QTRY_COMPARE_WITH_TIMEOUT(temporary_files(), QStringList(), 60'000);
}

void TestPageSpool::nobody_else_can_read_the_file() {
    PageSpool spool;
    spool.add(page_of("page"));
    QVERIFY(test::is_private(open_file()));
}

void TestPageSpool::an_unusable_temporary_folder_is_named() {
    const QString missing = folder_->filePath(QStringLiteral("missing"));
    const test::TemporaryFolder not_there(missing);
    PageSpool spool;
    try {
        spool.add(page_of("page"));
        QFAIL("the page was kept nowhere");
    } catch (const Error& error) {
        QVERIFY2(error.description.contains(QDir::toNativeSeparators(missing)),
                 qPrintable(error.description));
    }
    QCOMPARE(spool.count(), 0);
    QVERIFY(QDir().mkpath(missing));
    spool.add(page_of("page"));
    QCOMPARE(spool.page(1).data, QByteArray("page"));
}

void TestPageSpool::a_full_disk_names_the_folder_and_keeps_the_pages_so_far() {
    const test::SmallDisk disk;
    const test::TemporaryFolder small(disk.folder());
    constexpr int kPage = 300'000; // three have room
    {
        PageSpool spool;
        for (const char fill : {'a', 'b', 'c'})
            spool.add(page_of(QByteArray(kPage, fill)));
        try {
            spool.add(page_of(QByteArray(kPage, 'd')));
            QFAIL("a full disk took the page");
        } catch (const Error& error) {
            QCOMPARE(error.number, disk.error_number());
            QVERIFY2(error.description.contains(QDir::toNativeSeparators(disk.folder())),
                     qPrintable(error.description));
        }
        QCOMPARE(spool.count(), 3);
        QCOMPARE(spool.page(1).data, QByteArray(kPage, 'a'));
        QCOMPARE(spool.page(3).data, QByteArray(kPage, 'c'));
    }
    QCOMPARE(QDir(disk.folder()).entryList(QDir::Files | QDir::Hidden), QStringList());
}

QTEST_GUILESS_MAIN(TestPageSpool)
#include "test_page_spool.moc"
