// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace folidex {

/// What SQLite's busy handler does: waits a short random time for a file that another station
/// holds and asks for another try, for half a minute at most. Random, so that no station is left
/// behind; longer after a while, so that a slow network drive is not flooded.
int wait_while_busy(int tries) noexcept;

} // namespace folidex
