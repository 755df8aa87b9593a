// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/leave_process.h"

#include <windows.h>

#include <cstdlib>
#include <process.h>

namespace folidex {

void leave_process(int code) {
    _cexit();
    drop_process(code);
}

// The system's usual way ends all other threads wherever they are and then has the libraries put
// their things away. One that waits for a lock which such a thread held waits for ever, and the
// process stays, without a window, with its files open.
void drop_process(int code) noexcept {
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
    std::abort(); // for the compiler: the call above does not come back
}

} // namespace folidex
