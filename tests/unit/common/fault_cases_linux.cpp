// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/unit/common/fault_cases.h"

#include <cfloat>
#include <csignal>
#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

namespace folidex::test {

namespace {

alignas(16) char data_bytes[64] = {};

void read_a_page_that_left_its_file() {
    char name[] = "/tmp/folidex-fault-XXXXXX";
    const int file = mkstemp(name);
    unlink(name);
    if (file < 0 || ftruncate(file, 4096) != 0)
        return say("no temporary file");
    void* page = mmap(nullptr, 4096, PROT_READ, MAP_SHARED, file, 0);
    if (page == MAP_FAILED || ftruncate(file, 0) != 0)
        return say("no page");
    say("%d", *static_cast<volatile char*>(page));
}

void read_misaligned_where_that_is_forbidden() {
    asm volatile("pushfq\n\t"
                 "orl $0x40000, (%%rsp)\n\t"
                 "popfq\n\t"
                 "movl 1(%0), %%eax\n\t"
                 "pushfq\n\t"
                 "andl $~0x40000, (%%rsp)\n\t"
                 "popfq" ::"r"(data_bytes)
                 : "rax", "memory", "cc");
}

void use_a_denormal_number() {
    volatile float denormal = FLT_MIN;
    denormal = denormal / 4;
    unsigned int control = 0;
    asm volatile("stmxcsr %0" : "=m"(control));
    control &= ~0x0100U & ~0x3FU;
    asm volatile("ldmxcsr %0" ::"m"(control));
    denormal = denormal * 2.0F;
}

} // namespace

std::map<std::string, FaultCase> cases_of_this_system() {
    return {
        {"float denormal", use_a_denormal_number},
        {"misaligned read", read_misaligned_where_that_is_forbidden},
        {"lost page", read_a_page_that_left_its_file},
        {"sent segmentation fault", [] { kill(getpid(), SIGSEGV); }},
    };
}

void let_another_handler_take_faults() {
    std::signal(SIGSEGV, [](int) { std::_Exit(3); });
}

} // namespace folidex::test
