// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/dib_page.h"

#include "capture/scanner/twain/pixel_rows.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace folidex::twain {

namespace {

constexpr std::size_t kPiece = 256u << 10;

/// BITMAPINFOHEADER, the part that every longer header begins with.
#pragma pack(push, 1)
struct DibHeader {
    std::uint32_t size;
    std::int32_t width, height;
    std::uint16_t planes, bits;
    std::uint32_t compression, image_bytes;
    std::int32_t x_pels, y_pels; ///< pixels a metre
    std::uint32_t colours_used, colours_important;
};
#pragma pack(pop)
static_assert(sizeof(DibHeader) == 40);

enum : std::uint32_t { kPlain = 0, kBitFields = 3 };
/// Longer headers hold the masks themselves, at the place where they follow a short one.
constexpr std::size_t kMasksAt = 40;
constexpr std::uint32_t kHeaderWithMasks = 52;

struct Dib {
    DibHeader header{};
    PixelForm form;
    std::size_t pixels_at = 0;
    bool bottom_up = true;
    std::int32_t height = 0;
};

std::uint32_t word_at(const std::uint8_t* data) {
    std::uint32_t word = 0;
    std::memcpy(&word, data, sizeof word);
    return word;
}

void read_masks(const std::uint8_t* dib, std::size_t bytes, Dib& result) {
    PixelForm& form = result.form;
    form.order = PixelForm::Order::kMasks;
    if (result.header.compression == kPlain) {
        form.masks = form.bits == 16 ? std::array{0x7c00u, 0x3e0u, 0x1fu}
                                     : std::array{0xff0000u, 0xff00u, 0xffu};
        return;
    }
    if (bytes < kMasksAt + 12)
        throw PageRefused{};
    for (std::size_t i = 0; i < 3; ++i)
        form.masks[i] = word_at(dib + kMasksAt + 4 * i);
    if (result.header.size < kHeaderWithMasks)
        result.pixels_at += 12;
}

void read_palette(const std::uint8_t* dib, std::size_t bytes, Dib& result) {
    const std::uint32_t most = 1u << result.form.bits;
    std::uint32_t colours = result.header.colours_used == 0 ? most : result.header.colours_used;
    colours = std::min(colours, most);
    if (bytes < result.pixels_at + std::size_t{colours} * 4)
        throw PageRefused{};
    for (std::uint32_t i = 0; i < colours; ++i) {
        const std::uint8_t* entry = dib + result.pixels_at + std::size_t{i} * 4;
        result.form.palette.push_back({entry[2], entry[1], entry[0]});
    }
}

Dib read_header(const std::uint8_t* dib, std::size_t bytes) {
    Dib result;
    DibHeader& header = result.header;
    if (bytes < sizeof header)
        throw PageRefused{};
    std::memcpy(&header, dib, sizeof header);
    if (header.size < sizeof header || header.size > bytes)
        throw PageRefused{};
    const bool masks = header.bits == 16 || header.bits == 32;
    if (header.compression != kPlain && !(header.compression == kBitFields && masks))
        throw PageRefused{Step::kForeignPage, 0x20000u + header.compression};
    result.bottom_up = header.height > 0;
    if (header.height < -kLongestPageSide || header.height > kLongestPageSide || header.height == 0)
        throw PageRefused{};
    result.height = result.bottom_up ? header.height : -header.height;

    result.form.bits = header.bits;
    result.form.order = PixelForm::Order::kBgr;
    result.pixels_at = header.size;
    if (masks)
        read_masks(dib, bytes, result);
    else if (header.bits <= 8)
        read_palette(dib, bytes, result);
    // Any bitmap may carry a palette, though only up to 8 bits need it.
    const std::uint32_t listed =
        header.colours_used == 0 && header.bits <= 8 ? 1u << header.bits : header.colours_used;
    if (listed > bytes / 4)
        throw PageRefused{};
    result.pixels_at += std::size_t{listed} * 4;
    return result;
}

double from_metre(std::int32_t pixels) {
    return pixels > 0 ? pixels * 0.0254 : 0;
}

} // namespace

std::uint32_t read_dib(const std::uint8_t* dib, std::size_t bytes, double x_resolution,
                       double y_resolution, PageSink& sink) {
    const Dib page = read_header(dib, bytes);
    const PixelRows pixels(page.form, page.header.width);
    const auto height = static_cast<std::size_t>(page.height);
    const std::uint64_t stride = (std::uint64_t{pixels.source_bytes()} + 3) & ~std::uint64_t{3};
    const std::uint64_t reach = page.pixels_at + stride * (height - 1) + pixels.source_bytes();
    if (reach > bytes)
        throw PageRefused{};

    PageHeader header{};
    header.kind = pixels.kind();
    header.width = page.header.width;
    header.height = page.height;
    header.x_resolution = x_resolution > 0 ? x_resolution : from_metre(page.header.x_pels);
    header.y_resolution = y_resolution > 0 ? y_resolution : from_metre(page.header.y_pels);
    sink.begin(header);

    const std::size_t step = pixels.packed_bytes();
    const std::size_t most = kPiece / step + 1;
    std::vector<std::uint8_t> packed(most * step);
    for (std::size_t row = 0; row < height;) {
        std::size_t filled = 0;
        for (; filled < most && row < height; ++filled, ++row) {
            const std::size_t line = page.bottom_up ? height - 1 - row : row;
            pixels.pack(dib + page.pixels_at + line * stride, &packed[filled * step]);
        }
        sink.rows(packed.data(), filled * step);
    }
    return static_cast<std::uint32_t>(height);
}

} // namespace folidex::twain
