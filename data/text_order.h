// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string_view>

namespace folidex {

/// Orders two UTF-8 texts by their case-folded code points, so that "ÄRGER" equals "ärger" and
/// every station sorts alike whatever its language. Negative, zero or positive.
int compare_texts(std::string_view left, std::string_view right) noexcept;

} // namespace folidex
