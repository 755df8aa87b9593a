// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/sane_session.h"

#include "capture/scanner/scan_control.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace folidex {

namespace {

constexpr std::chrono::seconds kPatienceAtExit{1};

} // namespace

struct SaneSession::Core {
    explicit Core(SaneApi table) : api(std::move(table)) {}

    const SaneApi api;
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Job> jobs;
    bool leaving = false;
    bool left = false;
};

SaneSession::SaneSession(SaneApi api) : core_(std::make_shared<Core>(std::move(api))) {
    // Detached: a scanner that hangs for good must not keep the process alive.
    std::thread([core = core_] { work(core); }).detach();
}

SaneSession::~SaneSession() {
    std::unique_lock lock(core_->mutex);
    core_->leaving = true;
    core_->changed.notify_all();
    core_->changed.wait_for(lock, kPatienceAtExit, [this] { return core_->left; });
}

std::shared_ptr<SaneSession> SaneSession::system() {
    static const auto session = std::make_shared<SaneSession>(system_sane());
    return session;
}

void SaneSession::post(Job job) {
    const std::lock_guard lock(core_->mutex);
    core_->jobs.push_back(std::move(job));
    core_->changed.notify_all();
}

void SaneSession::abandon(std::shared_ptr<ScanControl> operation) {
    abandoned_ = std::move(operation);
}

bool SaneSession::hangs() const {
    return abandoned_ && !abandoned_->state().done;
}

void SaneSession::work(const std::shared_ptr<Core>& core) {
    bool ready = false;
    std::unique_lock lock(core->mutex);
    for (;;) {
        core->changed.wait(lock, [&] { return core->leaving || !core->jobs.empty(); });
        if (core->leaving)
            break;
        const Job job = std::move(core->jobs.front());
        core->jobs.pop_front();
        lock.unlock();
        if (!ready)
            ready = core->api.init(nullptr, nullptr) == SANE_STATUS_GOOD;
        job(ready ? &core->api : nullptr);
        lock.lock();
    }
    core->jobs.clear();
    lock.unlock();
    if (ready)
        core->api.exit();
    lock.lock();
    core->left = true;
    core->changed.notify_all();
}

} // namespace folidex
