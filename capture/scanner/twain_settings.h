// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain_helper.h"

namespace folidex {

/// The helper programs, one a word size of drivers, and how long they are waited for.
struct TwainSettings {
    using Time = std::chrono::milliseconds;

    TwainProgram program64;
    TwainProgram program32;
    Time list{10'000};    ///< a list that has not come by then never will
    Time silence{5'000};  ///< without a sign of life before the user is told
    Time release{10'000}; ///< for a driver to end its page and put its scanner away

    const TwainProgram& program(int bits) const { return bits == 64 ? program64 : program32; }
};

} // namespace folidex
