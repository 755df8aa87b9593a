// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "common/crash_filter.h"

namespace folidex::crash_filter {

/// Between the two halves of the crash filter. The system's half catches a fault, leaves its
/// record in `interrupted` and sends the faulting thread on to raise_fault(), on its own stack,
/// so that the error unwinds from the faulting instruction.

/// Asks the system for its faults; the calling thread becomes the one that is watched.
void watch_this_thread();
/// Called once the error of a fault was caught, on the catching procedure's stack.
void recover_from(std::uint32_t code) noexcept;

/// Whether a fault of the watched thread can become an error: some procedure's trap is armed.
bool a_trap_is_armed() noexcept;

extern ExceptionRecord interrupted;
/// True between a fault and its error.
extern volatile bool raising;

extern "C" [[noreturn]] void folidex_raise_fault();

} // namespace folidex::crash_filter
