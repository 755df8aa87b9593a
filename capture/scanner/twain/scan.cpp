// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/scan.h"

#include "capture/scanner/twain/frame_pipe.h"
#include "capture/scanner/twain/page_transfer.h"
#include "capture/scanner/twain/twain_codes.h"

namespace folidex::twain {

namespace {

/// What a hand in the feeder can put right.
bool is_paper_in_the_way(TW_UINT16 condition) {
    return condition == TWCC_PAPERJAM || condition == TWCC_PAPERDOUBLEFEED ||
           condition == TWCC_INTERLOCK;
}

} // namespace

Scan::Scan(Session& session, const MessageLoop& loop, Commands& commands, const Options& options)
    : session_(session), loop_(loop), commands_(commands), wishes_(options.wishes),
      idle_(options.idle) {}

bool Scan::is_cancelled() const {
    return commands_.is_cancelled() || FramePipe::of_process().is_broken();
}

Outcome Scan::run() {
    apply_wishes();
    if (!session_.enable(loop_.window()))
        return Outcome::kCancelled;
    FramePipe::of_process().send(Kind::kWindow);
    for (Next next = Next::kWait;;) {
        switch (next) {
        case Next::kWait:
            next = wait();
            break;
        case Next::kPage:
            next = page();
            break;
        case Next::kEnd:
            return pages_ > 0 ? Outcome::kGood : Outcome::kCancelled;
        case Next::kCancel:
            return Outcome::kCancelled;
        }
    }
}

void Scan::apply_wishes() {
    // What a source refuses it does not have; it scans all the same.
    constexpr TW_UINT16 kAllPages = 0xffff;
    if (wishes_ & kUntilEmpty)
        session_.set(CAP_XFERCOUNT, TWTY_INT16, kAllPages);
    if (wishes_ & kFeeder)
        session_.set(CAP_FEEDERENABLED, TWTY_BOOL, 1);
    if (wishes_ & kAutoFeed)
        session_.set(CAP_AUTOFEED, TWTY_BOOL, 1);
    if (wishes_ & kProgress)
        session_.set(CAP_INDICATORS, TWTY_BOOL, 1);
    if ((wishes_ & kDuplex) && session_.get(CAP_DUPLEX).value_or(0) != 0)
        session_.set(CAP_DUPLEXENABLED, TWTY_BOOL, 1);
    choose_transfer();
}

void Scan::choose_transfer() {
    by_memory_ = session_.set(ICAP_XFERMECH, TWTY_UINT16, TWSX_MEMORY) &&
                 session_.get(ICAP_XFERMECH).value_or(TWSX_MEMORY) == TWSX_MEMORY;
    if (!by_memory_)
        session_.set(ICAP_XFERMECH, TWTY_UINT16, TWSX_NATIVE);
    // Black and white stays lossless; of grey and colour the scanner's own JPEG is the best there
    // is.
    const bool jpeg = by_memory_ && session_.get(ICAP_PIXELTYPE).value_or(TWPT_BW) != TWPT_BW &&
                      session_.offers(ICAP_COMPRESSION, TWCP_JPEG);
    session_.set(ICAP_COMPRESSION, TWTY_UINT16, jpeg ? TWCP_JPEG : TWCP_NONE);
}

Scan::Next Scan::wait() {
    for (;;) {
        if (is_cancelled())
            return Next::kCancel;
        if (session_.take_ready()) {
            session_.ready();
            return Next::kPage;
        }
        if (session_.is_close_requested())
            return Next::kEnd;
        loop_.step([this](MSG& message) { return session_.offer(message); });
    }
}

Scan::Next Scan::page() {
    const auto breathe = [this] {
        loop_.drain([this](MSG& message) { return session_.offer(message); });
        return is_cancelled();
    };
    PageTransfer transfer(session_, by_memory_, idle_, breathe);
    FramePipe::of_process().send(Kind::kReady);
    try {
        if (!transfer.run()) {
            if (transfer.begun())
                FramePipe::of_process().send(Kind::kPageDrop);
            return Next::kCancel;
        }
    } catch (const PageRefused& refused) {
        return after_failure({Outcome::kFailed, refused.step, 0, 0, refused.detail},
                             transfer.begun());
    } catch (const Failure& failure) {
        return after_failure(failure, transfer.begun());
    }
    ++pages_;
    const bool more = session_.end_page();
    if (breathe())
        return Next::kCancel;
    // Who closes the source's window while pages come has enough of them.
    return more && !session_.is_close_requested() ? Next::kPage : Next::kEnd;
}

Scan::Next Scan::after_failure(const Failure& failure, bool begun) {
    FramePipe& pipe = FramePipe::of_process();
    if (begun)
        pipe.send(Kind::kPageDrop);
    if (is_cancelled())
        return Next::kCancel;
    // Sources that cannot count announce one page more than there is; the feeder is empty then.
    if (failure.condition_code == TWCC_NOMEDIA && pages_ > 0)
        return Next::kEnd;
    if (!is_paper_in_the_way(failure.condition_code) || pages_ == 0)
        throw failure;
    commands_.take();
    pipe.send(Kind::kTrouble, failure.ending(pages_));
    for (;;) {
        if (is_cancelled())
            return Next::kCancel;
        const char answer = commands_.take();
        if (answer == static_cast<char>(Command::kKeep))
            return Next::kEnd;
        if (answer == static_cast<char>(Command::kGoOn)) {
            // Sources that announce a page in two ways have left one announcement over.
            session_.take_ready();
            return session_.end_page() ? Next::kPage : Next::kWait;
        }
        loop_.step([this](MSG& message) { return session_.offer(message); });
    }
}

} // namespace folidex::twain
