// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/twain/memory.h"

#include <cstdint>
#include <vector>

namespace folidex::scripted {

using namespace twain;

namespace {

/// Odd, as no handle of the system is.
constexpr std::uintptr_t kFirst = 0x5c000001;
constexpr std::uintptr_t kStep = 2;

struct Block {
    void* bytes;
    int locks;
};

std::vector<Block> blocks;
int freed = 0;
int locked = 0;
int unlocked = 0;
int misused = 0;

/// The block of a handle; none when it is no handle, or of what was freed.
Block* block_of(TW_HANDLE handle) {
    const std::uintptr_t distance = reinterpret_cast<std::uintptr_t>(handle) - kFirst;
    if (distance % kStep == 0 && distance / kStep < blocks.size())
        if (Block& block = blocks[distance / kStep]; block.bytes != nullptr)
            return &block;
    ++misused;
    return nullptr;
}

TW_HANDLE WINAPI own_allocate(TW_UINT32 bytes) {
    // Pages of its own, so that who reads beyond the end soon meets it.
    void* made = VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    if (made == nullptr)
        return nullptr;
    blocks.push_back({made, 0});
    return reinterpret_cast<TW_HANDLE>(kFirst + kStep * (blocks.size() - 1));
}

void WINAPI own_release(TW_HANDLE handle) {
    Block* block = block_of(handle);
    if (block == nullptr)
        return;
    if (block->locks != 0)
        ++misused;
    VirtualFree(block->bytes, 0, MEM_RELEASE);
    block->bytes = nullptr;
    ++freed;
}

TW_MEMREF WINAPI own_lock(TW_HANDLE handle) {
    Block* block = block_of(handle);
    if (block == nullptr)
        return nullptr;
    ++block->locks;
    ++locked;
    return block->bytes;
}

void WINAPI own_unlock(TW_HANDLE handle) {
    Block* block = block_of(handle);
    if (block == nullptr)
        return;
    --block->locks;
    ++unlocked;
}

TW_HANDLE WINAPI global_allocate(TW_UINT32 bytes) {
    return GlobalAlloc(GHND, bytes);
}

void WINAPI global_release(TW_HANDLE handle) {
    GlobalFree(handle);
}

TW_MEMREF WINAPI global_lock(TW_HANDLE handle) {
    return GlobalLock(handle);
}

void WINAPI global_unlock(TW_HANDLE handle) {
    GlobalUnlock(handle);
}

} // namespace

const Memory& system_memory() {
    static const Memory memory{global_allocate, global_release, global_lock, global_unlock};
    return memory;
}

const Memory& managers_memory() {
    static const Memory memory{own_allocate, own_release, own_lock, own_unlock};
    return memory;
}

std::string managers_memory_told() {
    return std::to_string(blocks.size()) + " allocated, " + std::to_string(freed) + " freed, " +
           std::to_string(locked) + " locked, " + std::to_string(unlocked) + " unlocked, " +
           std::to_string(misused) + " misused";
}

bool managers_memory_is_in_order() {
    return freed == static_cast<int>(blocks.size()) && locked == unlocked && misused == 0;
}

} // namespace folidex::scripted
