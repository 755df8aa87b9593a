// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/safe_file.h"

#include "common/error.h"
#include "platform/system_files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <memory>

namespace folidex {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kCopyBlock = 1 << 20;

QString sentence(const QString& what, const QString& path, const QString& why) {
    return what + u' ' + QDir::toNativeSeparators(path) + u": "_s + why;
}

// What the failing device says is the system's own words; the system tells apart what happened.
// It was asked to forget the call before, and nothing in between touches it.
[[noreturn]] void fail(const QString& what, const QString& path, const QString& words,
                       const SystemFailure& failure = system_failure()) {
    throw Error{failure.number,
                sentence(what, path, failure.words.isEmpty() ? words : failure.words)};
}

void check_folder(const QString& path) {
    const QString folder = QFileInfo(path).path();
    if (!QFileInfo(folder).isDir())
        throw Error{kPathNotFound, sentence(QStringLiteral("Cannot write"), path,
                                            QStringLiteral("the folder cannot be found"))};
}

void check_old_file(const QString& path) {
    const QFileInfo old(path);
    if (old.isFile() && !old.isWritable())
        throw Error{kPermissionDenied, sentence(QStringLiteral("Cannot write"), path,
                                                QStringLiteral("the file is write-protected"))};
}

} // namespace

std::function<void()> on_held_file;

void write_file(const QString& path, const QByteArray& content) {
    write_file(path, [&](QIODevice& out) {
        forget_system_failure();
        if (out.write(content) != content.size())
            fail(QStringLiteral("Cannot write"), path, out.errorString());
    });
}

void write_file(const QString& path, const std::function<void(QIODevice&)>& writer) {
    check_folder(path);
    check_old_file(path);
    const QString failed = QStringLiteral("Cannot write");
    // Written beside the final name, flushed to the disk on commit, then renamed onto it; the
    // file beside is gone again when anything fails.
    QSaveFile file(path);
    file.setDirectWriteFallback(false);
    forget_system_failure();
    if (!file.open(QIODevice::WriteOnly))
        fail(failed, path, file.errorString(), failure_to_create_in(QFileInfo(path).path()));
    writer(file);
    forget_system_failure();
    if (!file.flush() || !wait_until_replaceable(path) || !file.commit())
        fail(failed, path, file.errorString());
}

void copy_file(const QString& source, const QString& target) {
    if (!QFileInfo::exists(source))
        throw Error{kFileNotFound,
                    QStringLiteral("File not found: ") + QDir::toNativeSeparators(source)};
    QFile in(source);
    forget_system_failure();
    if (!in.open(QIODevice::ReadOnly))
        fail(QStringLiteral("Cannot read"), source, in.errorString());
    write_file(target, [&](QIODevice& out) {
        const auto block = std::make_unique<char[]>(kCopyBlock);
        for (;;) {
            forget_system_failure();
            const qint64 got = in.read(block.get(), kCopyBlock);
            if (got < 0)
                fail(QStringLiteral("Cannot read"), source, in.errorString());
            if (got == 0)
                return;
            if (out.write(block.get(), got) != got)
                fail(QStringLiteral("Cannot write"), target, out.errorString());
        }
    });
}

void delete_file(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists() && !info.isSymLink())
        throw Error{kFileNotFound,
                    QStringLiteral("File not found: ") + QDir::toNativeSeparators(path)};
    QFile file(path);
    forget_system_failure();
    if (!wait_until_replaceable(path) || !file.remove())
        fail(QStringLiteral("Cannot delete"), path, file.errorString());
}

QString lookup(const QString& path) {
    const QFileInfo info(path);
    // A folder of that name is no file, and a trailing separator names nothing.
    return info.isFile() ? info.fileName() : QString();
}

bool folder_exists(const QString& path) {
    return QFileInfo(path).isDir();
}

void create_folder_at(const QString& path) {
    forget_system_failure();
    if (QDir().mkdir(path))
        return;
    const SystemFailure failure = system_failure();
    const QString why = failure.number == kFileExists
                            ? QStringLiteral("a file or folder of that name exists")
                            : qt_error_string();
    throw Error{failure.number, sentence(QStringLiteral("Cannot create the folder"), path, why)};
}

} // namespace folidex
