// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The script of the virtual scanners: an ini file, named by the environment variable
/// FOLIDEX_TWAIN_SCRIPT, else `scanners.ini` beside the library. tests/support/twain/README.md
/// tells what may stand in it.
namespace folidex::scripted {

/// Where the library lies that this is part of; to be told once, when it is loaded.
void set_library(void* module);

std::string text(const std::string& section, const char* key, const char* fallback = "");
int number(const std::string& section, const char* key, int fallback = 0);
std::vector<std::string> split(const std::string& text, char separator);

/// A line of `scanners.log` beside the script, when [manager] says log=1.
void note(const std::string& line);

/// Does what the section wants to happen at this place, e.g. crash=transfer or hang=close; places
/// that belong to a page are also known with its number, e.g. crash=transfer:2. May not return.
void mishap_at(const std::string& section, const std::string& place, int page = 0);
/// The condition code with which the section wants this place to fail (fail=open:23); 0 for none.
int failure_at(const std::string& section, std::string_view place);

} // namespace folidex::scripted
