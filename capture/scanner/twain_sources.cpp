// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain_sources.h"

#include "common/error_trap.h"

#include <QElapsedTimer>
#include <atomic>
#include <condition_variable>
#include <mutex>

namespace folidex {

namespace {

constexpr std::chrono::milliseconds kLook{50};

} // namespace

/// What the listers and those who ask share.
struct TwainSources::Core {
    struct List {
        QList<TwainSource> known;
        QList<TwainSource> found; ///< by the search under way
        bool searching = false;
        bool ever_ended = false;
    };

    mutable std::mutex mutex;
    std::condition_variable changed;
    List list64;
    List list32;
    std::atomic<bool> leaving{false};

    List& list(int bits) { return bits == 64 ? list64 : list32; }
    QList<TwainSource> shown() const {
        return list64.ever_ended ? list64.known + list32.known : list64.known;
    }
    void add(const TwainSource& source);
    void end(int bits, bool complete);
    void look(int bits, const TwainSettings& settings);
    std::optional<twain::Outcome> read_list(int bits, TwainHelper& helper,
                                            std::chrono::milliseconds patience);
};

void TwainSources::Core::add(const TwainSource& source) {
    const std::lock_guard lock(mutex);
    List& of = list(source.bits);
    of.found.append(source);
    of.known = merged(of.known, of.found);
    changed.notify_all();
}

void TwainSources::Core::end(int bits, bool complete) {
    const std::lock_guard lock(mutex);
    List& of = list(bits);
    // A list that broke off says nothing about the sources behind the break.
    if (complete)
        of.known = of.found;
    of.searching = false;
    of.ever_ended = true;
    changed.notify_all();
}

void TwainSources::Core::look(int bits, const TwainSettings& settings) {
    TwainHelper helper(QStringLiteral("TWAIN, %1 bits").arg(bits));
    std::optional<twain::Outcome> outcome;
    try {
        helper.start(settings.program(bits), {QStringLiteral("list")});
        outcome = read_list(bits, helper, settings.list);
    } catch (...) {
        qWarning("The search for scanners failed: %s", qPrintable(current_error().description));
    }
    if (!outcome)
        helper.kill();
    // A manager that cannot be used now, or crashes, says nothing about the scanners that there
    // are: one of them may be what it crashes at, or it is being installed.
    end(bits, outcome == twain::Outcome::kGood || outcome == twain::Outcome::kNoManager);
    helper.release(settings.release, [this](const auto&) { return leaving.load(); });
}

/// How it ended; nothing when it was given up.
std::optional<twain::Outcome> TwainSources::Core::read_list(int bits, TwainHelper& helper,
                                                            std::chrono::milliseconds patience) {
    QElapsedTimer clock;
    clock.start();
    while (!leaving && !clock.hasExpired(patience.count())) {
        const auto frame = helper.next(kLook);
        if (!frame && !helper.running())
            return std::nullopt;
        if (!frame)
            continue;
        if (frame->kind == twain::Kind::kDone)
            return frame->as<twain::Ending>().outcome;
        if (frame->kind == twain::Kind::kSource)
            add({bits, frame->as<twain::SourceEntry>().index,
                 QString::fromUtf8(frame->payload.mid(qsizetype{sizeof(twain::SourceEntry)}))});
    }
    return std::nullopt;
}

TwainSources::TwainSources(TwainSettings settings)
    : settings_(std::move(settings)), core_(std::make_shared<Core>()) {}

TwainSources::~TwainSources() {
    core_->leaving = true;
}

void TwainSources::search() {
    const std::lock_guard lock(core_->mutex);
    for (const int bits : {64, 32}) {
        Core::List& of = core_->list(bits);
        if (std::exchange(of.searching, true))
            continue;
        of.found.clear();
        (bits == 64 ? lister64_ : lister32_).post([core = core_, bits, settings = settings_] {
            core->look(bits, settings);
        });
    }
}

bool TwainSources::searching() const {
    const std::lock_guard lock(core_->mutex);
    return core_->list64.searching || core_->list32.searching;
}

void TwainSources::wait(std::chrono::milliseconds time) {
    std::unique_lock lock(core_->mutex);
    const auto enough = [core = core_.get()] {
        const bool both_ended = core->list64.ever_ended && core->list32.ever_ended;
        return (both_ended && !core->shown().isEmpty()) ||
               (!core->list64.searching && !core->list32.searching);
    };
    core_->changed.wait_for(lock, time, enough);
}

QList<TwainSource> TwainSources::list() const {
    const std::lock_guard lock(core_->mutex);
    return core_->shown();
}

QList<TwainSource> merged(QList<TwainSource> list, const QList<TwainSource>& other) {
    QList<bool> met(list.size(), false);
    for (const TwainSource& source : other) {
        qsizetype at = 0;
        // Sources may bear one name: the first with it is the first, the second the second.
        while (at < met.size() &&
               (met[at] || list[at].bits != source.bits || list[at].name != source.name))
            ++at;
        if (at == met.size()) {
            list.append(source);
            met.append(true);
        } else {
            list[at].index = source.index;
            met[at] = true;
        }
    }
    return list;
}

} // namespace folidex
