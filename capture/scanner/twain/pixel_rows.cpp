// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/pixel_rows.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace folidex::twain {

namespace {

int lightness(const Colour& colour) {
    return colour.red * 2 + colour.green * 5 + colour.blue;
}

bool is_gray(const Colour& colour) {
    return colour.red == colour.green && colour.green == colour.blue;
}

std::uint8_t byte(std::uint32_t value) {
    return static_cast<std::uint8_t>(value & 0xff);
}

/// The sample under a mask, stretched to 8 bits.
std::uint8_t masked(std::uint32_t pixel, std::uint32_t mask) {
    if (mask == 0)
        return 0;
    const std::uint64_t top = mask >> std::countr_zero(mask);
    const std::uint64_t value = (pixel & mask) >> std::countr_zero(mask);
    return byte(static_cast<std::uint32_t>((value * 255 + top / 2) / top));
}

bool has_table(const PixelForm& form) {
    return form.bits == 1 || form.bits == 4 || form.bits == 8;
}

bool has_road(const PixelForm& form) {
    if (form.order == PixelForm::Order::kMasks)
        return form.bits == 16 || form.bits == 32;
    // 16 bits without masks are one deep grey sample, 48 three colours of that depth.
    return has_table(form) || form.bits == 16 || form.bits == 24 || form.bits == 48;
}

} // namespace

PixelRows::PixelRows(const PixelForm& form, std::int32_t width) : form_(form) {
    if (!has_road(form))
        throw PageRefused{Step::kForeignPage, static_cast<std::uint32_t>(form.bits)};
    if (width <= 0 || width > kLongestPageSide)
        throw PageRefused{};
    width_ = static_cast<std::size_t>(width);
    source_bytes_ = (width_ * static_cast<std::size_t>(form.bits) + 7) / 8;
    decide_kind();
    packed_bytes_ = kind_ == PageKind::kBilevel ? (width_ + 7) / 8
                    : kind_ == PageKind::kGray  ? width_
                                                : width_ * 3;
}

void PixelRows::decide_kind() {
    if (!has_table(form_)) {
        const bool gray = form_.bits == 16 && form_.order != PixelForm::Order::kMasks;
        kind_ = gray ? PageKind::kGray : PageKind::kRgb;
        return;
    }
    const std::size_t values = std::size_t{1} << form_.bits;
    if (form_.palette.empty()) {
        for (std::size_t value = 0; value < values; ++value) {
            const std::size_t level = form_.zero_is_light ? values - 1 - value : value;
            const auto gray = static_cast<std::uint8_t>(level * 255 / (values - 1));
            table_[value] = {gray, gray, gray};
        }
    } else {
        std::copy_n(form_.palette.begin(), std::min(values, form_.palette.size()), table_.begin());
    }
    if (form_.bits == 1) {
        kind_ = PageKind::kBilevel;
        // A palette of one colour twice says nothing: then a 0 is black, as drivers mean it.
        invert_ = lightness(table_[0]) <= lightness(table_[1]);
    } else {
        const auto used = table_.begin() + static_cast<std::ptrdiff_t>(values);
        kind_ = std::all_of(table_.begin(), used, is_gray) ? PageKind::kGray : PageKind::kRgb;
    }
}

void PixelRows::pack(const std::uint8_t* source, std::uint8_t* packed) const {
    if (form_.bits == 1)
        pack_bilevel(source, packed);
    else if (has_table(form_))
        pack_indexed(source, packed);
    else if (form_.order == PixelForm::Order::kMasks)
        pack_masked(source, packed);
    else
        pack_colour(source, packed);
}

void PixelRows::pack_bilevel(const std::uint8_t* source, std::uint8_t* packed) const {
    const std::uint8_t flip = invert_ ? 0xff : 0;
    for (std::size_t i = 0; i < packed_bytes_; ++i)
        packed[i] = static_cast<std::uint8_t>(source[i] ^ flip);
    // What lies behind the last pixel is the driver's rubbish.
    if (const std::size_t rest = width_ % 8)
        packed[packed_bytes_ - 1] &= byte(0xff00u >> rest);
}

void PixelRows::pack_indexed(const std::uint8_t* source, std::uint8_t* packed) const {
    for (std::size_t x = 0; x < width_; ++x) {
        std::uint8_t value = source[form_.bits == 8 ? x : x / 2];
        if (form_.bits == 4)
            value = x % 2 == 0 ? byte(value >> 4u) : byte(value & 15u);
        const Colour& colour = table_[value];
        if (kind_ == PageKind::kGray) {
            packed[x] = colour.red;
        } else {
            packed[x * 3] = colour.red;
            packed[x * 3 + 1] = colour.green;
            packed[x * 3 + 2] = colour.blue;
        }
    }
}

void PixelRows::pack_colour(const std::uint8_t* source, std::uint8_t* packed) const {
    const std::size_t step = form_.bits == 24 ? 1 : 2;
    const std::size_t samples = form_.bits == 16 ? width_ : width_ * 3;
    // Deep samples come low byte first.
    const std::uint8_t* top = source + step - 1;
    for (std::size_t i = 0; i < samples; ++i)
        packed[i] = top[i * step];
    if (form_.bits == 16 && form_.zero_is_light)
        std::for_each(packed, packed + samples, [](std::uint8_t& value) { value = byte(~value); });
    if (form_.bits != 16 && form_.order == PixelForm::Order::kBgr)
        for (std::size_t i = 0; i < samples; i += 3)
            std::swap(packed[i], packed[i + 2]);
}

void PixelRows::pack_masked(const std::uint8_t* source, std::uint8_t* packed) const {
    const std::size_t bytes = static_cast<std::size_t>(form_.bits) / 8;
    for (std::size_t x = 0; x < width_; ++x) {
        std::uint32_t pixel = 0;
        for (std::size_t i = 0; i < bytes; ++i)
            pixel |= static_cast<std::uint32_t>(source[x * bytes + i]) << (8 * i);
        for (std::size_t c = 0; c < 3; ++c)
            packed[x * 3 + c] = masked(pixel, form_.masks[c]);
    }
}

} // namespace folidex::twain
