// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// A program that ends with code 7 in the way that its argument names.

#include "common/leave_process.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#ifdef FOLIDEX_LEAVE_LIBRARY
extern "C" void hold_the_lock();
#endif

namespace {

constexpr int kCode = 7;

void say(const char* words) {
    std::puts(words);
    std::fflush(stdout);
}

struct PutAway {
    ~PutAway() { say("put away"); }
};

void keep_something() {
    static const PutAway kept;
    std::atexit([] { say("exit heard of"); });
}

} // namespace

int main(int argc, char** argv) {
    keep_something();
#ifdef FOLIDEX_LEAVE_LIBRARY
    hold_the_lock();
#endif
    if (argc > 1 && std::strcmp(argv[1], "dropped") == 0)
        folidex::drop_process(kCode);
    folidex::leave_process(kCode);
}
