// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/sane_api.h"

namespace folidex {

SaneApi system_sane() {
    SaneApi api;
    api.init = sane_init;
    api.exit = sane_exit;
    api.get_devices = sane_get_devices;
    api.open = sane_open;
    api.close = sane_close;
    api.get_option_descriptor = sane_get_option_descriptor;
    api.control_option = sane_control_option;
    api.get_parameters = sane_get_parameters;
    api.start = sane_start;
    api.read = sane_read;
    api.cancel = sane_cancel;
    api.strstatus = sane_strstatus;
    return api;
}

} // namespace folidex
