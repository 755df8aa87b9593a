// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/preferences_start.h"

#include "app/process_values.h"
#include "common/error.h"
#include "common/message_box.h"
#include "platform/safe_file.h"

#include <QDir>
#include <QFile>

namespace folidex {

using namespace Qt::StringLiterals;

namespace {

constexpr const char* kRoot = "folidex";

void start_afresh() {
    Preferences() = PreferencesDocument{};
    Preferences().set_root_tag(QString::fromLatin1(kRoot));
    save_localXML();
}

void put_aside(const QString& path) {
    const QString kept = bad_file_name(path);
    if (!QFile::rename(path, kept))
        throw Error{kPermissionDenied, u"Cannot rename the unreadable preferences file "_s +
                                           QDir::toNativeSeparators(path) + u" to "_s +
                                           QDir::toNativeSeparators(kept)};
    message_box(u"The preferences file cannot be read:\r\n"_s + QDir::toNativeSeparators(path) +
                    u"\r\n\r\nIt was kept as:\r\n"_s + QDir::toNativeSeparators(kept) +
                    u"\r\n\r\nFolidex now starts as on a first start and asks for your data "
                    u"folder. Your documents are not affected."_s,
                kCriticalIcon);
}

bool is_ours(const PreferencesDocument& document) {
    return document.cursor().tag() == QLatin1String(kRoot);
}

} // namespace

QString bad_file_name(const QString& path) {
    QString name = path + u".bad"_s;
    for (int n = 2; QFile::exists(name); ++n)
        name = path + u'.' + QString::number(n) + u".bad"_s;
    return name;
}

void load_or_create_preferences() {
    const QString path = preferences_path();
    if (lookup(path).isEmpty()) {
        start_afresh();
        return;
    }
    PreferencesDocument loaded;
    if (loaded.load(path) && is_ours(loaded)) {
        Preferences() = loaded;
        return;
    }
    put_aside(path);
    start_afresh();
}

} // namespace folidex
