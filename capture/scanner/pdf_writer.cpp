// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/pdf_writer.h"

#include "capture/scanner/page_encoder.h"
#include "common/error.h"
#include "platform/system_files.h"

#include <QDateTime>
#include <QDir>
#include <QFileDevice>
#include <QUuid>
#include <algorithm>
#include <cmath>

namespace folidex {
namespace {

constexpr int kCatalog = 1;
constexpr int kPageTree = 2;
constexpr int kInfo = 3;

constexpr double kPointsPerInch = 72;
/// Readers take no longer side in units; UserUnit makes the unit larger than a point.
constexpr double kMostUnits = 14400;
/// A cross-reference entry has ten digits.
constexpr qint64 kLastOffset = 9'999'999'999;

QByteArray number(double value) {
    QByteArray text = QByteArray::number(value, 'f', 4);
    while (text.endsWith('0'))
        text.chop(1);
    if (text.endsWith('.'))
        text.chop(1);
    return text;
}

QByteArray reference(int object) {
    return QByteArray::number(object) + " 0 R";
}

void check(const EncodedPage& page) {
    const auto refuse = [](const QString& why) {
        throw Error(kInternalError,
                    QStringLiteral("A scanned page cannot go into the PDF: %1").arg(why));
    };
    if (page.width < 1 || page.height < 1)
        refuse(QStringLiteral("it has %1 by %2 pixels.").arg(page.width).arg(page.height));
    if (page.data.isEmpty())
        refuse(QStringLiteral("it is empty."));
    if (!is_resolution(page.x_resolution) || !is_resolution(page.y_resolution))
        refuse(QStringLiteral("its resolution is %1 by %2 pixels an inch.")
                   .arg(page.x_resolution)
                   .arg(page.y_resolution));
    if ((page.filter == EncodedPage::Filter::kGroup4) != (page.type == PixelType::kBilevel))
        refuse(QStringLiteral("its pixels and its encoding do not belong together."));
}

QByteArray image_entries(const EncodedPage& page) {
    const QByteArray width = QByteArray::number(page.width);
    const QByteArray height = QByteArray::number(page.height);
    QByteArray entries = "/Type /XObject /Subtype /Image /Width " + width + " /Height " + height;
    switch (page.filter) {
    case EncodedPage::Filter::kGroup4:
        // Decoded black is 0, which is black in DeviceGray: no BlackIs1.
        entries += " /ColorSpace /DeviceGray /BitsPerComponent 1 /Filter /CCITTFaxDecode"
                   " /DecodeParms << /K -1 /EndOfBlock true /Columns " +
                   width + " /Rows " + height + " >>";
        break;
    case EncodedPage::Filter::kJpeg:
        entries +=
            page.type == PixelType::kRgb ? " /ColorSpace /DeviceRGB" : " /ColorSpace /DeviceGray";
        entries += " /BitsPerComponent 8 /Filter /DCTDecode";
        break;
    }
    return entries;
}

[[noreturn]] void fail(const QIODevice& out) {
    const auto* file = qobject_cast<const QFileDevice*>(&out);
    const int number = file == nullptr ? kInternalError : system_failure().number;
    const QString into = file == nullptr
                             ? QString()
                             : QStringLiteral(" to ") + QDir::toNativeSeparators(file->fileName());
    throw Error(number, QStringLiteral("The PDF of the scanned pages could not be written%1: %2")
                            .arg(into, out.errorString()));
}

QByteArray creation_date() {
    const QDateTime now = QDateTime::currentDateTimeUtc();
    return "D:" + now.toString(QStringLiteral("yyyyMMddHHmmss")).toLatin1() + 'Z';
}

} // namespace

PdfWriter::PdfWriter(QIODevice& out) : out_(out), offsets_(kInfo) {
    // The second line tells programs that move the file that it is no text.
    write("%PDF-1.7\n%\xE2\xE3\xCF\xD3\n");
}

void PdfWriter::write(const QByteArray& bytes) {
    qint64 done = 0;
    forget_system_failure();
    while (done < bytes.size()) {
        const qint64 step = out_.write(bytes.constData() + done, bytes.size() - done);
        if (step <= 0)
            break;
        done += step;
    }
    position_ += done;
    if (done != bytes.size())
        fail(out_);
}

int PdfWriter::begin_object() {
    offsets_.push_back(0);
    const int object = static_cast<int>(offsets_.size());
    begin_object(object);
    return object;
}

void PdfWriter::begin_object(int object) {
    offsets_[static_cast<std::size_t>(object) - 1] = position_;
    write(QByteArray::number(object) + " 0 obj\n");
}

void PdfWriter::write_stream(const QByteArray& entries, const QByteArray& data) {
    write("<< " + entries + " /Length " + QByteArray::number(data.size()) + " >>\nstream\n");
    write(data);
    write("\nendstream\nendobj\n");
}

void PdfWriter::add_page(const EncodedPage& page) {
    check(page);
    const double points_wide = page.width * kPointsPerInch / page.x_resolution;
    const double points_high = page.height * kPointsPerInch / page.y_resolution;
    const double unit = std::max(1.0, std::ceil(std::max(points_wide, points_high) / kMostUnits));
    const QByteArray width = number(points_wide / unit);
    const QByteArray height = number(points_high / unit);

    const int image = begin_object();
    write_stream(image_entries(page), page.data);
    const int content = begin_object();
    write_stream({}, "q " + width + " 0 0 " + height + " 0 0 cm /Scan Do Q");
    page_objects_.push_back(begin_object());
    write("<< /Type /Page /Parent " + reference(kPageTree) + " /MediaBox [0 0 " + width + ' ' +
          height + (unit > 1 ? "] /UserUnit " + number(unit) : QByteArray("]")) +
          " /Resources << /XObject << /Scan " + reference(image) + " >> >> /Contents " +
          reference(content) + " >>\nendobj\n");
}

void PdfWriter::write_page_tree() {
    begin_object(kPageTree);
    write("<< /Type /Pages /Count " + QByteArray::number(page_objects_.size()) + " /Kids [");
    for (const int object : page_objects_)
        write('\n' + reference(object));
    write("\n] >>\nendobj\n");
}

void PdfWriter::write_info() {
    const QByteArray producer = "Folidex " + QByteArray::number(FOLIDEX_VERSION_MAJOR) + '.' +
                                QByteArray::number(FOLIDEX_VERSION_MINOR) + '.' +
                                QByteArray::number(FOLIDEX_VERSION_REVISION);
    begin_object(kInfo);
    write("<< /Producer (" + producer + ") /CreationDate (" + creation_date() + ") >>\nendobj\n");
}

void PdfWriter::write_trailer() {
    const qint64 table = position_;
    if (table > kLastOffset)
        throw Error(kInternalError, QStringLiteral("The scanned pages are too large for one PDF: "
                                                   "%1 bytes.")
                                        .arg(table));
    const QByteArray size = QByteArray::number(static_cast<qint64>(offsets_.size()) + 1);
    write("xref\n0 " + size + "\n0000000000 65535 f \n");
    for (const qint64 offset : offsets_)
        write(QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n");
    const QByteArray id = '<' + QUuid::createUuid().toRfc4122().toHex() + '>';
    write("trailer\n<< /Size " + size + " /Root " + reference(kCatalog) + " /Info " +
          reference(kInfo) + " /ID [" + id + ' ' + id + "] >>\nstartxref\n" +
          QByteArray::number(table) + "\n%%EOF\n");
}

void PdfWriter::finish() {
    if (page_objects_.empty())
        throw Error(kInternalError, QStringLiteral("A PDF without a page cannot be written."));
    begin_object(kCatalog);
    write("<< /Type /Catalog /Pages " + reference(kPageTree) + " >>\nendobj\n");
    write_page_tree();
    write_info();
    write_trailer();
    // A file keeps the last bytes back; a full disk must show here.
    forget_system_failure();
    if (auto* file = qobject_cast<QFileDevice*>(&out_); file != nullptr && !file->flush())
        fail(out_);
}

} // namespace folidex
