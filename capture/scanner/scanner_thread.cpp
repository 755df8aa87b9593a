// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/scanner_thread.h"

#include "capture/scanner/scan_control.h"
#include "common/error_trap.h"

#include <QThread>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace folidex {

namespace {

constexpr std::chrono::seconds kPatienceAtExit{1};

} // namespace

struct ScannerThread::Core {
    explicit Core(Job at_the_end) : last(std::move(at_the_end)) {}

    const Job last;
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Job> jobs;
    bool leaving = false;
    bool left = false;
};

// One of the toolkit's own threads: the toolkit keeps watch over the end of all others that use it,
// and a process that ends in such a moment may wait for that watch for ever.
ScannerThread::ScannerThread(Job last) : core_(std::make_shared<Core>(std::move(last))) {
    QThread* thread = QThread::create([core = core_] { work(core); });
    on(thread, &QThread::finished, thread, [thread] { thread->deleteLater(); });
    thread->start();
    thread_ = thread;
}

ScannerThread::~ScannerThread() {
    {
        std::unique_lock lock(core_->mutex);
        core_->leaving = true;
        core_->changed.notify_all();
        // A scanner that hangs for good must not keep the process alive.
        if (!core_->changed.wait_for(lock, kPatienceAtExit, [this] { return core_->left; }))
            return;
    }
    if (thread_)
        thread_->wait();
    delete thread_;
}

void ScannerThread::post(Job job) {
    const std::lock_guard lock(core_->mutex);
    core_->jobs.push_back(std::move(job));
    core_->changed.notify_all();
}

void ScannerThread::abandon(std::shared_ptr<ScanControl> operation) {
    abandoned_ = std::move(operation);
}

bool ScannerThread::hangs() const {
    return abandoned_ && !abandoned_->state().done;
}

void ScannerThread::work(const std::shared_ptr<Core>& core) {
    std::unique_lock lock(core->mutex);
    for (;;) {
        core->changed.wait(lock, [&] { return core->leaving || !core->jobs.empty(); });
        if (core->leaving)
            break;
        {
            const Job job = std::move(core->jobs.front());
            core->jobs.pop_front();
            lock.unlock();
            job();
        }
        lock.lock();
    }
    core->jobs.clear();
    lock.unlock();
    if (core->last)
        core->last();
    lock.lock();
    core->left = true;
    core->changed.notify_all();
}

} // namespace folidex
