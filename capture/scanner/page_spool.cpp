// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/page_spool.h"

#include "common/error.h"
#include "platform/system_files.h"

#include <QDir>

namespace folidex {
namespace {

// Directly after what failed. The folder is named, because the file has no name that counts.
[[noreturn]] void fail(const QString& what) {
    const SystemFailure failure = system_failure();
    const QString words = failure.words.isEmpty() ? qt_error_string() : failure.words;
    throw Error(failure.number,
                QStringLiteral("The scanned page could not be %1 the temporary folder %2: %3")
                    .arg(what, QDir::toNativeSeparators(QDir::tempPath()), words));
}

/// The system's temporary folder. Qt answers with nothing when it is not there, and would then
/// use whatever folder is the current one.
QString temporary_folder() {
    const QString folder = QDir::tempPath();
    if (folder.isEmpty())
        throw Error(kPathNotFound,
                    QStringLiteral("The temporary folder for scanned pages does not exist: %1")
                        .arg(qEnvironmentVariable("TMPDIR")));
    return folder;
}

} // namespace

PageSpool::PageSpool() = default;

void PageSpool::clear() {
    entries_.clear();
    if (file_)
        file_->clear();
}

qint64 PageSpool::end() const {
    return entries_.empty() ? 0 : entries_.back().offset + entries_.back().size;
}

void PageSpool::add(const EncodedPage& page) {
    forget_system_failure();
    if (!file_)
        file_ = ScratchFile::make_in(temporary_folder());
    const qint64 offset = end();
    if (!file_ || !file_->write(offset, page.data))
        fail(QStringLiteral("kept in"));
    Entry entry{page, offset, page.data.size()};
    entry.page.data.clear();
    entries_.push_back(std::move(entry));
}

int PageSpool::count() const {
    return static_cast<int>(entries_.size());
}

EncodedPage PageSpool::page(int number) {
    if (number < 1 || number > count())
        throw Error(kSubscriptOutOfRange,
                    QStringLiteral("There is no scanned page %1 of %2.").arg(number).arg(count()));
    const Entry& entry = entries_[static_cast<std::size_t>(number) - 1];
    EncodedPage page = entry.page;
    forget_system_failure();
    page.data = file_->read(entry.offset, entry.size);
    if (page.data.size() != entry.size)
        fail(QStringLiteral("read from"));
    return page;
}

} // namespace folidex
