// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain/frames.h"

#include <atomic>
#include <cstddef>
#include <vector>
#include <windows.h>

namespace folidex::twain {

/// The pipes to the program, the helper's alone: drivers print, and start programs of their own
/// that would keep the pipes open. Any thread may send; a frame is written whole.
class FramePipe {
public:
    /// Of this process. Takes the standard handles for itself on its first use, puts NUL in their
    /// place for everybody else; so use it before any foreign code is loaded.
    static FramePipe& of_process();

    /// False once the program no longer reads.
    bool send(Kind kind, const void* head, std::size_t head_bytes, const void* tail = nullptr,
              std::size_t tail_bytes = 0) noexcept;
    template <typename Head> bool send(Kind kind, const Head& head) noexcept {
        return send(kind, &head, sizeof head);
    }
    bool send(Kind kind) noexcept { return send(kind, nullptr, 0); }
    /// kDone: whatever is sent afterwards goes nowhere.
    void send_last(const Ending& ending) noexcept;
    /// The same from a thread that crashed, which must not wait for another for ever.
    void send_last_words(const Ending& ending) noexcept;

    bool is_broken() const { return broken_; }
    HANDLE input() const { return input_; }

private:
    FramePipe();
    bool write(const void* data, std::size_t bytes) noexcept;

    HANDLE input_ = nullptr;
    HANDLE output_ = nullptr;
    SRWLOCK lock_ = SRWLOCK_INIT;
    std::vector<char> frame_;
    std::atomic<bool> broken_ = false;
    bool ended_ = false;
};

} // namespace folidex::twain
