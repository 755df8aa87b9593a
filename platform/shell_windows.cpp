// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/shell.h"

#include "common/error.h"

#include <windows.h>

#include <shlobj.h>

#include <objbase.h>
#include <shellapi.h>

#include <QApplication>
#include <QDir>
#include <QWidget>

namespace folidex {

using namespace Qt::StringLiterals;

namespace {

// The title that the picker has always had at these workstations.
constexpr const wchar_t* kPickerTitle = L"C:\\";
constexpr int kPathBuffer = 260;
const wchar_t* wide(const QString& text) {
    return reinterpret_cast<const wchar_t*>(text.utf16());
}

HWND window_handle(const QWidget* widget) {
    return widget ? reinterpret_cast<HWND>(widget->window()->winId()) : nullptr;
}

// What the shell loads into the program to do its work expects this kind of thread. Counted: a
// toolkit that prepared the thread before is not disturbed.
class ShellThread {
public:
    ShellThread()
        : ready_(SUCCEEDED(
              CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE))) {}
    ~ShellThread() {
        if (ready_)
            CoUninitialize();
    }
    ShellThread(const ShellThread&) = delete;
    ShellThread& operator=(const ShellThread&) = delete;

private:
    bool ready_;
};

bool is_address(const QString& target) {
    return target.startsWith(u"http://") || target.startsWith(u"https://") ||
           target.startsWith(u"file://");
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
    const ShellThread thread;
    const QString native = is_address(target) ? target : QDir::toNativeSeparators(target);
    SHELLEXECUTEINFOW order = {};
    order.cbSize = sizeof order;
    order.hwnd = window_handle(QApplication::activeWindow());
    // What a double click does: a kind of file may prefer another verb to "open", or have no other.
    order.lpVerb = nullptr;
    order.lpFile = wide(native);
    order.nShow = SW_SHOWNORMAL;
    // The shell tells the user itself, in its own words and box, of a missing file or program,
    // and offers to choose one. Only a machine without memory for that is left to report.
    if (!ShellExecuteExW(&order) && GetLastError() == ERROR_NOT_ENOUGH_MEMORY)
        throw Error{kOutOfMemory, u"Windows could not open "_s + native};
}

void show_in_file_manager(const QString& path) {
    const QString command = u"explorer /select,"_s + QDir::toNativeSeparators(path);
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESHOWWINDOW;
    start.wShowWindow = SW_SHOWNORMAL;
    PROCESS_INFORMATION process = {};
    // CreateProcess may write into the command line.
    std::wstring line = command.toStdWString();
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                        &process))
        throw Error{kFileNotFound, u"The file manager could not be started for "_s +
                                       QDir::toNativeSeparators(path)};
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

std::optional<QString> pick_folder(QWidget* owner, const QString& /*title*/) {
    const ShellThread thread;
    BROWSEINFOW info = {};
    info.hwndOwner = window_handle(owner);
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
