// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain/page_sink.h"

namespace folidex::twain {

/// Reads the packed device-independent bitmap (header, masks or palette, pixels) of `bytes` bytes
/// that a source hands over as a whole page: top-down or bottom-up, 1, 4 or 8 bits with a palette,
/// 16, 24 or 32 bits. Resolutions that are 0 are taken from the bitmap. Nothing is read beyond
/// `bytes`. Returns the rows. Throws PageRefused before the page begins at the sink.
std::uint32_t read_dib(const std::uint8_t* dib, std::size_t bytes, double x_resolution,
                       double y_resolution, PageSink& sink);

} // namespace folidex::twain
