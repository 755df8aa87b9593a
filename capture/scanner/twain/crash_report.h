// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace folidex::twain {

/// From here on a crash of the process, whosever code it is, is told to the program (kCrashed) and
/// ends the process at once, without a box and without unwinding: processor faults, C++ exceptions
/// that leave a driver, overflows of a stack, std::terminate and abort.
void report_crashes();
/// Once more, after a driver was loaded: some put a filter of their own in place of this one.
void report_crashes_still();

} // namespace folidex::twain
