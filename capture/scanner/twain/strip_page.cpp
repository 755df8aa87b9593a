// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/strip_page.h"

#include "capture/scanner/twain/twain_codes.h"

#include <utility>

namespace folidex::twain {

namespace {

/// Packed rows go on in pieces of about this size.
constexpr std::size_t kPiece = 256u << 10;
/// No page is a longer JPEG; a driver that goes on and on is stopped here.
constexpr std::uint64_t kLongestJpeg = 1ull << 30;

bool starts_a_jpeg(const std::uint8_t* data, std::size_t bytes) {
    return bytes >= 2 && data[0] == 0xff && data[1] == 0xd8;
}

/// The length that was announced; 0 when it was not, or cannot be.
std::int32_t announced(std::int32_t length) {
    if (length > kLongestPageSide)
        throw PageRefused{};
    return length > 0 ? length : 0;
}

} // namespace

double pixels_an_inch(TW_FIX32 number, TW_UINT16 unit) {
    const double value = number.Whole + number.Frac / 65536.0;
    if (!(value > 0))
        return 0;
    switch (unit) {
    case TWUN_INCHES:
        return value;
    case TWUN_CENTIMETERS:
        return value * 2.54;
    case TWUN_PICAS:
        return value * 6;
    case TWUN_POINTS:
        return value * 72;
    case TWUN_TWIPS:
        return value * 1440;
    case TWUN_MILLIMETERS:
        return value * 25.4;
    default:
        return 0;
    }
}

StripPage::StripPage(PageFacts facts, PageSink& sink) : facts_(std::move(facts)), sink_(sink) {}

bool StripPage::take(const TW_IMAGEMEMXFER& transfer, const std::uint8_t* data, std::size_t room) {
    if (transfer.BytesWritten > room)
        throw PageRefused{};
    if (transfer.BytesWritten == 0) {
        if (transfer.Rows != 0 && transfer.Rows != TWON_DONTCARE32)
            throw PageRefused{};
        return false;
    }
    if (!begun_)
        begin(transfer, data);
    return jpeg_ ? take_jpeg(transfer, data) : take_rows(transfer, data);
}

void StripPage::finish() const {
    if (jpeg_ ? jpeg_bytes_ == 0 : rows_ == 0)
        throw PageRefused{};
}

PixelForm StripPage::form() const {
    const TW_IMAGEINFO& info = facts_.info;
    PixelForm form;
    form.bits = info.BitsPerPixel;
    form.zero_is_light = facts_.zero_is_light;
    const auto type = static_cast<TW_UINT16>(info.PixelType);
    const bool known = type <= TWPT_PALETTE || type == TWPT_SRGB;
    // The planes of planar colours lie one behind the other; no office scanner sends them so.
    if (!known || (info.Planar != 0 && info.SamplesPerPixel > 1))
        throw PageRefused{Step::kForeignPage, type};
    if (type == TWPT_PALETTE) {
        form.palette = facts_.palette;
        if (form.palette.empty() || form.bits > 8)
            throw PageRefused{Step::kForeignPage, type};
    }
    const bool colours = type == TWPT_RGB || type == TWPT_SRGB;
    if (colours != (form.bits == 24 || form.bits == 48))
        throw PageRefused{Step::kForeignPage, type};
    return form;
}

void StripPage::begin(const TW_IMAGEMEMXFER& transfer, const std::uint8_t* data) {
    // The user may have chosen in the source's window; what the data themselves say counts most.
    TW_UINT16 compression = facts_.info.Compression;
    if (transfer.Compression != TWON_DONTCARE16)
        compression = transfer.Compression;
    if (compression == TWCP_NONE && facts_.info.Compression == TWCP_JPEG)
        compression = starts_a_jpeg(data, transfer.BytesWritten) ? TWCP_JPEG : TWCP_NONE;
    if (compression != TWCP_NONE && compression != TWCP_JPEG)
        throw PageRefused{Step::kForeignPage, 0x10000u + compression};
    jpeg_ = compression == TWCP_JPEG;

    PageHeader header{};
    header.x_resolution = facts_.x_resolution;
    header.y_resolution = facts_.y_resolution;
    header.height = announced(facts_.info.ImageLength);
    if (jpeg_) {
        header.kind = PageKind::kJpeg;
        header.width = announced(facts_.info.ImageWidth);
    } else {
        columns_ = transfer.Columns;
        if (columns_ == TWON_DONTCARE32)
            columns_ = static_cast<std::uint32_t>(announced(facts_.info.ImageWidth));
        if (columns_ > static_cast<std::uint32_t>(kLongestPageSide))
            throw PageRefused{};
        pixels_.emplace(form(), static_cast<std::int32_t>(columns_));
        header.kind = pixels_->kind();
        header.width = static_cast<std::int32_t>(columns_);
    }
    begun_ = true;
    sink_.begin(header);
}

bool StripPage::take_rows(const TW_IMAGEMEMXFER& transfer, const std::uint8_t* data) {
    if (transfer.Rows == 0)
        return false;
    const std::uint64_t needed = pixels_->source_bytes();
    const bool tile = transfer.XOffset != 0 && transfer.XOffset != TWON_DONTCARE32;
    const bool narrower = transfer.Columns != columns_ && transfer.Columns != TWON_DONTCARE32;
    // The last row may come without its padding.
    const std::uint64_t reach = (std::uint64_t{transfer.Rows} - 1) * transfer.BytesPerRow + needed;
    if (tile || narrower || transfer.BytesPerRow < needed || reach > transfer.BytesWritten)
        throw PageRefused{};
    if (transfer.Rows > static_cast<std::uint32_t>(kLongestPageSide) - rows_)
        throw PageRefused{};

    const std::size_t step = pixels_->packed_bytes();
    const std::size_t most = kPiece / step + 1;
    for (std::uint32_t row = 0; row < transfer.Rows;) {
        std::size_t filled = 0;
        packed_.resize(most * step);
        for (; filled < most && row < transfer.Rows; ++filled, ++row)
            pixels_->pack(data + std::size_t{row} * transfer.BytesPerRow, &packed_[filled * step]);
        sink_.rows(packed_.data(), filled * step);
    }
    rows_ += transfer.Rows;
    return true;
}

bool StripPage::take_jpeg(const TW_IMAGEMEMXFER& transfer, const std::uint8_t* data) {
    jpeg_bytes_ += transfer.BytesWritten;
    if (jpeg_bytes_ > kLongestJpeg)
        throw PageRefused{};
    sink_.rows(data, transfer.BytesWritten);
    return true;
}

} // namespace folidex::twain
