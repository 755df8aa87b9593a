// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <cstdint>

namespace folidex {

/// Shape of a scanned page's pixels.
enum class PixelType {
    kBilevel, ///< 1 bit a pixel, most significant bit first, 1 is black
    kGray,    ///< 1 byte a pixel, 0 is black
    kRgb,     ///< 3 bytes a pixel: red, green, blue
};

/// What is known of a page before its rows arrive. Rows are packed: bytes_per_row() each.
struct PageFormat {
    PixelType type = PixelType::kGray;
    int width = 0;           ///< pixels
    int height = 0;          ///< rows; 0 when only the end of the page will tell
    double x_resolution = 0; ///< pixels an inch
    double y_resolution = 0; ///< rows an inch

    std::size_t bytes_per_row() const {
        const auto columns = static_cast<std::size_t>(width);
        switch (type) {
        case PixelType::kBilevel:
            return (columns + 7) / 8;
        case PixelType::kGray:
            return columns;
        case PixelType::kRgb:
            return columns * 3;
        }
        return 0;
    }
};

/// A page as it goes into a PDF: encoded pixels and what the PDF must say of them.
struct EncodedPage {
    enum class Filter { kGroup4, kJpeg };
    Filter filter = Filter::kJpeg;
    PixelType type = PixelType::kGray;
    int width = 0;
    int height = 0;
    double x_resolution = 0;
    double y_resolution = 0;
    QByteArray data;
};

} // namespace folidex
