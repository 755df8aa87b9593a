// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/sane_api.h"

#include <functional>
#include <memory>

namespace folidex {

class ScanControl;

/// SANE as this process uses it: initialised once, every call made on one thread of its own,
/// left at the end of the process. A call that never comes back costs that thread, not the
/// window: the destructor waits a second for it and then lets it go.
class SaneSession {
public:
    /// The API, or null when SANE could not be initialised. Must not throw.
    using Job = std::function<void(const SaneApi* api)>;

    explicit SaneSession(SaneApi api);
    ~SaneSession();
    SaneSession(const SaneSession&) = delete;
    SaneSession& operator=(const SaneSession&) = delete;

    /// The session with the system's libsane; there is one in the process.
    static std::shared_ptr<SaneSession> system();

    /// Queues a job for the thread.
    void post(Job job);

    /// Remembers an operation that the user left while the scanner did not answer, and tells
    /// whether it still hangs. UI thread.
    void abandon(std::shared_ptr<ScanControl> operation);
    bool hangs() const;

private:
    struct Core;
    static void work(const std::shared_ptr<Core>& core);

    std::shared_ptr<Core> core_;
    std::shared_ptr<ScanControl> abandoned_;
};

} // namespace folidex
