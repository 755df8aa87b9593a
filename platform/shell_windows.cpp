// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/shell.h"

#include "common/error.h"

#include <windows.h>

#include <shlobj.h>

#include <objbase.h>
#include <shellapi.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QUrl>
#include <QWidget>

namespace folidex {

using namespace Qt::StringLiterals;

namespace {

// The title that the picker has always had at these workstations.
constexpr const wchar_t* kPickerTitle = L"C:\\";
constexpr int kPathBuffer = 260;
// ShellExecute answers above this number when it worked.
constexpr INT_PTR kShellWorked = 32;

const wchar_t* wide(const QString& text) {
    return reinterpret_cast<const wchar_t*>(text.utf16());
}

} // namespace

QString shell_folder(int folder_id) {
    wchar_t path[MAX_PATH] = {};
    if (FAILED(SHGetFolderPathW(nullptr, folder_id, nullptr, SHGFP_TYPE_CURRENT, path)))
        return {};
    return QString::fromWCharArray(path);
}

QString program_folder() {
    return QDir::toNativeSeparators(QCoreApplication::applicationDirPath());
}

void open_with_desktop(const QString& target) {
    const HINSTANCE result =
        ShellExecuteW(nullptr, L"open", wide(target), nullptr, nullptr, SW_SHOWNORMAL);
    const auto code = reinterpret_cast<INT_PTR>(result);
    // A missing file is the shell's to report, in its own words and box.
    if (code <= kShellWorked && code != SE_ERR_FNF && code != SE_ERR_PNF && code != SE_ERR_NOASSOC)
        throw Error{static_cast<int>(code), u"Windows could not open "_s + target};
}

void show_in_file_manager(const QString& path) {
    QString command = u"explorer /select,"_s + path;
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESHOWWINDOW;
    start.wShowWindow = SW_SHOWNORMAL;
    PROCESS_INFORMATION process = {};
    // CreateProcess may write into the command line.
    std::wstring line = command.toStdWString();
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                        &process))
        throw Error{kFileNotFound, u"The file manager could not be started for "_s + path};
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

std::optional<QString> pick_folder(QWidget* owner, const QString& /*title*/) {
    BROWSEINFOW info = {};
    info.hwndOwner = owner ? reinterpret_cast<HWND>(owner->winId()) : nullptr;
    info.lpszTitle = kPickerTitle;
    info.ulFlags = BIF_RETURNONLYFSDIRS;
    PIDLIST_ABSOLUTE items = SHBrowseForFolderW(&info);
    if (!items)
        return std::nullopt;
    wchar_t path[kPathBuffer] = {};
    const BOOL found = SHGetPathFromIDListW(items, path);
    CoTaskMemFree(items);
    if (!found)
        return std::nullopt;
    return QString::fromWCharArray(path);
}

} // namespace folidex
