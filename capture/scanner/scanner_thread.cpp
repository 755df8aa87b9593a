// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/scanner_thread.h"

#include "capture/scanner/scan_control.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

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

ScannerThread::ScannerThread(Job last) : core_(std::make_shared<Core>(std::move(last))) {
    // Detached: a scanner that hangs for good must not keep the process alive.
    std::thread([core = core_] { work(core); }).detach();
}

ScannerThread::~ScannerThread() {
    std::unique_lock lock(core_->mutex);
    core_->leaving = true;
    core_->changed.notify_all();
    core_->changed.wait_for(lock, kPatienceAtExit, [this] { return core_->left; });
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
