// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// pages_probe <1-bit|grey|colour> <pages> <path>: scans made-up pages into a spool and a PDF, and
// prints the peak of its memory in KB.
// pages_probe keep: has a page in a spool, says "kept", and stays until its input ends.

#include "capture/scanner/page_encoder.h"
#include "capture/scanner/page_spool.h"
#include "capture/scanner/pdf_writer.h"
#include "common/error.h"
#include "tests/support/test_system.h"

#include <QCoreApplication>
#include <QFile>
#include <QRandomGenerator>
#include <QTextStream>

using namespace folidex;

namespace {

constexpr int kWidth = 616;
constexpr int kHeight = 880;
constexpr double kResolution = 75;

PixelType pixel_type(const QString& name) {
    if (name == QStringLiteral("1-bit"))
        return PixelType::kBilevel;
    return name == QStringLiteral("grey") ? PixelType::kGray : PixelType::kRgb;
}

EncodedPage scan_page(PixelType type, quint32 seed) {
    PageEncoder encoder({type, kWidth, 0, kResolution, kResolution});
    QRandomGenerator random(seed);
    // Noise, so that pages held in memory would show; every row of it comes eight times.
    std::vector<quint32> noise(PageFormat{type, kWidth}.bytes_per_row() / sizeof(quint32) + 1);
    for (int y = 0; y < kHeight; ++y) {
        if (y % 8 == 0)
            random.fillRange(noise.data(), static_cast<qsizetype>(noise.size()));
        encoder.add_rows(
            QByteArrayView(reinterpret_cast<const char*>(noise.data()),
                           static_cast<qsizetype>(PageFormat{type, kWidth}.bytes_per_row())));
    }
    return encoder.finish();
}

void make_pdf(PixelType type, int pages, const QString& path) {
    PageSpool spool;
    for (int i = 0; i < pages; ++i)
        spool.add(scan_page(type, static_cast<quint32>(i)));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw Error(kInternalError, path);
    PdfWriter writer(file);
    for (int i = 1; i <= spool.count(); ++i)
        writer.add_page(spool.page(i));
    writer.finish();
    QTextStream(stdout) << test::peak_memory_kb() << '\n';
}

void keep_page() {
    PageSpool spool;
    spool.add(scan_page(PixelType::kGray, 1));
    QTextStream(stdout) << "kept" << Qt::endl;
    QTextStream(stdin).readAll();
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    try {
        if (arguments.value(1) == QStringLiteral("keep"))
            keep_page();
        else
            make_pdf(pixel_type(arguments.value(1)), arguments.value(2).toInt(),
                     arguments.value(3));
    } catch (const Error& error) {
        QTextStream(stderr) << error.description << '\n';
        return 1;
    }
    return 0;
}
