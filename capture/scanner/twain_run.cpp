// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain_run.h"

#include "capture/scanner/twain_words.h"

namespace folidex {

namespace {

using twain::Command;
using twain::Kind;
using twain::Outcome;

constexpr std::chrono::milliseconds kLook{20};

} // namespace

TwainRun::TwainRun(TwainSettings settings, TwainSource source, ScanWishes wishes, quintptr owner)
    : settings_(std::move(settings)), source_(std::move(source)), wishes_(wishes), owner_(owner) {}

QStringList TwainRun::task() const {
    // Whether to go on until the feeder is empty is wished for once the source is open; the
    // helper must know before, so it always does, and one page is made of it here.
    const std::uint32_t wishes = (wishes_.use_feeder ? twain::kFeeder : 0u) |
                                 (wishes_.auto_feed ? twain::kAutoFeed : 0u) |
                                 (wishes_.show_progress ? twain::kProgress : 0u) |
                                 (wishes_.both_sides ? twain::kDuplex : 0u) | twain::kUntilEmpty;
    return {QStringLiteral("scan"),
            QStringLiteral("--index"),
            QString::number(source_.index),
            QStringLiteral("--name"),
            source_.name,
            QStringLiteral("--owner"),
            QString::number(owner_),
            QStringLiteral("--wishes"),
            QString::number(wishes)};
}

bool TwainRun::open(ScanControl& control) {
    if (control.cancelled())
        return false;
    helper_ = std::make_unique<TwainHelper>(source_.name);
    helper_->start(settings_.program(source_.bits), task());
    heard_.start();
    const auto frame = next(control);
    if (!frame)
        return false;
    if (frame->kind == Kind::kOpened)
        return true;
    if (frame->kind != Kind::kDone)
        out_of_step(frame->kind);
    const auto ending = frame->as<twain::Ending>();
    // The manager or the driver has told the user.
    if (ending.outcome == Outcome::kNotOpened || ending.outcome == Outcome::kCancelled)
        return false;
    throw twain_error(source_.name, ending);
}

void TwainRun::acquire(ScanControl& control, bool until_empty, PageSpool& spool) {
    helper_->send(Command::kAcquire);
    heard_.start();
    for (;;) {
        const auto frame = next(control);
        if (!frame) {
            spool.clear();
            return;
        }
        switch (frame->kind) {
        case Kind::kTrouble:
            page_.reset();
            if (!go_on(frame->as<twain::Ending>(), control, spool))
                return;
            break;
        case Kind::kDone:
            end(frame->as<twain::Ending>(), control, spool);
            return;
        default:
            take(*frame, control, spool);
            if (!until_empty && spool.count() > 0) {
                helper_->send(Command::kCancel);
                return;
            }
        }
    }
}

void TwainRun::release(const std::function<bool()>& hurry) {
    if (helper_)
        helper_->release(settings_.release, [&](const std::optional<TwainFrame>& frame) {
            if (frame)
                hear(*frame);
            return hurry() || hangs();
        });
    helper_.reset();
}

void TwainRun::hear(const TwainFrame& frame) {
    heard_.start();
    scanning_ = scanning_ || frame.kind == Kind::kReady || frame.kind == Kind::kPage;
    going_down_ = going_down_ || frame.kind == Kind::kDone;
}

bool TwainRun::hangs() const {
    // Many drivers do not answer while they bring in paper, or put their scanner away.
    return !scanning_ && !going_down_ && heard_.hasExpired(settings_.silence.count());
}

std::optional<TwainFrame> TwainRun::next(ScanControl& control) {
    for (;;) {
        if (control.cancelled()) {
            helper_->send(Command::kCancel);
            return std::nullopt;
        }
        auto frame = helper_->next(kLook);
        if (frame) {
            hear(*frame);
            control.set_silent(false);
            if (frame->kind != Kind::kAlive)
                return frame;
        } else if (!helper_->running()) {
            throw twain_gone_error(source_.name, pages_, helper_->exit_code());
        } else if (heard_.hasExpired(settings_.silence.count())) {
            control.set_silent(true);
        }
    }
}

void TwainRun::take(const TwainFrame& frame, ScanControl& control, PageSpool& spool) {
    if ((frame.kind == Kind::kRows || frame.kind == Kind::kPageEnd) && !page_)
        out_of_step(frame.kind);
    switch (frame.kind) {
    case Kind::kWindow:
        break;
    case Kind::kReady:
        if (page_)
            out_of_step(frame.kind);
        control.begin_page(pages_ + 1);
        break;
    case Kind::kPage:
        if (page_)
            out_of_step(frame.kind);
        control.begin_page(pages_ + 1);
        of_page([&] { page_.emplace(frame.as<twain::PageHeader>()); });
        break;
    case Kind::kRows:
        of_page([&] { page_->add(frame.payload); });
        control.set_fraction(page_->fraction());
        break;
    case Kind::kPageEnd: {
        EncodedPage page;
        of_page([&] { page = page_->finish(frame.as<twain::PageEnd>()); });
        page_.reset();
        spool.add(page);
        ++pages_;
        break;
    }
    case Kind::kPageDrop:
        page_.reset();
        break;
    default:
        out_of_step(frame.kind);
    }
}

void TwainRun::of_page(const std::function<void()>& work) {
    try {
        work();
    } catch (const Error& why) {
        throw twain_page_error(source_.name, pages_ + 1, why);
    }
}

bool TwainRun::go_on(const twain::Ending& trouble, ScanControl& control, PageSpool& spool) {
    const auto answer =
        control.ask({pages_ + 1, pages_, twain_words(trouble.return_code, trouble.condition_code)},
                    [this] { helper_->take_in(); });
    switch (answer) {
    case ScanControl::Answer::kContinue:
        helper_->send(Command::kGoOn);
        heard_.start();
        return true;
    case ScanControl::Answer::kKeep:
        helper_->send(Command::kKeep);
        return false;
    case ScanControl::Answer::kDiscard:
        break;
    }
    helper_->send(Command::kCancel);
    control.cancel();
    spool.clear();
    return false;
}

void TwainRun::end(const twain::Ending& ending, ScanControl& control, PageSpool& spool) {
    switch (ending.outcome) {
    case Outcome::kGood:
        if (page_ || ending.pages != static_cast<std::uint32_t>(pages_))
            throw twain_out_of_step_error(
                source_.name,
                QStringLiteral("%1 pages sent, %2 came").arg(ending.pages).arg(pages_));
        return;
    case Outcome::kCancelled:
        control.cancel();
        spool.clear();
        return;
    default:
        throw twain_error(source_.name, ending);
    }
}

void TwainRun::out_of_step(Kind kind) const {
    throw twain_out_of_step_error(
        source_.name, QStringLiteral("frame %1 out of turn").arg(QLatin1Char(char(kind))));
}

} // namespace folidex
