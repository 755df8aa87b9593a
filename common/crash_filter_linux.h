// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "common/crash_filter.h"

namespace folidex::crash_filter {

/// What a signal and the interrupted registers say about a fault.
struct SignalFault {
    int signal = 0;
    int code = 0; ///< the signal's si_code
    std::uintptr_t address = 0;
    std::uintptr_t stack_pointer = 0;
    std::uintptr_t stack_limit = 0; ///< the lowest address that the stack may grow to
    std::uint8_t opcode = 0;        ///< the first byte of the interrupted instruction
    std::uint32_t float_status = 0; ///< the MXCSR register
};

/// Whether the processor raised it: only then is there a place to raise the error at.
bool from_the_processor(const SignalFault& fault) noexcept;
bool ran_out_of_stack(const SignalFault& fault) noexcept;
/// The exception code that stands for the fault.
std::uint32_t exception_code(const SignalFault& fault) noexcept;

} // namespace folidex::crash_filter
