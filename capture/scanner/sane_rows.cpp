// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/sane_rows.h"

#include "common/error.h"

#include <cstring>

namespace folidex {

namespace {

[[noreturn]] void refuse(const QString& why) {
    throw Error{kInternalError, QStringLiteral("The scanner delivered a page that cannot be "
                                               "read: %1.")
                                    .arg(why)};
}

qsizetype bytes_for(qsizetype pixels, int channels, int depth) {
    return depth == 1 ? (pixels + 7) / 8 * channels : pixels * channels * (depth / 8);
}

qsizetype pixels_in(qsizetype bytes, int channels, int depth) {
    return depth == 1 ? bytes / channels * 8 : bytes / (channels * (depth / 8));
}

} // namespace

SaneRows::SaneRows(const SANE_Parameters& parameters)
    : frame_(parameters.format), depth_(parameters.depth) {
    if (depth_ != 1 && depth_ != 8 && depth_ != 16)
        refuse(QStringLiteral("it has %1 bits a sample").arg(depth_));
    if (frame_ < SANE_FRAME_GRAY || frame_ > SANE_FRAME_BLUE)
        refuse(QStringLiteral("its frames are of the unknown kind %1").arg(int{frame_}));
    if (parameters.pixels_per_line <= 0)
        refuse(QStringLiteral("it has no width"));
    const int channels = frame_ == SANE_FRAME_RGB ? 3 : 1;
    qsizetype pixels = parameters.pixels_per_line;
    line_bytes_ = parameters.bytes_per_line;
    if (line_bytes_ <= 0)
        line_bytes_ = bytes_for(pixels, channels, depth_);
    else if (line_bytes_ < bytes_for(pixels, channels, depth_))
        pixels = pixels_in(line_bytes_, channels, depth_);
    if (pixels <= 0)
        refuse(QStringLiteral("its lines hold no pixel"));
    width_ = static_cast<int>(pixels);
    height_ = qMax(0, parameters.lines);
    if (frame_ == SANE_FRAME_RGB)
        type_ = PixelType::kRgb;
    else if (frame_ == SANE_FRAME_GRAY && depth_ == 1)
        type_ = PixelType::kBilevel;
    row_bytes_ = static_cast<qsizetype>(PageFormat{type_, width_, 0, 0, 0}.bytes_per_row());
}

QByteArrayView SaneRows::take(const SANE_Byte* bytes, qsizetype size) {
    out_.resize(0);
    partial_.append(reinterpret_cast<const char*>(bytes), size);
    const qsizetype lines = partial_.size() / line_bytes_;
    out_.reserve(lines * row_bytes_);
    for (qsizetype line = 0; line < lines; ++line)
        convert(partial_.constData() + line * line_bytes_);
    partial_.remove(0, lines * line_bytes_);
    rows_ += lines;
    return out_;
}

void SaneRows::convert(const char* line) {
    if (depth_ == 16)
        append_wide(line, row_bytes_);
    else if (depth_ == 1 && type_ != PixelType::kBilevel)
        append_bits(line);
    else
        out_.append(line, row_bytes_);
}

void SaneRows::append_wide(const char* line, qsizetype samples) {
    for (qsizetype k = 0; k < samples; ++k) {
        // In the byte order of this machine, as SANE delivers them.
        std::uint16_t sample = 0;
        std::memcpy(&sample, line + 2 * k, sizeof sample);
        out_.append(static_cast<char>(sample >> 8));
    }
}

void SaneRows::append_bits(const char* line) {
    const int channels = type_ == PixelType::kRgb ? 3 : 1;
    for (int x = 0; x < width_; ++x)
        for (int channel = 0; channel < channels; ++channel) {
            // Eight pixels of red, then the same eight of green, then of blue.
            const auto byte = static_cast<unsigned char>(line[x / 8 * channels + channel]);
            out_.append(byte & (0x80 >> x % 8) ? '\xff' : '\0');
        }
}

} // namespace folidex
