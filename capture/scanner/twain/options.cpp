// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/options.h"

#include <charconv>
#include <system_error>

namespace folidex::twain {

namespace {

template <typename Number> bool read_number(const std::string& text, Number& number) {
    const char* end = text.data() + text.size();
    const auto [at, error] = std::from_chars(text.data(), end, number);
    return error == std::errc{} && at == end;
}

bool read_option(const std::string& key, const std::string& value, Options& options) {
    if (key == "--index")
        return read_number(value, options.index);
    if (key == "--owner")
        return read_number(value, options.owner);
    if (key == "--wishes")
        return read_number(value, options.wishes);
    if (key == "--idle")
        return read_number(value, options.idle);
    if (key != "--name")
        return false;
    options.name = value;
    return true;
}

} // namespace

std::optional<Options> read_options(const std::vector<std::string>& arguments) {
    if (arguments.empty() || (arguments[0] != "list" && arguments[0] != "scan"))
        return std::nullopt;
    Options options;
    options.scan = arguments[0] == "scan";
    if (arguments.size() % 2 == 0)
        return std::nullopt;
    for (std::size_t i = 1; i < arguments.size(); i += 2)
        if (!read_option(arguments[i], arguments[i + 1], options))
            return std::nullopt;
    return options;
}

} // namespace folidex::twain
