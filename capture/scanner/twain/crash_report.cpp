// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/crash_report.h"

#include "capture/scanner/twain/frame_pipe.h"

#include <csignal>
#include <exception>

namespace folidex::twain {

namespace {

constexpr UINT kExitCode = 3;
/// What is told of an ending that has no exception code: STATUS_FATAL_APP_EXIT.
constexpr DWORD kAborted = 0x40000015;
/// Stack that is kept for the report of a stack overflow.
constexpr ULONG kLastStack = 64u << 10;

[[noreturn]] void end_with(DWORD code) {
    Ending ending{};
    ending.outcome = Outcome::kCrashed;
    ending.detail = code;
    FramePipe::of_process().send_last_words(ending);
    TerminateProcess(GetCurrentProcess(), kExitCode);
    for (;;)
        Sleep(INFINITE);
}

LONG WINAPI on_fault(EXCEPTION_POINTERS* fault) {
    end_with(fault->ExceptionRecord->ExceptionCode);
}

} // namespace

void report_crashes() {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    ULONG kept = kLastStack;
    SetThreadStackGuarantee(&kept);
    SetUnhandledExceptionFilter(on_fault);
    std::set_terminate([] { end_with(kAborted); });
    std::signal(SIGABRT, [](int) { end_with(kAborted); });
}

} // namespace folidex::twain
