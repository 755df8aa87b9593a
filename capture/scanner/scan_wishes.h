// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace folidex {

/// What the capture form asked of an acquisition.
struct ScanWishes {
    bool use_feeder = false;
    bool auto_feed = false;
    bool both_sides = false;
    bool until_empty = false;
    bool show_progress = true;
};

} // namespace folidex
