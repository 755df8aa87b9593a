// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/strip_page.h"
#include "capture/scanner/twain/twain_codes.h"
#include "tests/unit/capture/collected_page.h"

#include <QTest>

using namespace folidex::twain;

namespace {

PageFacts gray_page(int width, int height) {
    PageFacts facts;
    facts.info.ImageWidth = width;
    facts.info.ImageLength = height;
    facts.info.SamplesPerPixel = 1;
    facts.info.BitsPerPixel = 8;
    facts.info.PixelType = TWPT_GRAY;
    facts.info.Compression = TWCP_NONE;
    facts.x_resolution = 200;
    facts.y_resolution = 100;
    return facts;
}

/// A buffer of `rows` rows as an honest source fills it.
TW_IMAGEMEMXFER strip_of(unsigned columns, unsigned rows, unsigned stride) {
    TW_IMAGEMEMXFER strip{};
    strip.Compression = TWCP_NONE;
    strip.BytesPerRow = stride;
    strip.Columns = columns;
    strip.Rows = rows;
    strip.BytesWritten = rows * stride;
    return strip;
}

struct Reading {
    CollectedPage page;
    StripPage strips;

    explicit Reading(const PageFacts& facts) : strips(facts, page) {}
    /// The buffer is exactly as large as its text, so that the sanitizers see a byte too far.
    bool take(const TW_IMAGEMEMXFER& strip, const QByteArray& buffer) {
        const std::vector<std::uint8_t> exact(buffer.begin(), buffer.end());
        return strips.take(strip, exact.data(), exact.size());
    }
    Step refuses(const TW_IMAGEMEMXFER& strip, const QByteArray& buffer) {
        return refused_at([&] { take(strip, buffer); });
    }
};

TW_FIX32 fixed(int whole, unsigned frac = 0) {
    return {static_cast<TW_INT16>(whole), static_cast<TW_UINT16>(frac)};
}

} // namespace

class TestTwainStrips : public QObject {
    Q_OBJECT

private slots:
    void strips_become_packed_rows() {
        Reading reading(gray_page(3, 4));
        QVERIFY(reading.take(strip_of(3, 2, 4), "abc.def."));
        QVERIFY(reading.take(strip_of(3, 1, 5), "ghi.."));
        QVERIFY(reading.take(strip_of(3, 1, 3), "jkl"));
        reading.strips.finish();
        QCOMPARE(reading.page.data, QByteArray("abcdefghijkl"));
        QCOMPARE(reading.page.begins, 1);
        QCOMPARE(reading.page.header->kind, PageKind::kGray);
        QCOMPARE(reading.page.header->width, 3);
        QCOMPARE(reading.page.header->height, 4);
        QCOMPARE(double{reading.page.header->x_resolution}, 200.0);
        QCOMPARE(double{reading.page.header->y_resolution}, 100.0);
        QCOMPARE(reading.strips.rows(), 4u);
    }

    void the_first_buffer_tells_a_width_that_was_not_known() {
        Reading reading(gray_page(-1, -1));
        QVERIFY(reading.take(strip_of(3, 1, 3), "abc"));
        QCOMPARE(reading.page.header->width, 3);
        QCOMPARE(reading.page.header->height, 0);
    }

    void a_source_that_fills_in_no_columns_means_the_announced_width() {
        Reading reading(gray_page(3, 2));
        TW_IMAGEMEMXFER strip = strip_of(TWON_DONTCARE32, 2, 3);
        strip.Compression = TWON_DONTCARE16;
        strip.XOffset = strip.YOffset = TWON_DONTCARE32;
        QVERIFY(reading.take(strip, "abcdef"));
        QCOMPARE(reading.page.data, QByteArray("abcdef"));
    }

    void buffers_without_anything_are_waited_over() {
        Reading reading(gray_page(3, 1));
        QVERIFY(!reading.take(strip_of(3, 0, 3), "abc"));
        QVERIFY(!reading.strips.begun());
        QVERIFY(reading.take(strip_of(3, 1, 3), "abc"));
        QVERIFY(!reading.take(strip_of(3, 0, 3), "abc"));
        reading.strips.finish();
    }

    void the_last_row_may_lack_its_padding() {
        Reading reading(gray_page(3, 2));
        TW_IMAGEMEMXFER strip = strip_of(3, 2, 4);
        strip.BytesWritten = 7;
        QVERIFY(reading.take(strip, "abc.def"));
        QCOMPARE(reading.page.data, QByteArray("abcdef"));
    }

    void a_page_of_nothing_is_refused() {
        const Reading reading(gray_page(3, 4));
        QCOMPARE(refused_at([&] { reading.strips.finish(); }), Step::kBadPage);
    }

    void large_strips_go_on_in_pieces_of_whole_rows() {
        Reading reading(gray_page(1000, 1000));
        QByteArray buffer(1000 * 1000, 'x');
        QVERIFY(reading.take(strip_of(1000, 1000, 1000), buffer));
        QCOMPARE(reading.page.data, buffer);
        QVERIFY(reading.page.largest_piece <= 300000);
        QCOMPARE(reading.page.largest_piece % 1000, qsizetype{0});
    }

    void sizes_that_do_not_agree_are_refused_data() {
        QTest::addColumn<unsigned>("columns");
        QTest::addColumn<unsigned>("rows");
        QTest::addColumn<unsigned>("stride");
        QTest::addColumn<unsigned>("written");
        QTest::addColumn<unsigned>("x_offset");
        QTest::newRow("more written than there is room") << 3u << 2u << 3u << 7u << 0u;
        QTest::newRow("written left as it was") << 3u << 2u << 3u << 0xffffffffu << 0u;
        QTest::newRow("rows beyond what was written") << 3u << 3u << 3u << 6u << 0u;
        QTest::newRow("rows that overflow") << 3u << 0x55555556u << 3u << 6u << 0u;
        QTest::newRow("rows left as they were") << 3u << 0xffffffffu << 3u << 6u << 0u;
        QTest::newRow("a row narrower than its pixels") << 3u << 2u << 2u << 6u << 0u;
        QTest::newRow("rows without bytes") << 3u << 2u << 3u << 0u << 0u;
        QTest::newRow("no row bytes at all") << 3u << 2u << 0u << 6u << 0u;
        QTest::newRow("row bytes that overflow") << 3u << 2u << 0xfffffffeu << 6u << 0u;
        QTest::newRow("no columns") << 0u << 2u << 3u << 6u << 0u;
        QTest::newRow("too many columns") << 65536u << 2u << 3u << 6u << 0u;
        QTest::newRow("far too many columns") << 0xfffffff0u << 2u << 3u << 6u << 0u;
        QTest::newRow("tiles") << 3u << 2u << 3u << 6u << 3u;
    }
    void sizes_that_do_not_agree_are_refused() {
        QFETCH(unsigned, columns);
        QFETCH(unsigned, rows);
        QFETCH(unsigned, stride);
        QFETCH(unsigned, written);
        QFETCH(unsigned, x_offset);
        Reading reading(gray_page(3, 2));
        TW_IMAGEMEMXFER strip = strip_of(columns, rows, stride);
        strip.BytesWritten = written;
        strip.XOffset = x_offset;
        QCOMPARE(reading.refuses(strip, "abcdef"), Step::kBadPage);
        QVERIFY(reading.page.data.isEmpty());
    }

    void a_strip_of_another_width_is_refused() {
        Reading reading(gray_page(3, 2));
        QVERIFY(reading.take(strip_of(3, 1, 3), "abc"));
        QCOMPARE(reading.refuses(strip_of(2, 1, 3), "abc"), Step::kBadPage);
    }

    void a_page_without_end_is_refused() {
        Reading reading(gray_page(1, -1));
        const QByteArray buffer(30000, 'x');
        QVERIFY(reading.take(strip_of(1, 30000, 1), buffer));
        QVERIFY(reading.take(strip_of(1, 30000, 1), buffer));
        QVERIFY(reading.take(strip_of(1, 5535, 1), buffer));
        QCOMPARE(reading.refuses(strip_of(1, 1, 1), buffer), Step::kBadPage);
        QCOMPARE(reading.strips.rows(), 65535u);
    }

    void a_length_that_cannot_be_is_refused() {
        Reading reading(gray_page(3, 65536));
        QCOMPARE(reading.refuses(strip_of(3, 1, 3), "abc"), Step::kBadPage);
    }

    void pages_in_foreign_forms_are_refused_data() {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("bits");
        QTest::addColumn<int>("samples");
        QTest::addColumn<bool>("planar");
        QTest::addColumn<bool>("refused");
        QTest::newRow("black and white") << int(TWPT_BW) << 1 << 1 << false << false;
        QTest::newRow("grey") << int(TWPT_GRAY) << 8 << 1 << false << false;
        QTest::newRow("one plane") << int(TWPT_GRAY) << 8 << 1 << true << false;
        QTest::newRow("colour") << int(TWPT_RGB) << 24 << 3 << false << false;
        QTest::newRow("standard colour") << int(TWPT_SRGB) << 24 << 3 << false << false;
        QTest::newRow("planar colour") << int(TWPT_RGB) << 24 << 3 << true << true;
        QTest::newRow("grey of colour's bits") << int(TWPT_GRAY) << 24 << 3 << false << true;
        QTest::newRow("colour of grey's bits") << int(TWPT_RGB) << 8 << 1 << false << true;
        QTest::newRow("palette that nobody told") << int(TWPT_PALETTE) << 8 << 1 << false << true;
        QTest::newRow("print colours") << 5 << 32 << 4 << false << true;
        QTest::newRow("infrared") << 16 << 8 << 1 << false << true;
        QTest::newRow("negative bits") << int(TWPT_GRAY) << -8 << 1 << false << true;
        QTest::newRow("negative type") << -1 << 8 << 1 << false << true;
    }
    void pages_in_foreign_forms_are_refused() {
        QFETCH(int, type);
        QFETCH(int, bits);
        QFETCH(int, samples);
        QFETCH(bool, planar);
        QFETCH(bool, refused);
        PageFacts facts = gray_page(1, 1);
        facts.info.PixelType = static_cast<TW_INT16>(type);
        facts.info.BitsPerPixel = static_cast<TW_INT16>(bits);
        facts.info.SamplesPerPixel = static_cast<TW_INT16>(samples);
        facts.info.Planar = planar ? 1 : 0;
        Reading reading(facts);
        QCOMPARE(reading.refuses(strip_of(1, 1, 8), QByteArray(8, 'x')),
                 refused ? Step::kForeignPage : Step::kNone);
    }

    void a_palette_colours_the_page() {
        PageFacts facts = gray_page(2, 1);
        facts.info.PixelType = TWPT_PALETTE;
        facts.palette = {{1, 2, 3}, {4, 5, 6}};
        Reading reading(facts);
        QVERIFY(reading.take(strip_of(2, 1, 2), QByteArray::fromHex("0100")));
        QCOMPARE(reading.page.header->kind, PageKind::kRgb);
        QCOMPARE(reading.page.data.toHex(), QByteArray("040506010203"));
    }

    void a_jpeg_is_kept_byte_for_byte() {
        PageFacts facts = gray_page(-1, -1);
        facts.info.Compression = TWCP_JPEG;
        Reading reading(facts);
        TW_IMAGEMEMXFER strip{};
        strip.Compression = TWCP_JPEG;
        strip.Rows = strip.Columns = strip.BytesPerRow = TWON_DONTCARE32;
        strip.BytesWritten = 4;
        QVERIFY(reading.take(strip, QByteArray::fromHex("ffd8ffe011")));
        strip.BytesWritten = 2;
        QVERIFY(reading.take(strip, QByteArray::fromHex("ffd911")));
        reading.strips.finish();
        QCOMPARE(reading.page.header->kind, PageKind::kJpeg);
        QCOMPARE(reading.page.header->height, 0);
        QCOMPARE(reading.page.data.toHex(), QByteArray("ffd8ffe0ffd9"));
        QCOMPARE(reading.strips.rows(), 0u);
    }

    void what_the_data_say_of_their_compression_counts() {
        struct Case {
            int announced, told;
            const char* data;
            PageKind kind;
        };
        for (const Case& one : {Case{TWCP_NONE, TWCP_JPEG, "ffd8ff", PageKind::kJpeg},
                                Case{TWCP_JPEG, TWON_DONTCARE16, "ffd8ff", PageKind::kJpeg},
                                Case{TWCP_JPEG, TWCP_NONE, "ffd8ff", PageKind::kJpeg},
                                Case{TWCP_JPEG, TWCP_NONE, "010203", PageKind::kGray},
                                Case{TWCP_NONE, TWCP_NONE, "ffd8ff", PageKind::kGray}}) {
            PageFacts facts = gray_page(3, 1);
            facts.info.Compression = static_cast<TW_UINT16>(one.announced);
            Reading reading(facts);
            TW_IMAGEMEMXFER strip = strip_of(3, 1, 3);
            strip.Compression = static_cast<TW_UINT16>(one.told);
            QVERIFY(reading.take(strip, QByteArray::fromHex(one.data)));
            QCOMPARE(reading.page.header->kind, one.kind);
        }
    }

    void a_compression_that_nobody_asked_for_is_refused_with_its_number() {
        PageFacts facts = gray_page(3, 1);
        facts.info.Compression = 5;
        Reading reading(facts);
        TW_IMAGEMEMXFER strip = strip_of(3, 1, 3);
        strip.Compression = TWON_DONTCARE16;
        try {
            reading.take(strip, "abc");
            QFAIL("it was taken");
        } catch (const PageRefused& refused) {
            QCOMPARE(refused.step, Step::kForeignPage);
            QCOMPARE(refused.detail, 0x10005u);
        }
    }

    void resolutions_of_every_unit_become_pixels_an_inch() {
        QCOMPARE(pixels_an_inch(fixed(300), TWUN_INCHES), 300.0);
        QCOMPARE(pixels_an_inch(fixed(200, 0x8000), TWUN_INCHES), 200.5);
        QCOMPARE(pixels_an_inch(fixed(100), TWUN_CENTIMETERS), 254.0);
        QCOMPARE(pixels_an_inch(fixed(50), TWUN_PICAS), 300.0);
        QCOMPARE(pixels_an_inch(fixed(2), TWUN_POINTS), 144.0);
        QCOMPARE(pixels_an_inch(fixed(0, 0x4000), TWUN_TWIPS), 360.0);
        QCOMPARE(pixels_an_inch(fixed(10), TWUN_MILLIMETERS), 254.0);
        QCOMPARE(pixels_an_inch(fixed(300), TWUN_PIXELS), 0.0);
        QCOMPARE(pixels_an_inch(fixed(0), TWUN_INCHES), 0.0);
        QCOMPARE(pixels_an_inch(fixed(-300), TWUN_INCHES), 0.0);
        QCOMPARE(pixels_an_inch(fixed(300), 77), 0.0);
    }
};

QTEST_APPLESS_MAIN(TestTwainStrips)
#include "test_twain_strips.moc"
