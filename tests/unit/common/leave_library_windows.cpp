// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// A library that cannot be put away while one of its threads holds what it needs for that.

#include <mutex>
#include <semaphore>
#include <thread>

namespace {

std::mutex lock;

struct PutAway {
    ~PutAway() { const std::lock_guard wait(lock); }
} put_away;

} // namespace

extern "C" __declspec(dllexport) void hold_the_lock() {
    static std::binary_semaphore held{0};
    static std::binary_semaphore never{0};
    std::thread([] {
        const std::lock_guard guard(lock);
        held.release();
        never.acquire();
    }).detach();
    held.acquire();
}
