// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/page_encoder.h"
#include "common/error.h"
#include "page_tools.h"

#include <QBuffer>
#include <QImage>
#include <QImageWriter>
#include <QTemporaryDir>
#include <QTest>

using namespace folidex;
using namespace folidex::testing;

class TestJpegPage : public QObject {
    Q_OBJECT

private slots:
    void size_and_colours_come_from_the_picture_data();
    void size_and_colours_come_from_the_picture();
    void the_bytes_reach_the_pdf_as_they_were();
    void the_resolution_comes_from_the_caller_else_from_the_picture();
    void a_resolution_in_centimetres_is_understood();
    void without_any_resolution_it_is_refused();
    void cut_off_anywhere_it_is_refused();
    void what_is_no_jpeg_is_refused_data();
    void what_is_no_jpeg_is_refused();
    void printing_colours_are_refused_in_clear_words();
    void a_kind_that_readers_do_not_know_is_refused();
    void fill_bytes_and_restart_markers_are_no_end();
};

namespace {

QByteArray jpeg(QImage::Format format, bool progressive = false, int dots_per_metre = 0) {
    QImage image(61, 33, format);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixelColor(x, y, QColor((x * 4) % 256, (y * 7) % 256, (x * y) % 256));
    image.setDotsPerMeterX(dots_per_metre);
    image.setDotsPerMeterY(dots_per_metre * 2);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setProgressiveScanWrite(progressive);
    writer.write(image);
    return buffer.data();
}

/// Where a marker's content begins, after its length.
qsizetype segment(const QByteArray& data, char marker) {
    return data.indexOf(QByteArray("\xFF") + marker) + 4;
}

QString refusal(const QByteArray& data, double resolution = 300) {
    try {
        jpeg_page(data, resolution, resolution);
    } catch (const Error& error) {
        return error.description;
    }
    return {};
}

constexpr char kFrame = '\xC0';
constexpr char kJfif = '\xE0';

} // namespace

void TestJpegPage::size_and_colours_come_from_the_picture_data() {
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<bool>("colour");
    QTest::newRow("grey") << jpeg(QImage::Format_Grayscale8) << false;
    QTest::newRow("colour") << jpeg(QImage::Format_RGB888) << true;
    QTest::newRow("grey, progressive") << jpeg(QImage::Format_Grayscale8, true) << false;
    QTest::newRow("colour, progressive") << jpeg(QImage::Format_RGB888, true) << true;
    QTest::newRow("bytes after its end")
        << jpeg(QImage::Format_RGB888) + QByteArray(9, '\0') << true;
}

void TestJpegPage::size_and_colours_come_from_the_picture() {
    QFETCH(QByteArray, data);
    QFETCH(bool, colour);
    const EncodedPage page = jpeg_page(data, 300, 200);
    QCOMPARE(page.filter, EncodedPage::Filter::kJpeg);
    QCOMPARE(page.type, colour ? PixelType::kRgb : PixelType::kGray);
    QCOMPARE(page.width, 61);
    QCOMPARE(page.height, 33);
    QCOMPARE(page.x_resolution, 300.0);
    QCOMPARE(page.y_resolution, 200.0);
    QCOMPARE(page.data, data);
}

void TestJpegPage::the_bytes_reach_the_pdf_as_they_were() {
    const QList<QByteArray> pictures{jpeg(QImage::Format_Grayscale8), jpeg(QImage::Format_RGB888),
                                     jpeg(QImage::Format_RGB888, true)};
    std::vector<EncodedPage> pages;
    for (const QByteArray& picture : pictures)
        pages.push_back(jpeg_page(picture, 300, 300));
    const QTemporaryDir folder;
    const QString pdf = folder.filePath(QStringLiteral("pages.pdf"));
    write_pdf(pdf, pages);
    QCOMPARE(complaints(pdf), QString());
    const QStringList files = extract_pictures(pdf, folder.filePath(QStringLiteral("pictures")),
                                               {QStringLiteral("-all")});
    QCOMPARE(files.size(), pictures.size());
    for (qsizetype i = 0; i < files.size(); ++i) {
        QFile file(files[i]);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), pictures[i]);
    }
}

void TestJpegPage::the_resolution_comes_from_the_caller_else_from_the_picture() {
    const int dots_per_metre = 5906;
    const QByteArray data = jpeg(QImage::Format_Grayscale8, false, dots_per_metre);
    const EncodedPage from_picture = jpeg_page(data, 0, 0);
    QCOMPARE(from_picture.x_resolution, 150.0);
    QCOMPARE(from_picture.y_resolution, 300.0);
    const EncodedPage from_caller = jpeg_page(data, 75, 0);
    QCOMPARE(from_caller.x_resolution, 75.0);
    QCOMPARE(from_caller.y_resolution, 300.0);
}

void TestJpegPage::a_resolution_in_centimetres_is_understood() {
    QByteArray data = jpeg(QImage::Format_Grayscale8);
    data.replace(segment(data, kJfif) + 7, 5, QByteArray("\x02\x00\x64\x00\x32", 5));
    QCOMPARE(jpeg_page(data, 0, 0).x_resolution, 254.0);
    QCOMPARE(jpeg_page(data, 0, 0).y_resolution, 127.0);
}

void TestJpegPage::without_any_resolution_it_is_refused() {
    QByteArray data = jpeg(QImage::Format_Grayscale8);
    data[segment(data, kJfif) + 7] = 0;
    QVERIFY(refusal(data, 0).contains(QStringLiteral("resolution")));
    QVERIFY(refusal(data, -300).contains(QStringLiteral("resolution")));
    QVERIFY(refusal(data, qQNaN()).contains(QStringLiteral("resolution")));
    QCOMPARE(refusal(data, 300), QString());
}

void TestJpegPage::cut_off_anywhere_it_is_refused() {
    for (const bool progressive : {false, true}) {
        const QByteArray data = jpeg(QImage::Format_RGB888, progressive);
        QCOMPARE(refusal(data), QString());
        for (qsizetype size = 0; size < data.size(); ++size)
            QVERIFY2(!refusal(data.first(size)).isEmpty(), qPrintable(QString::number(size)));
    }
    QVERIFY(refusal(jpeg(QImage::Format_RGB888).first(500)).contains(QStringLiteral("cut off")));
}

void TestJpegPage::what_is_no_jpeg_is_refused_data() {
    QTest::addColumn<QByteArray>("data");
    const QByteArray good = jpeg(QImage::Format_RGB888);
    const auto changed = [&](char marker, qsizetype offset, const QByteArray& bytes) {
        QByteArray data = good;
        return data.replace(segment(data, marker) + offset, bytes.size(), bytes);
    };
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("text") << QByteArray("This is no picture at all.");
    QTest::newRow("another picture's start") << QByteArray("\x89PNG\r\n\x1A\n") + good;
    QTest::newRow("no picture") << QByteArray("\xFF\xD8\xFF\xD9");
    QTest::newRow("no width") << changed(kFrame, 3, QByteArray(2, '\0'));
    QTest::newRow("no height") << changed(kFrame, 1, QByteArray(2, '\0'));
    QTest::newRow("12 bits") << changed(kFrame, 0, "\x0C");
    QTest::newRow("two components") << changed(kFrame, 5, "\x02");
    QTest::newRow("more components than room") << changed(kFrame, 5, "\x04");
    QTest::newRow("two frames") << QByteArray(good).insert(segment(good, kFrame) - 4,
                                                           good.mid(segment(good, kFrame) - 4, 19));
    QTest::newRow("a segment without length") << changed(kFrame, -2, QByteArray(2, '\0'));
    QTest::newRow("a segment beyond the end") << changed(kFrame, -2, "\xFF\xFF");
    QTest::newRow("no marker") << changed(kFrame, -4, "\x20");
}

void TestJpegPage::what_is_no_jpeg_is_refused() {
    QFETCH(QByteArray, data);
    QVERIFY(!refusal(data).isEmpty());
}

void TestJpegPage::printing_colours_are_refused_in_clear_words() {
    QByteArray data = jpeg(QImage::Format_RGB888);
    const qsizetype frame = segment(data, kFrame);
    data.insert(frame + 15, QByteArray("\x04\x11\x01", 3));
    data[frame - 1] = 20;
    data[frame + 5] = 4;
    QVERIFY2(refusal(data).contains(QStringLiteral("CMYK")), qPrintable(refusal(data)));
}

void TestJpegPage::a_kind_that_readers_do_not_know_is_refused() {
    for (const char frame : {'\xC3', '\xC9', '\xCA', '\xCF'}) {
        QByteArray data = jpeg(QImage::Format_RGB888);
        data[segment(data, kFrame) - 3] = frame;
        QVERIFY(refusal(data).contains(QStringLiteral("progressive")));
    }
}

void TestJpegPage::fill_bytes_and_restart_markers_are_no_end() {
    QByteArray data = jpeg(QImage::Format_RGB888);
    data.insert(segment(data, kFrame) - 4, QByteArray(3, '\xFF'));
    data.insert(data.size() - 2, QByteArray("\xFF\xD0\xFF\x00\xFF\xD7\xFF\xFF", 8));
    QCOMPARE(refusal(data), QString());
    QCOMPARE(jpeg_page(data, 300, 300).width, 61);
}

QTEST_GUILESS_MAIN(TestJpegPage)
#include "test_jpeg_page.moc"
