// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/sane_device.h"

namespace folidex {

SANE_Status SaneDevice::open(const SaneApi& api) {
    SANE_Handle handle = nullptr;
    const SANE_Status status = api.open(name_.constData(), &handle);
    const std::lock_guard lock(mutex_);
    api_ = api;
    handle_ = handle;
    open_ = status == SANE_STATUS_GOOD;
    return status;
}

void SaneDevice::close() {
    const std::lock_guard lock(mutex_);
    if (open_)
        api_.close(handle_);
    open_ = false;
}

void SaneDevice::stop() {
    const std::lock_guard lock(mutex_);
    if (open_)
        api_.cancel(handle_);
}

} // namespace folidex
