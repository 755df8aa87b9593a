// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain/twain_types.h"

#include <string>
#include <vector>
#include <windows.h>

namespace folidex::twain {

/// The source manager of the helper's word size, states 2 and 3: TWAINDSM.dll beside the helper or
/// among the system's own, else twain_32.dll of the Windows folder or the system's. Never from the
/// current folder or the search path, where anybody may have put one. Throws Failure.
class Manager {
public:
    Manager();
    /// Closes what is open.
    ~Manager();
    Manager(const Manager&) = delete;
    Manager& operator=(const Manager&) = delete;

    void open(HWND window);
    void close();
    /// In the manager's order.
    std::vector<TW_IDENTITY> sources();

    /// One operation; `source` is null for those of the manager itself.
    TW_UINT16 call(TW_IDENTITY* source, TW_UINT32 group, TW_UINT16 data_type, TW_UINT16 message,
                   TW_MEMREF data);
    /// Why the last operation failed.
    TW_UINT16 condition(TW_IDENTITY* source);
    /// Whether it calls back when a source has something to say.
    bool calls_back() const { return second_; }

    TW_HANDLE allocate(TW_UINT32 bytes) const;
    void free(TW_HANDLE handle) const;
    void* lock(TW_HANDLE handle) const;
    void unlock(TW_HANDLE handle) const;
    /// How much may be read from the start of a locked handle.
    static std::size_t readable_bytes(TW_HANDLE handle, const void* locked);

private:
    bool load(const std::wstring& path);

    HMODULE library_ = nullptr;
    bool open_ = false;
    bool second_ = false; ///< TWAIN 2: memory functions and callbacks
    HWND window_ = nullptr;
    TW_IDENTITY program_{};
    TW_ENTRYPOINT entries_{};
};

/// A source's name as its manager gives it, in UTF-8.
std::string source_name(const TW_IDENTITY& source);

} // namespace folidex::twain
