// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/page_encoder.h"
#include "common/error.h"
#include "page_tools.h"

#include <QImage>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>
#include <limits>

using namespace folidex;
using namespace folidex::testing;

Q_DECLARE_METATYPE(folidex::PageFormat)

class TestPageEncoder : public QObject {
    Q_OBJECT

private slots:
    void a_page_says_what_it_is_data();
    void a_page_says_what_it_is();
    void rows_in_any_pieces_make_the_same_page_data();
    void rows_in_any_pieces_make_the_same_page();
    void the_height_is_the_rows_that_came_data();
    void the_height_is_the_rows_that_came();
    void one_bit_takes_no_room_before_its_rows_come();
    void greys_come_back_within_a_shade();
    void colours_come_back_within_a_shade();
    void a_format_that_cannot_be_is_refused_data();
    void a_format_that_cannot_be_is_refused();
    void the_longest_sides_are_taken();
    void a_page_without_rows_is_refused();
    void part_of_a_row_is_refused_and_changes_nothing();
    void rows_beyond_the_longest_side_are_refused();
};

namespace {

PageFormat format_of(PixelType type, int width = 37, int height = 29) {
    return {type, width, height, 300, 200};
}

QByteArray some_picture(const PageFormat& format) {
    const int levels = format.type == PixelType::kBilevel ? 2 : 256;
    return draw(format, [&](int x, int y, int c) { return (x * 5 + y * 3 + c * 80) % levels; });
}

void add_types() {
    QTest::addColumn<PixelType>("type");
    QTest::newRow("1-bit") << PixelType::kBilevel;
    QTest::newRow("grey") << PixelType::kGray;
    QTest::newRow("colour") << PixelType::kRgb;
}

} // namespace

void TestPageEncoder::a_page_says_what_it_is_data() {
    add_types();
}

void TestPageEncoder::a_page_says_what_it_is() {
    QFETCH(PixelType, type);
    const PageFormat format = format_of(type);
    const EncodedPage page = encode(format, some_picture(format));
    QCOMPARE(page.filter, type == PixelType::kBilevel ? EncodedPage::Filter::kGroup4
                                                      : EncodedPage::Filter::kJpeg);
    QCOMPARE(page.type, type);
    QCOMPARE(page.width, 37);
    QCOMPARE(page.height, 29);
    QCOMPARE(page.x_resolution, 300.0);
    QCOMPARE(page.y_resolution, 200.0);
    if (type == PixelType::kBilevel)
        return;
    const EncodedPage again = jpeg_page(page.data, 0, 0);
    QCOMPARE(again.type, type);
    QCOMPARE(again.width, 37);
    QCOMPARE(again.height, 29);
    QCOMPARE(again.x_resolution, 300.0);
    QCOMPARE(again.y_resolution, 200.0);
}

void TestPageEncoder::rows_in_any_pieces_make_the_same_page_data() {
    add_types();
}

void TestPageEncoder::rows_in_any_pieces_make_the_same_page() {
    QFETCH(PixelType, type);
    const PageFormat format = format_of(type);
    const QByteArray picture = some_picture(format);
    const auto row_bytes = static_cast<qsizetype>(format.bytes_per_row());
    PageFormat unknown_height = format;
    unknown_height.height = 0;
    PageEncoder encoder(unknown_height);
    int rows = 0;
    for (int piece = 0; rows < format.height; piece = (piece + 1) % 4) {
        const int count = std::min(piece, format.height - rows);
        encoder.add_rows(QByteArrayView(picture).sliced(rows * row_bytes, count * row_bytes));
        rows += count;
        QCOMPARE(encoder.rows(), rows);
    }
    QCOMPARE(encoder.finish().data, encode(format, picture).data);
}

void TestPageEncoder::the_height_is_the_rows_that_came_data() {
    QTest::addColumn<PixelType>("type");
    QTest::addColumn<int>("announced");
    for (const int announced : {0, 5, 5000}) {
        QTest::addRow("1-bit, %d rows announced", announced) << PixelType::kBilevel << announced;
        QTest::addRow("grey, %d rows announced", announced) << PixelType::kGray << announced;
        QTest::addRow("colour, %d rows announced", announced) << PixelType::kRgb << announced;
    }
}

void TestPageEncoder::the_height_is_the_rows_that_came() {
    QFETCH(PixelType, type);
    QFETCH(int, announced);
    PageFormat format = format_of(type);
    const QByteArray picture = some_picture(format);
    format.height = announced;
    const EncodedPage page = encode(format, picture);
    QCOMPARE(page.height, 29);
    QCOMPARE(page.data, encode(format_of(type), picture).data);
}

void TestPageEncoder::one_bit_takes_no_room_before_its_rows_come() {
    PageEncoder encoder(format_of(PixelType::kBilevel, kLongestSide, kLongestSide));
    encoder.add_rows(QByteArray((kLongestSide + 7) / 8, '\0'));
    QVERIFY(encoder.finish().data.size() < 10);
}

void TestPageEncoder::greys_come_back_within_a_shade() {
    const PageFormat format = format_of(PixelType::kGray, 256, 64);
    const EncodedPage page = encode(format, draw(format, [](int x, int, int) { return x; }));
    const QImage image = QImage::fromData(page.data, "jpeg");
    QCOMPARE(image.size(), QSize(256, 64));
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 256; ++x)
            QVERIFY(std::abs(qGray(image.pixel(x, y)) - x) <= 4);
}

void TestPageEncoder::colours_come_back_within_a_shade() {
    const QList<QColor> colours{Qt::black, Qt::white,  Qt::red,  Qt::green,
                                Qt::blue,  Qt::yellow, Qt::cyan, QColor(200, 120, 40)};
    const PageFormat format = format_of(PixelType::kRgb, 32 * 8, 48);
    const QByteArray picture = draw(format, [&](int x, int, int component) {
        const QColor& colour = colours[x / 32];
        return component == 0 ? colour.red() : component == 1 ? colour.green() : colour.blue();
    });
    const QTemporaryDir folder;
    const QString pdf = folder.filePath(QStringLiteral("colours.pdf"));
    write_pdf(pdf, {encode(format, picture)});
    const QStringList files = extract_pictures(pdf, folder.filePath(QStringLiteral("pictures")));
    QCOMPARE(files.size(), 1);
    const PixelMap map = read_pixel_map(files.first());
    QCOMPARE(map.width, format.width);
    QCOMPARE(map.height, format.height);
    for (int stripe = 0; stripe < 8; ++stripe)
        for (int component = 0; component < 3; ++component) {
            const qsizetype at = (20 * format.width + stripe * 32 + 16) * 3 + component;
            const int was = static_cast<unsigned char>(picture[at]);
            const int is = static_cast<unsigned char>(map.pixels[at]);
            QVERIFY2(std::abs(was - is) <= 4, qPrintable(colours[stripe].name()));
        }
}

void TestPageEncoder::a_format_that_cannot_be_is_refused_data() {
    QTest::addColumn<PageFormat>("format");
    QTest::addColumn<QString>("word");
    const auto row = [](const char* name, const PageFormat& format, const char* word) {
        QTest::newRow(name) << format << QString::fromLatin1(word);
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinite = std::numeric_limits<double>::infinity();
    row("no width", {PixelType::kGray, 0, 10, 300, 300}, "width");
    row("negative width", {PixelType::kBilevel, -8, 10, 300, 300}, "width");
    row("negative height", {PixelType::kGray, 10, -1, 300, 300}, "height");
    row("no resolution", {PixelType::kGray, 10, 10, 0, 300}, "resolution");
    row("negative resolution", {PixelType::kRgb, 10, 10, 300, -300}, "resolution");
    row("resolution not a number", {PixelType::kRgb, 10, 10, nan, 300}, "resolution");
    row("infinite resolution", {PixelType::kBilevel, 10, 10, 300, infinite}, "resolution");
    row("absurd resolution", {PixelType::kBilevel, 10, 10, 1e9, 300}, "resolution");
    row("1-bit too wide", {PixelType::kBilevel, 65536, 10, 300, 300}, "65535");
    row("1-bit too high", {PixelType::kBilevel, 10, 65536, 300, 300}, "65535");
    row("grey too wide", {PixelType::kGray, 65501, 10, 300, 300}, "65500");
    row("colour too high", {PixelType::kRgb, 10, 65501, 300, 300}, "65500");
    row("as wide as can be", {PixelType::kRgb, INT_MAX, INT_MAX, 300, 300}, "65500");
}

void TestPageEncoder::a_format_that_cannot_be_is_refused() {
    QFETCH(PageFormat, format);
    QFETCH(QString, word);
    try {
        PageEncoder encoder(format);
        QFAIL("the format was taken");
    } catch (const Error& error) {
        QVERIFY2(error.description.contains(word), qPrintable(error.description));
    }
}

void TestPageEncoder::the_longest_sides_are_taken() {
    const PageFormat wide = format_of(PixelType::kGray, kLongestJpegSide, 2);
    QCOMPARE(encode(wide, some_picture(wide)).width, kLongestJpegSide);
    const PageFormat high = format_of(PixelType::kRgb, 2, kLongestJpegSide);
    QCOMPARE(encode(high, some_picture(high)).height, kLongestJpegSide);
    const PageFormat bits = format_of(PixelType::kBilevel, kLongestSide, 3);
    QCOMPARE(encode(bits, some_picture(bits)).width, kLongestSide);
}

void TestPageEncoder::a_page_without_rows_is_refused() {
    for (const PixelType type : {PixelType::kBilevel, PixelType::kGray, PixelType::kRgb}) {
        PageEncoder encoder(format_of(type));
        encoder.add_rows({});
        QVERIFY_EXCEPTION_THROWN(encoder.finish(), Error);
    }
}

void TestPageEncoder::part_of_a_row_is_refused_and_changes_nothing() {
    for (const PixelType type : {PixelType::kBilevel, PixelType::kGray, PixelType::kRgb}) {
        const PageFormat format = format_of(type);
        const QByteArray picture = some_picture(format);
        PageEncoder encoder(format);
        QVERIFY_EXCEPTION_THROWN(encoder.add_rows(picture.chopped(1)), Error);
        QCOMPARE(encoder.rows(), 0);
        encoder.add_rows(picture);
        QCOMPARE(encoder.finish().data, encode(format, picture).data);
    }
}

void TestPageEncoder::rows_beyond_the_longest_side_are_refused() {
    PageEncoder bits(format_of(PixelType::kBilevel, 1, 0));
    bits.add_rows(QByteArray(kLongestSide, '\0'));
    QVERIFY_EXCEPTION_THROWN(bits.add_rows("\x80"), Error);
    QCOMPARE(bits.finish().height, kLongestSide);
    PageEncoder grey(format_of(PixelType::kGray, 1, 0));
    grey.add_rows(QByteArray(kLongestJpegSide, '\x7F'));
    QVERIFY_EXCEPTION_THROWN(grey.add_rows("\x7F"), Error);
    QCOMPARE(grey.finish().height, kLongestJpegSide);
}

QTEST_GUILESS_MAIN(TestPageEncoder)
#include "test_page_encoder.moc"
