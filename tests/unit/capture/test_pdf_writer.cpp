// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/page_encoder.h"
#include "capture/scanner/pdf_writer.h"
#include "common/error.h"
#include "page_tools.h"

#include <QBuffer>
#include <QDateTime>
#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <limits>

using namespace folidex;
using namespace folidex::testing;

Q_DECLARE_METATYPE(folidex::EncodedPage)

class TestPdfWriter : public QObject {
    Q_OBJECT

private slots:
    void pages_of_every_kind_pass_the_check();
    void pages_have_the_size_of_the_paper_data();
    void pages_have_the_size_of_the_paper();
    void a_page_larger_than_readers_allow_gets_a_larger_unit();
    void pages_come_in_the_order_of_acquisition();
    void the_document_says_who_made_it_and_when();
    void two_documents_are_told_apart();
    void a_device_that_takes_little_at_a_time_gets_everything();
    void a_device_that_stops_anywhere_gives_an_error();
    void a_full_disk_names_the_file();
    void a_page_that_cannot_be_is_refused_data();
    void a_page_that_cannot_be_is_refused();
    void a_document_without_pages_is_refused();
    void memory_does_not_grow_with_the_pages_data();
    void memory_does_not_grow_with_the_pages();

private:
    QString path(const QString& name) const { return folder_.filePath(name); }
    QTemporaryDir folder_;
};

namespace {

EncodedPage page_of(PixelType type, int width, int height, double x = 300, double y = 300) {
    const PageFormat format{type, width, height, x, y};
    return encode(format, draw(format, [](int column, int row, int) {
                      return column / 9 % 2 != row / 9 % 2 ? 1 : 0;
                  }));
}

QByteArray pdf_of(const std::vector<EncodedPage>& pages) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    PdfWriter writer(buffer);
    for (const EncodedPage& page : pages)
        writer.add_page(page);
    writer.finish();
    return buffer.data();
}

/// A sequential device that takes so many bytes at a time and so many in all.
class NarrowDevice : public QIODevice {
public:
    NarrowDevice(qint64 at_a_time, qint64 in_all) : at_a_time_(at_a_time), left_(in_all) {
        open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    }
    bool isSequential() const override { return true; }
    QByteArray taken;

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char* data, qint64 size) override {
        const qint64 step = std::min({size, at_a_time_, left_});
        if (step == 0) {
            setErrorString(QStringLiteral("the line was cut"));
            return -1;
        }
        left_ -= step;
        taken.append(data, step);
        return step;
    }

private:
    qint64 at_a_time_;
    qint64 left_;
};

} // namespace

void TestPdfWriter::pages_of_every_kind_pass_the_check() {
    const QString pdf = path(QStringLiteral("kinds.pdf"));
    write_pdf(pdf, {page_of(PixelType::kBilevel, 2480, 3508), page_of(PixelType::kGray, 1240, 1754),
                    page_of(PixelType::kRgb, 621, 877), page_of(PixelType::kBilevel, 1, 1),
                    page_of(PixelType::kGray, 3, 1), page_of(PixelType::kRgb, 1, 5)});
    QCOMPARE(complaints(pdf), QString());
    const test::Said said =
        test::run_tool(QStringLiteral("pdfimages"), {QStringLiteral("-list"), pdf});
    QCOMPARE(said.exit_code, 0);
    QStringList kinds;
    for (const QString& line : said.text.trimmed().split(u'\n').sliced(2)) {
        const QStringList fields = line.simplified().split(u' ');
        kinds.append(fields.mid(0, 1) + fields.mid(3, 6));
    }
    const QStringList expected{
        QStringLiteral("1 2480 3508 gray 1 1 ccitt"), QStringLiteral("2 1240 1754 gray 1 8 jpeg"),
        QStringLiteral("3 621 877 rgb 3 8 jpeg"),     QStringLiteral("4 1 1 gray 1 1 ccitt"),
        QStringLiteral("5 3 1 gray 1 8 jpeg"),        QStringLiteral("6 1 5 rgb 3 8 jpeg")};
    QCOMPARE(kinds.join(u' '), expected.join(u' '));
}

void TestPdfWriter::pages_have_the_size_of_the_paper_data() {
    QTest::addColumn<double>("wide");
    QTest::addColumn<double>("high");
    QTest::addColumn<double>("x_resolution");
    QTest::addColumn<double>("y_resolution");
    QTest::newRow("A4 at 300") << 210.0 << 297.0 << 300.0 << 300.0;
    QTest::newRow("A4 at 75") << 210.0 << 297.0 << 75.0 << 75.0;
    QTest::newRow("A4 at 600") << 210.0 << 297.0 << 600.0 << 600.0;
    QTest::newRow("A4, columns and rows differ") << 210.0 << 297.0 << 204.0 << 98.0;
    QTest::newRow("A3 at 200") << 297.0 << 420.0 << 200.0 << 200.0;
    QTest::newRow("Letter at 300") << 215.9 << 279.4 << 300.0 << 300.0;
    QTest::newRow("Letter at 151.3") << 215.9 << 279.4 << 151.3 << 151.3;
    QTest::newRow("Legal at 240 by 400") << 215.9 << 355.6 << 240.0 << 400.0;
    QTest::newRow("a receipt") << 57.0 << 893.0 << 203.2 << 203.2;
    QTest::newRow("a card at 1200") << 85.6 << 53.98 << 1200.0 << 1200.0;
}

void TestPdfWriter::pages_have_the_size_of_the_paper() {
    QFETCH(double, wide);
    QFETCH(double, high);
    QFETCH(double, x_resolution);
    QFETCH(double, y_resolution);
    const double inch = 25.4;
    const QString pdf = path(QStringLiteral("size.pdf"));
    const PageFormat format{PixelType::kBilevel, qRound(wide / inch * x_resolution),
                            qRound(high / inch * y_resolution), x_resolution, y_resolution};
    const auto bytes = format.bytes_per_row() * static_cast<std::size_t>(format.height);
    write_pdf(pdf, {encode(format, QByteArray(static_cast<qsizetype>(bytes), '\0'))});
    const test::Said said = test::run_tool(QStringLiteral("pdfinfo"), {pdf});
    QCOMPARE(said.exit_code, 0);
    const QRegularExpression size(QStringLiteral("Page size: +([0-9.]+) x ([0-9.]+) pts"));
    const QRegularExpressionMatch match = size.match(said.text);
    QVERIFY2(match.hasMatch(), qPrintable(said.text));
    QVERIFY(std::abs(match.captured(1).toDouble() / 72 * inch - wide) < 0.5);
    QVERIFY(std::abs(match.captured(2).toDouble() / 72 * inch - high) < 0.5);
    QCOMPARE(complaints(pdf), QString());
}

void TestPdfWriter::a_page_larger_than_readers_allow_gets_a_larger_unit() {
    const QByteArray inches_200 = pdf_of({page_of(PixelType::kBilevel, 200, 20, 1, 1)});
    QVERIFY(inches_200.contains("/MediaBox [0 0 14400 1440] /Resources"));
    const EncodedPage inches_500 = page_of(PixelType::kBilevel, 500, 50, 1, 1);
    QVERIFY(pdf_of({inches_500}).contains("/MediaBox [0 0 12000 1200] /UserUnit 3 /Resources"));
    const QString pdf = path(QStringLiteral("large.pdf"));
    write_pdf(pdf, {inches_500});
    QCOMPARE(complaints(pdf), QString());
}

void TestPdfWriter::pages_come_in_the_order_of_acquisition() {
    std::vector<EncodedPage> pages;
    for (int i = 1; i <= 120; ++i)
        pages.push_back(page_of(i % 2 == 0 ? PixelType::kGray : PixelType::kBilevel, i, 121 - i));
    const QString pdf = path(QStringLiteral("order.pdf"));
    write_pdf(pdf, pages);
    QCOMPARE(complaints(pdf), QString());
    const QString all = path(QStringLiteral("order"));
    const QStringList files = extract_pictures(pdf, all);
    QCOMPARE(files.size(), 120);
    for (int i = 1; i <= 120; ++i) {
        const PixelMap map = read_pixel_map(files[i - 1]);
        QCOMPARE(map.width, i);
        QCOMPARE(map.height, 121 - i);
    }
}

void TestPdfWriter::the_document_says_who_made_it_and_when() {
    const QString pdf = path(QStringLiteral("info.pdf"));
    const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-1);
    write_pdf(pdf, {page_of(PixelType::kBilevel, 10, 10)});
    const test::Said said =
        test::run_tool(QStringLiteral("pdfinfo"), {QStringLiteral("-isodates"), pdf});
    QCOMPARE(said.exit_code, 0);
    QVERIFY2(said.text.contains(QRegularExpression(QStringLiteral("Producer: +Folidex \\d"))),
             qPrintable(said.text));
    const QRegularExpression date(QStringLiteral("CreationDate: +(\\S+)"));
    const QDateTime made = QDateTime::fromString(date.match(said.text).captured(1), Qt::ISODate);
    QVERIFY(made.isValid());
    QVERIFY(made >= before && made <= QDateTime::currentDateTimeUtc());
}

void TestPdfWriter::two_documents_are_told_apart() {
    const EncodedPage page = page_of(PixelType::kBilevel, 10, 10);
    const QRegularExpression id(QStringLiteral("/ID \\[<([0-9a-f]{32})> <([0-9a-f]{32})>\\]"));
    const auto first = id.match(QString::fromLatin1(pdf_of({page})));
    const auto second = id.match(QString::fromLatin1(pdf_of({page})));
    QVERIFY(first.hasMatch() && second.hasMatch());
    QCOMPARE(first.captured(1), first.captured(2));
    QVERIFY(first.captured(1) != second.captured(1));
}

void TestPdfWriter::a_device_that_takes_little_at_a_time_gets_everything() {
    NarrowDevice device(7, std::numeric_limits<qint64>::max());
    PdfWriter writer(device);
    writer.add_page(page_of(PixelType::kGray, 300, 200));
    writer.finish();
    const QString pdf = path(QStringLiteral("narrow.pdf"));
    QFile file(pdf);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(device.taken);
    file.close();
    QCOMPARE(complaints(pdf), QString());
}

void TestPdfWriter::a_device_that_stops_anywhere_gives_an_error() {
    const EncodedPage page = page_of(PixelType::kBilevel, 20, 20);
    const qint64 whole = pdf_of({page}).size();
    const auto write_within = [&](qint64 room) {
        NarrowDevice device(1000, room);
        PdfWriter writer(device);
        writer.add_page(page);
        writer.finish();
    };
    for (qint64 room = 0; room < whole; ++room) {
        try {
            write_within(room);
            QFAIL("the bytes went nowhere");
        } catch (const Error& error) {
            QVERIFY(error.description.contains(QStringLiteral("the line was cut")));
        }
    }
    write_within(whole);
}

void TestPdfWriter::a_full_disk_names_the_file() {
    // A small PDF fails only when the last bytes are flushed.
    const test::SmallDisk disk;
    const QString full = disk.full_file();
    for (const int width : {20, 20000}) {
        QFile file(full);
        QVERIFY(file.open(QIODevice::WriteOnly));
        try {
            PdfWriter writer(file);
            writer.add_page(page_of(PixelType::kBilevel, width, width / 20));
            writer.finish();
            QFAIL("a full disk took the PDF");
        } catch (const Error& error) {
            QCOMPARE(error.number, kDiskFull);
            QVERIFY2(error.description.contains(QDir::toNativeSeparators(full)),
                     qPrintable(error.description));
        }
    }
}

void TestPdfWriter::a_page_that_cannot_be_is_refused_data() {
    QTest::addColumn<EncodedPage>("page");
    const EncodedPage good = page_of(PixelType::kGray, 8, 8);
    const auto row = [&](const char* name, const std::function<void(EncodedPage&)>& change) {
        EncodedPage page = good;
        change(page);
        QTest::newRow(name) << page;
    };
    row("no width", [](EncodedPage& page) { page.width = 0; });
    row("no rows", [](EncodedPage& page) { page.height = 0; });
    row("no data", [](EncodedPage& page) { page.data.clear(); });
    row("no resolution", [](EncodedPage& page) { page.x_resolution = 0; });
    row("resolution not a number", [](EncodedPage& page) { page.y_resolution = qQNaN(); });
    row("JPEG of 1 bit", [](EncodedPage& page) { page.type = PixelType::kBilevel; });
    row("Group 4 of greys", [](EncodedPage& page) { page.filter = EncodedPage::Filter::kGroup4; });
}

void TestPdfWriter::a_page_that_cannot_be_is_refused() {
    QFETCH(EncodedPage, page);
    const QString pdf = path(QStringLiteral("refused.pdf"));
    QFile file(pdf);
    QVERIFY(file.open(QIODevice::WriteOnly));
    PdfWriter writer(file);
    writer.add_page(page_of(PixelType::kGray, 8, 8));
    QVERIFY_EXCEPTION_THROWN(writer.add_page(page), Error);
    // Nothing of it was written: the document can still be ended.
    writer.finish();
    QCOMPARE(complaints(pdf), QString());
}

void TestPdfWriter::a_document_without_pages_is_refused() {
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    PdfWriter writer(buffer);
    QVERIFY_EXCEPTION_THROWN(writer.finish(), Error);
}

void TestPdfWriter::memory_does_not_grow_with_the_pages_data() {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("pages");
    QTest::newRow("200 pages of 1 bit") << QStringLiteral("1-bit") << 200;
    QTest::newRow("40 colour pages") << QStringLiteral("colour") << 40;
}

void TestPdfWriter::memory_does_not_grow_with_the_pages() {
    QFETCH(QString, kind);
    QFETCH(int, pages);
    // A build under the address sanitizer keeps freed memory back, which is not what is asked.
    qputenv("ASAN_OPTIONS",
            "detect_leaks=0:quarantine_size_mb=0:thread_local_quarantine_size_kb=0");
    const QString pdf = path(QStringLiteral("memory.pdf"));
    const auto peak = [&](int count) {
        const test::Said said =
            test::run(QStringLiteral(PAGES_PROBE), {kind, QString::number(count), pdf});
        return said.text.trimmed().toInt();
    };
    const int one = peak(1);
    QVERIFY(one > 0);
    const int many = peak(pages);
    QVERIFY2(many > 0 && many <= one * 11 / 10,
             qPrintable(QStringLiteral("%1 KB, then %2 KB").arg(one).arg(many)));
    QCOMPARE(complaints(pdf), QString());
    const test::Said said = test::run_tool(QStringLiteral("pdfinfo"), {pdf});
    QVERIFY(said.text.contains(QRegularExpression(QStringLiteral("Pages: +%1\\s").arg(pages))));
}

QTEST_GUILESS_MAIN(TestPdfWriter)
#include "test_pdf_writer.moc"
