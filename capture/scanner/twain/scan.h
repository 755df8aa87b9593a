// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain/commands.h"
#include "capture/scanner/twain/failure.h"
#include "capture/scanner/twain/message_loop.h"
#include "capture/scanner/twain/options.h"
#include "capture/scanner/twain/session.h"

#include <chrono>

namespace folidex::twain {

/// One scan with an open source: its settings, its window, its pages, until the last page has
/// come, the user cancels, or it fails. The pages go out as frames while they come.
class Scan {
public:
    Scan(Session& session, const MessageLoop& loop, Commands& commands, const Options& options);

    /// How it ended. The source is left in whatever state that was; Session::close() releases it.
    /// Throws Failure.
    Outcome run();
    std::uint32_t pages() const { return pages_; }

private:
    /// What comes after a page, or after the trouble with it.
    enum class Next { kPage, kWait, kEnd, kCancel };

    void apply_wishes();
    void choose_transfer();
    Next wait();
    Next page();
    Next after_failure(const Failure& failure, bool begun);
    bool is_cancelled() const;

    Session& session_;
    const MessageLoop& loop_;
    Commands& commands_;
    std::uint32_t wishes_;
    std::chrono::milliseconds idle_;
    bool by_memory_ = true;
    std::uint32_t pages_ = 0;
};

} // namespace folidex::twain
