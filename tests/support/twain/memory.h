// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain/twain_types.h"

#include <string>
#include <windows.h>

/// The memory in which a program and its sources hand each other things.
namespace folidex::scripted {

/// Functions for it: the system's, or those that a manager of TWAIN 2 hands out.
struct Memory {
    twain::TW_HANDLE(WINAPI* allocate)(twain::TW_UINT32 bytes);
    void(WINAPI* release)(twain::TW_HANDLE handle);
    twain::TW_MEMREF(WINAPI* lock)(twain::TW_HANDLE handle);
    void(WINAPI* unlock)(twain::TW_HANDLE handle);
};

/// Global memory, for which every source asks the system itself.
const Memory& system_memory();

/// Handles that mean nothing to the system, so that whoever passes these functions by gets nowhere.
const Memory& managers_memory();
/// What was done with the manager's memory: "5 allocated, 5 freed, 7
/// locked, 7 unlocked, 0 misused".
std::string managers_memory_told();
/// Whether all of it was handed back, each lock undone, and no handle used that is not one.
bool managers_memory_is_in_order();

} // namespace folidex::scripted
