// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain/page_sink.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace folidex::twain {

struct Colour {
    std::uint8_t red = 0, green = 0, blue = 0;
    bool operator==(const Colour&) const = default;
};

/// How pixels lie in a row of a driver's buffer.
struct PixelForm {
    enum class Order { kRgb, kBgr, kMasks };

    int bits = 0; ///< a pixel: 1, 4, 8 or 16 (grey or palette), 24, 32 or 48 (colour)
    Order order = Order::kRgb;
    bool zero_is_light = false;  ///< of grey and 1-bit pixels without a palette
    std::vector<Colour> palette; ///< of 1, 4 and 8 bits; may be shorter than the pixels reach
    std::array<std::uint32_t, 3> masks; ///< red, green, blue, with kMasks: 16 or 32 bits
};

/// Turns a driver's rows of one form into packed rows: 1-bit pixels stay 1 bit (the darker colour
/// becomes 1), grey and grey palettes become 8-bit grey, all else red, green, blue. Of samples of
/// 16 bits the upper 8 are kept. Throws PageRefused for a form that there is no road for and for a
/// width that cannot be.
class PixelRows {
public:
    PixelRows(const PixelForm& form, std::int32_t width);

    PageKind kind() const { return kind_; }
    /// Bytes of a row that the driver must have filled, without padding.
    std::size_t source_bytes() const { return source_bytes_; }
    std::size_t packed_bytes() const { return packed_bytes_; }
    /// `source` has source_bytes(), `packed` room for packed_bytes().
    void pack(const std::uint8_t* source, std::uint8_t* packed) const;

private:
    void decide_kind();
    void pack_bilevel(const std::uint8_t* source, std::uint8_t* packed) const;
    void pack_indexed(const std::uint8_t* source, std::uint8_t* packed) const;
    void pack_colour(const std::uint8_t* source, std::uint8_t* packed) const;
    void pack_masked(const std::uint8_t* source, std::uint8_t* packed) const;

    PixelForm form_;
    std::size_t width_ = 0;
    PageKind kind_ = PageKind::kRgb;
    std::size_t source_bytes_ = 0;
    std::size_t packed_bytes_ = 0;
    bool invert_ = false;             ///< 1-bit: a 0 of the driver is black
    std::array<Colour, 256> table_{}; ///< what each value of up to 8 bits looks like
};

} // namespace folidex::twain
