// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain_frame_reader.h"
#include "common/error.h"

#include <QTest>

using namespace folidex;
using twain::Kind;

namespace {

template <class T> QByteArray bytes_of(const T& value) {
    return {reinterpret_cast<const char*>(&value), qsizetype{sizeof value}};
}

QByteArray frame_of(Kind kind, const QByteArray& payload = {}) {
    return bytes_of(twain::Frame{kind, {0, 0, 0}, static_cast<std::uint32_t>(payload.size())}) +
           payload;
}

QByteArray head_of(Kind kind, std::uint32_t length) {
    return bytes_of(twain::Frame{kind, {0, 0, 0}, length});
}

QString failure(TwainFrameReader& reader) {
    try {
        while (reader.next())
            continue;
    } catch (const Error& error) {
        return error.description;
    }
    return {};
}

} // namespace

class TwainFrameReaderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void frames_come_whole_in_whatever_portions_the_bytes_do_data();
    void frames_come_whole_in_whatever_portions_the_bytes_do();
    void a_structure_comes_out_as_it_went_in();
    void the_longest_payload_is_taken();
    void what_begins_no_frame_is_refused_by_the_scanners_name_data();
    void what_begins_no_frame_is_refused_by_the_scanners_name();
    void frames_before_the_damage_are_still_good();
    void a_stream_stays_refused();
};

void TwainFrameReaderTest::frames_come_whole_in_whatever_portions_the_bytes_do_data() {
    QTest::addColumn<int>("portion");
    for (const int portion : {1, 3, 7, 8, 9, 64, 100000})
        QTest::addRow("%d bytes at a time", portion) << portion;
}

void TwainFrameReaderTest::frames_come_whole_in_whatever_portions_the_bytes_do() {
    QFETCH(int, portion);
    const QByteArray stream = frame_of(Kind::kAlive) + frame_of(Kind::kRows, "rows of a page") +
                              frame_of(Kind::kWindow) +
                              frame_of(Kind::kRows, QByteArray(5000, 'x')) +
                              frame_of(Kind::kPageEnd, bytes_of(twain::PageEnd{7}));
    TwainFrameReader reader(QStringLiteral("Acme"));
    QList<TwainFrame> frames;
    for (qsizetype at = 0; at < stream.size(); at += portion) {
        reader.add(stream.mid(at, portion));
        while (auto frame = reader.next())
            frames.append(*frame);
    }
    QCOMPARE(frames.size(), 5);
    QCOMPARE(frames[0].kind, Kind::kAlive);
    QCOMPARE(frames[1].kind, Kind::kRows);
    QCOMPARE(frames[1].payload, QByteArray("rows of a page"));
    QCOMPARE(frames[2].kind, Kind::kWindow);
    QCOMPARE(frames[3].payload, QByteArray(5000, 'x'));
    QCOMPARE(frames[4].as<twain::PageEnd>().rows, 7u);
}

void TwainFrameReaderTest::a_structure_comes_out_as_it_went_in() {
    const twain::PageHeader sent{twain::PageKind::kRgb, 0, 2480, 3508, 300.5, 299.5};
    TwainFrameReader reader(QStringLiteral("Acme"));
    reader.add(frame_of(Kind::kPage, bytes_of(sent)));
    const auto frame = reader.next();
    QVERIFY(frame);
    const auto got = frame->as<twain::PageHeader>();
    QCOMPARE(static_cast<int>(got.kind), static_cast<int>(sent.kind));
    const std::int32_t width = got.width;
    const std::int32_t height = got.height;
    const double x = got.x_resolution;
    const double y = got.y_resolution;
    QCOMPARE(width, 2480);
    QCOMPARE(height, 3508);
    QCOMPARE(x, 300.5);
    QCOMPARE(y, 299.5);
}

void TwainFrameReaderTest::the_longest_payload_is_taken() {
    TwainFrameReader reader(QStringLiteral("Acme"));
    reader.add(frame_of(Kind::kRows, QByteArray(twain::kLongestPayload, 'r')));
    const auto frame = reader.next();
    QVERIFY(frame);
    QCOMPARE(frame->payload.size(), qsizetype{twain::kLongestPayload});
}

void TwainFrameReaderTest::what_begins_no_frame_is_refused_by_the_scanners_name_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("a driver that prints") << QByteArray("Scanner found on port 3\r\n");
    QTest::newRow("an unknown kind") << head_of(static_cast<Kind>('Z'), 0);
    QTest::newRow("a command") << head_of(static_cast<Kind>('a'), 0);
    QTest::newRow("padding with something in it") << QByteArray("H\0\1\0\0\0\0\0", 8);
    QTest::newRow("rows that are too long") << head_of(Kind::kRows, twain::kLongestPayload + 1);
    QTest::newRow("rows of 4 GB") << head_of(Kind::kRows, 0xffffffffu);
    QTest::newRow("no rows") << head_of(Kind::kRows, 0);
    QTest::newRow("a name that is too long") << head_of(Kind::kSource, twain::kLongestPayload + 1);
    QTest::newRow("a source without an index") << head_of(Kind::kSource, 3);
    QTest::newRow("a sign of life with a payload") << head_of(Kind::kAlive, 1);
    QTest::newRow("a page of another shape") << head_of(Kind::kPage, 27);
    QTest::newRow("the end of a page without its rows") << head_of(Kind::kPageEnd, 0);
    QTest::newRow("an ending that is too short") << head_of(Kind::kDone, 15);
    QTest::newRow("an ending that is too long") << head_of(Kind::kTrouble, 17);
}

void TwainFrameReaderTest::what_begins_no_frame_is_refused_by_the_scanners_name() {
    QFETCH(QByteArray, bytes);
    TwainFrameReader reader(QStringLiteral("Acme %1 \"Duplex\""));
    reader.add(bytes);
    const QString words = failure(reader);
    QVERIFY2(words.contains(QStringLiteral("\"Acme %1 \"Duplex\"\"")), qPrintable(words));
}

void TwainFrameReaderTest::frames_before_the_damage_are_still_good() {
    TwainFrameReader reader(QStringLiteral("Acme"));
    reader.add(frame_of(Kind::kWindow) + "garbage in the pipe");
    const auto frame = reader.next();
    QVERIFY(frame);
    QCOMPARE(frame->kind, Kind::kWindow);
    QVERIFY(!failure(reader).isEmpty());
}

void TwainFrameReaderTest::a_stream_stays_refused() {
    TwainFrameReader reader(QStringLiteral("Acme"));
    reader.add("garbage in the pipe");
    QVERIFY(!failure(reader).isEmpty());
    reader.add(frame_of(Kind::kWindow));
    QVERIFY(!failure(reader).isEmpty());
}

QTEST_GUILESS_MAIN(TwainFrameReaderTest)
#include "test_twain_frame_reader.moc"
