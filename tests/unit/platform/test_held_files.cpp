// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/error.h"
#include "platform/safe_file.h"
#include "platform/system_files.h"

#include <windows.h>

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace folidex;
using namespace Qt::StringLiterals;

namespace {

/// Has a file open as a PDF viewer has: others may read it, and nothing else.
class Viewer {
public:
    explicit Viewer(const QString& path, DWORD sharing = FILE_SHARE_READ)
        : file_(CreateFileW(
              reinterpret_cast<const wchar_t*>(QDir::toNativeSeparators(path).utf16()),
              GENERIC_READ, sharing, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {
        if (file_ == INVALID_HANDLE_VALUE)
            qFatal("the viewer cannot open %s", qPrintable(path));
    }
    ~Viewer() { close(); }
    void close() {
        if (file_ != INVALID_HANDLE_VALUE)
            CloseHandle(file_);
        file_ = INVALID_HANDLE_VALUE;
    }
    Viewer(const Viewer&) = delete;
    Viewer& operator=(const Viewer&) = delete;

private:
    HANDLE file_;
};

template <class Action> Error failure_of(Action action) {
    try {
        action();
    } catch (const Error& error) {
        return error;
    }
    return {0, u"no failure"_s};
}

bool says_open_elsewhere(const Error& error, const QString& path) {
    return error.number == kPermissionDenied &&
           error.description.contains(QDir::toNativeSeparators(path)) &&
           error.description.contains(u"is open in another program, here or at another station"_s);
}

} // namespace

/// On Windows who has a file open decides what others may do with it.
class TestHeldFiles : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder_;
    QString file_;

    QByteArray content() const {
        QFile file(file_);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
    }
    QStringList names() const {
        return QDir(folder_->path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

private Q_SLOTS:
    void init() {
        folder_ = std::make_unique<QTemporaryDir>();
        file_ = folder_->filePath(u"letter.pdf"_s);
        write_file(file_, "old");
    }
    void cleanup() { on_held_file = {}; }

    void a_file_that_a_viewer_shows_is_not_replaced_and_nothing_is_lost() {
        const Viewer viewer(file_);
        const Error error = failure_of([&] { write_file(file_, "new"); });
        QVERIFY2(says_open_elsewhere(error, file_), qPrintable(error.description));
        QCOMPARE(content(), "old");
        QCOMPARE(names(), QStringList{u"letter.pdf"_s});
    }

    void a_file_that_a_viewer_shows_is_not_deleted() {
        const Viewer viewer(file_);
        const Error error = failure_of([&] { delete_file(file_); });
        QVERIFY2(says_open_elsewhere(error, file_), qPrintable(error.description));
        QCOMPARE(content(), "old");
    }

    void a_file_that_nobody_else_may_read_is_not_copied() {
        const Viewer viewer(file_, 0);
        const QString target = folder_->filePath(u"copy.pdf"_s);
        const Error error = failure_of([&] { copy_file(file_, target); });
        QVERIFY2(says_open_elsewhere(error, file_), qPrintable(error.description));
        QCOMPARE(names(), QStringList{u"letter.pdf"_s});
    }

    void a_file_that_is_only_held_for_a_moment_is_replaced() {
        Viewer scanner(file_);
        QByteArrayList while_held;
        on_held_file = [&] {
            while_held.append(content());
            scanner.close();
        };
        write_file(file_, "new");
        QCOMPARE(while_held, QByteArrayList{"old"});
        QCOMPARE(content(), "new");
    }

    void a_file_that_is_only_held_for_a_moment_is_deleted() {
        Viewer scanner(file_);
        on_held_file = [&] { scanner.close(); };
        delete_file(file_);
        QCOMPARE(names(), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestHeldFiles)
#include "test_held_files.moc"
