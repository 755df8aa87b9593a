// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/leave_process.h"

#include <cstdlib>

namespace folidex {

void leave_process(int code) {
    std::exit(code);
}

void drop_process(int code) noexcept {
    std::_Exit(code);
}

} // namespace folidex
