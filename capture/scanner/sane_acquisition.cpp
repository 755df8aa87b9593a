// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/sane_acquisition.h"

#include <sane/saneopts.h>

namespace folidex {

namespace {

constexpr std::size_t kReadSize = 64 * 1024;
constexpr std::chrono::milliseconds kPauseWithoutData{5};
constexpr const char* kAdfMode = "adf-mode";
constexpr const char* kDuplex = "duplex";

} // namespace

SaneAcquisition::SaneAcquisition(const SaneApi& api, SANE_Handle handle, SaneWho who,
                                 ScanWishes wishes, ScanControl& control, PageSpool& spool)
    : api_(api), handle_(handle), options_(api, handle), who_(std::move(who)), wishes_(wishes),
      control_(control), spool_(spool), buffer_(kReadSize) {}

void SaneAcquisition::run() {
    choose_feeder();
    scale_ = sane_scale(options_);
    try {
        scan_pages();
    } catch (...) {
        api_.cancel(handle_);
        throw;
    }
    // Ends the scan for the device too: it releases the feeder and parks its lamp.
    api_.cancel(handle_);
    if (control_.cancelled())
        spool_.clear();
}

void SaneAcquisition::choose_feeder() {
    if (!wishes_.use_feeder)
        return;
    const QList<QByteArray> sources = options_.choices(SANE_NAME_SCAN_SOURCE);
    const QByteArray source = feeder_source(sources, wishes_.both_sides);
    if (source.isEmpty()) {
        // Without a choice of sources only the kind of device tells.
        const QString kind = who_.type.toLower();
        feeder_ = sources.isEmpty() &&
                  (kind.contains(u"sheet") || kind.contains(u"adf") || kind.contains(u"feed"));
        return;
    }
    const SANE_Status status = options_.set_text(SANE_NAME_SCAN_SOURCE, source);
    if (status != SANE_STATUS_GOOD)
        fail(status);
    feeder_ = true;
    if (!wishes_.both_sides)
        return;
    // Drivers that keep both sides apart from the source. Refusing them costs only the backs.
    options_.switch_on(kDuplex);
    for (const QByteArray& mode : options_.choices(kAdfMode))
        if (mode.toLower().contains("duplex"))
            options_.set_text(kAdfMode, mode);
}

bool SaneAcquisition::turn_to_glass() {
    const QByteArray glass = glass_source(options_.choices(SANE_NAME_SCAN_SOURCE));
    if (!feeder_ || glass.isEmpty())
        return false;
    api_.cancel(handle_);
    feeder_ = false;
    const bool turned = options_.set_text(SANE_NAME_SCAN_SOURCE, glass) == SANE_STATUS_GOOD;
    scale_ = sane_scale(options_);
    return turned;
}

void SaneAcquisition::scan_pages() {
    for (;;) {
        switch (page(spool_.count() + 1)) {
        case Ending::kPage:
            if (!feeder_ || ran_out_ || !wishes_.auto_feed || !wishes_.until_empty)
                return;
            break;
        case Ending::kNoMorePages:
            if (spool_.count() > 0)
                return;
            if (!turn_to_glass())
                fail(SANE_STATUS_NO_DOCS);
            break;
        case Ending::kCancelled:
            control_.cancel();
            return;
        case Ending::kEnough:
            return;
        }
    }
}

SaneAcquisition::Ending SaneAcquisition::page(int number) {
    for (;;) {
        control_.begin_page(number);
        const SANE_Status status = attempt();
        if (control_.cancelled())
            return Ending::kCancelled;
        switch (status) {
        case SANE_STATUS_GOOD:
            return Ending::kPage;
        case SANE_STATUS_NO_DOCS:
            return Ending::kNoMorePages;
        case SANE_STATUS_CANCELLED:
            return Ending::kCancelled;
        case SANE_STATUS_JAMMED:
        case SANE_STATUS_COVER_OPEN: {
            const Ending ending = ask(number, status);
            if (ending != Ending::kPage)
                return ending;
            break;
        }
        default:
            fail(status);
        }
    }
}

SaneAcquisition::Ending SaneAcquisition::ask(int number, SANE_Status status) {
    // The device must leave the failed page before it can be started again.
    api_.cancel(handle_);
    switch (control_.ask({number, spool_.count(), sane_words(api_, status)})) {
    case ScanControl::Answer::kContinue:
        return Ending::kPage;
    case ScanControl::Answer::kKeep:
        return Ending::kEnough;
    case ScanControl::Answer::kDiscard:
        break;
    }
    return Ending::kCancelled;
}

SANE_Status SaneAcquisition::attempt() {
    SanePage page;
    bool last = false;
    while (!last) {
        if (control_.cancelled())
            return SANE_STATUS_CANCELLED;
        const SANE_Status status = frame(page, last);
        // A feeder that runs out in mid-page gives what it has of it.
        ran_out_ = status == SANE_STATUS_NO_DOCS && !page.empty();
        if (ran_out_)
            break;
        if (status != SANE_STATUS_EOF)
            return status;
    }
    if (page.empty())
        throw scanner_error(who_, QStringLiteral("a page without any content"),
                            QStringLiteral("Check that it is ready, then scan again."));
    spool_.add(page.finish());
    return SANE_STATUS_GOOD;
}

SANE_Status SaneAcquisition::frame(SanePage& page, bool& last) {
    SANE_Status status = api_.start(handle_);
    if (status != SANE_STATUS_GOOD)
        return status;
    SANE_Parameters parameters{};
    status = api_.get_parameters(handle_, &parameters);
    if (status != SANE_STATUS_GOOD)
        return status;
    // Only single colours come in several frames, whatever the driver says of others.
    const bool one_colour =
        parameters.format >= SANE_FRAME_RED && parameters.format <= SANE_FRAME_BLUE;
    last = parameters.last_frame != SANE_FALSE || !one_colour;
    page.begin_frame(parameters, scale_.resolution(parameters.pixels_per_line));
    while (!control_.cancelled()) {
        SANE_Int got = 0;
        status = api_.read(handle_, buffer_.data(), static_cast<SANE_Int>(buffer_.size()), &got);
        if (status != SANE_STATUS_GOOD)
            return status;
        if (got <= 0)
            control_.rest(kPauseWithoutData);
        else
            page.add(buffer_.data(), got);
        control_.set_fraction(page.fraction());
    }
    return SANE_STATUS_CANCELLED;
}

void SaneAcquisition::fail(SANE_Status status) const {
    throw sane_error(api_, status, who_);
}

} // namespace folidex
