// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdio>
#include <functional>
#include <map>
#include <string>

namespace folidex::test {

using FaultCase = std::function<void()>;

/// Run as the body of fill_grid of frmTags, called by Main of Module1; the filter is installed.
std::map<std::string, FaultCase> cases_in_a_procedure();
/// Run with nothing around them; they install the filter themselves.
std::map<std::string, FaultCase> cases_on_their_own();

/// Cases like the first, of faults that only this system has or makes in its own way.
std::map<std::string, FaultCase> cases_of_this_system();
/// Puts another handler in place, after which a fault ends the program with code 3.
void let_another_handler_take_faults();
/// Lets floating-point conditions (FE_DIVBYZERO...) stop the program, or no longer.
void unmask(unsigned int conditions);
void mask_all_conditions();

/// A line on stdout, where the test reads.
template <class... Args> void say(const char* format, Args... args) {
    std::printf(format, args...);
    std::printf("\n");
}

/// Says so when it goes out of scope.
struct Local {
    const char* name;
    ~Local() { say("released %s", name); }
};

/// Values that the compiler cannot know.
extern int* volatile nowhere;
extern const char* volatile no_text;
extern volatile int zero;
extern volatile bool yes;

} // namespace folidex::test
