// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain/page_sink.h"

#include <QByteArray>
#include <algorithm>
#include <optional>

namespace folidex::twain {

/// A page sink that keeps what comes.
struct CollectedPage : PageSink {
    std::optional<PageHeader> header;
    QByteArray data;
    int begins = 0;
    qsizetype largest_piece = 0;

    void begin(const PageHeader& page) override {
        header = page;
        ++begins;
    }
    void rows(const std::uint8_t* bytes, std::size_t count) override {
        data.append(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(count));
        largest_piece = std::max(largest_piece, static_cast<qsizetype>(count));
    }
};

/// The step at which `work` refuses a page, kNone when it does not.
template <typename Work> Step refused_at(const Work& work) {
    try {
        work();
    } catch (const PageRefused& refused) {
        return refused.step;
    }
    return Step::kNone;
}

} // namespace folidex::twain
