// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/commands.h"

#include "capture/scanner/twain/message_loop.h"

namespace folidex::twain {

namespace {

/// How long the way down may take once the program is gone, in milliseconds.
constexpr DWORD kPatience = 10000;
constexpr UINT kExitCode = 4;

} // namespace

void Commands::listen(HANDLE input, HWND window) {
    input_ = input;
    window_ = window;
    // Not a std::thread: the process ends without waiting for it.
    if (const HANDLE thread = CreateThread(nullptr, 0, &Commands::read, this, 0, nullptr))
        CloseHandle(thread);
    else
        cancelled_ = true;
}

DWORD WINAPI Commands::read(void* commands) {
    auto& self = *static_cast<Commands*>(commands);
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
