// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>

namespace folidex {

/// How long a scanner that does not answer keeps the user waiting: a second for the first list,
/// two seconds after Cancel, of which the progress window itself needs a moment.
struct ScanPatience {
    using Time = std::chrono::milliseconds;

    Time first_answer{900}; ///< the capture form waits for its first list of scanners
    Time nudge{500};        ///< after Cancel, before the scanner is told again from elsewhere
    Time give_up{1'800};    ///< after Cancel, before the scanner is left behind
};

} // namespace folidex
