// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/page_spool.h"
#include "capture/scanner/scan_control.h"
#include "capture/scanner/scan_wishes.h"
#include "capture/scanner/twain_page.h"
#include "capture/scanner/twain_sources.h"

#include <QElapsedTimer>

namespace folidex {

/// One use of a source, from its opening to its release, in a helper's process. A source that
/// the manager would not open is no failure; a jam is put to the user; cancelled, a run leaves
/// no pages; all else throws Error. Cancelled or at its end, it leaves the driver to its way down:
/// one that is killed in the midst of it leaves a scanner that must be switched off and on.
/// Everything happens on the scanner's thread.
class TwainRun {
public:
    TwainRun(TwainSettings settings, TwainSource source, ScanWishes wishes, quintptr owner);

    /// Whether the source is open now.
    bool open(ScanControl& control);
    /// Scans into a spool; one page when it is not to go on until the feeder is empty.
    void acquire(ScanControl& control, bool until_empty, PageSpool& spool);
    /// Lets the helper end, in a while that can be cut short; a driver that hangs gets none.
    /// Nothing follows.
    void release(const std::function<bool()>& hurry);

private:
    QStringList task() const;
    std::optional<TwainFrame> next(ScanControl& control);
    void hear(const TwainFrame& frame);
    bool hangs() const;
    void take(const TwainFrame& frame, ScanControl& control, PageSpool& spool);
    void of_page(const std::function<void()>& work);
    bool go_on(const twain::Ending& trouble, ScanControl& control, PageSpool& spool);
    void end(const twain::Ending& ending, ScanControl& control, PageSpool& spool);
    [[noreturn]] void out_of_step(twain::Kind kind) const;

    TwainSettings settings_;
    TwainSource source_;
    ScanWishes wishes_;
    quintptr owner_;
    std::unique_ptr<TwainHelper> helper_;
    QElapsedTimer heard_; ///< of the helper
    std::optional<TwainPage> page_;
    int pages_ = 0;           ///< whole ones
    bool scanning_ = false;   ///< a page has begun
    bool going_down_ = false; ///< its last frame has come
};

} // namespace folidex
