// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/crash_report.h"

#include "capture/scanner/twain/frame_pipe.h"

#include <csignal>
#include <cstdlib>
#include <exception>

namespace folidex::twain {

namespace {

constexpr UINT kExitCode = 3;
/// What is told of an ending that has no exception code: STATUS_FATAL_APP_EXIT.
constexpr DWORD kAborted = 0x40000015;

HANDLE overflowed = nullptr;

[[noreturn]] void end_with(DWORD code) {
    Ending ending{};
    ending.outcome = Outcome::kCrashed;
    ending.detail = code;
    FramePipe::of_process().send_last_words(ending);
    TerminateProcess(GetCurrentProcess(), kExitCode);
    for (;;)
        Sleep(INFINITE);
}

DWORD WINAPI report_overflow(void*) {
    WaitForSingleObject(overflowed, INFINITE);
    end_with(EXCEPTION_STACK_OVERFLOW);
}

/// A thread without stack has hardly room for a call: another one speaks for it, and it does so
/// before the system walks through the frames, which takes room too.
LONG WINAPI on_first_sight(EXCEPTION_POINTERS* fault) {
    if (fault->ExceptionRecord->ExceptionCode != EXCEPTION_STACK_OVERFLOW)
        return EXCEPTION_CONTINUE_SEARCH;
    SetEvent(overflowed);
    Sleep(INFINITE);
    return EXCEPTION_CONTINUE_SEARCH;
}

LONG WINAPI on_fault(EXCEPTION_POINTERS* fault) {
    end_with(fault->ExceptionRecord->ExceptionCode);
}

} // namespace

void report_crashes() {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    // Without a console the C runtime would say in a box that a driver aborts.
    _set_error_mode(_OUT_TO_STDERR);
    overflowed = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (const HANDLE thread = CreateThread(nullptr, 0, report_overflow, nullptr, 0, nullptr))
        CloseHandle(thread);
    AddVectoredExceptionHandler(1, on_first_sight);
    report_crashes_still();
    std::set_terminate([] { end_with(kAborted); });
    std::signal(SIGABRT, [](int) { end_with(kAborted); });
}

void report_crashes_still() {
    SetUnhandledExceptionFilter(on_fault);
}

} // namespace folidex::twain
