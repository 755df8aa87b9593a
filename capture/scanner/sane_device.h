// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/sane_api.h"

#include <QByteArray>
#include <mutex>

namespace folidex {

/// An open device. Opened, used and closed on the scanner's thread; stop() alone may come from
/// another one, as SANE allows for its cancel call.
class SaneDevice {
public:
    explicit SaneDevice(QByteArray name) : name_(std::move(name)) {}

    SANE_Status open(const SaneApi& api);
    void close();
    void stop();
    SANE_Handle handle() const { return handle_; }

private:
    QByteArray name_;
    std::mutex mutex_;
    SaneApi api_;
    SANE_Handle handle_ = nullptr;
    bool open_ = false;
};

} // namespace folidex
