// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/scanner.h"

#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace folidex {

/// The whole road with SANE's own pretended scanner.
class SaneTestDevice : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void the_pretended_scanners_are_listed_by_names_that_differ();
    void a_ten_page_feeder_scan_becomes_a_pdf_of_ten_pages();
    void a_second_scan_gives_ten_pages_again();

private:
    static std::unique_ptr<Scanner> scan(int source);
    static QString run(const QString& program, const QStringList& arguments);
};

void SaneTestDevice::initTestCase() {
    qputenv("SANE_CONFIG_DIR", FOLIDEX_SANE_CONFIG);
}

QString SaneTestDevice::run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        return QStringLiteral("%1 failed: ").arg(program) + process.errorString() +
               QString::fromLocal8Bit(process.readAll());
    return QString::fromLocal8Bit(process.readAll());
}

std::unique_ptr<Scanner> SaneTestDevice::scan(int source) {
    auto scanner = make_scanner();
    if (scanner->source_count() <= source)
        return nullptr;
    scanner->set_use_feeder(true);
    scanner->set_auto_feed(true);
    scanner->set_show_progress(true);
    scanner->set_duplex(scanner->supports_duplex());
    scanner->set_current_source(source);
    if (!scanner->open_source())
        return nullptr;
    scanner->set_scan_until_empty(true);
    scanner->discard_pages();
    scanner->acquire(nullptr);
    return scanner;
}

void SaneTestDevice::the_pretended_scanners_are_listed_by_names_that_differ() {
    const auto scanner = make_scanner();
    QCOMPARE(scanner->source_count(), 2);
    QCOMPARE(scanner->source_name(0), QStringLiteral("Noname frontend-tester (test:0)"));
    QCOMPARE(scanner->source_name(1), QStringLiteral("Noname frontend-tester (test:1)"));
}

void SaneTestDevice::a_ten_page_feeder_scan_becomes_a_pdf_of_ten_pages() {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("scan.pdf"));
    const auto scanner = scan(0);
    QVERIFY(scanner);
    QCOMPARE(scanner->page_count(), 10);
    for (int page = 1; page <= 10; ++page) {
        scanner->select_page(page);
        scanner->append_page(page);
    }
    scanner->write_pdf(path);

    const QString check = run(QStringLiteral("qpdf"), {QStringLiteral("--check"), path});
    QVERIFY2(check.contains(QStringLiteral("No syntax or stream encoding errors found")),
             qPrintable(check));
    QVERIFY2(!check.contains(QStringLiteral("WARNING")), qPrintable(check));
    const QString info = run(QStringLiteral("pdfinfo"), {path});
    QVERIFY2(info.contains(QRegularExpression(QStringLiteral("Pages: +10\n"))), qPrintable(info));
    const auto size =
        QRegularExpression(QStringLiteral("Page size: +([0-9.]+) x ([0-9.]+) pts")).match(info);
    QVERIFY2(size.hasMatch(), qPrintable(info));
    constexpr double kMillimetresAPoint = 25.4 / 72;
    QVERIFY2(qAbs(size.captured(1).toDouble() * kMillimetresAPoint - 80) <= 0.5, qPrintable(info));
    QVERIFY2(qAbs(size.captured(2).toDouble() * kMillimetresAPoint - 100) <= 0.5, qPrintable(info));

    const QString picture = folder.filePath(QStringLiteral("page"));
    const QString drawn = run(QStringLiteral("pdftoppm"),
                              {QStringLiteral("-r"), QStringLiteral("50"), QStringLiteral("-gray"),
                               QStringLiteral("-singlefile"), path, picture});
    QVERIFY2(drawn.isEmpty(), qPrintable(drawn));
    const QImage page(picture + QStringLiteral(".pgm"));
    // The picture is a grid of black and white squares of 10 mm, 20 pixels here.
    const int first = qGray(page.pixel(9, 9));
    const int second = qGray(page.pixel(29, 9));
    QVERIFY2(qAbs(first - second) > 200, qPrintable(QString::number(first - second)));
}

void SaneTestDevice::a_second_scan_gives_ten_pages_again() {
    QCOMPARE(scan(1)->page_count(), 10);
    QCOMPARE(scan(1)->page_count(), 10);
}

} // namespace folidex

QTEST_MAIN(folidex::SaneTestDevice)
#include "test_sane_device.moc"
