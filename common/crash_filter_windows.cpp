// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// Entered as if the interrupted instruction had called it: one return address on the stack.
// It stands before everything else because it leaves the assembler in the section of code.
asm(R"(
    .text
    .globl folidex_fault_trampoline
    .def folidex_fault_trampoline; .scl 2; .type 32; .endef
    .seh_proc folidex_fault_trampoline
folidex_fault_trampoline:
    pushq %rbp
    .seh_pushreg %rbp
    movq %rsp, %rbp
    .seh_setframe %rbp, 0
    .seh_endprologue
    subq $32, %rsp
    andq $-16, %rsp
    call folidex_raise_fault
    ud2
    .seh_endproc
)");

#include "common/crash_filter_system.h"

#include <cstddef>
#include <malloc.h>
#include <windows.h>

extern "C" void folidex_fault_trampoline();

namespace folidex::crash_filter {

namespace {

static_assert(sizeof(ExceptionRecord) == sizeof(EXCEPTION_RECORD));
static_assert(offsetof(ExceptionRecord, nested) == offsetof(EXCEPTION_RECORD, ExceptionRecord));
static_assert(offsetof(ExceptionRecord, address) == offsetof(EXCEPTION_RECORD, ExceptionAddress));
static_assert(offsetof(ExceptionRecord, parameters) ==
              offsetof(EXCEPTION_RECORD, ExceptionInformation));
static_assert(kAccessViolation == STATUS_ACCESS_VIOLATION);

// Room for unwinding, destructors and the report after a stack overflow.
constexpr ULONG kRoomToReport = 128 * 1024;
constexpr ULONG_PTR kGuardAbove = 64 * 1024;
constexpr SIZE_T kPage = 4096;

constexpr DWORD kFloatMasks = 0x1F80;
constexpr WORD kX87Control = 0x037F;
constexpr WORD kX87Flags = 0x80FF;
constexpr DWORD kTrapFlag = 0x100;
constexpr DWORD kDirectionFlag = 0x400;

DWORD watched_thread = 0;

/// C++ exceptions of either compiler travel as system exceptions too; they are nobody's fault.
bool is_language_exception(DWORD code) noexcept {
    return (code >= 0x20474343 && code <= 0x22474343) || code == 0xE06D7363;
}

bool has_code_at(ULONG_PTR instruction) noexcept {
    DWORD64 base = 0;
    RtlLookupFunctionEntry(instruction, &base, nullptr);
    return base != 0;
}

/// Makes the interrupted thread go on in the trampoline as if the fault had called it.
void redirect(CONTEXT& machine) noexcept {
    // A call that went nowhere has left its return address; else the unwinder, which looks one
    // byte before a return address, has to find the faulting instruction there.
    if (has_code_at(machine.Rip)) {
        machine.Rsp -= sizeof(ULONG_PTR);
        *reinterpret_cast<ULONG_PTR*>(machine.Rsp) = machine.Rip + 1;
    }
    machine.Rip = reinterpret_cast<ULONG_PTR>(&folidex_fault_trampoline);
    machine.EFlags &= ~(kTrapFlag | kDirectionFlag);
    machine.MxCsr = kFloatMasks;
    machine.FltSave.MxCsr = kFloatMasks;
    machine.FltSave.ControlWord = kX87Control;
    machine.FltSave.StatusWord &= static_cast<WORD>(~kX87Flags);
}

LONG CALLBACK handle(EXCEPTION_POINTERS* exception) {
    const auto* record = reinterpret_cast<const ExceptionRecord*>(exception->ExceptionRecord);
    if (is_language_exception(record->code) || GetCurrentThreadId() != watched_thread ||
        !a_trap_is_armed() || raising)
        return EXCEPTION_CONTINUE_SEARCH;
    raising = true; // until the error is made: a fault on the way there would come back for ever
    interrupted = last_record(*record);
    redirect(*exception->ContextRecord);
    // Asking the system to continue would fail for faults that it calls non-continuable.
    RtlRestoreContext(exception->ContextRecord, nullptr);
    return EXCEPTION_CONTINUE_EXECUTION;
}

void keep_room_for_a_stack_overflow() noexcept {
    ULONG room = kRoomToReport;
    SetThreadStackGuarantee(&room);
    // Where the whole stack is committed from the start the guarantee has no effect; there a
    // guard page of our own keeps the room. Elsewhere the page is not committed and this fails.
    ULONG_PTR low = 0;
    ULONG_PTR high = 0;
    GetCurrentThreadStackLimits(&low, &high);
    DWORD before = 0;
    VirtualProtect(reinterpret_cast<void*>(low + kGuardAbove), kPage, PAGE_READWRITE | PAGE_GUARD,
                   &before);
}

} // namespace

void watch_this_thread() {
    watched_thread = GetCurrentThreadId();
    keep_room_for_a_stack_overflow();
    SetUnhandledExceptionFilter(handle);
}

void recover_from(std::uint32_t code) noexcept {
    if (code == kStackOverflow)
        _resetstkoflw();
}

} // namespace folidex::crash_filter
