// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain/frames.h"

namespace folidex::twain {

/// Thrown, through frames of the helper's own only, by what ends a list or a scan before its time.
struct Failure {
    Outcome outcome = Outcome::kFailed;
    Step step = Step::kNone;
    std::uint16_t return_code = 0;
    std::uint16_t condition_code = 0;
    std::uint32_t detail = 0;

    Ending ending(std::uint32_t pages) const {
        return {outcome, step, return_code, condition_code, 0, pages, detail};
    }
};

} // namespace folidex::twain
