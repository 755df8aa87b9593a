// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/crash_filter_linux.h"
#include "common/crash_filter_system.h"
#include "common/error.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <ucontext.h>
#include <unistd.h>

// Ends of the program's own code, from the linker.
extern "C" const char __executable_start; // NOLINT(bugprone-reserved-identifier)
extern "C" const char etext;

// Entered with two words on the stack: the interrupted instruction's address and the interrupted
// stack pointer. Its unwind table says that it was called by that very instruction, all other
// registers being as they were.
asm(R"(
    .pushsection .text
    .hidden folidex_fault_trampoline
    .globl folidex_fault_trampoline
    .type folidex_fault_trampoline, @function
folidex_fault_trampoline:
    .cfi_startproc
    .cfi_signal_frame
    .cfi_escape 0x0f, 3, 0x77, 8, 0x06 # caller's stack pointer: the second word
    .cfi_escape 0x10, 16, 2, 0x77, 0   # caller's instruction: the first word
    call folidex_raise_fault
    ud2
    .cfi_endproc
    .size folidex_fault_trampoline, .-folidex_fault_trampoline
    .popsection
)");
extern "C" [[gnu::visibility("hidden")]] void folidex_fault_trampoline();

namespace folidex::crash_filter {

namespace {

constexpr std::size_t kSignalStackSize = 256 * 1024;
constexpr std::uintptr_t kRedZone = 128;
constexpr std::uintptr_t kNearStackPointer = 256;
// Room for unwinding, destructors and the report.
constexpr rlim_t kRoomToReport = 1024 * 1024;
// Room for a library to finish its call, and how often it is granted.
constexpr rlim_t kRoomToFinish = 64 * 1024;
constexpr int kMostRoomsToFinish = 128;
// A recursion that begins anew while it is being reported must come to an end.
constexpr int kMostRoomsToReport = 64;

constexpr std::uint32_t kFloatFlags = 0x3F;
constexpr std::uint32_t kFloatMasks = 0x1F80;
constexpr std::uint32_t kDenormalFlag = 0x02;
constexpr std::uint32_t kUnderflowFlag = 0x10;
constexpr std::uint16_t kX87Control = 0x037F;
constexpr std::uint16_t kX87Flags = 0x80FF;
constexpr greg_t kTrapFlag = 0x100;
constexpr greg_t kDirectionFlag = 0x400;
constexpr greg_t kAlignmentFlag = 0x40000;

constexpr std::array kSignals = {SIGSEGV, SIGBUS, SIGILL, SIGTRAP, SIGFPE};

pthread_t watched_thread;
std::uintptr_t stack_top = 0;
int rooms_to_finish = kMostRoomsToFinish;
int rooms_to_report = kMostRoomsToReport;
volatile std::sig_atomic_t handling = 0;

/// The kernel counts a stack in pages.
constexpr rlim_t whole_pages(rlim_t size) noexcept {
    return size & ~rlim_t{4095};
}

std::uintptr_t lowest_stack_address() noexcept {
    rlimit limit{};
    if (getrlimit(RLIMIT_STACK, &limit) != 0 || limit.rlim_cur >= stack_top)
        return 0;
    return stack_top - whole_pages(limit.rlim_cur);
}

/// The kernel looks at the limit each time the stack grows, so raising it takes effect at once.
bool make_stack_room_below(std::uintptr_t stack_pointer, rlim_t room) noexcept {
    rlimit limit{};
    if (getrlimit(RLIMIT_STACK, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return false;
    // A frame larger than the stack leaves its pointer far below the limit.
    const rlim_t used = std::max<rlim_t>(limit.rlim_cur, stack_top - stack_pointer);
    limit.rlim_cur = std::min(whole_pages(used) + room, limit.rlim_max);
    return setrlimit(RLIMIT_STACK, &limit) == 0;
}

bool in_own_code(std::uintptr_t instruction) noexcept {
    return instruction >= reinterpret_cast<std::uintptr_t>(&__executable_start) &&
           instruction < reinterpret_cast<std::uintptr_t>(&etext);
}

std::uint32_t code_of_float_fault(const SignalFault& fault) noexcept {
    switch (fault.code) {
    case FPE_INTDIV:
        return kIntegerDivideByZero;
    case FPE_INTOVF:
        return kIntegerOverflow;
    case FPE_FLTDIV:
        return kFloatDivideByZero;
    case FPE_FLTOVF:
        return kFloatOverflow;
    case FPE_FLTRES:
        return kFloatInexactResult;
    case FPE_FLTSUB:
        return kArrayBoundsExceeded;
    case FPE_FLTUND:
        // One signal code for two causes.
        return (fault.float_status & (kDenormalFlag | kUnderflowFlag)) == kDenormalFlag
                   ? kFloatDenormalOperand
                   : kFloatUnderflow;
    default:
        return kFloatInvalidOperation;
    }
}

bool is_privileged(std::uint8_t opcode) noexcept {
    constexpr std::uint8_t opcodes[] = {0xF4, 0xFA, 0xFB,        // hlt, cli, sti
                                        0x6C, 0x6D, 0x6E, 0x6F,  // ins, outs
                                        0xE4, 0xE5, 0xE6, 0xE7,  // in, out by number
                                        0xEC, 0xED, 0xEE, 0xEF}; // in, out by register
    return std::find(std::begin(opcodes), std::end(opcodes), opcode) != std::end(opcodes);
}

std::uintptr_t word_at(std::uintptr_t address) noexcept {
    return *reinterpret_cast<const std::uintptr_t*>(address);
}

bool is_canonical(std::uintptr_t address) noexcept {
    return address < (std::uintptr_t{1} << 47);
}

SignalFault describe(int signal, const siginfo_t& info, const mcontext_t& machine) noexcept {
    SignalFault fault;
    fault.signal = signal;
    fault.code = info.si_code;
    fault.address = reinterpret_cast<std::uintptr_t>(info.si_addr);
    fault.stack_pointer = static_cast<std::uintptr_t>(machine.gregs[REG_RSP]);
    fault.stack_limit = lowest_stack_address();
    fault.float_status = machine.fpregs->mxcsr;
    const auto instruction = static_cast<std::uintptr_t>(machine.gregs[REG_RIP]);
    if (signal == SIGSEGV && info.si_code == SI_KERNEL && is_canonical(instruction))
        fault.opcode = *reinterpret_cast<const std::uint8_t*>(instruction);
    return fault;
}

/// Makes the interrupted thread go on in the trampoline as if the fault had called it.
void redirect(mcontext_t& machine, const SignalFault& fault) noexcept {
    auto instruction = static_cast<std::uintptr_t>(machine.gregs[REG_RIP]);
    std::uintptr_t stack = fault.stack_pointer;
    if (fault.signal == SIGSEGV && (fault.address == instruction || !is_canonical(instruction))) {
        // A call went nowhere; it is the call that failed.
        instruction = word_at(stack) - 1;
        stack += sizeof(std::uintptr_t);
    }
    std::uintptr_t frame = (stack - kRedZone) & ~std::uintptr_t{15};
    frame -= 2 * sizeof(std::uintptr_t);
    auto* words = reinterpret_cast<std::uintptr_t*>(frame);
    words[0] = instruction;
    words[1] = stack;
    machine.gregs[REG_RSP] = static_cast<greg_t>(frame);
    machine.gregs[REG_RIP] = reinterpret_cast<greg_t>(&folidex_fault_trampoline);
    machine.gregs[REG_EFL] &= ~(kTrapFlag | kDirectionFlag | kAlignmentFlag);
    machine.fpregs->mxcsr = (machine.fpregs->mxcsr | kFloatMasks) & ~kFloatFlags;
    machine.fpregs->cwd = kX87Control;
    machine.fpregs->swd &= static_cast<std::uint16_t>(~kX87Flags);
}

void leave_to_the_system(const SignalFault& fault) noexcept {
    std::signal(fault.signal, SIG_DFL);
    // Going on would not bring these back.
    if (!from_the_processor(fault) || fault.signal == SIGTRAP)
        std::raise(fault.signal);
}

void convert(const SignalFault& fault, mcontext_t& machine) noexcept {
    const auto instruction = static_cast<std::uintptr_t>(machine.gregs[REG_RIP]);
    if (ran_out_of_stack(fault)) {
        // Inside a library there may be a lock held (the allocator's): let the call finish, the
        // recursion comes back to the program's own code.
        if (!in_own_code(instruction) && rooms_to_finish > 0 &&
            make_stack_room_below(fault.stack_pointer, kRoomToFinish)) {
            --rooms_to_finish;
            return;
        }
        if (rooms_to_report-- > 0)
            make_stack_room_below(fault.stack_pointer, kRoomToReport);
    }
    raising = true; // until the error is made: a fault on the way there would come back for ever
    interrupted = {};
    interrupted.code = exception_code(fault);
    interrupted.address = reinterpret_cast<const void*>(instruction);
    redirect(machine, fault);
}

/// The system leaves the check for alignment on in handlers, and no library is made for that.
void allow_misaligned_access() noexcept {
    __builtin_ia32_writeeflags_u64(__builtin_ia32_readeflags_u64() &
                                   ~static_cast<unsigned long long>(kAlignmentFlag));
}

void handle(int signal, siginfo_t* info, void* context) {
    allow_misaligned_access();
    // Only the watched thread can be in here twice at a time, when the handler itself failed, as
    // with a stack pointer that points nowhere.
    const bool watched = pthread_equal(pthread_self(), watched_thread) != 0;
    if (!watched || handling) {
        leave_to_the_system({signal, info->si_code});
        return;
    }
    handling = 1;
    const int saved_errno = errno;
    mcontext_t& machine = static_cast<ucontext_t*>(context)->uc_mcontext;
    const SignalFault fault = describe(signal, *info, machine);
    if (from_the_processor(fault) && a_trap_is_armed() && !raising)
        convert(fault, machine);
    else
        leave_to_the_system(fault);
    errno = saved_errno;
    handling = 0;
}

/// Where the main thread's stack begins; 0 for the other threads, whose stacks do not grow.
std::uintptr_t top_of_growing_stack() {
    rlimit limit{};
    if (getpid() != gettid() || getrlimit(RLIMIT_STACK, &limit) != 0 ||
        limit.rlim_cur == RLIM_INFINITY)
        return 0;
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0)
        return 0;
    void* low_end = nullptr;
    std::size_t size = 0;
    pthread_attr_getstack(&attributes, &low_end, &size);
    pthread_attr_destroy(&attributes);
    // The size leaves out what lies above the first frame; the limit does not.
    return reinterpret_cast<std::uintptr_t>(low_end) + whole_pages(limit.rlim_cur);
}

[[noreturn]] void refuse(const char* what) {
    throw Error{kInternalError,
                QStringLiteral("The crash filter could not be installed: %1 (%2)")
                    .arg(QString::fromLatin1(what), QString::fromLocal8Bit(std::strerror(errno)))};
}

} // namespace

bool from_the_processor(const SignalFault& fault) noexcept {
    return fault.code > 0;
}

bool ran_out_of_stack(const SignalFault& fault) noexcept {
    return fault.signal == SIGSEGV && fault.code != SI_KERNEL &&
           fault.address < fault.stack_limit &&
           fault.address + kNearStackPointer >= fault.stack_pointer;
}

std::uint32_t exception_code(const SignalFault& fault) noexcept {
    switch (fault.signal) {
    case SIGSEGV:
        if (ran_out_of_stack(fault))
            return kStackOverflow;
        return fault.code == SI_KERNEL && is_privileged(fault.opcode) ? kPrivilegedInstruction
                                                                      : kAccessViolation;
    case SIGBUS:
        return fault.code == BUS_ADRALN ? kDataTypeMisalignment : kInPageError;
    case SIGILL:
        return fault.code == ILL_PRVOPC || fault.code == ILL_PRVREG ? kPrivilegedInstruction
                                                                    : kIllegalInstruction;
    case SIGTRAP:
        return fault.code == TRAP_TRACE || fault.code == TRAP_HWBKPT ? kSingleStep : kBreakpoint;
    default:
        return code_of_float_fault(fault);
    }
}

void watch_this_thread() {
    watched_thread = pthread_self();
    stack_top = top_of_growing_stack();

    stack_t own{};
    own.ss_size = kSignalStackSize;
    own.ss_sp =
        mmap(nullptr, own.ss_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (own.ss_sp == MAP_FAILED)
        refuse("mmap");
    if (sigaltstack(&own, nullptr) != 0)
        refuse("sigaltstack");

    struct sigaction action {};
    action.sa_sigaction = handle;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
    for (const int signal : kSignals) {
        if (sigaction(signal, &action, nullptr) != 0)
            refuse("sigaction");
    }
}

void recover_from(std::uint32_t) noexcept {
    // The stack limit stays raised: a second overflow has to find room as the first did.
}

} // namespace folidex::crash_filter
