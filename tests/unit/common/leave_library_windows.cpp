// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// A library that cannot be put away while one of its threads holds what it needs for that.

#include <future>
#include <mutex>
#include <thread>

namespace {

std::mutex lock;

struct PutAway {
    ~PutAway() { const std::lock_guard wait(lock); }
} put_away;

} // namespace

extern "C" __declspec(dllexport) void hold_the_lock() {
    static std::promise<void> held;
    static std::promise<void> never;
    std::thread([] {
        const std::lock_guard guard(lock);
        held.set_value();
        never.get_future().wait();
    }).detach();
    held.get_future().wait();
}
