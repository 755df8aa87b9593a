// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/group4.h"
#include "common/error.h"
#include "page_tools.h"

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

using namespace folidex;
using namespace folidex::testing;

class TestGroup4 : public QObject {
    Q_OBJECT

private slots:
    void pixels_come_back_as_they_were_data();
    void pixels_come_back_as_they_were();
    void runs_of_every_length_come_back();
    void black_is_black_on_the_page();
    void an_empty_row_takes_one_bit();
    void bits_beyond_the_width_do_not_count();
    void a_row_of_another_length_is_refused();
    void a_page_without_width_is_refused();

private:
    void compare(const std::vector<PageFormat>& formats, const QList<QByteArray>& pictures);
    QTemporaryDir folder_;
};

namespace {

PageFormat bilevel(int width, int height) {
    return {PixelType::kBilevel, width, height, 300, 300};
}

QByteArray code(int width, const QByteArray& rows) {
    Group4Encoder encoder(width);
    const qsizetype row_bytes = (width + 7) / 8;
    for (qsizetype at = 0; at < rows.size(); at += row_bytes)
        encoder.add_row({reinterpret_cast<const std::uint8_t*>(rows.data()) + at,
                         static_cast<std::size_t>(row_bytes)});
    return encoder.finish();
}

} // namespace

void TestGroup4::compare(const std::vector<PageFormat>& formats,
                         const QList<QByteArray>& pictures) {
    std::vector<EncodedPage> pages;
    for (std::size_t i = 0; i < formats.size(); ++i)
        pages.push_back(encode(formats[i], pictures[static_cast<qsizetype>(i)]));
    const QString pdf = folder_.filePath(QStringLiteral("pages.pdf"));
    const QString pictures_folder = folder_.filePath(QStringLiteral("pictures"));
    write_pdf(pdf, pages);
    QVERIFY(QDir(pictures_folder).removeRecursively());
    const QStringList files = extract_pictures(pdf, pictures_folder);
    QCOMPARE(files.size(), pictures.size());
    for (qsizetype i = 0; i < files.size(); ++i) {
        const PageFormat& format = formats[static_cast<std::size_t>(i)];
        const PixelMap map = read_pixel_map(files[i]);
        QCOMPARE(map.width, format.width);
        QCOMPARE(map.height, format.height);
        QVERIFY2(map.pixels == pictures[i],
                 qPrintable(QStringLiteral("a page of %1 by %2 pixels came back otherwise")
                                .arg(format.width)
                                .arg(format.height)));
    }
}

void TestGroup4::pixels_come_back_as_they_were_data() {
    QTest::addColumn<std::function<int(int, int)>>("pixel");
    QTest::addColumn<int>("height");
    const auto row = [](const char* name, int height, std::function<int(int, int)> pixel) {
        QTest::newRow(name) << pixel << height;
    };
    row("white", 5, [](int, int) { return 0; });
    row("black", 5, [](int, int) { return 1; });
    row("one black row", 1, [](int, int) { return 1; });
    row("checkerboard", 6, [](int x, int y) { return (x + y) % 2; });
    row("columns", 4, [](int x, int) { return x % 2; });
    row("rows", 4, [](int, int y) { return y % 2; });
    row("slope to the right", 40, [](int x, int y) { return x / 3 % 5 == y % 5 ? 1 : 0; });
    row("slope to the left", 40, [](int x, int y) { return (x + 4 * y) % 17 < 5 ? 1 : 0; });
    row("last column", 3, [](int x, int y) { return (x + 1) % 35 == y ? 1 : 0; });
    row("noise", 23,
        [](int, int) { return static_cast<int>(QRandomGenerator::global()->bounded(2)); });
    row("sparse noise", 23,
        [](int, int) { return QRandomGenerator::global()->bounded(30) == 0 ? 1 : 0; });
    row("dense noise", 23,
        [](int, int) { return QRandomGenerator::global()->bounded(30) == 0 ? 0 : 1; });
}

void TestGroup4::pixels_come_back_as_they_were() {
    QFETCH(std::function<int(int, int)>, pixel);
    QFETCH(int, height);
    std::vector<PageFormat> formats;
    for (int width = 1; width <= 70; ++width)
        formats.push_back(bilevel(width, height));
    for (const int width : {127, 128, 129, 1727, 2479, 2480, 2481, 20000})
        formats.push_back(bilevel(width, height));
    QList<QByteArray> pictures;
    for (const PageFormat& format : formats)
        pictures.append(draw(format, [&](int x, int y, int) { return pixel(x, y); }));
    compare(formats, pictures);
}

void TestGroup4::runs_of_every_length_come_back() {
    // Every row has one run of the row's number in the middle of the other colour, and the rows
    // between are of one colour, so that each run stands in its own code.
    const PageFormat format = bilevel(9001, 10800);
    const auto pixel = [](int x, int y, int) {
        if (y % 2 != 0)
            return y % 4 == 1 ? 0 : 1;
        const bool inside = x >= 7 && x < 7 + y / 2;
        return inside != (y % 4 == 2) ? 1 : 0;
    };
    compare({format}, {draw(format, pixel)});
}

void TestGroup4::black_is_black_on_the_page() {
    const PageFormat format{PixelType::kBilevel, 72, 144, 72, 72};
    const auto upper_half = [](int, int y, int) { return y < 72 ? 1 : 0; };
    const QString pdf = folder_.filePath(QStringLiteral("black.pdf"));
    write_pdf(pdf, {encode(format, draw(format, upper_half))});
    const QString picture = folder_.filePath(QStringLiteral("black"));
    const QStringList options{QStringLiteral("-r"), QStringLiteral("72"), QStringLiteral("-gray"),
                              QStringLiteral("-singlefile")};
    QCOMPARE(
        test::run_tool(QStringLiteral("pdftoppm"), options + QStringList{pdf, picture}).exit_code,
        0);
    const PixelMap map = read_pixel_map(picture + QStringLiteral(".pgm"));
    QCOMPARE(map.width, 72);
    QCOMPARE(map.height, 144);
    // The edge itself is smoothed by the renderer.
    QCOMPARE(map.pixels.first(72 * 71), QByteArray(72 * 71, '\0'));
    QCOMPARE(map.pixels.last(72 * 71), QByteArray(72 * 71, '\xFF'));
}

void TestGroup4::an_empty_row_takes_one_bit() {
    const int rows = 3508;
    const int end_of_block_bits = 24;
    QCOMPARE(code(2480, QByteArray(310 * rows, '\0')).size(), (rows + end_of_block_bits + 7) / 8);
}

void TestGroup4::bits_beyond_the_width_do_not_count() {
    QCOMPARE(code(3, QByteArray("\x5F\xBF", 2)), code(3, QByteArray("\x40\xA0", 2)));
}

void TestGroup4::a_row_of_another_length_is_refused() {
    Group4Encoder encoder(9);
    const std::vector<std::uint8_t> row(3);
    QVERIFY_EXCEPTION_THROWN(encoder.add_row(row), Error);
    QVERIFY_EXCEPTION_THROWN(encoder.add_row(std::span(row).first(1)), Error);
    encoder.add_row(std::span(row).first(2));
}

void TestGroup4::a_page_without_width_is_refused() {
    QVERIFY_EXCEPTION_THROWN(Group4Encoder(0), Error);
    QVERIFY_EXCEPTION_THROWN(Group4Encoder(-1), Error);
}

QTEST_GUILESS_MAIN(TestGroup4)
#include "test_group4.moc"
