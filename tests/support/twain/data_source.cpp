// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// The script's first source as a library of its own, sane.ds: the name under which wine's source
// manager looks for its one driver.

#include "tests/support/twain/script.h"
#include "tests/support/twain/scripted_source.h"

#include <memory>

using namespace folidex::twain;
using namespace folidex::scripted;

namespace {

Source& the_source() {
    static const auto names = split(text("manager", "sources"), '|');
    static Source source(names.empty() ? std::string("Virtual") : names[0]);
    return source;
}

} // namespace

extern "C" __declspec(dllexport) TW_UINT16 WINAPI
    DS_Entry(TW_IDENTITY*, TW_UINT32 group, TW_UINT16 data_type, TW_UINT16 message,
             TW_MEMREF data) {
    if (data_type == DAT_IDENTITY && message == MSG_GET) {
        *static_cast<TW_IDENTITY*>(data) = the_source().identity();
        return TWRC_SUCCESS;
    }
    return the_source().entry(group, data_type, message, data);
}

BOOL WINAPI DllMain(HINSTANCE library, DWORD why, void*) {
    if (why == DLL_PROCESS_ATTACH) {
        set_library(library);
        mishap_at("manager", "load");
    }
    return TRUE;
}
