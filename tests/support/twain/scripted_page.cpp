// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/twain/scripted_page.h"

#include "capture/scanner/twain/twain_codes.h"
#include "tests/support/twain/script.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <windows.h>

namespace folidex::scripted {

using namespace twain;

namespace {

std::uint8_t level(const Page& page, int x, int y, int colour = 0) {
    return static_cast<std::uint8_t>(x * 7 + y * 13 + page.number * 101 + colour * 37);
}

struct Shape {
    const char* kind;
    int bits;
    int samples;
    TW_UINT16 type;
};

constexpr Shape kShapes[] = {
    {"bw", 1, 1, TWPT_BW},           {"vanilla", 1, 1, TWPT_BW},
    {"gray", 8, 1, TWPT_GRAY},       {"gray4", 4, 1, TWPT_GRAY},
    {"gray16", 16, 1, TWPT_GRAY},    {"rgb", 24, 3, TWPT_RGB},
    {"rgb48", 48, 3, TWPT_RGB},      {"rgb32", 32, 3, TWPT_RGB},
    {"palette", 8, 1, TWPT_PALETTE}, {"palette4", 4, 1, TWPT_PALETTE},
    {"jpeg", 24, 3, TWPT_RGB},
};

const Shape& shape_of(const Page& page) {
    for (const Shape& shape : kShapes)
        if (page.kind == shape.kind)
            return shape;
    std::fprintf(stderr, "no such kind of page: %s\n", page.kind.c_str());
    std::abort();
}

Page read_page(std::string text) {
    Page page;
    if (const std::size_t at = text.find('@'); at != std::string::npos) {
        std::sscanf(text.c_str() + at + 1, "%dx%d", &page.width, &page.height);
        text.resize(at);
    }
    // Longest name first: "gray16300" is 300 dots of gray16.
    std::size_t longest = 0;
    for (const Shape& shape : kShapes) {
        const std::size_t length = std::strlen(shape.kind);
        if (length > longest && text.compare(0, length, shape.kind) == 0 &&
            text.size() - length >= 2 && text[length] != '0')
            longest = length;
    }
    page.kind = text.substr(0, longest);
    page.resolution = std::atoi(text.c_str() + longest);
    if (page.width == 0) {
        page.width = static_cast<int>(8.27 * page.resolution);
        page.height = static_cast<int>(11.69 * page.resolution);
    }
    return page;
}

void colour_of(const Page& page, int index, std::uint8_t (&rgb)[3]) {
    const bool small = shape_of(page).bits == 4;
    const int value = small ? index * 17 : index;
    rgb[0] = static_cast<std::uint8_t>(value);
    rgb[1] = static_cast<std::uint8_t>(255 - value);
    rgb[2] = static_cast<std::uint8_t>(value ^ 0x55);
}

TW_FIX32 whole(int value) {
    return {static_cast<TW_INT16>(value), 0};
}

} // namespace

std::vector<Page> read_pages(const std::string& text) {
    std::vector<Page> pages;
    for (std::string item : split(text, ',')) {
        item.erase(0, item.find_first_not_of(' '));
        const auto parts = split(item, '*');
        const int copies = parts.size() > 1 ? std::atoi(parts[1].c_str()) : 1;
        for (int i = 0; i < copies; ++i) {
            pages.push_back(read_page(parts[0]));
            pages.back().number = static_cast<int>(pages.size()) - 1;
        }
    }
    return pages;
}

TW_IMAGEINFO image_info(const Page& page) {
    const Shape& shape = shape_of(page);
    TW_IMAGEINFO info{};
    info.XResolution = info.YResolution = whole(page.resolution);
    info.ImageWidth = page.width;
    info.ImageLength = page.height;
    info.SamplesPerPixel = static_cast<TW_INT16>(shape.samples);
    for (int i = 0; i < shape.samples; ++i)
        info.BitsPerSample[i] = static_cast<TW_INT16>(shape.bits / shape.samples);
    info.BitsPerPixel = static_cast<TW_INT16>(shape.bits);
    info.PixelType = static_cast<TW_INT16>(shape.type);
    info.Compression = page.kind == "jpeg" ? TWCP_JPEG : TWCP_NONE;
    return info;
}

std::size_t row_bytes(const Page& page) {
    return (static_cast<std::size_t>(page.width) * static_cast<std::size_t>(shape_of(page).bits) +
            7) /
           8;
}

void make_row(const Page& page, int y, std::uint8_t* out) {
    const Shape& shape = shape_of(page);
    std::memset(out, 0, row_bytes(page));
    if (shape.bits == 32)
        return; // only bitmaps have it
    const int step = shape.bits / 8 / shape.samples;
    for (int x = 0; x < page.width; ++x) {
        if (shape.bits == 1) {
            // Chocolate: a 0 is black. Vanilla: a 1 is.
            const bool black = (level(page, x, y) & 0x40) != 0;
            if (black == (page.kind == "vanilla"))
                out[x / 8] = static_cast<std::uint8_t>(out[x / 8] | 0x80 >> x % 8);
        } else if (shape.bits == 4) {
            const int value = level(page, x, y) >> 4;
            out[x / 2] = static_cast<std::uint8_t>(out[x / 2] | (x % 2 == 0 ? value << 4 : value));
        } else {
            for (int c = 0; c < shape.samples; ++c) {
                std::uint8_t* sample = out + (x * shape.samples + c) * step;
                *sample = 0x5a; // the lower byte of a deep sample, which nobody keeps
                sample[step - 1] = level(page, x, y, c);
            }
        }
    }
}

TW_PALETTE8 palette(const Page& page) {
    TW_PALETTE8 told{};
    told.NumColors = static_cast<TW_UINT16>(1 << shape_of(page).bits);
    told.PaletteType = TWPA_RGB;
    for (int i = 0; i < told.NumColors; ++i) {
        std::uint8_t rgb[3];
        colour_of(page, i, rgb);
        told.Colors[i] = {static_cast<std::uint8_t>(i), rgb[0], rgb[1], rgb[2]};
    }
    return told;
}

std::vector<std::uint8_t> make_dib(const Page& page, bool top_down) {
    const Shape& shape = shape_of(page);
    const bool masks = page.kind == "rgb32";
    const std::size_t colours = masks ? 3 : shape.bits <= 8 ? std::size_t{1} << shape.bits : 0;
    const std::size_t stride = (row_bytes(page) + 3) & ~std::size_t{3};
    const auto rows = static_cast<std::size_t>(page.height);
    std::vector<std::uint8_t> dib(sizeof(BITMAPINFOHEADER) + colours * 4 + stride * rows);
    auto* header = reinterpret_cast<BITMAPINFOHEADER*>(dib.data());
    header->biSize = sizeof *header;
    header->biWidth = page.width;
    header->biHeight = top_down ? -page.height : page.height;
    header->biPlanes = 1;
    header->biBitCount = static_cast<WORD>(shape.bits);
    header->biCompression = masks ? BI_BITFIELDS : BI_RGB;
    header->biXPelsPerMeter = header->biYPelsPerMeter =
        static_cast<LONG>(page.resolution / 0.0254 + 0.5);
    std::uint8_t* table = dib.data() + sizeof *header;
    const std::uint32_t mask[3] = {0xff, 0xff00, 0xff0000};
    if (masks)
        std::memcpy(table, mask, sizeof mask);
    for (std::size_t i = 0; !masks && i < colours; ++i) {
        const auto gray = static_cast<std::uint8_t>(i * 255 / (colours - 1));
        std::uint8_t rgb[3] = {gray, gray, gray};
        if (shape.type == TWPT_PALETTE)
            colour_of(page, static_cast<int>(i), rgb);
        if (page.kind == "vanilla")
            rgb[0] = rgb[1] = rgb[2] = static_cast<std::uint8_t>(255 - gray);
        const std::uint8_t entry[4] = {rgb[2], rgb[1], rgb[0], 0};
        std::memcpy(table + i * 4, entry, sizeof entry);
    }
    std::uint8_t* pixels = table + colours * 4;
    std::vector<std::uint8_t> row(row_bytes(page));
    for (int y = 0; y < page.height; ++y) {
        if (masks) {
            for (int x = 0; x < page.width; ++x)
                for (int c = 0; c < 3; ++c)
                    row[static_cast<std::size_t>(x * 4 + c)] = level(page, x, y, c);
        } else {
            make_row(page, y, row.data());
        }
        if (shape.bits == 24)
            for (std::size_t i = 0; i < row.size(); i += 3)
                std::swap(row[i], row[i + 2]);
        const int line = top_down ? y : page.height - 1 - y;
        std::memcpy(pixels + stride * static_cast<std::size_t>(line), row.data(), row.size());
    }
    return dib;
}

} // namespace folidex::scripted
