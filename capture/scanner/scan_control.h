// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>

namespace folidex {

/// What one operation on the scanner's thread and the window that follows it tell each other:
/// progress and questions one way, answers and the wish to stop the other. The window reads
/// state() at its own pace, so that a fast scanner cannot flood it. Any thread.
class ScanControl {
public:
    /// kChoosing: a window of the source's own is up, in which the user decides; the first page
    /// makes kScanning of it.
    enum class Phase { kOpening, kChoosing, kScanning, kWriting };
    enum class Answer { kContinue, kKeep, kDiscard };

    /// Something in the way of a page that the user can clear: a jam, an open cover.
    struct Trouble {
        int page = 0;
        int pages_so_far = 0;
        QString words;
    };
    struct State {
        Phase phase = Phase::kOpening;
        int page = 0;
        double fraction = -1; ///< of the page, 0 to 1; below 0 when its height is unknown
        std::optional<Trouble> trouble;
        bool silent = false; ///< no sign of life for a while
        bool done = false;
    };

    explicit ScanControl(Phase phase) { state_.phase = phase; }

    /// The scanner's side. ask() waits for the answer, and has something done every now and then
    /// meanwhile; a cancelled operation answers kDiscard.
    void begin_page(int page);
    void set_fraction(double fraction);
    void set_silent(bool silent);
    Answer ask(const Trouble& trouble, const std::function<void()>& meanwhile = {});
    /// Waits a moment; ends early when the operation is cancelled.
    void rest(std::chrono::milliseconds time);
    void finish(std::exception_ptr failure = nullptr);

    /// The window's side.
    State state() const;
    void answer(Answer answer);
    void cancel();
    /// Throws what the operation failed with, if it did.
    void rethrow() const;

    bool cancelled() const { return cancelled_.load(); }

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    State state_;
    std::optional<Answer> answer_;
    std::exception_ptr failure_;
    std::atomic<bool> cancelled_{false};
};

} // namespace folidex
