// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QPointer>
#include <functional>
#include <memory>

class QThread;

namespace folidex {

class ScanControl;

/// The one thread on which a back end talks to its scanners, job after job. A job that never
/// comes back costs that thread, not the window: the destructor drops what has not begun, waits
/// a second for the rest and then lets it go. Destroyed by the thread that made it.
class ScannerThread {
public:
    /// Must not throw.
    using Job = std::function<void()>;

    /// last runs on the thread once no job follows any more.
    explicit ScannerThread(Job last = {});
    ~ScannerThread();
    ScannerThread(const ScannerThread&) = delete;
    ScannerThread& operator=(const ScannerThread&) = delete;

    void post(Job job);

    /// Remembers an operation that the user left while the scanner did not answer, and tells
    /// whether it still hangs. UI thread.
    void abandon(std::shared_ptr<ScanControl> operation);
    bool hangs() const;

private:
    struct Core;
    static void work(const std::shared_ptr<Core>& core);

    std::shared_ptr<Core> core_;
    QPointer<QThread> thread_;
    std::shared_ptr<ScanControl> abandoned_;
};

} // namespace folidex
