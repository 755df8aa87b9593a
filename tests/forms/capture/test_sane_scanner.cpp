// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/sane_scanner.h"
#include "common/error_trap.h"
#include "tests/forms/capture/scan_hands.h"
#include "tests/support/scripted_sane.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

namespace folidex {

using test::failing_start;
using test::failure;
using test::gray_frame;
using test::progress_window;
using test::ScriptedDevice;
using test::ScriptedSane;
using test::wait_until;

namespace {

/// So that a busy machine shows the same; less than a scripted call hangs by itself.
const ScanPatience kAmple{std::chrono::seconds(60), ScanPatience{}.nudge, std::chrono::seconds(60)};
constexpr int kToolPatience = 100'000;

} // namespace

class SaneScannerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void sources_are_listed_once();
    void a_search_that_hangs_blocks_the_form_no_longer_than_a_second();
    void a_slow_network_source_is_added_when_it_answers();
    void a_source_that_is_not_there_opens_to_nothing_data();
    void a_source_that_is_not_there_opens_to_nothing();
    void a_source_that_refuses_to_open_says_why_data();
    void a_source_that_refuses_to_open_says_why();
    void a_slow_opening_shows_the_window_and_can_be_cancelled();
    void both_sides_are_offered_before_a_source_is_chosen();
    void pages_come_in_the_order_of_the_feeder();
    void a_second_scan_drops_the_pages_of_the_first();
    void a_page_that_was_not_scanned_cannot_be_chosen();
    void the_form_stays_alive_while_the_scanner_works();
    void cancelling_leaves_no_pages();
    void a_scanner_that_wakes_up_at_cancel_leaves_no_pages();
    void a_scanner_that_hangs_is_left_and_named();
    void a_failure_leaves_no_window_behind();
    void a_jam_can_end_with_the_pages_so_far();
    void the_device_is_free_after_the_scan();
    void a_pdf_replaces_the_one_before_it();
    void a_pdf_that_cannot_be_written_names_the_path_and_leaves_the_old_one();

private:
    void make_scanner(const ScanPatience& patience = kAmple);
    bool open(int source = 0);
    void scan();
    QString last_call() const { return sane_->calls().last(); }
    /// Does something once the progress window is up and shows a control.
    void when_shown(const char* control, const std::function<void(QWidget&)>& action);
    /// Cancels once the scanner hangs.
    void cancel_when_hanging(const std::function<void()>& then = [] {});

    std::unique_ptr<ScriptedSane> sane_;
    std::shared_ptr<SaneSession> session_; ///< as in the program, where it outlives the form
    std::unique_ptr<SaneScanner> scanner_;
    ScriptedDevice device_;
};

void SaneScannerTest::init() {
    sane_ = std::make_unique<ScriptedSane>();
    device_ = {};
    device_.options = {test::text_option("source", {"Flatbed", "ADF"}),
                       test::number_option("resolution", SANE_UNIT_DPI, 100)};
}

void SaneScannerTest::cleanup() {
    sane_->release();
    scanner_.reset();
    session_.reset();
}

void SaneScannerTest::make_scanner(const ScanPatience& patience) {
    session_ = std::make_shared<SaneSession>(sane_->api());
    scanner_ = std::make_unique<SaneScanner>(session_);
    scanner_->set_patience(patience);
}

bool SaneScannerTest::open(int source) {
    if (!scanner_) {
        sane_->add(device_);
        make_scanner();
        scanner_->source_count();
    }
    scanner_->set_use_feeder(true);
    scanner_->set_auto_feed(true);
    scanner_->set_show_progress(true);
    scanner_->set_duplex(true);
    scanner_->set_current_source(source);
    const bool opened = scanner_->open_source();
    scanner_->set_scan_until_empty(true);
    return opened;
}

void SaneScannerTest::scan() {
    scanner_->discard_pages();
    scanner_->acquire(nullptr);
    for (int page = 1; page <= scanner_->page_count(); ++page) {
        scanner_->select_page(page);
        scanner_->append_page(page);
    }
}

void SaneScannerTest::when_shown(const char* control, const std::function<void(QWidget&)>& action) {
    test::when_shown(this, control, action, [this] { sane_->release(); });
}

void SaneScannerTest::cancel_when_hanging(const std::function<void()>& then) {
    when_shown("cmdCancelScan", [this, then](QWidget& button) {
        wait_until([this] { return sane_->hanging(); });
        QTest::mouseClick(&button, Qt::LeftButton);
        then();
    });
}

void SaneScannerTest::sources_are_listed_once() {
    QVERIFY(open());
    QCOMPARE(scanner_->source_count(), 1);
    QCOMPARE(scanner_->source_name(0), QStringLiteral("Acme Scan"));
    QCOMPARE(scanner_->source_name(1), QString());
    QCOMPARE(scanner_->source_name(-1), QString());
    QCOMPARE(sane_->calls().count(QStringLiteral("list local")), 1);
    QCOMPARE(sane_->calls().count(QStringLiteral("list all")), 1);
}

void SaneScannerTest::a_search_that_hangs_blocks_the_form_no_longer_than_a_second() {
    sane_->add(device_);
    sane_->hang(QStringLiteral("list local"));
    make_scanner({});
    QVERIFY(ScanPatience{}.first_answer < std::chrono::seconds(1));
    QCOMPARE(scanner_->source_count(), 0);
    QCOMPARE(scanner_->source_count(), 0);
    bool told = false;
    scanner_->on_sources_changed([&] { told = true; });
    QVERIFY2(wait_until([this] { return sane_->hanging(); }), "the form waited for the search");
    QVERIFY(!told);
    sane_->release();
    QVERIFY(wait_until([&] { return told; }));
    QCOMPARE(scanner_->source_count(), 1);
}

void SaneScannerTest::a_slow_network_source_is_added_when_it_answers() {
    ScriptedDevice remote = device_;
    remote.name = "net:1";
    remote.model = "Remote";
    remote.local = false;
    sane_->add(remote);
    sane_->add(device_);
    sane_->hang(QStringLiteral("list all"));
    make_scanner();
    int changes = 0;
    scanner_->on_sources_changed([&] { ++changes; });
    QCOMPARE(scanner_->source_count(), 1);
    QCOMPARE(scanner_->source_name(0), QStringLiteral("Acme Scan"));
    QCOMPARE(changes, 0);
    sane_->release();
    QVERIFY(wait_until([&] { return changes > 0; }));
    QCOMPARE(changes, 1);
    QCOMPARE(scanner_->source_count(), 2);
    QCOMPARE(scanner_->source_name(0), QStringLiteral("Acme Scan"));
    QCOMPARE(scanner_->source_name(1), QStringLiteral("Acme Remote"));
}

void SaneScannerTest::a_source_that_is_not_there_opens_to_nothing_data() {
    QTest::addColumn<int>("source");
    QTest::addColumn<int>("status");
    QTest::newRow("below the first") << -1 << int{SANE_STATUS_GOOD};
    QTest::newRow("past the last") << 1 << int{SANE_STATUS_GOOD};
    QTest::newRow("taken away") << 0 << int{SANE_STATUS_INVAL};
    QTest::newRow("not for us") << 0 << int{SANE_STATUS_UNSUPPORTED};
}

void SaneScannerTest::a_source_that_is_not_there_opens_to_nothing() {
    QFETCH(int, source);
    QFETCH(int, status);
    device_.open = static_cast<SANE_Status>(status);
    QVERIFY(!open(source));
    QVERIFY(!progress_window());
}

void SaneScannerTest::a_source_that_refuses_to_open_says_why_data() {
    QTest::addColumn<int>("status");
    QTest::newRow("access denied") << int{SANE_STATUS_ACCESS_DENIED};
    QTest::newRow("busy") << int{SANE_STATUS_DEVICE_BUSY};
    QTest::newRow("no connection") << int{SANE_STATUS_IO_ERROR};
    QTest::newRow("no memory") << int{SANE_STATUS_NO_MEM};
}

void SaneScannerTest::a_source_that_refuses_to_open_says_why() {
    QFETCH(int, status);
    device_.open = static_cast<SANE_Status>(status);
    const QString words = failure([this] { open(); });
    QVERIFY2(words.startsWith(QStringLiteral("The scanner \"Acme Scan\" (script:0) reports: ")),
             qPrintable(words));
    QVERIFY(words.contains(QString::fromLatin1(sane_strstatus(device_.open))));
    QVERIFY(words.contains(QStringLiteral("\r\n\r\n")));
    QVERIFY(!progress_window());
}

void SaneScannerTest::a_slow_opening_shows_the_window_and_can_be_cancelled() {
    sane_->hang(QStringLiteral("open"));
    cancel_when_hanging([this] { sane_->release(); });
    QVERIFY(!open());
    QVERIFY(wait_until([this] { return last_call() == QStringLiteral("close"); }));
    QTRY_VERIFY(!progress_window());
}

void SaneScannerTest::both_sides_are_offered_before_a_source_is_chosen() {
    SaneScanner scanner(std::make_shared<SaneSession>(sane_->api()));
    QVERIFY(scanner.supports_duplex());
}

void SaneScannerTest::pages_come_in_the_order_of_the_feeder() {
    device_.feeder = {gray_frame(100, 50), gray_frame(200, 50), gray_frame(300, 50)};
    QVERIFY(open());
    scan();
    QCOMPARE(scanner_->page_count(), 3);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("scan.pdf"));
    scanner_->write_pdf(path);
    QProcess tool;
    tool.start(QStringLiteral("pdfinfo"), {QStringLiteral("-l"), QStringLiteral("3"), path});
    QVERIFY(tool.waitForFinished(kToolPatience));
    const QString info = QString::fromLocal8Bit(tool.readAll());
    const qsizetype first = info.indexOf(QStringLiteral("size:  72 x 36 pts"));
    const qsizetype second = info.indexOf(QStringLiteral("size:  144 x 36 pts"));
    const qsizetype third = info.indexOf(QStringLiteral("size:  216 x 36 pts"));
    QVERIFY2(first > 0 && second > first && third > second, qPrintable(info));
}

void SaneScannerTest::a_second_scan_drops_the_pages_of_the_first() {
    device_.feeder = {gray_frame(100, 50), gray_frame(100, 50), failing_start(SANE_STATUS_NO_DOCS),
                      gray_frame(100, 50)};
    QVERIFY(open());
    scan();
    QCOMPARE(scanner_->page_count(), 2);
    QVERIFY(open());
    scan();
    QCOMPARE(scanner_->page_count(), 1);
}

void SaneScannerTest::a_page_that_was_not_scanned_cannot_be_chosen() {
    device_.feeder = {gray_frame(100, 50)};
    QVERIFY(open());
    scan();
    for (const int page : {-1, 0, 2}) {
        QVERIFY(!failure([&] { scanner_->select_page(page); }).isEmpty());
        QVERIFY(!failure([&] { scanner_->append_page(page); }).isEmpty());
    }
}

void SaneScannerTest::the_form_stays_alive_while_the_scanner_works() {
    device_.feeder = {gray_frame(100, 50)};
    QVERIFY(open());
    sane_->hang(QStringLiteral("read"));
    int turns = 0;
    QTimer ticking;
    on(&ticking, &QTimer::timeout, &ticking, [&] {
        if (++turns == 20)
            sane_->release();
    });
    ticking.start(5);
    scan();
    QVERIFY(turns >= 20);
    QCOMPARE(scanner_->page_count(), 1);
}

void SaneScannerTest::cancelling_leaves_no_pages() {
    device_.feeder = {gray_frame(100, 50), gray_frame(100, 50)};
    QVERIFY(open());
    sane_->hang(QStringLiteral("read"));
    cancel_when_hanging([this] { sane_->release(); });
    scan();
    QCOMPARE(scanner_->page_count(), 0);
    QTRY_VERIFY(!progress_window());
}

void SaneScannerTest::a_scanner_that_wakes_up_at_cancel_leaves_no_pages() {
    device_.feeder = {gray_frame(100, 50)};
    QVERIFY(open());
    sane_->hang(QStringLiteral("read"), true);
    cancel_when_hanging();
    scan();
    QCOMPARE(scanner_->page_count(), 0);
    QVERIFY(wait_until([this] { return last_call() == QStringLiteral("close"); }));
}

void SaneScannerTest::a_scanner_that_hangs_is_left_and_named() {
    device_.feeder = {gray_frame(100, 50), gray_frame(120, 50)};
    QVERIFY(open());
    scanner_->set_patience({});
    sane_->hang(QStringLiteral("read"));
    cancel_when_hanging();
    const QString words = failure([this] { scan(); });
    QVERIFY2(sane_->hanging(), "the user waited for the scanner");
    QVERIFY2(words.contains(QStringLiteral("\"Acme Scan\" does not answer")), qPrintable(words));
    QVERIFY(!progress_window());
    QCOMPARE(scanner_->page_count(), 0);

    const QString again = failure([this] { open(); });
    QVERIFY2(again.contains(QStringLiteral("still does not answer")), qPrintable(again));

    // Once it woke up, the next scan works, and has only its own pages.
    scanner_->set_patience(kAmple);
    sane_->release();
    bool opened = false;
    QVERIFY(wait_until([&] { return failure([&] { opened = open(); }).isEmpty(); }));
    QVERIFY(opened);
    scan();
    QCOMPARE(scanner_->page_count(), 1);
}

void SaneScannerTest::a_failure_leaves_no_window_behind() {
    device_.feeder = {gray_frame(100, 50), failing_start(SANE_STATUS_IO_ERROR)};
    QVERIFY(open());
    const QString words = failure([this] { scan(); });
    QVERIFY(words.contains(QString::fromLatin1(sane_strstatus(SANE_STATUS_IO_ERROR))));
    QVERIFY(!progress_window());
    QCOMPARE(scanner_->page_count(), 0);
}

void SaneScannerTest::a_jam_can_end_with_the_pages_so_far() {
    device_.feeder = {gray_frame(100, 50), gray_frame(100, 50), failing_start(SANE_STATUS_JAMMED),
                      gray_frame(100, 50)};
    QVERIFY(open());
    when_shown("cmdKeepPages", [](QWidget& button) { QTest::mouseClick(&button, Qt::LeftButton); });
    scan();
    QCOMPARE(scanner_->page_count(), 2);
}

void SaneScannerTest::the_device_is_free_after_the_scan() {
    device_.feeder = {gray_frame(100, 50)};
    QVERIFY(open());
    scan();
    QVERIFY(wait_until([this] { return last_call() == QStringLiteral("close"); }));
    QVERIFY(open());
    scanner_.reset();
    QVERIFY(wait_until([this] { return sane_->calls().count(QStringLiteral("close")) == 2; }));
}

void SaneScannerTest::a_pdf_replaces_the_one_before_it() {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("current_scan.pdf"));
    device_.feeder = {gray_frame(100, 50), gray_frame(100, 50), failing_start(SANE_STATUS_NO_DOCS),
                      gray_frame(100, 50)};
    for (const int pages : {2, 1}) {
        QVERIFY(open());
        scan();
        scanner_->write_pdf(path);
        QProcess tool;
        tool.start(QStringLiteral("qpdf"), {QStringLiteral("--show-npages"), path});
        QVERIFY(tool.waitForFinished(kToolPatience));
        QCOMPARE(tool.readAll().trimmed(), QByteArray::number(pages));
    }
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), 1);
}

void SaneScannerTest::a_pdf_that_cannot_be_written_names_the_path_and_leaves_the_old_one() {
    device_.feeder = {gray_frame(100, 50)};
    QVERIFY(open());
    scan();
    const QTemporaryDir folder;
    const QString missing = folder.filePath(QStringLiteral("gone/current_scan.pdf"));
    const QString words = failure([&] { scanner_->write_pdf(missing); });
    QVERIFY2(words.contains(missing), qPrintable(words));

    // A folder in the file's place stands for whatever refuses the last step.
    const QString taken = folder.filePath(QStringLiteral("taken.pdf"));
    QVERIFY(QDir().mkpath(taken + QStringLiteral("/inside")));
    const QString refused = failure([&] { scanner_->write_pdf(taken); });
    QVERIFY2(refused.contains(taken), qPrintable(refused));
    QVERIFY(QDir(taken).exists(QStringLiteral("inside")));
    QCOMPARE(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size(), 1);
    QVERIFY(!progress_window());
    QCOMPARE(scanner_->page_count(), 1);
}

} // namespace folidex

QTEST_MAIN(folidex::SaneScannerTest)
#include "test_sane_scanner.moc"
