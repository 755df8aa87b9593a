// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain/pixel_rows.h"
#include "capture/scanner/twain/twain_types.h"

#include <optional>
#include <vector>

namespace folidex::twain {

/// Pixels an inch from a driver's number in its unit (TWUN_...); 0 when that says nothing.
double pixels_an_inch(TW_FIX32 number, TW_UINT16 unit);

/// What a source says of a page before it comes.
struct PageFacts {
    TW_IMAGEINFO info{};
    double x_resolution = 0; ///< pixels an inch; 0 when unknown
    double y_resolution = 0;
    bool zero_is_light = false;  ///< ICAP_PIXELFLAVOR is vanilla
    std::vector<Colour> palette; ///< of a page of TWPT_PALETTE
};

/// One page that a source hands over buffer by buffer. Everything the driver says is checked
/// against the buffer before it is read; the page begins at the sink with the first buffer that
/// holds something, since some drivers know its width only then. Throws PageRefused.
class StripPage {
public:
    StripPage(PageFacts facts, PageSink& sink);

    /// `transfer` as the source filled it, `room` bytes at `data`. Returns whether it held
    /// anything.
    bool take(const TW_IMAGEMEMXFER& transfer, const std::uint8_t* data, std::size_t room);
    /// After the last buffer; a page of nothing is none.
    void finish() const;
    bool begun() const { return begun_; }
    /// 0 for a JPEG.
    std::uint32_t rows() const { return rows_; }

private:
    void begin(const TW_IMAGEMEMXFER& transfer, const std::uint8_t* data);
    PixelForm form() const;
    bool take_rows(const TW_IMAGEMEMXFER& transfer, const std::uint8_t* data);
    bool take_jpeg(const TW_IMAGEMEMXFER& transfer, const std::uint8_t* data);

    PageFacts facts_;
    PageSink& sink_;
    bool begun_ = false;
    bool jpeg_ = false;
    std::uint32_t columns_ = 0;
    std::uint32_t rows_ = 0;
    std::uint64_t jpeg_bytes_ = 0;
    std::optional<PixelRows> pixels_;
    std::vector<std::uint8_t> packed_;
};

} // namespace folidex::twain
