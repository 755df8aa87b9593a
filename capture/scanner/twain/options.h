// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace folidex::twain {

/// The helper's command line, as frames.h tells it.
struct Options {
    bool scan = false; ///< else list
    std::uint32_t index = 0;
    std::string name; ///< UTF-8
    std::uint64_t owner = 0;
    std::uint32_t wishes = 0;
    std::uint32_t idle = 60'000; ///< milliseconds
};

/// Of the arguments behind the program's name, in UTF-8; nothing when they make no sense.
std::optional<Options> read_options(const std::vector<std::string>& arguments);

} // namespace folidex::twain
