// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/page_spool.h"
#include "capture/scanner/sane_error.h"
#include "capture/scanner/sane_page.h"
#include "capture/scanner/scan_control.h"
#include "capture/scanner/scan_wishes.h"

namespace folidex {

/// One acquisition from an open device, page by page into a spool: the feeder to its end, or
/// one page from the glass when the feeder is empty or there is none. A jam or an open cover
/// is put to the user. Cancelled, it leaves no pages; a failure throws Error. Scanner's thread.
class SaneAcquisition {
public:
    SaneAcquisition(const SaneApi& api, SANE_Handle handle, SaneWho who, ScanWishes wishes,
                    ScanControl& control, PageSpool& spool);
    void run();

private:
    enum class Ending { kPage, kNoMorePages, kCancelled, kEnough };

    void choose_feeder();
    bool turn_to_glass();
    void scan_pages();
    Ending page(int number);
    Ending ask(int number, SANE_Status status);
    /// One attempt at a page; kGood means that it is in the spool.
    SANE_Status attempt();
    SANE_Status frame(SanePage& page, bool& last);
    [[noreturn]] void fail(SANE_Status status) const;

    const SaneApi& api_;
    SANE_Handle handle_;
    SaneOptions options_;
    SaneWho who_;
    ScanWishes wishes_;
    ScanControl& control_;
    PageSpool& spool_;
    bool feeder_ = false;
    bool ran_out_ = false;
    SaneScale scale_;
    std::vector<SANE_Byte> buffer_;
};

} // namespace folidex
