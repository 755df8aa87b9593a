// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/dib_page.h"
#include "tests/unit/capture/collected_page.h"

#include <QTest>
#include <QtEndian>
#include <limits>
#include <vector>

using namespace folidex::twain;

namespace {

template <typename Number> void put(QByteArray& bytes, Number number) {
    const Number little = qToLittleEndian(number);
    bytes.append(reinterpret_cast<const char*>(&little), sizeof little);
}

/// The fields of a bitmap's header, in its order.
struct Header {
    quint32 size = 40;
    qint32 width = 2, height = 2;
    quint16 planes = 1, bits = 24;
    quint32 compression = 0, image = 0;
    qint32 x_pels = 11811, y_pels = 7874;
    quint32 used = 0, important = 0;

    QByteArray bytes() const {
        QByteArray out;
        put(out, size);
        put(out, width);
        put(out, height);
        put(out, planes);
        put(out, bits);
        put(out, compression);
        put(out, image);
        put(out, x_pels);
        put(out, y_pels);
        put(out, used);
        put(out, important);
        return out;
    }
};

/// Reads a bitmap from memory that is exactly as large, so that sanitizers see a byte too far.
std::uint32_t read(const QByteArray& dib, CollectedPage& page, double x = 0, double y = 0) {
    const std::vector<std::uint8_t> exact(dib.begin(), dib.end());
    return read_dib(exact.data(), exact.size(), x, y, page);
}

Step refuses(const QByteArray& dib) {
    CollectedPage page;
    const Step step = refused_at([&] { read(dib, page); });
    return page.begins == 0 ? step : Step::kNone;
}

const QByteArray kTwoByTwo = QByteArray::fromHex("0102030405060000"
                                                 "1112131415160000");

} // namespace

class TestTwainDibs : public QObject {
    Q_OBJECT

private slots:
    void a_bitmap_is_turned_the_right_way_up() {
        CollectedPage page;
        QCOMPARE(read(Header{}.bytes() + kTwoByTwo, page), 2u);
        QCOMPARE(page.header->kind, PageKind::kRgb);
        QCOMPARE(page.header->width, 2);
        QCOMPARE(page.header->height, 2);
        QCOMPARE(page.data.toHex(), QByteArray("131211161514030201060504"));
    }

    void a_top_down_bitmap_is_left_as_it_lies() {
        Header header;
        header.height = -2;
        CollectedPage page;
        QCOMPARE(read(header.bytes() + kTwoByTwo, page), 2u);
        QCOMPARE(page.header->height, 2);
        QCOMPARE(page.data.toHex(), QByteArray("030201060504131211161514"));
    }

    void the_resolution_is_the_bitmaps_unless_the_source_told_one() {
        CollectedPage page;
        read(Header{}.bytes() + kTwoByTwo, page);
        QVERIFY(std::abs(page.header->x_resolution - 300) < 0.01);
        QVERIFY(std::abs(page.header->y_resolution - 200) < 0.01);
        read(Header{}.bytes() + kTwoByTwo, page, 150, 75);
        QCOMPARE(double{page.header->x_resolution}, 150.0);
        QCOMPARE(double{page.header->y_resolution}, 75.0);
        Header header;
        header.x_pels = header.y_pels = -5;
        read(header.bytes() + kTwoByTwo, page);
        QCOMPARE(double{page.header->x_resolution}, 0.0);
    }

    void bitmaps_of_each_depth_are_read_data() {
        QTest::addColumn<int>("bits");
        QTest::addColumn<unsigned>("compression");
        QTest::addColumn<unsigned>("used");
        QTest::addColumn<unsigned>("header_size");
        QTest::addColumn<QByteArray>("rest");
        QTest::addColumn<QByteArray>("packed");
        const auto row = [](const char* name, int bits, unsigned compression, unsigned used,
                            unsigned header_size, const QByteArray& rest, const char* packed) {
            QTest::newRow(name) << bits << compression << used << header_size << rest
                                << QByteArray(packed);
        };
        const auto hex = [](const char* text) { return QByteArray::fromHex(text); };
        const QByteArray gray16 =
            hex("0000000011111100222222003333330044444400555555006666660077777700"
                "888888009999990aaaaaaa00bbbbbb00cccccc00dddddd00eeeeee00ffffff00");
        row("1 bit", 1, 0, 0, 40,
            hex("00000000ffffff00"
                "40000000"
                "80000000"),
            "4080");
        row("1 bit, white first", 1, 0, 2, 40,
            hex("ffffff0000000000"
                "40000000"
                "80000000"),
            "8040");
        row("4 bits", 4, 0, 0, 40,
            gray16 + hex("1f000000"
                         "a0000000"),
            "aa0011ff");
        row("8 bits, two colours used", 8, 0, 2, 40,
            hex("1020300040506000"
                "00010000"
                "01000000"),
            "605040302010302010605040");
        row("16 bits", 16, 0, 0, 40,
            hex("007c1f00"
                "e0030000"),
            "00ff00000000ff00000000ff");
        row("16 bits with masks", 16, 3, 0, 40,
            hex("00f80000"
                "e0070000"
                "1f000000"
                "00f81f00"
                "e0070000"),
            "00ff00000000ff00000000ff");
        row("24 bits with a palette that nobody needs", 24, 0, 1, 40, hex("99999900") + kTwoByTwo,
            "131211161514030201060504");
        row("32 bits", 32, 0, 0, 40,
            hex("01020300"
                "04050600"
                "11121300"
                "14151600"),
            "131211161514030201060504");
        row("32 bits with masks", 32, 3, 0, 40,
            hex("ff000000"
                "00ff0000"
                "0000ff00"
                "01020300"
                "04050600"
                "11121300"
                "14151600"),
            "111213141516010203040506");
        row("a long header with masks", 32, 3, 0, 108,
            hex("ff000000"
                "00ff0000"
                "0000ff00") +
                QByteArray(56, '\0') +
                hex("01020300"
                    "04050600"
                    "11121300"
                    "14151600"),
            "111213141516010203040506");
        row("a long header", 24, 0, 0, 124, QByteArray(84, '\0') + kTwoByTwo,
            "131211161514030201060504");
    }
    void bitmaps_of_each_depth_are_read() {
        QFETCH(int, bits);
        QFETCH(unsigned, compression);
        QFETCH(unsigned, used);
        QFETCH(unsigned, header_size);
        QFETCH(QByteArray, rest);
        QFETCH(QByteArray, packed);
        Header header;
        header.bits = static_cast<quint16>(bits);
        header.compression = compression;
        header.used = used;
        header.size = header_size;
        CollectedPage page;
        QCOMPARE(read(header.bytes() + rest, page), 2u);
        QCOMPARE(page.data.toHex(), packed);
        // A byte less is one too few, however the bitmap is made; only the last row's padding may
        // be missing.
        const qsizetype stride = ((2 * bits + 31) / 32) * 4;
        const qsizetype padding = stride - (2 * bits + 7) / 8;
        QCOMPARE(refuses((header.bytes() + rest).chopped(padding + 1)), Step::kBadPage);
    }

    void headers_that_cannot_be_are_refused_data() {
        QTest::addColumn<QByteArray>("dib");
        const auto row = [](const char* name, auto spoil) {
            Header header;
            spoil(header);
            QTest::newRow(name) << header.bytes() + kTwoByTwo;
        };
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("half a header") << Header{}.bytes().first(20);
        row("a header of nothing", [](Header& h) { h.size = 0; });
        row("an old short header", [](Header& h) { h.size = 12; });
        row("a header beyond the end", [](Header& h) { h.size = 1000; });
        row("a header that overflows", [](Header& h) { h.size = 0xfffffff0u; });
        row("no width", [](Header& h) { h.width = 0; });
        row("negative width", [](Header& h) { h.width = -2; });
        row("huge width", [](Header& h) { h.width = 0x7fffffff; });
        row("no height", [](Header& h) { h.height = 0; });
        row("a height beyond the end", [](Header& h) { h.height = 3; });
        row("huge height", [](Header& h) { h.height = 0x7fffffff; });
        row("the lowest height", [](Header& h) { h.height = std::numeric_limits<qint32>::min(); });
        row("a palette beyond the end", [](Header& h) { h.used = 100; });
        row("a palette that overflows", [](Header& h) { h.used = 0xfffffff0u; });
        row("8 bits and no room for the palette", [](Header& h) { h.bits = 8; });
        row("8 bits and a huge palette", [](Header& h) {
            h.bits = 8;
            h.used = 0x40000001u;
        });
        row("masks beyond the end", [](Header& h) {
            h.bits = 32;
            h.compression = 3;
        });
    }
    void headers_that_cannot_be_are_refused() {
        QFETCH(QByteArray, dib);
        QCOMPARE(refuses(dib), Step::kBadPage);
    }

    void bitmaps_in_foreign_forms_are_refused() {
        for (const quint32 compression : {1u, 2u, 4u, 5u, 0xffffffffu}) {
            Header header;
            header.compression = compression;
            QCOMPARE(refuses(header.bytes() + kTwoByTwo), Step::kForeignPage);
        }
        for (const int bits : {0, 2, 3, 12, 64, 65535}) {
            Header header;
            header.bits = static_cast<quint16>(bits);
            QCOMPARE(refuses(header.bytes() + QByteArray(1000, '\0')), Step::kForeignPage);
        }
    }
};

QTEST_APPLESS_MAIN(TestTwainDibs)
#include "test_twain_dibs.moc"
