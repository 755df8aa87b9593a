// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/sane_page.h"

#include "common/error.h"

namespace folidex {

namespace {

constexpr int kColours = 3;

[[noreturn]] void refuse(const QString& words) {
    throw Error{kInternalError, words};
}

void write_all(QTemporaryFile& file, QByteArrayView bytes) {
    if (file.write(bytes.data(), bytes.size()) != bytes.size())
        throw Error{kDiskFull, QStringLiteral("The scanned page could not be written to %1: %2")
                                   .arg(file.fileName(), file.errorString())};
}

} // namespace

QTemporaryFile* SanePage::plane_of(SANE_Frame format) {
    if (format < SANE_FRAME_RED || format > SANE_FRAME_BLUE)
        return nullptr;
    Plane& plane = planes_[static_cast<std::size_t>(format - SANE_FRAME_RED)];
    if (!plane) {
        plane = std::make_unique<QTemporaryFile>();
        if (!plane->open())
            throw Error{
                kPathNotFound,
                QStringLiteral("The temporary file for a scanned page could not be made: ") +
                    plane->errorString()};
    }
    return plane.get();
}

void SanePage::begin_frame(const SANE_Parameters& parameters, SaneResolution resolution) {
    rows_.emplace(parameters);
    ++frames_;
    plane_ = plane_of(parameters.format);
    const PageFormat format{plane_ ? PixelType::kRgb : rows_->type(), rows_->width(),
                            rows_->height(), resolution.x, resolution.y};
    if (frames_ == 1)
        format_ = format;
    else if (format.width != format_.width || format.type != format_.type)
        refuse(QStringLiteral("The scanner delivered the colours of a page in different widths."));
    if (!encoder_)
        encoder_ = std::make_unique<PageEncoder>(format_);
}

void SanePage::add(const SANE_Byte* bytes, qsizetype size) {
    const QByteArrayView rows = rows_->take(bytes, size);
    if (rows.isEmpty())
        return;
    if (plane_)
        write_all(*plane_, rows);
    else
        encoder_->add_rows(rows);
}

bool SanePage::empty() const {
    return !rows_ || (rows_->rows() == 0 && encoder_->rows() == 0);
}

double SanePage::fraction() const {
    if (!rows_ || rows_->height() <= 0)
        return -1;
    const double frame = qMin(1.0, static_cast<double>(rows_->rows()) / rows_->height());
    return plane_ ? (frames_ - 1 + frame) / kColours : frame;
}

EncodedPage SanePage::finish() {
    if (plane_)
        merge_planes();
    return encoder_->finish();
}

void SanePage::merge_planes() {
    for (const Plane& plane : planes_) {
        if (!plane)
            refuse(QStringLiteral("The scanner delivered a colour page with a colour missing."));
        if (!plane->seek(0))
            refuse(plane->errorString());
    }
    const qsizetype width = format_.width;
    QByteArray row(width * kColours, '\0');
    for (;;) {
        for (int colour = 0; colour < kColours; ++colour) {
            const QByteArray samples = planes_[static_cast<std::size_t>(colour)]->read(width);
            if (samples.size() < width)
                return;
            for (qsizetype x = 0; x < width; ++x)
                row[x * kColours + colour] = samples[x];
        }
        encoder_->add_rows(row);
    }
}

} // namespace folidex
