// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/system_files.h"

#include <cerrno>

namespace folidex {

void forget_system_failure() {
    errno = 0;
}

SystemFailure system_failure() {
    switch (errno) {
    case ENOSPC:
    case EDQUOT:
        return {kDiskFull, {}};
    case EACCES:
    case EPERM:
    case EROFS:
        return {kPermissionDenied, {}};
    case ENOENT:
    case ENOTDIR:
        return {kPathNotFound, {}};
    case EEXIST:
        return {kFileExists, {}};
    default:
        return {};
    }
}

SystemFailure failure_to_create_in(const QString& /*folder*/) {
    return system_failure();
}

// An open file hinders nobody here: who has it open keeps the old one.
bool wait_until_replaceable(const QString& /*path*/) {
    return true;
}

QString path_of_any_length(const QString& path) {
    return path;
}

} // namespace folidex
