// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include <windows.h>

#include <shellapi.h>

#include <string>

// Stands in for the program that opens a kind of file: it only writes down what it was told, a
// line in UTF-8 for every run.
//
//     folidex-stand-in.exe FILE WHAT
int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    int count = 0;
    LPWSTR* arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    if (arguments == nullptr || count != 3)
        return 2;
    const std::wstring line = arguments[2] + std::wstring(L"\n");
    char text[4096];
    const int length = WideCharToMultiByte(CP_UTF8, 0, line.data(), static_cast<int>(line.size()),
                                           text, sizeof text, nullptr, nullptr);
    HANDLE file = CreateFileW(arguments[1], FILE_APPEND_DATA, FILE_SHARE_READ, nullptr, OPEN_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    LocalFree(arguments);
    if (file == INVALID_HANDLE_VALUE || length == 0)
        return 1;
    DWORD written = 0;
    const BOOL done = WriteFile(file, text, static_cast<DWORD>(length), &written, nullptr);
    CloseHandle(file);
    return done && written == static_cast<DWORD>(length) ? 0 : 1;
}
