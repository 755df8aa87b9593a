// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// A source manager with the script's sources inside: TWAINDSM.dll of the tests.

#include "tests/support/twain/script.h"
#include "tests/support/twain/scripted_source.h"

#include <cstring>
#include <memory>

using namespace folidex::twain;
using namespace folidex::scripted;

namespace {

using EntryFunction = TW_UINT16(WINAPI*)(TW_IDENTITY*, TW_IDENTITY*, TW_UINT32, TW_UINT16,
                                         TW_UINT16, TW_MEMREF);

constexpr char kSection[] = "manager";

bool is_open = false;
HWND program_window = nullptr;
TW_UINT16 condition = TWCC_SUCCESS;
std::size_t next_source = 0;
Source* open_source = nullptr;
EntryFunction callback = nullptr;
TW_UINT16 waiting_message = MSG_NULL;

std::vector<std::unique_ptr<Source>>& sources() {
    static std::vector<std::unique_ptr<Source>> list = [] {
        std::vector<std::unique_ptr<Source>> made;
        for (const std::string& name : split(text(kSection, "sources"), '|'))
            made.push_back(std::make_unique<Source>(name));
        return made;
    }();
    return list;
}

TW_UINT16 fail(TW_UINT16 why) {
    condition = why;
    return TWRC_FAILURE;
}

void hear(TW_UINT16 message) {
    if (callback != nullptr) {
        callback(nullptr, nullptr, DG_CONTROL, DAT_NULL, message, nullptr);
        return;
    }
    waiting_message = message;
    PostMessageA(program_window, WM_NULL, 0, 0);
}

TW_UINT16 open_the_source(TW_IDENTITY& wanted) {
    if (open_source != nullptr)
        return fail(TWCC_MAXCONNECTIONS);
    for (const auto& source : sources()) {
        // The identifier decides, as names may be double.
        if (&source - sources().data() + 1 != static_cast<std::ptrdiff_t>(wanted.Id))
            continue;
        source->call_manager = hear;
        // Those of the first TWAIN ask the system, whose memory a manager of the second hands out
        // on Windows; here it has its own, and they are spared that.
        if (number(kSection, "old") == 0)
            source->memory = managers_memory();
        const TW_UINT16 answer = source->entry(DG_CONTROL, DAT_IDENTITY, MSG_OPENDS, &wanted);
        if (answer == TWRC_SUCCESS) {
            open_source = source.get();
        } else {
            TW_STATUS status{};
            source->entry(DG_CONTROL, DAT_STATUS, MSG_GET, &status);
            condition = status.ConditionCode;
        }
        return answer;
    }
    return fail(TWCC_NODS);
}

TW_UINT16 identity(TW_UINT16 message, TW_IDENTITY& who) {
    mishap_at(kSection, "list");
    if (message == MSG_GETFIRST)
        next_source = 0;
    if (message == MSG_GETFIRST || message == MSG_GETNEXT) {
        if (sources().empty())
            return fail(TWCC_NODS);
        if (next_source >= sources().size()) {
            if (number(kSection, "endless") == 0)
                return TWRC_ENDOFLIST;
            next_source = 0;
        }
        who = sources()[next_source]->identity();
        who.Id = static_cast<TW_UINT32>(++next_source);
        return TWRC_SUCCESS;
    }
    if (message == MSG_OPENDS)
        return open_the_source(who);
    if (message != MSG_CLOSEDS || open_source == nullptr)
        return fail(TWCC_BADDEST);
    const TW_UINT16 answer = open_source->entry(DG_CONTROL, DAT_IDENTITY, MSG_CLOSEDS, &who);
    open_source = nullptr;
    callback = nullptr;
    return answer;
}

TW_UINT16 parent(TW_IDENTITY& program, TW_UINT16 message, const TW_MEMREF window) {
    if (message == MSG_OPENDSM) {
        note("manager open");
        mishap_at(kSection, "open");
        if (const int told = failure_at(kSection, "open"))
            return fail(static_cast<TW_UINT16>(told));
        is_open = true;
        program_window = *static_cast<HWND*>(window);
        program.Id = 77;
        if (number(kSection, "old") == 0)
            program.SupportedGroups |= DF_DSM2;
        return TWRC_SUCCESS;
    }
    if (number(kSection, "memory") != 0)
        note("manager memory: " + managers_memory_told());
    note("manager close");
    if (!managers_memory_is_in_order())
        note("manager memory out of order: " + managers_memory_told());
    if (open_source != nullptr)
        return fail(TWCC_SEQERROR);
    is_open = false;
    return TWRC_SUCCESS;
}

TW_UINT16 register_callback(TW_UINT16 data_type, TW_MEMREF data) {
    if (number(kSection, "callback", data_type == DAT_CALLBACK ? 1 : 2) !=
        (data_type == DAT_CALLBACK ? 1 : 2))
        return fail(TWCC_BADPROTOCOL);
    const TW_MEMREF function = data_type == DAT_CALLBACK
                                   ? static_cast<TW_CALLBACK*>(data)->CallBackProc
                                   : static_cast<TW_CALLBACK2*>(data)->CallBackProc;
    callback = reinterpret_cast<EntryFunction>(function);
    note("manager callback");
    return TWRC_SUCCESS;
}

TW_UINT16 tell_entries(TW_ENTRYPOINT& entries) {
    if (entries.Size != sizeof entries)
        return fail(TWCC_BADVALUE);
    const Memory& memory = managers_memory();
    entries.DSM_MemAllocate = reinterpret_cast<void (*)()>(memory.allocate);
    entries.DSM_MemFree = reinterpret_cast<void (*)()>(memory.release);
    entries.DSM_MemLock = reinterpret_cast<void (*)()>(memory.lock);
    entries.DSM_MemUnlock = reinterpret_cast<void (*)()>(memory.unlock);
    return TWRC_SUCCESS;
}

} // namespace

extern "C" __declspec(dllexport) TW_UINT16 WINAPI
    DSM_Entry(TW_IDENTITY* program, TW_IDENTITY* source, TW_UINT32 group, TW_UINT16 data_type,
              TW_UINT16 message, TW_MEMREF data) {
    if (data_type == DAT_STATUS && source == nullptr) {
        *static_cast<TW_STATUS*>(data) = {condition, 0};
        condition = TWCC_SUCCESS;
        return TWRC_SUCCESS;
    }
    if (data_type == DAT_PARENT)
        return parent(*program, message, data);
    if (!is_open)
        return fail(TWCC_SEQERROR);
    if (data_type == DAT_IDENTITY)
        return identity(message, *static_cast<TW_IDENTITY*>(data));
    if (data_type == DAT_ENTRYPOINT)
        return tell_entries(*static_cast<TW_ENTRYPOINT*>(data));
    if (source == nullptr || open_source == nullptr)
        return fail(TWCC_BADDEST);
    if (data_type == DAT_CALLBACK || data_type == DAT_CALLBACK2)
        return register_callback(data_type, data);
    if (data_type == DAT_EVENT && waiting_message != MSG_NULL) {
        static_cast<TW_EVENT*>(data)->TWMessage = waiting_message;
        waiting_message = MSG_NULL;
        return TWRC_DSEVENT;
    }
    return open_source->entry(group, data_type, message, data);
}

BOOL WINAPI DllMain(HINSTANCE library, DWORD why, void*) {
    if (why == DLL_PROCESS_ATTACH) {
        set_library(library);
        mishap_at(kSection, "load");
    }
    if (why == DLL_PROCESS_DETACH)
        mishap_at(kSection, "unload");
    return TRUE;
}
