// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <sane/sane.h>

namespace folidex {

/// The calls of libsane that the program makes, as a table: tests fill it with a scripted
/// scanner. Included by sane_* files only.
struct SaneApi {
    std::function<SANE_Status(SANE_Int* version, SANE_Auth_Callback authorize)> init;
    std::function<void()> exit;
    std::function<SANE_Status(const SANE_Device*** list, SANE_Bool local_only)> get_devices;
    std::function<SANE_Status(SANE_String_Const name, SANE_Handle* handle)> open;
    std::function<void(SANE_Handle handle)> close;
    std::function<const SANE_Option_Descriptor*(SANE_Handle handle, SANE_Int option)>
        get_option_descriptor;
    std::function<SANE_Status(SANE_Handle handle, SANE_Int option, SANE_Action action, void* value,
                              SANE_Int* info)>
        control_option;
    std::function<SANE_Status(SANE_Handle handle, SANE_Parameters* parameters)> get_parameters;
    std::function<SANE_Status(SANE_Handle handle)> start;
    std::function<SANE_Status(SANE_Handle handle, SANE_Byte* data, SANE_Int size, SANE_Int* got)>
        read;
    std::function<void(SANE_Handle handle)> cancel;
    std::function<SANE_String_Const(SANE_Status status)> strstatus;
};

/// The system's libsane.
SaneApi system_sane();

} // namespace folidex
