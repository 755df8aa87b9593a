// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/page.h"
#include "capture/scanner/sane_api.h"

namespace folidex {

/// Makes packed rows of one frame from its bytes, in whatever portions they arrive: padding at
/// the end of a line goes, 16-bit samples lose their lower byte, 1-bit colour becomes 8-bit.
/// A line length that cannot hold the pixels announced wins over their number. Throws Error for
/// a frame without width or with a shape that is not known.
class SaneRows {
public:
    explicit SaneRows(const SANE_Parameters& parameters);

    PixelType type() const { return type_; }
    int width() const { return width_; }
    /// Rows announced; 0 when only the end of the frame will tell.
    int height() const { return height_; }
    /// Rows completed so far.
    qint64 rows() const { return rows_; }

    /// The rows that these bytes complete; valid until the next call.
    QByteArrayView take(const SANE_Byte* bytes, qsizetype size);

private:
    void convert(const char* line);
    void append_wide(const char* line, qsizetype samples);
    void append_bits(const char* line);

    PixelType type_ = PixelType::kGray;
    SANE_Frame frame_;
    int depth_;
    int width_ = 0;
    int height_ = 0;
    qsizetype line_bytes_ = 0;
    qsizetype row_bytes_ = 0;
    qint64 rows_ = 0;
    QByteArray partial_;
    QByteArray out_;
};

} // namespace folidex
