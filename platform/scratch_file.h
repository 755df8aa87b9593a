// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QString>
#include <memory>

namespace folidex {

/// A file for what this process alone keeps out of its memory for a while. It is closed to other
/// users, and gone with the object or with the process, however that ends: on Linux it has no name,
/// on Windows one under which nobody else can open it. After what failed system_failure() tells
/// why. One source per system.
class ScratchFile {
public:
    /// A new, empty one in this folder; null when it cannot be made there.
    static std::unique_ptr<ScratchFile> make_in(const QString& folder);
    ~ScratchFile();
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    bool write(qint64 offset, QByteArrayView bytes);
    /// Fewer bytes than asked for where the file ends, or when it cannot be read.
    QByteArray read(qint64 offset, qint64 size);
    bool clear();

private:
    using Handle = qintptr; ///< the system's
    explicit ScratchFile(Handle file) : file_(file) {}
    Handle file_;
};

} // namespace folidex
