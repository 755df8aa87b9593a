// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

class QIODevice;

namespace folidex {

/// Files are never written onto their final name: written beside it, flushed to the disk, then
/// renamed. On failure the old file stays as it was, nothing is left beside it, and an Error
/// names the path (kDiskFull, kPermissionDenied, kPathNotFound, else kInternalError).

void write_file(const QString& path, const QByteArray& content);
void write_file(const QString& path, const std::function<void(QIODevice&)>& writer);
/// Copies over an existing or new target.
void copy_file(const QString& source, const QString& target);
/// Deletes a file; throws Error when it cannot or when there is none.
void delete_file(const QString& path);

/// A directory lookup of an exact path: the file's name, empty when there is none.
QString lookup(const QString& path);
bool folder_exists(const QString& path);
/// Creates one folder, one level.
void create_folder_at(const QString& path);

} // namespace folidex
