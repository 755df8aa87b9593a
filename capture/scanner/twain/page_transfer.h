// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain/message_loop.h"
#include "capture/scanner/twain/session.h"
#include "capture/scanner/twain/strip_page.h"

#include <chrono>
#include <functional>

namespace folidex::twain {

/// Brings one page from a source that is ready (state 6) to the program, through memory buffers or
/// as a whole bitmap.
class PageTransfer {
public:
    using Clock = std::chrono::steady_clock;

    /// A source that gives nothing is given up after `idle`; `breathe` deals with waiting messages
    /// and tells whether to stop.
    PageTransfer(Session& session, bool by_memory, Clock::duration idle,
                 std::function<bool()> breathe);

    /// True when the page has come and its kPageEnd is out; false when the user cancelled, here or
    /// in the source's window. Throws Failure and PageRefused. In state 7 when the source began.
    bool run();
    /// Whether a kPage is out without an end.
    bool begun() const { return begun_; }

private:
    PageFacts ask() const;
    std::vector<Colour> palette() const;
    TW_UINT32 buffer_size() const;
    bool strips(const PageFacts& facts);
    bool whole(const PageFacts& facts);
    void end(std::uint32_t rows);
    [[noreturn]] void fail(Step step, TW_UINT16 answer) const;

    class Sink;
    Session& session_;
    bool by_memory_;
    Clock::duration idle_;
    std::function<bool()> breathe_;
    bool begun_ = false;
};

} // namespace folidex::twain
