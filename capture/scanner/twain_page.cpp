// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain_page.h"

#include "common/error.h"

namespace folidex {

namespace {

constexpr double kUsualResolution = 300;
/// More than any page; a driver that never ends its picture must not eat all memory.
constexpr qsizetype kLargestJpeg = 512 << 20;

[[noreturn]] void refuse(const QString& why) {
    throw Error{kInternalError, QStringLiteral("The scanned page cannot be used: %1").arg(why)};
}

PixelType type_of(twain::PageKind kind) {
    switch (kind) {
    case twain::PageKind::kBilevel:
        return PixelType::kBilevel;
    case twain::PageKind::kGray:
        return PixelType::kGray;
    case twain::PageKind::kRgb:
        return PixelType::kRgb;
    case twain::PageKind::kJpeg:
        break;
    }
    refuse(QStringLiteral("it is of the unknown kind %1.").arg(static_cast<int>(kind)));
}

/// The resolution in one direction: as told, or as in the other one, or 0.
double resolution(double told, double other) {
    if (is_resolution(told))
        return told;
    return is_resolution(other) ? other : 0;
}

} // namespace

TwainPage::TwainPage(const twain::PageHeader& header) : header_(header) {
    header_.x_resolution = resolution(header.x_resolution, header.y_resolution);
    header_.y_resolution = resolution(header.y_resolution, header.x_resolution);
    if (header_.kind == twain::PageKind::kJpeg)
        return;
    const auto usual = [](double known) { return known > 0 ? known : kUsualResolution; };
    encoder_.emplace(PageFormat{type_of(header_.kind), header_.width, header_.height,
                                usual(header_.x_resolution), usual(header_.y_resolution)});
}

void TwainPage::add(const QByteArray& bytes) {
    if (encoder_) {
        encoder_->add_rows(bytes);
        return;
    }
    if (bytes.size() > kLargestJpeg - jpeg_.size())
        refuse(QStringLiteral("its JPEG does not end."));
    jpeg_.append(bytes);
}

double TwainPage::fraction() const {
    if (!encoder_ || header_.height <= 0)
        return -1;
    return qMin(1.0, static_cast<double>(encoder_->rows()) / header_.height);
}

EncodedPage TwainPage::finish(const twain::PageEnd& end) {
    if (!encoder_)
        return jpeg_page(jpeg_, header_.x_resolution, header_.y_resolution, kUsualResolution);
    if (end.rows != static_cast<std::uint32_t>(encoder_->rows()))
        refuse(QStringLiteral("%1 rows of it came where %2 were sent.")
                   .arg(encoder_->rows())
                   .arg(end.rows));
    return encoder_->finish();
}

} // namespace folidex
