// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain/twain_types.h"

#include <string>
#include <vector>

namespace folidex::scripted {

/// A page of a script, e.g. "gray150" or "rgb300@200x100": its kind, pixels an inch, and pixels.
/// What is on it follows from the number of the page alone, so that checks compute it again:
/// level(x, y, page, colour) is the lower byte of 7x + 13y + 101page + 37colour.
struct Page {
    std::string kind; ///< bw vanilla gray gray4 gray16 rgb rgb48 rgb32 palette palette4 jpeg
    int resolution = 300;
    int width = 0;
    int height = 0;
    int number = 0; ///< from 0
};

/// "rgb300*2, bw200@100x50": with numbers of copies.
std::vector<Page> read_pages(const std::string& text);

/// As DAT_IMAGEINFO tells it.
twain::TW_IMAGEINFO image_info(const Page& page);
std::size_t row_bytes(const Page& page);
/// One row as it lies in a memory buffer.
void make_row(const Page& page, int y, std::uint8_t* out);
twain::TW_PALETTE8 palette(const Page& page);

/// The whole page as a packed bitmap.
std::vector<std::uint8_t> make_dib(const Page& page, bool top_down);

} // namespace folidex::scripted
