// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/scanner.h"

namespace folidex {

/// The scanner component of this system; one source per system, chosen by the build.
std::unique_ptr<Scanner> make_system_scanner();

} // namespace folidex
