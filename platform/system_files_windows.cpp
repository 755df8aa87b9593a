// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/system_files.h"

#include <windows.h>

#include <QDir>

namespace folidex {

using namespace Qt::StringLiterals;

namespace {

// Newer than the headers that come with the compiler.
constexpr DWORD kQuotaExceeded = 1295;
constexpr DWORD kLongestPause = 100;
constexpr ULONGLONG kPatience = 2000;
// Folders must leave room for a name of eight and three, and SQLite puts "-journal" behind.
constexpr int kLongPath = MAX_PATH - 20;

const wchar_t* wide(const QString& text) {
    return reinterpret_cast<const wchar_t*>(text.utf16());
}

bool is_held(DWORD code) {
    return code == ERROR_SHARING_VIOLATION || code == ERROR_LOCK_VIOLATION ||
           code == ERROR_USER_MAPPED_FILE;
}

// Asks for the right that replacing and deleting need, and lets others do as they like.
DWORD try_to_take(const QString& path) {
    const HANDLE file =
        CreateFileW(wide(path), DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return GetLastError();
    CloseHandle(file);
    return ERROR_SUCCESS;
}

} // namespace

void forget_system_failure() {
    SetLastError(ERROR_SUCCESS);
}

SystemFailure system_failure() {
    const DWORD code = GetLastError();
    if (is_held(code))
        return {kPermissionDenied,
                u"the file is open in another program, here or at another station"_s};
    switch (code) {
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case kQuotaExceeded:
        return {kDiskFull, {}};
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
    case ERROR_PRIVILEGE_NOT_HELD:
        return {kPermissionDenied, {}};
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
        return {kPathNotFound, {}};
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
        return {kFileExists, {}};
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_INVALID_DRIVE:
    case ERROR_NOT_READY:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_NETNAME_DELETED:
    case ERROR_NETWORK_UNREACHABLE:
        return {kBadFileName, {}};
    default:
        return {};
    }
}

SystemFailure failure_to_create_in(const QString& folder) {
    const QString name = path_of_any_length(folder + u"/folidex-"_s +
                                            QString::number(GetCurrentProcessId(), 36) + u".tmp"_s);
    forget_system_failure();
    const HANDLE probe = CreateFileW(wide(name), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                     FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (probe == INVALID_HANDLE_VALUE)
        return system_failure();
    CloseHandle(probe);
    return {};
}

bool wait_until_replaceable(const QString& path) {
    const QString native = path_of_any_length(path);
    const ULONGLONG begin = GetTickCount64();
    for (DWORD pause = 1;; pause = qMin(2 * pause, kLongestPause)) {
        const bool last = GetTickCount64() - begin > kPatience;
        const DWORD code = try_to_take(native);
        if (!is_held(code))
            return true; // any other hindrance is for the operation itself to meet
        if (last) {
            SetLastError(code);
            return false;
        }
        if (on_held_file)
            on_held_file();
        Sleep(pause);
    }
}

QString path_of_any_length(const QString& path) {
    const QString native = QDir::toNativeSeparators(QDir::cleanPath(path));
    if (native.size() < kLongPath || native.startsWith(u"\\\\?\\") || native.startsWith(u"\\\\.\\"))
        return native;
    if (native.startsWith(u"\\\\"))
        return u"\\\\?\\UNC\\"_s + native.sliced(2);
    return QDir::isAbsolutePath(native) ? u"\\\\?\\"_s + native : native;
}

} // namespace folidex
