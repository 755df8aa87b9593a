// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/safe_file.h"

#include "common/error.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <cerrno>
#include <memory>

namespace folidex {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kCopyBlock = 1 << 20;

int number_of(int system_error) {
    switch (system_error) {
    case ENOSPC:
#ifdef EDQUOT // not every system has quotas
    case EDQUOT:
#endif
        return kDiskFull;
    case EACCES:
    case EPERM:
    case EROFS:
        return kPermissionDenied;
    case ENOENT:
    case ENOTDIR:
        return kPathNotFound;
    default:
        return kInternalError;
    }
}

// What the failing device says is the system's own words; errno tells them apart. It was set
// by the call just before, and nothing in between touches it.
[[noreturn]] void fail(const QString& what, const QString& path, const QString& words) {
    throw Error{number_of(errno), what + u' ' + QDir::toNativeSeparators(path) + u": "_s + words};
}

void check_folder(const QString& path) {
    const QString folder = QFileInfo(path).path();
    if (!QFileInfo(folder).isDir())
        throw Error{kPathNotFound, QStringLiteral("Cannot write ") +
                                       QDir::toNativeSeparators(path) +
                                       QStringLiteral(": the folder cannot be found")};
}

} // namespace

void write_file(const QString& path, const QByteArray& content) {
    write_file(path, [&](QIODevice& out) {
        errno = 0;
        if (out.write(content) != content.size())
            fail(QStringLiteral("Cannot write"), path, out.errorString());
    });
}

void write_file(const QString& path, const std::function<void(QIODevice&)>& writer) {
    check_folder(path);
    const QString failed = QStringLiteral("Cannot write");
    // Written beside the final name, flushed to the disk on commit, then renamed onto it; the
    // file beside is gone again when anything fails.
    QSaveFile file(path);
    file.setDirectWriteFallback(false);
    errno = 0;
    if (!file.open(QIODevice::WriteOnly))
        fail(failed, path, file.errorString());
    writer(file);
    errno = 0;
    if (!file.commit())
        fail(failed, path, file.errorString());
}

void copy_file(const QString& source, const QString& target) {
    QFile in(source);
    errno = 0;
    if (!in.open(QIODevice::ReadOnly)) {
        if (!QFileInfo::exists(source))
            throw Error{kFileNotFound,
                        QStringLiteral("File not found: ") + QDir::toNativeSeparators(source)};
        fail(QStringLiteral("Cannot read"), source, in.errorString());
    }
    write_file(target, [&](QIODevice& out) {
        const auto block = std::make_unique<char[]>(kCopyBlock);
        for (;;) {
            errno = 0;
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
    errno = 0;
    if (!file.remove())
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
    errno = 0;
    if (QDir().mkdir(path))
        return;
    if (errno == EEXIST)
        throw Error{kFileExists, QStringLiteral("Cannot create the folder ") +
                                     QDir::toNativeSeparators(path) +
                                     QStringLiteral(": a file or folder of that name exists")};
    fail(QStringLiteral("Cannot create the folder"), path, qt_error_string(errno));
}

} // namespace folidex
