// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "page_tools.h"

#include "capture/scanner/page_encoder.h"
#include "capture/scanner/pdf_writer.h"

#include <QDir>
#include <QFile>

namespace folidex::testing {

QByteArray draw(const PageFormat& format, const std::function<int(int, int, int)>& pixel) {
    const auto row_bytes = static_cast<qsizetype>(format.bytes_per_row());
    QByteArray picture(row_bytes * format.height, '\0');
    const int components = format.type == PixelType::kRgb ? 3 : 1;
    for (int y = 0; y < format.height; ++y) {
        for (int i = 0; i < format.width * components; ++i) {
            const int value = pixel(i / components, y, i % components);
            if (format.type != PixelType::kBilevel) {
                picture[y * row_bytes + i] = static_cast<char>(value);
            } else if (value != 0) {
                char& byte = picture.data()[y * row_bytes + i / 8];
                byte = static_cast<char>(byte | 0x80 >> i % 8);
            }
        }
    }
    return picture;
}

EncodedPage encode(const PageFormat& format, const QByteArray& picture) {
    PageEncoder encoder(format);
    encoder.add_rows(picture);
    return encoder.finish();
}

void write_pdf(const QString& path, const std::vector<EncodedPage>& pages) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(path));
    PdfWriter writer(file);
    for (const EncodedPage& page : pages)
        writer.add_page(page);
    writer.finish();
}

PixelMap read_pixel_map(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray magic = file.readLine().trimmed();
    const QList<QByteArray> size = file.readLine().trimmed().split(' ');
    if (size.size() != 2)
        return {};
    if (magic != "P4" && file.readLine().trimmed() != "255")
        return {};
    PixelMap map{size[0].toInt(), size[1].toInt(), file.readAll()};
    const qsizetype row_bytes = (map.width + 7) / 8;
    if (magic == "P4" && map.width % 8 != 0)
        for (qsizetype last = row_bytes - 1; last < map.pixels.size(); last += row_bytes)
            map.pixels[last] = static_cast<char>(map.pixels[last] & 0xFF00 >> map.width % 8);
    return map;
}

QString complaints(const QString& pdf) {
    const test::Said said =
        test::run_tool(QStringLiteral("qpdf"), {QStringLiteral("--check"), pdf});
    const bool clean = said.exit_code == 0 &&
                       said.text.contains(QStringLiteral("No syntax or stream encoding errors")) &&
                       !said.text.contains(QStringLiteral("WARNING"));
    return clean ? QString() : said.text;
}

QStringList extract_pictures(const QString& pdf, const QString& folder,
                             const QStringList& options) {
    QDir().mkpath(folder);
    const test::Said said =
        test::run_tool(QStringLiteral("pdfimages"), options + QStringList{pdf, folder + u'/'});
    if (said.exit_code != 0 || !said.text.isEmpty()) {
        qWarning("pdfimages: %s", qPrintable(said.text));
        return {};
    }
    QStringList files;
    for (const QString& name : QDir(folder).entryList(QDir::Files, QDir::Name))
        files.append(folder + u'/' + name);
    return files;
}

} // namespace folidex::testing
