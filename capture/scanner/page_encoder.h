// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/page.h"

#include <memory>

namespace folidex {

/// The longest side of a page in pixels, and of one that becomes a JPEG (the format's own writers
/// stop there).
inline constexpr int kLongestSide = 65535;
inline constexpr int kLongestJpegSide = 65500;

/// Turns the rows of one page into its encoded form as they arrive: 1-bit losslessly in Group 4
/// while it comes, grey and colour as JPEG (one raw page is held until finish). Any thread, one
/// at a time. Throws Error for a format that cannot be (no width, no resolution, a side too
/// long), for rows that do not fit it and when memory does not suffice.
class PageEncoder {
public:
    explicit PageEncoder(const PageFormat& format);
    ~PageEncoder();
    PageEncoder(const PageEncoder&) = delete;
    PageEncoder& operator=(const PageEncoder&) = delete;

    /// Takes whole packed rows: any number of bytes that is a multiple of bytes_per_row(). More
    /// rows than the format announced are welcome up to the longest side.
    void add_rows(QByteArrayView rows);
    /// Rows taken so far.
    int rows() const;
    /// Ends the page; its height is the rows that came (a page without rows throws Error).
    EncodedPage finish();

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// A page that the source delivered as a JPEG, kept byte for byte. A resolution of 0 is taken
/// from the picture itself; one that has none is taken for `otherwise`. Throws Error when it is no
/// whole baseline or progressive JPEG of 1 or 3 components, or when its resolution is nowhere to
/// be had.
EncodedPage jpeg_page(const QByteArray& jpeg, double x_resolution, double y_resolution,
                      double otherwise = 0);

/// Whether a number of pixels an inch can be one.
bool is_resolution(double resolution);

} // namespace folidex
