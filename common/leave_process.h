// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace folidex {

/// Ends the process with an exit code, as the last thing that main does. What was registered for
/// the exit and what the program keeps in static objects is put away first; threads that are still
/// held up, in a scanner's driver say, end with the process.
[[noreturn]] void leave_process(int code);

/// Ends the process with an exit code from wherever it is; nothing is put away.
[[noreturn]] void drop_process(int code) noexcept;

} // namespace folidex
