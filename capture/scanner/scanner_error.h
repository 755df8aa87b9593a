// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "common/error.h"

namespace folidex {

/// Numbers of failures of a device: while it works, and of one that cannot be used now.
inline constexpr int kDeviceIoError = 57;
inline constexpr int kDeviceUnavailable = 68;

/// The scanner did not react to being cancelled, or still hangs from an earlier scan.
Error no_answer_error(const QString& scanner);
Error still_hangs_error();

} // namespace folidex
