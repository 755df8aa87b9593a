// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/scratch_file.h"
#include "platform/system_files.h"
#include "tests/support/test_system.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace folidex;
using namespace Qt::StringLiterals;

class TestScratchFile : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder_;

    QFileInfoList files() const {
        return QDir(folder_->path()).entryInfoList(QDir::Files | QDir::Hidden);
    }

private Q_SLOTS:
    void init() { folder_ = std::make_unique<QTemporaryDir>(); }

    void what_is_written_is_read_back() {
        // Line ends, and the character that ends a text on Windows.
        const QByteArray content("a\nb\r\nc\x1a\0d\n", 11);
        const auto file = ScratchFile::make_in(folder_->path());
        QVERIFY(file);
        QVERIFY(file->write(0, content));
        QCOMPARE(file->read(0, content.size()), content);
        QCOMPARE(file->read(2, 3), content.sliced(2, 3));
        QCOMPARE(file->read(8, 100), content.sliced(8));
        QCOMPARE(file->read(100, 1), QByteArray());
        QVERIFY(file->write(1, "XY"));
        QCOMPARE(file->read(0, 4), "aXY\r");
    }

    void it_is_emptied_and_filled_again() {
        const auto file = ScratchFile::make_in(folder_->path());
        QVERIFY(file && file->write(0, "old pages"));
        QVERIFY(file->clear());
        QCOMPARE(file->read(0, 100), QByteArray());
        QVERIFY(file->write(0, "new"));
        QCOMPARE(file->read(0, 100), "new");
    }

    void it_is_larger_than_four_gigabytes_where_there_is_room() {
        const auto file = ScratchFile::make_in(folder_->path());
        constexpr qint64 kFar = (qint64(1) << 32) + 5;
        QVERIFY(file && file->write(5, "near") && file->write(kFar, "far"));
        QCOMPARE(file->read(kFar, 3), "far");
        QCOMPARE(file->read(5, 4), "near");
    }

    void two_files_in_a_folder_are_two() {
        const auto one = ScratchFile::make_in(folder_->path());
        const auto other = ScratchFile::make_in(folder_->path());
        QVERIFY(one && other && one->write(0, "one"));
        QCOMPARE(other->read(0, 3), QByteArray());
    }

    void nobody_else_opens_it() {
        const auto file = ScratchFile::make_in(folder_->path());
        QVERIFY(file && file->write(0, "secret"));
        for (const QFileInfo& named : files())
            QVERIFY(!QFile(named.filePath()).open(QIODevice::ReadOnly));
    }

    void it_goes_with_the_object() {
        auto file = ScratchFile::make_in(folder_->path());
        QVERIFY(file && file->write(0, "page"));
        file.reset();
        QVERIFY(files().isEmpty());
    }

    void a_full_disk_is_told_and_what_was_written_stays() {
        const test::SmallDisk disk;
        const auto file = ScratchFile::make_in(disk.folder());
        QVERIFY(file && file->write(0, "kept"));
        forget_system_failure();
        QVERIFY(!file->write(4, QByteArray(2'000'000, 'x')));
        QCOMPARE(system_failure().number, disk.error_number());
        QCOMPARE(file->read(0, 4), "kept");
    }

    void a_folder_that_is_not_there_is_told() {
        forget_system_failure();
        QVERIFY(!ScratchFile::make_in(folder_->filePath(u"missing"_s)));
        QCOMPARE(system_failure().number, kPathNotFound);
    }

    void a_folder_that_cannot_be_written_is_told() {
        const test::LimitedRights read_only(folder_->path(), test::Rights::kRead);
        forget_system_failure();
        QVERIFY(!ScratchFile::make_in(folder_->path()));
        QCOMPARE(system_failure().number, kPermissionDenied);
    }

    void a_folder_with_a_long_path_is_no_obstacle() {
        const QString deep = folder_->filePath(QString(u"deep/"_s).repeated(50) + u"end"_s);
        QVERIFY(QDir().mkpath(deep));
        const auto file = ScratchFile::make_in(deep);
        QVERIFY(file && file->write(0, "page"));
        QCOMPARE(file->read(0, 4), "page");
    }
};

QTEST_GUILESS_MAIN(TestScratchFile)
#include "test_scratch_file.moc"
