// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/forms/capture/twain_desk.h"

#include <QBuffer>
#include <QImage>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

namespace {

/// A JPEG, with or without a resolution of its own.
QByteArray jpeg(int width, int height, int dots_per_metre) {
    QImage image(width, height, QImage::Format_RGB888);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgb(x * 3 % 256, y * 5 % 256, (x + y) % 256));
    image.setDotsPerMeterX(dots_per_metre);
    image.setDotsPerMeterY(dots_per_metre);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "jpeg", 80);
    return buffer.data();
}

/// A scan of one page, begun with these words and filled by these lines.
QStringList one_page(const QString& page, const QStringList& lines) {
    return QStringList{u"opened"_s, u"await"_s, u"window"_s, u"page "_s + page} + lines +
           QStringList{u"end"_s, u"done 0"_s};
}

} // namespace

class TwainPagesTest : public TwainDeskTest {
    Q_OBJECT

private Q_SLOTS:
    void a_scan_of_many_pages_is_one_pdf_in_their_order() {
        desk_->open_listed();
        desk_->scan_with(ScriptedTwain::pages({100, 200, 300, 150}));
        QCOMPARE(desk_->scanned_widths(), QList<int>({100, 200, 300, 150}));
        QCOMPARE(desk_->scanned_pdf().count("%%EOF"), 1);
        QCOMPARE(desk_->scan_label(), u"Re-Scan"_s);
        QVERIFY(desk_->control<QPushButton>("cmdView")->isEnabled());
        QVERIFY(desk_->control<QLabel>("lblPagesState")->text().startsWith(u"4 pages scanned"_s));
    }

    void scanning_twice_replaces_the_first_scan() {
        desk_->open_listed();
        desk_->scan_with(ScriptedTwain::pages({100, 200}));
        desk_->scan_with(ScriptedTwain::pages({300}));
        QCOMPARE(desk_->scanned_widths(), QList<int>({300}));
    }

    void what_was_scanned_is_filed() {
        desk_->open_listed();
        desk_->describe(u"Invoice"_s);
        desk_->add_tag(u"Bills"_s);
        desk_->scan_with(ScriptedTwain::pages({100}));
        const QByteArray scanned = desk_->scanned_pdf();
        desk_->click("cmdSave");
        const QStringList files = desk_->files(u"1009"_s);
        QCOMPARE(files.size(), 1);
        QFile filed(desk_->station.data_folder() + u"/scanned_files/1009/"_s + files.constFirst());
        QVERIFY(filed.open(QIODevice::ReadOnly));
        QCOMPARE(filed.readAll(), scanned);
    }

    void every_kind_of_pixel_becomes_a_page_data() {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QByteArray>("filter");
        QTest::addColumn<QByteArray>("colours");
        QTest::newRow("1 bit") << u"bilevel"_s << QByteArray("/CCITTFaxDecode")
                               << QByteArray("/DeviceGray");
        QTest::newRow("grey") << u"gray"_s << QByteArray("/DCTDecode") << QByteArray("/DeviceGray");
        QTest::newRow("colour") << u"rgb"_s << QByteArray("/DCTDecode") << QByteArray("/DeviceRGB");
    }
    void every_kind_of_pixel_becomes_a_page() {
        QFETCH(QString, kind);
        QFETCH(QByteArray, filter);
        QFETCH(QByteArray, colours);
        desk_->open_listed();
        desk_->scan_with(one_page(kind + u" 101 40 100 100"_s, {u"rows 40"_s}));
        QCOMPARE(desk_->scanned_widths(), QList<int>({101}));
        QVERIFY(desk_->scanned_pdf().contains(filter));
        QVERIFY(desk_->scanned_pdf().contains(colours));
    }

    void a_jpeg_is_kept_byte_for_byte() {
        const QByteArray first = jpeg(120, 80, 7874);
        const QByteArray second = jpeg(60, 40, 7874);
        QVERIFY(first.size() > 700);
        desk_->twain.put_file(u"first.jpg"_s, first);
        desk_->twain.put_file(u"second.jpg"_s, second);
        desk_->open_listed();
        desk_->scan_with({u"opened"_s, u"await"_s, u"window"_s, u"page jpeg 120 80 200 200"_s,
                          u"file first.jpg"_s, u"end 0"_s, u"page jpeg 60 40 200 200"_s,
                          u"file second.jpg"_s, u"end 0"_s, u"done 0"_s});
        QCOMPARE(desk_->scanned_widths(), QList<int>({120, 60}));
        const qsizetype at = desk_->scanned_pdf().indexOf(first);
        QVERIFY(at > 0);
        QVERIFY(desk_->scanned_pdf().indexOf(second) > at);
    }

    void a_page_has_the_size_that_its_resolution_gives_data() {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QByteArray>("box");
        QTest::newRow("as told") << u"gray 200 100 100 100"_s << QByteArray("[0 0 144 72]");
        QTest::newRow("unlike both ways")
            << u"gray 200 100 100 200"_s << QByteArray("[0 0 144 36]");
        QTest::newRow("one way alone") << u"gray 200 100 0 200"_s << QByteArray("[0 0 72 36]");
        QTest::newRow("none") << u"gray 300 150 0 0"_s << QByteArray("[0 0 72 36]");
        QTest::newRow("nonsense") << u"gray 300 150 -1 1e30"_s << QByteArray("[0 0 72 36]");
        QTest::newRow("no number") << u"gray 300 150 nan nan"_s << QByteArray("[0 0 72 36]");
        QTest::newRow("a JPEG, as told") << u"jpeg 300 150 150 150"_s << QByteArray("[0 0 144 72]");
        QTest::newRow("a JPEG, from itself") << u"jpeg 300 150 0 0"_s << QByteArray("[0 0 108 54]");
    }
    void a_page_has_the_size_that_its_resolution_gives() {
        QFETCH(QString, page);
        QFETCH(QByteArray, box);
        // 200 dots an inch.
        desk_->twain.put_file(u"page.jpg"_s, jpeg(300, 150, 7874));
        const int rows = page.split(u' ').at(2).toInt();
        const bool is_jpeg = page.startsWith(u"jpeg"_s);
        desk_->open_listed();
        desk_->scan_with(one_page(page, {is_jpeg ? u"file page.jpg"_s : u"rows %1"_s.arg(rows)}));
        const QByteArray pdf = desk_->scanned_pdf();
        const qsizetype at = pdf.indexOf("/MediaBox ");
        QVERIFY2(pdf.mid(at + 10, box.size()) == box, pdf.mid(at, 40).constData());
    }

    void a_jpeg_that_says_nothing_is_taken_for_300_dots_an_inch() {
        QByteArray picture = jpeg(300, 150, 7874);
        // The unit of its density becomes "none".
        QCOMPARE(picture.mid(6, 4), QByteArray("JFIF"));
        picture[13] = 0;
        desk_->twain.put_file(u"page.jpg"_s, picture);
        desk_->open_listed();
        desk_->scan_with(one_page(u"jpeg 300 150 0 0"_s, {u"file page.jpg"_s}));
        QVERIFY(desk_->scanned_pdf().contains("/MediaBox [0 0 72 36]"));
        QVERIFY(desk_->scanned_pdf().contains(picture));
    }

    void the_rows_that_came_are_the_pages_height_data() {
        QTest::addColumn<int>("announced");
        QTest::addColumn<int>("rows");
        QTest::newRow("too few") << 50 << 20;
        QTest::newRow("too many") << 50 << 80;
        QTest::newRow("not announced") << 0 << 30;
    }
    void the_rows_that_came_are_the_pages_height() {
        QFETCH(int, announced);
        QFETCH(int, rows);
        desk_->open_listed();
        desk_->scan_with(
            one_page(u"gray 100 %1 100 100"_s.arg(announced), {u"rows %1"_s.arg(rows)}));
        QVERIFY(desk_->scanned_pdf().contains("/Width 100 /Height " + QByteArray::number(rows)));
    }

    void a_page_that_the_driver_takes_back_is_none() {
        desk_->open_listed();
        desk_->scan_with({u"opened"_s, u"await"_s, u"page gray 100 50 100 100"_s, u"rows 20"_s,
                          u"drop"_s, u"page gray 200 50 100 100"_s, u"rows 50"_s, u"end"_s,
                          u"done 0"_s});
        QCOMPARE(desk_->scanned_widths(), QList<int>({200}));
    }

    void a_page_that_makes_no_sense_is_told_data() {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QStringList>("lines");
        const QStringList row{u"rows 1"_s};
        QTest::newRow("no width") << u"gray 0 50 100 100"_s << QStringList{u"raw 52"_s};
        QTest::newRow("a negative width") << u"rgb -5 50 100 100"_s << QStringList{};
        QTest::newRow("a negative height") << u"gray 100 -1 100 100"_s << row;
        QTest::newRow("too wide") << u"gray 2147483647 50 100 100"_s << QStringList{};
        QTest::newRow("too high") << u"gray 10 2147483647 100 100"_s << row;
        QTest::newRow("1-bit and too wide") << u"bilevel 70000 50 100 100"_s << QStringList{};
        QTest::newRow("an unknown kind") << u"9 100 50 100 100"_s << QStringList{};
        QTest::newRow("rows of another width")
            << u"rgb 100 50 100 100"_s << QStringList{u"raw 52 00 00 00 05 00 00 00 1 2 3 4 5"_s};
        QTest::newRow("no rows") << u"gray 100 50 100 100"_s << QStringList{};
        QTest::newRow("a JPEG that is none")
            << u"jpeg 100 50 100 100"_s << QStringList{u"raw 52 00 00 00 02 00 00 00 ff d9"_s};
        QTest::newRow("an empty JPEG") << u"jpeg 100 50 100 100"_s << QStringList{};
        QTest::newRow("rows that were not sent")
            << u"gray 100 50 100 100"_s << QStringList{u"rows 50"_s, u"end 51"_s};
    }
    void a_page_that_makes_no_sense_is_told() {
        QFETCH(QString, page);
        QFETCH(QStringList, lines);
        desk_->open_listed();
        desk_->expect_box(u"Page 1 of the scanner \"Front desk\" is no good; no page was kept."_s);
        desk_->scan_with(one_page(page, lines));
        QCOMPARE(desk_->scanned_pdf(), QByteArray());
        QCOMPARE(desk_->scan_label(), u"Scan"_s);
        QVERIFY(!progress_window());
        // And the next scan has nothing of it.
        desk_->scan_with(ScriptedTwain::pages({120}));
        QCOMPARE(desk_->scanned_widths(), QList<int>({120}));
    }

    void pages_that_are_missing_at_the_end_are_told() {
        desk_->open_listed();
        desk_->expect_box(u"The driver of the scanner \"Front desk\" delivered what cannot be "
                          u"read. No page was kept."_s);
        desk_->scan_with({u"opened"_s, u"await"_s, u"page gray 100 50 100 100"_s, u"rows 50"_s,
                          u"end"_s, u"pages 2"_s, u"done 0"_s});
        QCOMPARE(desk_->scanned_pdf(), QByteArray());
    }

    void without_the_wish_to_empty_the_feeder_one_page_is_scanned() {
        desk_->open_listed();
        desk_->twain.scan(64, ScriptedTwain::pages({100, 200}));
        TwainScanner scanner(desk_->session());
        QCOMPARE(scanner.source_count(), 3);
        QVERIFY(scanner.open_source());
        scanner.acquire(nullptr);
        QCOMPARE(scanner.page_count(), 1);
        QVERIFY(!failure([&] { scanner.select_page(2); }).isEmpty());
    }
};

QTEST_MAIN(TwainPagesTest)
#include "test_twain_pages.moc"
