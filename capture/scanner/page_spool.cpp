// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/page_spool.h"

#include "common/error.h"
#include "platform/system_files.h"

#include <QDir>

namespace folidex {
namespace {

// The folder is named, not the file: the file may have no name, so that it goes even when the
// program is killed, and asking for one would give it one.
[[noreturn]] void fail(const QFileDevice& file, const QString& what) {
    throw Error(system_failure().number,
                QStringLiteral("The scanned page could not be %1 the temporary folder %2: %3")
                    .arg(what, QDir::toNativeSeparators(QDir::tempPath()), file.errorString()));
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
    if (file_.isOpen())
        file_.resize(0);
}

qint64 PageSpool::end() const {
    return entries_.empty() ? 0 : entries_.back().offset + entries_.back().size;
}

void PageSpool::add(const EncodedPage& page) {
    forget_system_failure();
    if (!file_.isOpen()) {
        file_.setFileTemplate(QDir(temporary_folder()).filePath(QStringLiteral("folidex-XXXXXX")));
        if (!file_.open_unbuffered())
            fail(file_, QStringLiteral("kept in"));
    }
    const qint64 offset = end();
    if (!file_.seek(offset))
        fail(file_, QStringLiteral("kept in"));
    for (qint64 done = 0; done < page.data.size();) {
        const qint64 step = file_.write(page.data.constData() + done, page.data.size() - done);
        if (step <= 0)
            fail(file_, QStringLiteral("kept in"));
        done += step;
    }
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
    if (file_.seek(entry.offset))
        page.data = file_.read(entry.size);
    if (page.data.size() != entry.size)
        fail(file_, QStringLiteral("read from"));
    return page;
}

} // namespace folidex
