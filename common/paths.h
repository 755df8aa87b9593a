// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QDir>
#include <QString>

namespace folidex {

/// Joins a folder and a name with the system's separator, exactly as written: nothing is
/// cleaned, so that a stored path comes back letter for letter.
inline QString join_path(const QString& folder, const QString& name) {
    return folder + QDir::separator() + name;
}

template <class... Names>
QString join_path(const QString& folder, const QString& name, const Names&... rest) {
    return join_path(join_path(folder, name), rest...);
}

} // namespace folidex
