// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/error.h"
#include "platform/safe_file.h"
#include "tests/support/test_system.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

using namespace folidex;
using namespace Qt::StringLiterals;

namespace {

QByteArray content_of(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

// As the user reads it, with the separators of the system.
bool names_path(const Error& error, const QString& path) {
    return error.description.contains(QDir::toNativeSeparators(path));
}

template <class Action> Error failure_of(Action action) {
    try {
        action();
    } catch (const Error& error) {
        return error;
    }
    return {0, u"no failure"_s};
}

} // namespace

class TestSafeFile : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder_;
    QString path(const QString& name) const { return folder_->filePath(name); }
    QStringList names() const {
        return QDir(folder_->path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

private Q_SLOTS:
    void init() { folder_ = std::make_unique<QTemporaryDir>(); }

    void a_written_file_replaces_the_old_one() {
        write_file(path(u"a"_s), "one");
        write_file(path(u"a"_s), "two");
        QCOMPARE(content_of(path(u"a"_s)), "two");
        QCOMPARE(names(), QStringList{u"a"_s});
    }

    void a_writer_that_fails_leaves_the_old_file_and_nothing_beside_it() {
        write_file(path(u"a"_s), "old");
        const Error error = failure_of([&] {
            write_file(path(u"a"_s), [](QIODevice& out) {
                out.write("half");
                throw Error{1234, u"the scanner is gone"_s};
            });
        });
        QCOMPARE(error.number, 1234);
        QCOMPARE(content_of(path(u"a"_s)), "old");
        QCOMPARE(names(), QStringList{u"a"_s});
    }

    void a_copy_that_does_not_fit_names_the_path_and_keeps_the_old_file() {
        const QByteArray large(4 << 20, 'x');
        write_file(path(u"large"_s), large);
        const test::SmallDisk disk;
        const QString target = disk.folder() + u"/target"_s;
        write_file(target, "old");
        const Error error = failure_of([&] { copy_file(path(u"large"_s), target); });
        QCOMPARE(error.number, disk.error_number());
        QVERIFY2(names_path(error, target), qPrintable(error.description));
        QCOMPARE(content_of(target), "old");
        QCOMPARE(QDir(disk.folder()).entryList(QDir::Files | QDir::Hidden),
                 QStringList{u"target"_s});
    }

    void a_copy_is_complete_and_replaces_an_existing_target() {
        QByteArray bytes(3 * (1 << 20) + 17, '\0');
        for (qsizetype i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<char>(i * 7 % 251);
        write_file(path(u"from"_s), bytes);
        write_file(path(u"to"_s), "old");
        copy_file(path(u"from"_s), path(u"to"_s));
        QVERIFY(content_of(path(u"to"_s)) == bytes);
        QVERIFY(content_of(path(u"from"_s)) == bytes);
    }

    void copying_a_missing_file_says_which_and_leaves_the_target() {
        write_file(path(u"to"_s), "old");
        const Error error = failure_of([&] { copy_file(path(u"none"_s), path(u"to"_s)); });
        QCOMPARE(error.number, kFileNotFound);
        QVERIFY(names_path(error, path(u"none"_s)));
        QCOMPARE(content_of(path(u"to"_s)), "old");
    }

    void writing_into_a_missing_folder_names_the_path() {
        const Error error = failure_of([&] { write_file(path(u"no/file"_s), "x"); });
        QCOMPARE(error.number, kPathNotFound);
        QVERIFY(names_path(error, path(u"no/file"_s)));
    }

    void writing_into_a_read_only_folder_is_a_permission_error() {
        QVERIFY(QDir().mkdir(path(u"locked"_s)));
        const test::LimitedRights locked(path(u"locked"_s), test::Rights::kRead);
        const Error error = failure_of([&] { write_file(path(u"locked/file"_s), "x"); });
        QCOMPARE(error.number, kPermissionDenied);
        QVERIFY2(names_path(error, path(u"locked/file"_s)), qPrintable(error.description));
    }

    void a_write_protected_file_is_a_permission_error_and_stays() {
        write_file(path(u"a"_s), "old");
        QVERIFY(QFile::setPermissions(path(u"a"_s), QFile::ReadOwner | QFile::ReadGroup));
        const test::LimitedRights read_only(path(u"a"_s), test::Rights::kRead);
        const Error error = failure_of([&] { write_file(path(u"a"_s), "new"); });
        QCOMPARE(error.number, kPermissionDenied);
        QVERIFY2(names_path(error, path(u"a"_s)), qPrintable(error.description));
        QCOMPARE(content_of(path(u"a"_s)), "old");
        QCOMPARE(names(), QStringList{u"a"_s});
    }

    void a_folder_in_a_read_only_folder_is_a_permission_error() {
        QVERIFY(QDir().mkdir(path(u"locked"_s)));
        const test::LimitedRights locked(path(u"locked"_s), test::Rights::kRead);
        const Error error = failure_of([&] { create_folder_at(path(u"locked/one"_s)); });
        QCOMPARE(error.number, kPermissionDenied);
        QVERIFY2(names_path(error, path(u"locked/one"_s)), qPrintable(error.description));
    }

    void long_paths_are_written_copied_and_deleted_data() {
        QTest::addColumn<int>("length");
        for (const int length : {200, 245, 250, 255, 259, 260, 261, 300, 400})
            QTest::addRow("%d characters", length) << length;
    }

    void long_paths_are_written_copied_and_deleted() {
        QFETCH(int, length);
        QString folder = folder_->path();
        while (length - folder.size() > 120) {
            folder += u'/' + QString(100, u'f');
            create_folder_at(folder);
        }
        const QString file = folder + u'/' + QString(length - folder.size() - 1, u'n');
        QCOMPARE(file.size(), length);
        write_file(file, "one");
        write_file(file, "two");
        QCOMPARE(lookup(file), QFileInfo(file).fileName());
        copy_file(file, path(u"copy"_s));
        QCOMPARE(content_of(path(u"copy"_s)), "two");
        copy_file(path(u"copy"_s), file);
        delete_file(file);
        QCOMPARE(lookup(file), QString());
    }

    void a_written_file_can_be_read_by_the_other_stations() {
        write_file(path(u"a"_s), "x");
        QVERIFY(QFileInfo(path(u"a"_s)).permissions() & QFile::ReadOther);
    }

    void deleting_removes_the_file() {
        write_file(path(u"a"_s), "x");
        delete_file(path(u"a"_s));
        QVERIFY(names().isEmpty());
    }

    void deleting_what_is_not_there_fails() {
        QCOMPARE(failure_of([&] { delete_file(path(u"a"_s)); }).number, kFileNotFound);
    }

    void deleting_a_folder_as_a_file_fails() {
        QVERIFY(QDir().mkdir(path(u"d"_s)));
        QVERIFY(failure_of([&] { delete_file(path(u"d"_s)); }).number != 0);
        QVERIFY(QFileInfo(path(u"d"_s)).isDir());
    }

    void a_lookup_gives_the_name_of_a_file_and_nothing_else() {
        write_file(path(u"db.mdb"_s), "x");
        QVERIFY(QDir().mkdir(path(u"folder"_s)));
        QCOMPARE(lookup(path(u"db.mdb"_s)), u"db.mdb"_s);
        QCOMPARE(lookup(path(u"none"_s)), QString());
        QCOMPARE(lookup(path(u"folder"_s)), QString());
        QCOMPARE(lookup(QString()), QString());
    }

    void a_folder_is_created_one_level_deep_only() {
        create_folder_at(path(u"one"_s));
        QVERIFY(folder_exists(path(u"one"_s)));
        QCOMPARE(failure_of([&] { create_folder_at(path(u"two/three"_s)); }).number, kPathNotFound);
        QVERIFY(!folder_exists(path(u"two"_s)));
        const Error again = failure_of([&] { create_folder_at(path(u"one"_s)); });
        QCOMPARE(again.number, kFileExists);
        QVERIFY(names_path(again, path(u"one"_s)));
    }

    void odd_names_work() {
        QStringList odd{u"quote ' & 100%"_s, u"שלום"_s, u"Ωδός"_s, u"書類"_s, u"\U0001F4C4"_s};
        if (QDir::separator() == u'/') // elsewhere a name cannot hold a new line
            odd << u"a\nb"_s;
        for (const QString& name : std::as_const(odd)) {
            write_file(path(name), "x");
            QCOMPARE(lookup(path(name)), name);
            copy_file(path(name), path(name + u" 2"_s));
            delete_file(path(name));
            QCOMPARE(lookup(path(name)), QString());
        }
    }
};

QTEST_GUILESS_MAIN(TestSafeFile)
#include "test_safe_file.moc"
