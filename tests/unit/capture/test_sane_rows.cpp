// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/sane_rows.h"
#include "common/error.h"

#include <QTest>

namespace folidex {

class SaneRowsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rows_come_packed_data();
    void rows_come_packed();
    void bytes_in_any_portions_give_the_same_rows();
    void a_height_not_known_beforehand_is_0();
    void a_frame_that_cannot_be_is_refused_data();
    void a_frame_that_cannot_be_is_refused();

private:
    static QByteArray take(SaneRows& rows, const QByteArray& bytes, qsizetype portion);
};

namespace {

QByteArray wide(std::initializer_list<std::uint16_t> samples) {
    return QByteArray(reinterpret_cast<const char*>(samples.begin()),
                      static_cast<qsizetype>(samples.size() * sizeof(std::uint16_t)));
}

} // namespace

QByteArray SaneRowsTest::take(SaneRows& rows, const QByteArray& bytes, qsizetype portion) {
    QByteArray packed;
    for (qsizetype at = 0; at < bytes.size(); at += portion) {
        const QByteArray part = bytes.mid(at, portion);
        packed += rows.take(reinterpret_cast<const SANE_Byte*>(part.constData()), part.size())
                      .toByteArray();
    }
    return packed;
}

void SaneRowsTest::rows_come_packed_data() {
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("depth");
    QTest::addColumn<int>("pixels");
    QTest::addColumn<int>("line_bytes");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("width");
    QTest::addColumn<QByteArray>("packed");

    const auto row = [](const char* name, int format, int depth, int pixels, int line_bytes,
                        const QByteArray& bytes, int width, const QByteArray& packed) {
        QTest::newRow(name) << format << depth << pixels << line_bytes << bytes << width << packed;
    };
    row("grey", SANE_FRAME_GRAY, 8, 3, 3, "abcdef", 3, "abcdef");
    row("grey with padding", SANE_FRAME_GRAY, 8, 3, 4, "abc_def_", 3, "abcdef");
    row("colour with padding", SANE_FRAME_RGB, 8, 1, 4, "rgb_RGB_", 1, "rgbRGB");
    row("lines shorter than announced", SANE_FRAME_GRAY, 8, 5, 3, "abcdef", 3, "abcdef");
    row("colour lines shorter than announced", SANE_FRAME_RGB, 8, 2, 5, "rgb__RGB__", 1, "rgbRGB");
    row("no line length", SANE_FRAME_GRAY, 8, 3, 0, "abcdef", 3, "abcdef");
    row("a partial line at the end", SANE_FRAME_GRAY, 8, 3, 3, "abcde", 3, "abc");
    row("16-bit grey", SANE_FRAME_GRAY, 16, 2, 4, wide({0x1234, 0xFFFF, 0x00FF, 0x8000}), 2,
        QByteArray::fromHex("12ff0080"));
    row("16-bit colour with padding", SANE_FRAME_RGB, 16, 1, 8, wide({0x1100, 0x2200, 0x3300, 9}),
        1, QByteArray::fromHex("112233"));
    row("1-bit", SANE_FRAME_GRAY, 1, 12, 2, QByteArray::fromHex("a5f0"), 12,
        QByteArray::fromHex("a5f0"));
    row("1-bit with padding", SANE_FRAME_GRAY, 1, 4, 2, QByteArray::fromHex("a0ff50ff"), 4,
        QByteArray::fromHex("a050"));
    row("1-bit colour", SANE_FRAME_RGB, 1, 2, 3, QByteArray::fromHex("80c040"), 2,
        QByteArray::fromHex("ffff0000ffff"));
    row("1-bit red of three passes", SANE_FRAME_RED, 1, 3, 1, QByteArray::fromHex("a0"), 3,
        QByteArray::fromHex("ff00ff"));
}

void SaneRowsTest::rows_come_packed() {
    QFETCH(int, format);
    QFETCH(int, depth);
    QFETCH(int, pixels);
    QFETCH(int, line_bytes);
    QFETCH(QByteArray, bytes);
    QFETCH(int, width);
    QFETCH(QByteArray, packed);
    SaneRows rows({static_cast<SANE_Frame>(format), SANE_TRUE, line_bytes, pixels, 2, depth});
    QCOMPARE(rows.width(), width);
    QCOMPARE(rows.height(), 2);
    QCOMPARE(take(rows, bytes, bytes.size()), packed);
}

void SaneRowsTest::bytes_in_any_portions_give_the_same_rows() {
    QByteArray bytes;
    for (int k = 0; k < 700; ++k)
        bytes.append(static_cast<char>(k % 251));
    const SANE_Parameters parameters{SANE_FRAME_GRAY, SANE_TRUE, 7, 6, 100, 8};
    SaneRows at_once(parameters);
    const QByteArray expected = take(at_once, bytes, bytes.size());
    QCOMPARE(expected.size(), 600);
    for (const qsizetype portion : {1, 2, 6, 7, 8, 13, 699}) {
        SaneRows rows(parameters);
        QCOMPARE(take(rows, bytes, portion), expected);
        QCOMPARE(rows.rows(), 100);
    }
}

void SaneRowsTest::a_height_not_known_beforehand_is_0() {
    QCOMPARE(SaneRows({SANE_FRAME_GRAY, SANE_TRUE, 7, 7, -1, 8}).height(), 0);
}

void SaneRowsTest::a_frame_that_cannot_be_is_refused_data() {
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("depth");
    QTest::addColumn<int>("pixels");
    QTest::addColumn<int>("line_bytes");
    QTest::addColumn<QString>("word");
    QTest::newRow("no width") << int{SANE_FRAME_GRAY} << 8 << 0 << 0 << "width";
    QTest::newRow("bytes without width") << int{SANE_FRAME_GRAY} << 8 << 0 << 100 << "width";
    QTest::newRow("negative width") << int{SANE_FRAME_GRAY} << 8 << -4 << 4 << "width";
    QTest::newRow("lines without a pixel") << int{SANE_FRAME_RGB} << 8 << 4 << 2 << "no pixel";
    QTest::newRow("12 bits") << int{SANE_FRAME_GRAY} << 12 << 4 << 6 << "12 bits";
    QTest::newRow("a kind of its own") << 11 << 8 << 4 << 4 << "kind 11";
}

void SaneRowsTest::a_frame_that_cannot_be_is_refused() {
    QFETCH(int, format);
    QFETCH(int, depth);
    QFETCH(int, pixels);
    QFETCH(int, line_bytes);
    QFETCH(QString, word);
    const SANE_Parameters parameters{
        static_cast<SANE_Frame>(format), SANE_TRUE, line_bytes, pixels, 2, depth};
    try {
        SaneRows rows(parameters);
        QFAIL("it was taken");
    } catch (const Error& error) {
        QVERIFY2(error.description.contains(word), qPrintable(error.description));
    }
}

} // namespace folidex

QTEST_APPLESS_MAIN(folidex::SaneRowsTest)
#include "test_sane_rows.moc"
