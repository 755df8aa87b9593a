// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/page_spool.h"

#include "common/error.h"

#include <QDir>

namespace folidex {
namespace {

[[noreturn]] void fail(const QFileDevice& file, const QString& path, const QString& what) {
    const bool full = file.error() == QFileDevice::ResourceError;
    throw Error(full ? kDiskFull : kInternalError,
                QStringLiteral("The scanned page could not be %1 the temporary file %2: %3")
                    .arg(what, QDir::toNativeSeparators(path), file.errorString()));
}

} // namespace

PageSpool::PageSpool() = default;

void PageSpool::clear() {
    entries_.clear();
    if (file_.isOpen())
        file_.resize(0);
}

qint64 PageSpool::end() const {
    return entries_.empty() ? 0 : entries_.back().offset + entries_.back().size;
}

void PageSpool::add(const EncodedPage& page) {
    if (!file_.isOpen()) {
        file_.setFileTemplate(QDir::temp().filePath(QStringLiteral("folidex-scan-XXXXXX")));
        if (!file_.open())
            fail(file_, file_.fileTemplate(), QStringLiteral("kept in"));
    }
    const qint64 offset = end();
    // Without the flush a full disk would show only pages later.
    if (!file_.seek(offset) || file_.write(page.data) != page.data.size() || !file_.flush())
        fail(file_, file_.fileName(), QStringLiteral("kept in"));
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
    if (file_.seek(entry.offset))
        page.data = file_.read(entry.size);
    if (page.data.size() != entry.size)
        fail(file_, file_.fileName(), QStringLiteral("read from"));
    return page;
}

} // namespace folidex
