// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/page_encoder.h"

#include "capture/scanner/group4.h"
#include "common/error.h"

#include <QBuffer>
#include <QImage>
#include <QImageWriter>
#include <cmath>
#include <new>
#include <optional>
#include <utility>

namespace folidex {
namespace {

constexpr int kQuality = 75;
constexpr double kHighestResolution = 100'000;
constexpr double kInchesPerMetre = 1 / 0.0254;

[[noreturn]] void refuse(const QString& why) {
    throw Error(kInternalError, QStringLiteral("The scanned page cannot be used: %1").arg(why));
}

[[noreturn]] void out_of_memory(const PageFormat& format, int height) {
    throw Error(kOutOfMemory,
                QStringLiteral("There is not enough memory for a scanned page of %1 by %2 pixels. "
                               "Scan with a lower resolution.")
                    .arg(format.width)
                    .arg(height));
}

int longest_side(PixelType type) {
    return type == PixelType::kBilevel ? kLongestSide : kLongestJpegSide;
}

void check(const PageFormat& format) {
    const int longest = longest_side(format.type);
    if (format.width < 1)
        refuse(QStringLiteral("it has no width."));
    if (format.height < 0)
        refuse(QStringLiteral("its height is %1.").arg(format.height));
    if (format.width > longest || format.height > longest)
        refuse(QStringLiteral("it has %1 by %2 pixels, more than %3 a side. Scan with a lower "
                              "resolution.")
                   .arg(format.width)
                   .arg(format.height)
                   .arg(longest));
    if (!is_resolution(format.x_resolution) || !is_resolution(format.y_resolution))
        refuse(QStringLiteral("its resolution is %1 by %2 pixels an inch.")
                   .arg(format.x_resolution)
                   .arg(format.y_resolution));
}

} // namespace

bool is_resolution(double resolution) {
    return std::isfinite(resolution) && resolution > 0 && resolution <= kHighestResolution;
}

struct PageEncoder::State {
    PageFormat format;
    int rows = 0;
    std::optional<Group4Encoder> group4; ///< of a 1-bit page
    QByteArray raw;                      ///< of any other

    void take(QByteArrayView bytes);
    QByteArray jpeg();
};

void PageEncoder::State::take(QByteArrayView bytes) {
    if (!group4) {
        raw.append(bytes);
        return;
    }
    const auto row_bytes = static_cast<qsizetype>(format.bytes_per_row());
    for (qsizetype at = 0; at < bytes.size(); at += row_bytes)
        group4->add_row({reinterpret_cast<const std::uint8_t*>(bytes.data()) + at,
                         static_cast<std::size_t>(row_bytes)});
}

QByteArray PageEncoder::State::jpeg() {
    QImage image(reinterpret_cast<const uchar*>(raw.constData()), format.width, rows,
                 static_cast<qsizetype>(format.bytes_per_row()),
                 format.type == PixelType::kGray ? QImage::Format_Grayscale8
                                                 : QImage::Format_RGB888);
    if (image.isNull())
        out_of_memory(format, rows);
    image.setDotsPerMeterX(qRound(format.x_resolution * kInchesPerMetre));
    image.setDotsPerMeterY(qRound(format.y_resolution * kInchesPerMetre));
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(kQuality);
    writer.setOptimizedWrite(true);
    if (!writer.write(image))
        refuse(QStringLiteral("it could not be made a JPEG (%1).").arg(writer.errorString()));
    return buffer.data();
}

PageEncoder::PageEncoder(const PageFormat& format) : state_(std::make_unique<State>()) {
    check(format);
    state_->format = format;
    try {
        if (format.type == PixelType::kBilevel)
            state_->group4.emplace(format.width);
        else
            state_->raw.reserve(format.height * static_cast<qsizetype>(format.bytes_per_row()));
    } catch (const std::bad_alloc&) {
        out_of_memory(format, format.height);
    }
}

PageEncoder::~PageEncoder() = default;

void PageEncoder::add_rows(QByteArrayView rows) {
    const auto row_bytes = static_cast<qsizetype>(state_->format.bytes_per_row());
    if (rows.size() % row_bytes != 0)
        refuse(QStringLiteral("%1 bytes came where rows have %2 bytes each.")
                   .arg(rows.size())
                   .arg(row_bytes));
    const qsizetype count = rows.size() / row_bytes;
    const int longest = longest_side(state_->format.type);
    if (count > longest - state_->rows)
        refuse(QStringLiteral("it has more than %1 rows.").arg(longest));
    try {
        state_->take(rows);
    } catch (const std::bad_alloc&) {
        out_of_memory(state_->format, state_->rows + static_cast<int>(count));
    }
    state_->rows += static_cast<int>(count);
}

int PageEncoder::rows() const {
    return state_->rows;
}

EncodedPage PageEncoder::finish() {
    if (state_->rows == 0)
        refuse(QStringLiteral("not one row of it arrived."));
    const bool bilevel = state_->group4.has_value();
    EncodedPage page;
    page.filter = bilevel ? EncodedPage::Filter::kGroup4 : EncodedPage::Filter::kJpeg;
    page.type = state_->format.type;
    page.width = state_->format.width;
    page.height = state_->rows;
    page.x_resolution = state_->format.x_resolution;
    page.y_resolution = state_->format.y_resolution;
    try {
        page.data = bilevel ? state_->group4->finish() : state_->jpeg();
    } catch (const std::bad_alloc&) {
        out_of_memory(state_->format, state_->rows);
    }
    return page;
}

} // namespace folidex
