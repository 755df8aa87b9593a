// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/manager.h"

#include "capture/scanner/twain/failure.h"
#include "capture/scanner/twain/twain_codes.h"

#include <cstring>

namespace folidex::twain {

namespace {

using EntryFunction = TW_UINT16(WINAPI*)(TW_IDENTITY*, TW_IDENTITY*, TW_UINT32, TW_UINT16,
                                         TW_UINT16, TW_MEMREF);
using AllocateFunction = TW_HANDLE(WINAPI*)(TW_UINT32);
using FreeFunction = void(WINAPI*)(TW_HANDLE);
using LockFunction = TW_MEMREF(WINAPI*)(TW_HANDLE);

/// No office has more; a manager whose list never ends is stopped here.
constexpr std::size_t kMostSources = 200;

template <typename Function> Function as(void (*entry)()) {
    return reinterpret_cast<Function>(entry);
}

std::wstring own_folder() {
    wchar_t path[32768];
    const DWORD length = GetModuleFileNameW(nullptr, path, std::size(path));
    const std::wstring text(path, length);
    return text.substr(0, text.find_last_of(L'\\'));
}

std::wstring system_folder() {
    wchar_t path[MAX_PATH];
    return {path, GetSystemDirectoryW(path, std::size(path))};
}

std::wstring windows_folder() {
    wchar_t path[MAX_PATH];
    return {path, GetSystemWindowsDirectoryW(path, std::size(path))};
}

TW_IDENTITY folidex() {
    TW_IDENTITY program{};
    program.Version.MajorNum = FOLIDEX_VERSION_MAJOR;
    program.Version.MinorNum = FOLIDEX_VERSION_MINOR;
    constexpr TW_UINT16 kEnglish = 13, kUnitedStates = 1;
    program.Version.Language = kEnglish;
    program.Version.Country = kUnitedStates;
    program.ProtocolMajor = 2;
    program.ProtocolMinor = 4;
    program.SupportedGroups = DG_CONTROL | DG_IMAGE | DF_APP2;
    for (char* name : {program.Manufacturer, program.ProductFamily, program.ProductName})
        std::strcpy(name, "Folidex");
    return program;
}

} // namespace

Manager::Manager() : program_(folidex()) {
    const std::wstring system = system_folder();
    // The current folder is where the program was started; no DLL may be found there by name.
    SetCurrentDirectoryW(system.c_str());
    bool found = false;
    for (const std::wstring& path :
         {own_folder() + L"\\TWAINDSM.dll", system + L"\\TWAINDSM.dll",
          windows_folder() + L"\\twain_32.dll", system + L"\\twain_32.dll"}) {
        if (load(path))
            return;
        found = found || library_ != nullptr;
    }
    if (found)
        throw Failure{Outcome::kFailed, Step::kLoadManager, TWRC_FAILURE, TWCC_BADPROTOCOL};
    throw Failure{Outcome::kNoManager, Step::kLoadManager};
}

Manager::~Manager() {
    close();
    FreeLibrary(library_);
}

/// A library without the manager's entry is kept, but is none.
bool Manager::load(const std::wstring& path) {
    const HMODULE library = LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (library == nullptr)
        return false;
    library_ = library;
    entries_.DSM_Entry = reinterpret_cast<void (*)()>(GetProcAddress(library, "DSM_Entry"));
    return entries_.DSM_Entry != nullptr;
}

void Manager::open(HWND window) {
    window_ = window;
    const TW_UINT16 answer = call(nullptr, DG_CONTROL, DAT_PARENT, MSG_OPENDSM, &window_);
    if (answer != TWRC_SUCCESS)
        throw Failure{Outcome::kFailed, Step::kOpenManager, answer, condition(nullptr)};
    open_ = true;
    if ((program_.SupportedGroups & DF_DSM2) == 0)
        return;
    TW_ENTRYPOINT entries{};
    entries.Size = sizeof entries;
    const TW_UINT16 told = call(nullptr, DG_CONTROL, DAT_ENTRYPOINT, MSG_GET, &entries);
    if (told != TWRC_SUCCESS || entries.DSM_MemAllocate == nullptr ||
        entries.DSM_MemFree == nullptr || entries.DSM_MemLock == nullptr ||
        entries.DSM_MemUnlock == nullptr)
        throw Failure{Outcome::kFailed, Step::kOpenManager, told, condition(nullptr)};
    entries.DSM_Entry = entries_.DSM_Entry;
    entries_ = entries;
    second_ = true;
}

void Manager::close() {
    if (open_)
        call(nullptr, DG_CONTROL, DAT_PARENT, MSG_CLOSEDSM, &window_);
    open_ = false;
}

std::vector<TW_IDENTITY> Manager::sources() {
    std::vector<TW_IDENTITY> list;
    TW_IDENTITY source{};
    TW_UINT16 message = MSG_GETFIRST;
    while (list.size() < kMostSources &&
           call(nullptr, DG_CONTROL, DAT_IDENTITY, message, &source) == TWRC_SUCCESS) {
        list.push_back(source);
        source = {};
        message = MSG_GETNEXT;
    }
    return list;
}

TW_UINT16 Manager::call(TW_IDENTITY* source, TW_UINT32 group, TW_UINT16 data_type,
                        TW_UINT16 message, TW_MEMREF data) {
    return as<EntryFunction>(entries_.DSM_Entry)(&program_, source, group, data_type, message,
                                                 data);
}

TW_UINT16 Manager::condition(TW_IDENTITY* source) {
    TW_STATUS status{};
    const TW_UINT16 answer = call(source, DG_CONTROL, DAT_STATUS, MSG_GET, &status);
    return answer == TWRC_SUCCESS ? status.ConditionCode : TW_UINT16{TWCC_BUMMER};
}

TW_HANDLE Manager::allocate(TW_UINT32 bytes) const {
    return second_ ? as<AllocateFunction>(entries_.DSM_MemAllocate)(bytes)
                   : GlobalAlloc(GHND, bytes);
}

void Manager::free(TW_HANDLE handle) const {
    if (second_)
        as<FreeFunction>(entries_.DSM_MemFree)(handle);
    else
        GlobalFree(handle);
}

void* Manager::lock(TW_HANDLE handle) const {
    return second_ ? as<LockFunction>(entries_.DSM_MemLock)(handle) : GlobalLock(handle);
}

void Manager::unlock(TW_HANDLE handle) const {
    if (second_)
        as<FreeFunction>(entries_.DSM_MemUnlock)(handle);
    else
        GlobalUnlock(handle);
}

std::size_t Manager::readable_bytes(TW_HANDLE handle, const void* locked) {
    // What memory functions of their own hand out need not be the system's global memory; then
    // the end of the mapped region is the limit.
    MEMORY_BASIC_INFORMATION region{};
    if (locked == nullptr || VirtualQuery(locked, &region, sizeof region) == 0 ||
        region.State != MEM_COMMIT)
        return 0;
    const auto begin = reinterpret_cast<std::uintptr_t>(region.BaseAddress);
    const std::size_t rest = begin + region.RegionSize - reinterpret_cast<std::uintptr_t>(locked);
    const std::size_t size = GlobalSize(handle);
    return size != 0 && size < rest ? size : rest;
}

std::string source_name(const TW_IDENTITY& source) {
    const auto bytes = static_cast<int>(strnlen(source.ProductName, sizeof source.ProductName));
    wchar_t wide[sizeof source.ProductName];
    const int letters = MultiByteToWideChar(CP_ACP, 0, source.ProductName, bytes, wide,
                                            static_cast<int>(std::size(wide)));
    char text[sizeof wide * 2];
    const int length = WideCharToMultiByte(CP_UTF8, 0, wide, letters, text,
                                           static_cast<int>(std::size(text)), nullptr, nullptr);
    return {text, static_cast<std::size_t>(length)};
}

} // namespace folidex::twain
