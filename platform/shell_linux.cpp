// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/shell.h"

#include "common/error.h"
#include "common/error_trap.h"
#include "common/paths.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QUrl>
#include <unistd.h>

namespace folidex {

using namespace Qt::StringLiterals;

namespace {

// The folder that the package makes for data of all users, named like the program's folder in
// the application data.
constexpr const char* kSystemData = "/var/lib";
constexpr const char* kMakerFolder = "Brightmoor";

bool writable(const QString& folder) {
    return ::access(QFile::encodeName(folder).constData(), W_OK | X_OK) == 0;
}

bool usable_system_data() {
    const QString parent = QString::fromLatin1(kSystemData);
    const QString own = join_path(parent, QString::fromLatin1(kMakerFolder));
    return QFileInfo(own).isDir() ? writable(own) : QFileInfo(parent).isDir() && writable(parent);
}

// A fresh account has no such folder yet, and callers create one level only.
QString made(const QString& folder) {
    const QString clean = QDir::cleanPath(folder);
    QDir().mkpath(clean);
    return clean;
}

QUrl url_of(const QString& target) {
    // A path may hold any character; only what begins like an address is one.
    const bool address = target.startsWith(u"http://") || target.startsWith(u"https://") ||
                         target.startsWith(u"file://");
    return address ? QUrl(target) : QUrl::fromLocalFile(target);
}

void open_folder(const QString& path) {
    open_with_desktop(QFileInfo(path).path());
}

} // namespace

QString shell_folder(int folder_id) {
    if (folder_id != kCommonAppData)
        return {};
    const QString given = qEnvironmentVariable("XDG_DATA_HOME");
    if (QDir::isAbsolutePath(given))
        return made(given);
    if (usable_system_data())
        return QString::fromLatin1(kSystemData);
    const QString home = QDir::homePath();
    if (home.isEmpty() || home == u"/")
        return {};
    return made(home + u"/.local/share"_s);
}

QString program_folder() {
    return QCoreApplication::applicationDirPath();
}

void open_with_desktop(const QString& target) {
    if (!QDesktopServices::openUrl(url_of(target)))
        throw Error{kInternalError,
                    QStringLiteral("No program could be started to open ") + target};
}

void show_in_file_manager(const QString& path) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return open_folder(path);
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    message << QStringList{QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded)} << QString();
    auto* watcher =
        new QDBusPendingCallWatcher(bus.asyncCall(message), QCoreApplication::instance());
    on(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, path] {
        const QDBusPendingReply<> reply = *watcher;
        watcher->deleteLater();
        // The procedure that asked is through by now; the failure is still its own to report.
        if (reply.isError())
            trapped("frmMain", "locate_scan", [&] { open_folder(path); });
    });
}

std::optional<QString> pick_folder(QWidget* owner, const QString& title) {
    const QString folder = QFileDialog::getExistingDirectory(owner, title);
    if (folder.isEmpty())
        return std::nullopt;
    return QDir::toNativeSeparators(folder);
}

} // namespace folidex
