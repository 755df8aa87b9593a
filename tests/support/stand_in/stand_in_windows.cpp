// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include <windows.h>

#include <shellapi.h>

#include <string>

// Stands in for the program that opens a kind of file, or for a tool of the system's: it only
// writes down what it was told, its arguments with tabs between, a line in UTF-8 for every run, in
// a text file that bears its own name and lies beside it.
int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    wchar_t own_path[MAX_PATH] = {};
    if (GetModuleFileNameW(nullptr, own_path, MAX_PATH) == MAX_PATH)
        return 2;
    int count = 0;
    LPWSTR* arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    if (arguments == nullptr)
        return 2;
    std::wstring line;
    for (int index = 1; index < count; ++index)
        line += arguments[index] + std::wstring(index + 1 < count ? L"\t" : L"\n");
    LocalFree(arguments);
    char text[4096];
    const int length = WideCharToMultiByte(CP_UTF8, 0, line.data(), static_cast<int>(line.size()),
                                           text, sizeof text, nullptr, nullptr);
    const std::wstring told = own_path + std::wstring(L".txt");
    HANDLE file = CreateFileW(told.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ, nullptr, OPEN_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE || length == 0)
        return 1;
    DWORD written = 0;
    const BOOL done = WriteFile(file, text, static_cast<DWORD>(length), &written, nullptr);
    CloseHandle(file);
    return done && written == static_cast<DWORD>(length) ? 0 : 1;
}
