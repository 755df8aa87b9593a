// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/sane_api.h"
#include "capture/scanner/scanner_thread.h"

namespace folidex {

/// SANE as this process uses it: initialised once, every call made on one thread of its own,
/// left at the end of the process.
class SaneSession {
public:
    /// The API, or null when SANE could not be initialised. Must not throw.
    using Job = std::function<void(const SaneApi* api)>;

    explicit SaneSession(SaneApi api);

    /// The session with the system's libsane; there is one in the process.
    static std::shared_ptr<SaneSession> system();

    /// Queues a job for the thread.
    void post(Job job);
    const std::shared_ptr<ScannerThread>& thread() const { return thread_; }

private:
    struct Core;

    std::shared_ptr<Core> core_;
    std::shared_ptr<ScannerThread> thread_;
};

} // namespace folidex
