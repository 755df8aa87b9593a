// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/twain/script.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <windows.h>

namespace folidex::scripted {

namespace {

HMODULE library = nullptr;

std::string script_path() {
    if (const char* named = std::getenv("FOLIDEX_TWAIN_SCRIPT"))
        return named;
    char path[MAX_PATH];
    const DWORD length = GetModuleFileNameA(library, path, sizeof path);
    const std::string own(path, length);
    return own.substr(0, own.find_last_of('\\')) + "\\scanners.ini";
}

/// Uses up the stack; what each call hands to the next keeps the compiler from making it a loop.
[[gnu::noinline]] int fall(const volatile char* above) {
    volatile char filling[4096];
    filling[0] = *above;
    return *above < 0 ? 0 : fall(filling) + filling[0];
}

/// A driver that takes its time, until a file beside the script says otherwise.
void pause() {
    std::string path = script_path();
    path.replace(path.find_last_of('.'), std::string::npos, ".go");
    while (GetFileAttributesA(path.c_str()) == INVALID_FILE_ATTRIBUTES)
        Sleep(10);
}

void chatter() {
    std::printf("the driver says something\n");
    std::fflush(stdout);
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), "and again\n", 10, &written, nullptr);
}

DWORD WINAPI crash_elsewhere(void*) {
    *static_cast<volatile int*>(nullptr) = 1;
    return 0;
}

LONG WINAPI end_quietly(EXCEPTION_POINTERS*) {
    ExitProcess(0);
}

void do_mishap(const std::string& kind) {
    if (kind == "crash")
        *static_cast<volatile int*>(nullptr) = 1;
    if (kind == "hang")
        Sleep(INFINITE);
    if (kind == "pause")
        pause();
    if (kind == "throw")
        throw std::runtime_error("out of a driver");
    if (kind == "raise") // what a C++ exception of other compilers is
        RaiseException(0xE06D7363, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    if (kind == "overflow")
        fall("");
    if (kind == "abort")
        std::abort();
    if (kind == "exit")
        ExitProcess(9);
    if (kind == "chatter")
        chatter();
    if (kind == "filter")
        SetUnhandledExceptionFilter(end_quietly);
    if (kind == "crash_thread") {
        CreateThread(nullptr, 0, crash_elsewhere, nullptr, 0, nullptr);
        Sleep(INFINITE);
    }
}

} // namespace

void set_library(void* module) {
    library = static_cast<HMODULE>(module);
}

std::string text(const std::string& section, const char* key, const char* fallback) {
    // A script does not change while it is played, and asking Windows takes its time.
    static std::map<std::string, std::string> known;
    const std::string name = section + '\n' + key + '\n' + fallback;
    if (const auto found = known.find(name); found != known.end())
        return found->second;
    char value[2048];
    GetPrivateProfileStringA(section.c_str(), key, fallback, value, sizeof value,
                             script_path().c_str());
    return known[name] = value;
}

int number(const std::string& section, const char* key, int fallback) {
    return std::atoi(text(section, key, std::to_string(fallback).c_str()).c_str());
}

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    for (std::size_t begin = 0; begin < text.size();) {
        std::size_t end = text.find(separator, begin);
        if (end == std::string::npos)
            end = text.size();
        if (end > begin)
            parts.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

void note(const std::string& line) {
    if (number("manager", "log") == 0)
        return;
    std::string path = script_path();
    path.replace(path.find_last_of('.'), std::string::npos, ".log");
    if (std::FILE* file = std::fopen(path.c_str(), "a")) {
        std::fprintf(file, "%s\n", line.c_str());
        std::fclose(file);
    }
}

void mishap_at(const std::string& section, const std::string& place, int page) {
    const std::string numbered = place + ":" + std::to_string(page);
    for (const char* kind : {"chatter", "crash", "hang", "pause", "throw", "raise", "overflow",
                             "abort", "exit", "filter", "crash_thread"}) {
        const std::string where = text(section, kind);
        if (where.empty() || (where != place && where != numbered))
            continue;
        note(std::string(kind) + " at " + numbered);
        do_mishap(kind);
    }
}

int failure_at(const std::string& section, std::string_view place) {
    const auto parts = split(text(section, "fail"), ':');
    return parts.size() == 2 && parts[0] == place ? std::atoi(parts[1].c_str()) : 0;
}

} // namespace folidex::scripted
