// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/page_encoder.h"
#include "common/error.h"

namespace folidex {
namespace {

constexpr int kStartOfImage = 0xD8;
constexpr int kEndOfImage = 0xD9;
constexpr int kStartOfScan = 0xDA;
constexpr int kQuantization = 0xDB;
constexpr int kBaseline = 0xC0;
constexpr int kProgressive = 0xC2;
constexpr int kJfif = 0xE0;

[[noreturn]] void refuse(const QString& why) {
    throw Error(kInternalError,
                QStringLiteral("The JPEG that the scanner delivered cannot be used: %1").arg(why));
}

/// Walks the markers of a JPEG from its start to its end and keeps what a PDF must know.
class JpegReader {
public:
    explicit JpegReader(const QByteArray& jpeg) : jpeg_(jpeg) {}
    void read();

    int components = 0;
    int width = 0;
    int height = 0;
    double x_resolution = 0; ///< 0 when it does not say
    double y_resolution = 0;

private:
    int byte(qsizetype at) const {
        if (at >= jpeg_.size())
            refuse(QStringLiteral("it is cut off after %1 bytes.").arg(jpeg_.size()));
        return static_cast<unsigned char>(jpeg_[at]);
    }
    int word(qsizetype at) const { return byte(at) << 8 | byte(at + 1); }
    int next_marker();
    void read_segment(int marker, qsizetype content, int size);
    void read_frame(int marker, qsizetype content, int size);
    void read_jfif(qsizetype content, int size);
    void skip_scan();

    const QByteArray& jpeg_;
    qsizetype at_ = 0;
    bool scanned_ = false;
    bool quantized_ = false;
};

int JpegReader::next_marker() {
    if (byte(at_) != 0xFF)
        refuse(QStringLiteral("byte %1 should begin a marker.").arg(at_));
    while (byte(at_) == 0xFF)
        ++at_;
    return byte(at_++);
}

void JpegReader::skip_scan() {
    // In coded data FF stands before 00 or a restart marker; anything else ends the data.
    for (;; ++at_) {
        at_ = jpeg_.indexOf('\xFF', at_);
        if (at_ < 0) {
            at_ = jpeg_.size();
            byte(at_);
        }
        const int next = byte(at_ + 1);
        if (next != 0 && next != 0xFF && (next & 0xF8) != 0xD0)
            return;
    }
}

void JpegReader::read_frame(int marker, qsizetype content, int size) {
    if (marker != kBaseline && marker != kProgressive)
        refuse(QStringLiteral("it is neither baseline nor progressive (frame %1).")
                   .arg(marker, 0, 16));
    if (components != 0)
        refuse(QStringLiteral("it holds more than one picture."));
    if (size < 6 || byte(content) != 8)
        refuse(QStringLiteral("it has not 8 bits a sample."));
    height = word(content + 1);
    width = word(content + 3);
    components = byte(content + 5);
    if (width == 0 || height == 0)
        refuse(QStringLiteral("it has %1 by %2 pixels.").arg(width).arg(height));
    if (components == 4)
        refuse(QStringLiteral("it holds printing colours (CMYK). Set the scanner to colour or "
                              "grey."));
    if (components != 1 && components != 3)
        refuse(QStringLiteral("it has %1 colour components.").arg(components));
    if (size != 6 + 3 * components)
        refuse(QStringLiteral("its frame has a wrong length."));
}

void JpegReader::read_jfif(qsizetype content, int size) {
    if (size < 12 || jpeg_.mid(content, 5) != QByteArrayView("JFIF\0", 5))
        return;
    const int unit = byte(content + 7);
    if (unit != 1 && unit != 2)
        return;
    const double per_inch = unit == 1 ? 1 : 2.54;
    x_resolution = word(content + 8) * per_inch;
    y_resolution = word(content + 10) * per_inch;
}

void JpegReader::read_segment(int marker, qsizetype content, int size) {
    const bool is_table = marker == 0xC4 || marker == 0xC8 || marker == 0xCC;
    if (marker >= 0xC0 && marker <= 0xCF && !is_table)
        read_frame(marker, content, size);
    else if (marker == kJfif)
        read_jfif(content, size);
    else if (marker == kQuantization)
        quantized_ = true;
}

void JpegReader::read() {
    if (jpeg_.size() < 2 || byte(0) != 0xFF || byte(1) != kStartOfImage)
        refuse(QStringLiteral("it does not begin as one."));
    at_ = 2;
    while (true) {
        const int marker = next_marker();
        if (marker == kEndOfImage)
            break;
        const int length = word(at_);
        if (length < 2)
            refuse(QStringLiteral("a segment at byte %1 has no length.").arg(at_));
        read_segment(marker, at_ + 2, length - 2);
        at_ += length;
        if (marker != kStartOfScan)
            continue;
        if (components == 0 || !quantized_)
            refuse(QStringLiteral("its picture begins before its size or its tables."));
        skip_scan();
        scanned_ = true;
    }
    if (!scanned_)
        refuse(QStringLiteral("it holds no picture."));
}

} // namespace

EncodedPage jpeg_page(const QByteArray& jpeg, double x_resolution, double y_resolution,
                      double otherwise) {
    JpegReader reader(jpeg);
    reader.read();
    EncodedPage page;
    page.filter = EncodedPage::Filter::kJpeg;
    page.type = reader.components == 1 ? PixelType::kGray : PixelType::kRgb;
    page.width = reader.width;
    page.height = reader.height;
    const auto first_known = [otherwise](double told, double pictured) {
        if (told != 0)
            return told;
        return pictured != 0 ? pictured : otherwise;
    };
    page.x_resolution = first_known(x_resolution, reader.x_resolution);
    page.y_resolution = first_known(y_resolution, reader.y_resolution);
    if (!is_resolution(page.x_resolution) || !is_resolution(page.y_resolution))
        refuse(QStringLiteral("its resolution is %1 by %2 pixels an inch.")
                   .arg(page.x_resolution)
                   .arg(page.y_resolution));
    page.data = jpeg;
    return page;
}

} // namespace folidex
