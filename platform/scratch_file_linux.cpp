// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/scratch_file.h"

#include <QFile>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace folidex {

namespace {

int number(qintptr file) {
    return static_cast<int>(file);
}

} // namespace

std::unique_ptr<ScratchFile> ScratchFile::make_in(const QString& folder) {
    QByteArray name = QFile::encodeName(folder + QStringLiteral("/folidex-XXXXXX"));
    const int file = ::mkostemp(name.data(), O_CLOEXEC);
    if (file < 0)
        return nullptr;
    std::unique_ptr<ScratchFile> made(new ScratchFile(file));
    // Not every file system can make a file without a name, but each can take the name away.
    return ::unlink(name.constData()) == 0 ? std::move(made) : nullptr;
}

ScratchFile::~ScratchFile() {
    ::close(number(file_));
}

bool ScratchFile::write(qint64 offset, QByteArrayView bytes) {
    while (!bytes.isEmpty()) {
        const auto step =
            ::pwrite(number(file_), bytes.data(), static_cast<std::size_t>(bytes.size()), offset);
        if (step <= 0)
            return false;
        bytes = bytes.sliced(step);
        offset += step;
    }
    return true;
}

QByteArray ScratchFile::read(qint64 offset, qint64 size) {
    QByteArray bytes(size, Qt::Uninitialized);
    qint64 done = 0;
    while (done < size) {
        const auto step = ::pread(number(file_), bytes.data() + done,
                                  static_cast<std::size_t>(size - done), offset + done);
        if (step <= 0)
            break;
        done += step;
    }
    bytes.truncate(done);
    return bytes;
}

bool ScratchFile::clear() {
    return ::ftruncate(number(file_), 0) == 0;
}

} // namespace folidex
