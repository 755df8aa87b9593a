// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/scratch_file.h"

#include "platform/system_files.h"

#include <windows.h>

#include <QUuid>

namespace folidex {

namespace {

constexpr qint64 kMostAtOnce = 1 << 30;

HANDLE handle(qintptr file) {
    return reinterpret_cast<HANDLE>(file);
}

OVERLAPPED place(qint64 offset) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

} // namespace

std::unique_ptr<ScratchFile> ScratchFile::make_in(const QString& folder) {
    const QString name =
        path_of_any_length(folder + QStringLiteral("/folidex-") +
                           QUuid::createUuid().toString(QUuid::Id128) + QStringLiteral(".tmp"));
    // The system deletes it with its last handle. No program that is started inherits one, such as
    // a scanning helper, which may live longer.
    const HANDLE file = CreateFileW(reinterpret_cast<const wchar_t*>(name.utf16()),
                                    GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return nullptr;
    return std::unique_ptr<ScratchFile>(new ScratchFile(reinterpret_cast<qintptr>(file)));
}

ScratchFile::~ScratchFile() {
    CloseHandle(handle(file_));
}

bool ScratchFile::write(qint64 offset, QByteArrayView bytes) {
    while (!bytes.isEmpty()) {
        OVERLAPPED at = place(offset);
        DWORD step = 0;
        if (!WriteFile(handle(file_), bytes.data(),
                       static_cast<DWORD>(qMin(bytes.size(), kMostAtOnce)), &step, &at))
            return false;
        if (step == 0) {
            SetLastError(ERROR_HANDLE_DISK_FULL);
            return false;
        }
        bytes = bytes.sliced(step);
        offset += step;
    }
    return true;
}

QByteArray ScratchFile::read(qint64 offset, qint64 size) {
    QByteArray bytes(size, Qt::Uninitialized);
    qint64 done = 0;
    while (done < size) {
        OVERLAPPED at = place(offset + done);
        DWORD step = 0;
        if (!ReadFile(handle(file_), bytes.data() + done,
                      static_cast<DWORD>(qMin(size - done, kMostAtOnce)), &step, &at) ||
            step == 0)
            break;
        done += step;
    }
    bytes.truncate(done);
    return bytes;
}

bool ScratchFile::clear() {
    return SetFilePointer(handle(file_), 0, nullptr, FILE_BEGIN) != INVALID_SET_FILE_POINTER &&
           SetEndOfFile(handle(file_));
}

} // namespace folidex
