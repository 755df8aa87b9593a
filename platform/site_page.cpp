// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/error.h"
#include "platform/shell.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

namespace folidex {

using namespace Qt::StringLiterals;

QString site_page(const QString& path) {
    const QString site = QStringLiteral(FOLIDEX_SITE);
    if (!site.isEmpty())
        return site + path;
    // The pages are installed beside the program, and lie there too where it was built.
    const QString file = QDir::cleanPath(program_folder() + u"/site"_s + path);
    if (!QFileInfo::exists(file))
        throw Error{kFileNotFound,
                    u"The page cannot be found: "_s + QDir::toNativeSeparators(file)};
    return QUrl::fromLocalFile(file).toString(QUrl::FullyEncoded);
}

} // namespace folidex
