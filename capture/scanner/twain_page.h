// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/page_encoder.h"
#include "capture/scanner/twain/frames.h"

#include <optional>

namespace folidex {

/// One page of a helper, encoded as its rows arrive; a JPEG is kept as it is. A resolution that
/// is missing or cannot be is taken from the other direction, else for 300. Throws Error for
/// what is no page. Scanner's thread.
class TwainPage {
public:
    explicit TwainPage(const twain::PageHeader& header);

    /// Whole packed rows, or the next bytes of the JPEG.
    void add(const QByteArray& bytes);
    /// How much of the page is in, 0 to 1; below 0 when that is unknown.
    double fraction() const;
    EncodedPage finish(const twain::PageEnd& end);

private:
    twain::PageHeader header_;
    std::optional<PageEncoder> encoder_; ///< of a page that comes in rows
    QByteArray jpeg_;
};

} // namespace folidex
