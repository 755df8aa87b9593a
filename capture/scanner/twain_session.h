// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain_sources.h"

#include <atomic>

namespace folidex {

/// TWAIN as this process uses it: one use of a source at a time, on one thread, and the list of
/// sources, which outlives the capture form.
class TwainSession {
public:
    explicit TwainSession(TwainSettings settings);

    /// The session with the helpers beside the program; there is one in the process.
    static std::shared_ptr<TwainSession> system();

    const TwainSettings& settings() const { return settings_; }
    TwainSources& sources() { return sources_; }
    const std::shared_ptr<ScannerThread>& thread() const { return thread_; }
    /// Set by somebody who does not want to wait for the release of an earlier source.
    const std::shared_ptr<std::atomic<bool>>& hurry() const { return hurry_; }

private:
    TwainSettings settings_;
    TwainSources sources_;
    std::shared_ptr<std::atomic<bool>> hurry_;
    std::shared_ptr<ScannerThread> thread_;
};

} // namespace folidex
