// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include <pthread.h>

// SANE's pretended scanners read in a thread that may be cut off wherever it stands, and they cut
// it off at the end of every page. Now and then, one page of some thousands, that meets it in the
// allocator, whose lock is then never given back: whatever needs memory afterwards hangs. In
// place of the C library's function this one lets a thread be ended only where it waits.
extern "C" int pthread_setcanceltype(int /*type*/, int* before) {
    if (before)
        *before = PTHREAD_CANCEL_DEFERRED;
    return 0;
}
