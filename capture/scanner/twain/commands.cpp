// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/commands.h"

#include "capture/scanner/twain/message_loop.h"

namespace folidex::twain {

namespace {

/// How long the way down may take once nobody listens any more, in milliseconds.
constexpr DWORD kPatience = 10000;
constexpr UINT kExitCode = 4;

} // namespace

void Commands::listen(HANDLE input, HWND window) {
    input_ = input;
    window_ = window;
    listening_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    // Not a std::thread: the process ends without waiting for it.
    const HANDLE thread = CreateThread(nullptr, 0, &Commands::read, this, 0, nullptr);
    if (listening_ == nullptr || thread == nullptr) {
        cancelled_ = true;
        return;
    }
    CloseHandle(thread);
    // No thread begins while a library is being loaded, and drivers hang there, too.
    WaitForSingleObject(listening_, INFINITE);
}

DWORD WINAPI Commands::read(void* commands) {
    auto& self = *static_cast<Commands*>(commands);
    SetEvent(self.listening_);
    for (;;) {
        char command = 0;
        DWORD read = 0;
        const bool heard = ReadFile(self.input_, &command, 1, &read, nullptr) && read == 1;
        if (!heard || command == static_cast<char>(Command::kCancel))
            self.cancelled_ = true;
        else
            self.last_ = command;
        MessageLoop::wake(self.window_);
        if (!heard) {
            // Nobody is left to end a helper whose driver hangs.
            Sleep(kPatience);
            TerminateProcess(GetCurrentProcess(), kExitCode);
        }
    }
}

} // namespace folidex::twain
