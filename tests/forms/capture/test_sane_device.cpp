// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/sane_scanner.h"

#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <atomic>

namespace folidex {

namespace {

/// Drivers take their time to load on a busy machine.
const ScanPatience kAmple{std::chrono::seconds(60), ScanPatience{}.nudge, std::chrono::seconds(60)};
constexpr int kLongestWait = 60'000;

} // namespace

/// The whole road with SANE's own pretended scanner.
class SaneTestDevice : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    // First those with a SANE of their own: the program's, once begun, stays to the end.
    void its_moods_make_clean_pdfs_data();
    void its_moods_make_clean_pdfs();
    void its_failures_come_in_the_words_of_sane_data();
    void its_failures_come_in_the_words_of_sane();
    void the_pretended_scanners_are_listed_by_names_that_differ();
    void a_ten_page_feeder_scan_becomes_a_pdf_of_ten_pages();
    void a_second_scan_gives_ten_pages_again();

private:
    static std::unique_ptr<Scanner> scan(int source, std::unique_ptr<Scanner> scanner);
    /// The program's own scanners.
    std::unique_ptr<Scanner> usual();
    /// Once nobody uses SANE any more, of which there is one in the process.
    void configure(const QByteArray& settings);
    /// A SANE of its own, whose pretended scanners have more settings.
    std::unique_ptr<Scanner> with_settings(const QByteArray& settings);
    static void write_all_pages(Scanner& scanner, const QString& path);
    static QString run(const QString& program, const QStringList& arguments);

    QTemporaryDir config_;
    std::shared_ptr<std::atomic<bool>> in_use_ = std::make_shared<std::atomic<bool>>(false);
};

void SaneTestDevice::initTestCase() {
    QVERIFY(config_.isValid());
    qputenv("SANE_CONFIG_DIR", config_.path().toLocal8Bit());
}

void SaneTestDevice::configure(const QByteArray& settings) {
    QVERIFY(QTest::qWaitFor([this] { return !*in_use_; }, kLongestWait));
    // Always in the same folder: SANE looks for it once in a process.
    for (const QString& name : {QStringLiteral("dll.conf"), QStringLiteral("test.conf")}) {
        QFile usual(QStringLiteral(FOLIDEX_SANE_CONFIG "/") + name);
        QFile file(config_.filePath(name));
        QVERIFY(usual.open(QIODevice::ReadOnly) && file.open(QIODevice::WriteOnly));
        QByteArray content = usual.readAll();
        if (name == QStringLiteral("test.conf"))
            content += settings + '\n';
        QCOMPARE(file.write(content), content.size());
    }
}

std::unique_ptr<Scanner> SaneTestDevice::usual() {
    configure({});
    auto scanner = make_scanner();
    if (auto* background = dynamic_cast<BackgroundScanner*>(scanner.get()))
        background->set_patience(kAmple);
    return scanner;
}

QString SaneTestDevice::run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(kLongestWait) || process.exitCode() != 0)
        return QStringLiteral("%1 failed: ").arg(program) + process.errorString() +
               QString::fromLocal8Bit(process.readAll());
    return QString::fromLocal8Bit(process.readAll());
}

std::unique_ptr<Scanner> SaneTestDevice::with_settings(const QByteArray& settings) {
    configure(settings);
    SaneApi api = system_sane();
    api.init = [in_use = in_use_, init = api.init](SANE_Int* version, SANE_Auth_Callback callback) {
        *in_use = true;
        return init(version, callback);
    };
    api.exit = [in_use = in_use_, exit = api.exit] {
        exit();
        *in_use = false;
    };
    auto scanner = std::make_unique<SaneScanner>(std::make_shared<SaneSession>(api));
    scanner->set_patience(kAmple);
    return scanner;
}

void SaneTestDevice::write_all_pages(Scanner& scanner, const QString& path) {
    for (int page = 1; page <= scanner.page_count(); ++page) {
        scanner.select_page(page);
        scanner.append_page(page);
    }
    scanner.write_pdf(path);
}

std::unique_ptr<Scanner> SaneTestDevice::scan(int source, std::unique_ptr<Scanner> scanner) {
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
    const auto scanner = usual();
    QCOMPARE(scanner->source_count(), 2);
    QCOMPARE(scanner->source_name(0), QStringLiteral("Noname frontend-tester (test:0)"));
    QCOMPARE(scanner->source_name(1), QStringLiteral("Noname frontend-tester (test:1)"));
}

void SaneTestDevice::a_ten_page_feeder_scan_becomes_a_pdf_of_ten_pages() {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("scan.pdf"));
    const auto scanner = scan(0, usual());
    QVERIFY(scanner);
    QCOMPARE(scanner->page_count(), 10);
    write_all_pages(*scanner, path);

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
    QCOMPARE(scan(1, usual())->page_count(), 10);
    QCOMPARE(scan(1, usual())->page_count(), 10);
}

void SaneTestDevice::its_moods_make_clean_pdfs_data() {
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QByteArray>("width"); // in points; by default 157 pixels at 50 an inch
    const auto row = [](const char* name, const QByteArray& settings,
                        const QByteArray& width = "226.08") {
        QTest::newRow(name) << settings << width;
    };
    row("1 bit", "depth 1");
    row("16 bits", "depth 16");
    row("colour", "mode Color");
    row("1-bit colour", "mode Color\ndepth 1");
    row("16-bit colour", "mode Color\ndepth 16");
    row("three passes", "mode Color\nthree-pass true\nthree-pass-order BGR");
    row("three passes of 16 bits", "mode Color\ndepth 16\nthree-pass true");
    row("unknown height", "hand-scanner true", "311.04");
    row("short reads", "read-limit true\nread-limit-size 17");
    row("parameters that change at the start", "fuzzy-parameters true");
    row("padded lines", "ppl-loss 7", "216");
    row("slow", "read-delay true\nread-delay-duration 2000");
}

void SaneTestDevice::its_moods_make_clean_pdfs() {
    QFETCH(QByteArray, settings);
    QFETCH(QByteArray, width);
    const auto scanner = scan(0, with_settings(settings));
    QVERIFY(scanner);
    QCOMPARE(scanner->page_count(), 10);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("scan.pdf"));
    write_all_pages(*scanner, path);
    const QString check = run(QStringLiteral("qpdf"), {QStringLiteral("--check"), path});
    QVERIFY2(check.contains(QStringLiteral("No syntax or stream encoding errors found")) &&
                 !check.contains(QStringLiteral("WARNING")),
             qPrintable(check));
    const QString info = run(QStringLiteral("pdfinfo"), {path});
    const QString expected = QStringLiteral("size:       ") + QString::fromLatin1(width) + u' ';
    QVERIFY2(info.contains(expected), qPrintable(info));
}

void SaneTestDevice::its_failures_come_in_the_words_of_sane_data() {
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QString>("words");
    const auto row = [](const char* status, SANE_Status value) {
        QTest::newRow(status) << QByteArray(status) << QString::fromLatin1(sane_strstatus(value));
    };
    row("SANE_STATUS_ACCESS_DENIED", SANE_STATUS_ACCESS_DENIED);
    row("SANE_STATUS_DEVICE_BUSY", SANE_STATUS_DEVICE_BUSY);
    row("SANE_STATUS_IO_ERROR", SANE_STATUS_IO_ERROR);
    row("SANE_STATUS_NO_MEM", SANE_STATUS_NO_MEM);
    row("SANE_STATUS_NO_DOCS", SANE_STATUS_NO_DOCS);
}

void SaneTestDevice::its_failures_come_in_the_words_of_sane() {
    QFETCH(QByteArray, status);
    QFETCH(QString, words);
    QString told;
    try {
        scan(0, with_settings("read-status-code \"" + status + '"'));
    } catch (const Error& error) {
        told = error.description;
    }
    QVERIFY2(told.contains(words) && told.contains(QStringLiteral("(test:0)")), qPrintable(told));
}

} // namespace folidex

QTEST_MAIN(folidex::SaneTestDevice)
#include "test_sane_device.moc"
