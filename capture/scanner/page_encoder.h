// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/page.h"

#include <memory>

namespace folidex {

/// Turns the rows of one page into its encoded form as they arrive: 1-bit losslessly in Group 4
/// while it comes, grey and colour as JPEG. Any thread, one at a time. Throws Error for a
/// format that cannot be (no width, no resolution, more than 64 Ki pixels a side).
class PageEncoder {
public:
    explicit PageEncoder(const PageFormat& format);
    ~PageEncoder();
    PageEncoder(const PageEncoder&) = delete;
    PageEncoder& operator=(const PageEncoder&) = delete;

    /// Takes whole packed rows: any number of bytes that is a multiple of bytes_per_row().
    void add_rows(QByteArrayView rows);
    /// Rows taken so far.
    int rows() const;
    /// Ends the page; its height is the rows that came (a page without rows throws Error).
    EncodedPage finish();

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// A page that the source delivered as a JPEG, kept byte for byte. Throws Error when it is no
/// baseline or progressive JPEG of 1 or 3 components.
EncodedPage jpeg_page(const QByteArray& jpeg, double x_resolution, double y_resolution);

} // namespace folidex
