// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/crash_filter_system.h"

namespace folidex::crash_filter {

// On this processor faults end the program as the system ends it.

void watch_this_thread() {}

void recover_from(std::uint32_t) noexcept {}

} // namespace folidex::crash_filter
