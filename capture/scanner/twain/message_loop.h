// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <windows.h>

namespace folidex::twain {

/// The helper's hidden window, which owns the sources' windows and belongs to the program's, and
/// the thread's message loop. While it lives, kAlive goes out every second, from within a driver's
/// own loops too.
class MessageLoop {
public:
    /// Sees a message before anybody else; true when it took it.
    using Offer = std::function<bool(MSG&)>;

    explicit MessageLoop(HWND owner);
    ~MessageLoop();
    MessageLoop(const MessageLoop&) = delete;
    MessageLoop& operator=(const MessageLoop&) = delete;

    HWND window() const { return window_; }
    /// Waits for one message and deals with it. Who waits for something looks for it before each
    /// call; wake() sees to it that there is a message.
    void step(const Offer& offer) const;
    /// Deals with what is there, without waiting.
    void drain(const Offer& offer) const;
    /// Any thread.
    static void wake(HWND window);

private:
    HWND window_ = nullptr;
};

} // namespace folidex::twain
