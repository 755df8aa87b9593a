// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/scan_control.h"

namespace folidex {

namespace {

constexpr std::chrono::milliseconds kNowAndThen{50};

} // namespace

void ScanControl::begin_page(int page) {
    const std::lock_guard lock(mutex_);
    if (state_.phase == Phase::kChoosing)
        state_.phase = Phase::kScanning;
    state_.page = page;
    state_.fraction = -1;
}

void ScanControl::set_fraction(double fraction) {
    const std::lock_guard lock(mutex_);
    state_.fraction = fraction;
}

void ScanControl::set_silent(bool silent) {
    const std::lock_guard lock(mutex_);
    state_.silent = silent;
}

ScanControl::Answer ScanControl::ask(const Trouble& trouble,
                                     const std::function<void()>& meanwhile) {
    std::unique_lock lock(mutex_);
    answer_.reset();
    state_.trouble = trouble;
    const auto answered = [this] { return answer_ || cancelled_; };
    while (!changed_.wait_for(lock, kNowAndThen, answered)) {
        if (!meanwhile)
            continue;
        lock.unlock();
        meanwhile();
        lock.lock();
    }
    state_.trouble.reset();
    return cancelled_ ? Answer::kDiscard : *answer_;
}

void ScanControl::rest(std::chrono::milliseconds time) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, time, [this] { return cancelled_.load(); });
}

void ScanControl::finish(std::exception_ptr failure) {
    const std::lock_guard lock(mutex_);
    failure_ = std::move(failure);
    state_.done = true;
}

ScanControl::State ScanControl::state() const {
    const std::lock_guard lock(mutex_);
    return state_;
}

void ScanControl::answer(Answer answer) {
    {
        const std::lock_guard lock(mutex_);
        if (!state_.trouble)
            return;
        // The question is answered once: the window must not offer it again before the
        // scanner's thread wakes up.
        state_.trouble.reset();
        answer_ = answer;
    }
    changed_.notify_all();
}

void ScanControl::cancel() {
    {
        const std::lock_guard lock(mutex_);
        cancelled_ = true;
    }
    changed_.notify_all();
}

void ScanControl::rethrow() const {
    std::exception_ptr failure;
    {
        const std::lock_guard lock(mutex_);
        failure = failure_;
    }
    if (failure)
        std::rethrow_exception(failure);
}

} // namespace folidex
