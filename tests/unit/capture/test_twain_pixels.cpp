// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/pixel_rows.h"
#include "tests/unit/capture/collected_page.h"

#include <QTest>
#include <limits>

using namespace folidex::twain;

Q_DECLARE_METATYPE(folidex::twain::PixelForm)
Q_DECLARE_METATYPE(folidex::twain::PageKind)

namespace {

PixelForm plain(int bits, bool zero_is_light = false) {
    PixelForm form;
    form.bits = bits;
    form.zero_is_light = zero_is_light;
    return form;
}

PixelForm with_palette(int bits, std::vector<Colour> palette) {
    PixelForm form = plain(bits);
    form.palette = std::move(palette);
    return form;
}

PixelForm ordered(int bits, PixelForm::Order order, std::array<std::uint32_t, 3> masks = {}) {
    PixelForm form = plain(bits);
    form.order = order;
    form.masks = masks;
    return form;
}

constexpr Colour kBlack{0, 0, 0}, kWhite{255, 255, 255}, kRed{255, 0, 0}, kBlue{0, 0, 255};

} // namespace

class TestTwainPixels : public QObject {
    Q_OBJECT

private slots:
    void rows_of_each_form_are_packed_data() {
        QTest::addColumn<PixelForm>("form");
        QTest::addColumn<int>("width");
        QTest::addColumn<QByteArray>("source");
        QTest::addColumn<PageKind>("kind");
        QTest::addColumn<QByteArray>("packed");
        const auto row = [](const char* name, const PixelForm& form, int width, const char* source,
                            PageKind kind, const char* packed) {
            QTest::newRow(name) << form << width << QByteArray::fromHex(source) << kind
                                << QByteArray::fromHex(packed);
        };
        using enum PixelForm::Order;
        row("1 bit, zero is dark", plain(1), 10, "a5ff", PageKind::kBilevel, "5a00");
        row("1 bit, zero is light", plain(1, true), 10, "a5ff", PageKind::kBilevel, "a5c0");
        row("1 bit, black first", with_palette(1, {kBlack, kWhite}), 8, "f0", PageKind::kBilevel,
            "0f");
        row("1 bit, white first", with_palette(1, {kWhite, kBlack}), 8, "f0", PageKind::kBilevel,
            "f0");
        row("1 bit, the darker of two colours", with_palette(1, {kRed, kBlue}), 8, "f0",
            PageKind::kBilevel, "f0");
        row("1 bit, a palette that says nothing", with_palette(1, {kBlack, kBlack}), 8, "f0",
            PageKind::kBilevel, "0f");
        row("4 bits", plain(4), 3, "0f75", PageKind::kGray, "00ff77");
        row("4 bits, zero is light", plain(4, true), 3, "0f75", PageKind::kGray, "ff0088");
        row("4 bits of a grey palette", with_palette(4, {kWhite, kBlack}), 2, "01", PageKind::kGray,
            "ff00");
        row("4 bits of a palette", with_palette(4, {kRed, kBlue}), 3, "010f", PageKind::kRgb,
            "ff00000000ffff0000");
        row("8 bits", plain(8), 3, "00807f", PageKind::kGray, "00807f");
        row("8 bits, zero is light", plain(8, true), 3, "00807f", PageKind::kGray, "ff7f80");
        row("8 bits of a palette too short", with_palette(8, {kRed}), 2, "00ff", PageKind::kRgb,
            "ff0000000000");
        row("16 bits of grey", plain(16), 2, "34125aff", PageKind::kGray, "12ff");
        row("16 bits of grey, zero is light", plain(16, true), 2, "34125aff", PageKind::kGray,
            "ed00");
        row("24 bits", plain(24), 2, "010203040506", PageKind::kRgb, "010203040506");
        row("24 bits, blue first", ordered(24, kBgr), 2, "010203040506", PageKind::kRgb,
            "030201060504");
        row("48 bits", plain(48), 1, "aa01bb02cc03", PageKind::kRgb, "010203");
        row("48 bits, blue first", ordered(48, kBgr), 1, "aa01bb02cc03", PageKind::kRgb, "030201");
        row("16 bits, 5 of each", ordered(16, kMasks, {0x7c00, 0x3e0, 0x1f}), 3, "007ce0031f00",
            PageKind::kRgb, "ff000000ff000000ff");
        row("16 bits, 6 of green", ordered(16, kMasks, {0xf800, 0x7e0, 0x1f}), 2, "10841f00",
            PageKind::kRgb, "8482840000ff");
        row("32 bits", ordered(32, kMasks, {0xff0000, 0xff00, 0xff}), 1, "010203ff", PageKind::kRgb,
            "030201");
        row("32 bits with deep masks", ordered(32, kMasks, {0x3ff00000, 0xffc00, 0}), 1, "00fc0f3f",
            PageKind::kRgb, "fbff00");
    }
    void rows_of_each_form_are_packed() {
        QFETCH(PixelForm, form);
        QFETCH(int, width);
        QFETCH(QByteArray, source);
        QFETCH(QByteArray, packed);
        const PixelRows rows(form, width);
        QCOMPARE(rows.source_bytes(), static_cast<std::size_t>(source.size()));
        QCOMPARE(rows.packed_bytes(), static_cast<std::size_t>(packed.size()));
        QTEST(rows.kind(), "kind");
        QByteArray out(packed.size(), '\xee');
        rows.pack(reinterpret_cast<const std::uint8_t*>(source.constData()),
                  reinterpret_cast<std::uint8_t*>(out.data()));
        QCOMPARE(out.toHex(), packed.toHex());
    }

    void forms_without_a_road_are_refused() {
        for (const int bits : {-1, 0, 2, 3, 7, 12, 32, 33, 64, 1000000})
            QCOMPARE(refused_at([&] { PixelRows(plain(bits), 10); }), Step::kForeignPage);
        QCOMPARE(refused_at([] { PixelRows(ordered(24, PixelForm::Order::kMasks), 10); }),
                 Step::kForeignPage);
    }

    void widths_that_cannot_be_are_refused() {
        for (const int width :
             {0, -1, 65536, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
            QCOMPARE(refused_at([&] { PixelRows(plain(48), width); }), Step::kBadPage);
        QCOMPARE(PixelRows(plain(48), 65535).source_bytes(), std::size_t{65535} * 6);
        QCOMPARE(PixelRows(plain(1), 1).source_bytes(), std::size_t{1});
    }
};

QTEST_APPLESS_MAIN(TestTwainPixels)
#include "test_twain_pixels.moc"
