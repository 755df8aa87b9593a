// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain/frames.h"

#include <atomic>
#include <windows.h>

namespace folidex::twain {

/// What the program says, read by a thread of its own, so that it is heard while a driver works.
/// Each command wakes the message loop through `window`. Ends the process when nobody listens any
/// more and a driver does not come back: then nobody else is left to do it.
class Commands {
public:
    /// Returns once the thread listens. It lives as long as the process; so must this.
    void listen(HANDLE input, HWND window);

    /// kCancel came, or the program is gone.
    bool is_cancelled() const { return cancelled_; }
    /// The last command other than kCancel, once; 0 when there is none.
    char take() { return last_.exchange(0); }

private:
    static DWORD WINAPI read(void* commands);

    HANDLE input_ = nullptr;
    HANDLE listening_ = nullptr;
    HWND window_ = nullptr;
    std::atomic<bool> cancelled_ = false;
    std::atomic<char> last_ = 0;
};

} // namespace folidex::twain
