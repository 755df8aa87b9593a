// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/sane_acquisition.h"
#include "tests/support/scripted_sane.h"

#include <QImage>
#include <QTest>
#include <thread>

namespace folidex {

using test::failing_start;
using test::gray_frame;
using test::ScriptedDevice;
using test::ScriptedFrame;
using test::ScriptedSane;
using Answer = ScanControl::Answer;

class SaneAcquisitionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void the_feeder_is_scanned_to_its_end();
    void one_page_when_the_feeder_shall_not_go_on_by_itself();
    void the_glass_gives_one_page();
    void an_empty_feeder_gives_way_to_the_glass();
    void an_empty_feeder_without_a_glass_is_reported();
    void a_sheetfed_device_without_a_choice_is_a_feeder();
    void both_sides_are_read_where_the_device_can_data();
    void both_sides_are_read_where_the_device_can();
    void three_passes_in_any_order_make_one_colour_page();
    void a_colour_that_is_missing_is_reported();
    void a_page_of_unknown_height_is_as_high_as_its_rows();
    void fewer_and_more_rows_than_announced_are_taken_as_they_come();
    void short_reads_make_a_whole_page();
    void reads_without_data_are_waited_out();
    void sixteen_bits_become_eight();
    void a_page_without_rows_is_reported();
    void a_feeder_that_runs_out_in_mid_page_keeps_what_came();
    void a_jam_keeps_the_pages_already_scanned_data();
    void a_jam_keeps_the_pages_already_scanned();
    void a_jam_is_told_with_its_page_and_words();
    void a_failure_names_the_device_and_what_to_do_data();
    void a_failure_names_the_device_and_what_to_do();
    void cancelled_at_the_device_leaves_no_pages();
    void the_device_is_told_that_the_scan_is_over();

private:
    ScriptedDevice& feeder_with(int pages);
    void scan(ScanWishes wishes = {true, true, true, true});
    QImage picture(int page);

    std::unique_ptr<ScriptedSane> sane_;
    std::unique_ptr<ScanControl> control_;
    std::unique_ptr<PageSpool> spool_;
    ScriptedDevice device_;
};

void SaneAcquisitionTest::init() {
    sane_ = std::make_unique<ScriptedSane>();
    control_ = std::make_unique<ScanControl>(ScanControl::Phase::kScanning);
    spool_ = std::make_unique<PageSpool>();
    device_ = {};
    device_.options = {test::text_option("source", {"Flatbed", "ADF"}),
                       test::number_option("resolution", SANE_UNIT_DPI, 100)};
}

ScriptedDevice& SaneAcquisitionTest::feeder_with(int pages) {
    for (int page = 0; page < pages; ++page)
        device_.feeder.push_back(gray_frame(100 + page, 50));
    return device_;
}

void SaneAcquisitionTest::scan(ScanWishes wishes) {
    sane_->add(device_);
    const SaneApi api = sane_->api();
    SANE_Handle handle = nullptr;
    QCOMPARE(api.open("script:0", &handle), SANE_STATUS_GOOD);
    const SaneWho who{QStringLiteral("Acme Scan"), "script:0", sane_text(device_.type)};
    SaneAcquisition(api, handle, who, wishes, *control_, *spool_).run();
}

QImage SaneAcquisitionTest::picture(int page) {
    return QImage::fromData(spool_->page(page).data);
}

void SaneAcquisitionTest::the_feeder_is_scanned_to_its_end() {
    feeder_with(12);
    scan();
    QCOMPARE(spool_->count(), 12);
    for (int page = 1; page <= 12; ++page)
        QCOMPARE(spool_->page(page).width, 99 + page);
    QCOMPARE(spool_->page(1).x_resolution, 100.0);
}

void SaneAcquisitionTest::one_page_when_the_feeder_shall_not_go_on_by_itself() {
    feeder_with(3);
    scan({true, false, false, true});
    QCOMPARE(spool_->count(), 1);
}

void SaneAcquisitionTest::the_glass_gives_one_page() {
    device_.options.pop_front();
    device_.glass = {gray_frame(30, 20), gray_frame(31, 20)};
    scan();
    QCOMPARE(spool_->count(), 1);
    QCOMPARE(spool_->page(1).width, 30);
}

void SaneAcquisitionTest::an_empty_feeder_gives_way_to_the_glass() {
    device_.glass = {gray_frame(30, 20), gray_frame(31, 20)};
    scan();
    QCOMPARE(spool_->count(), 1);
    QCOMPARE(sane_->option("source"), QByteArray("Flatbed"));
}

void SaneAcquisitionTest::an_empty_feeder_without_a_glass_is_reported() {
    device_.options.front() = test::text_option("source", {"ADF Front", "ADF Duplex"});
    try {
        scan();
        QFAIL("nothing was reported");
    } catch (const Error& error) {
        QVERIFY(error.description.contains(sane_words(sane_->api(), SANE_STATUS_NO_DOCS)));
        QVERIFY(error.description.contains(QStringLiteral("into the feeder")));
    }
}

void SaneAcquisitionTest::a_sheetfed_device_without_a_choice_is_a_feeder() {
    device_.options.pop_front();
    device_.type = "sheetfed scanner";
    feeder_with(3);
    scan();
    QCOMPARE(spool_->count(), 3);
}

void SaneAcquisitionTest::both_sides_are_read_where_the_device_can_data() {
    using Names = QList<QByteArray>;
    QTest::addColumn<Names>("sources");
    QTest::addColumn<QByteArray>("extra");
    QTest::addColumn<bool>("wanted");
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<QByteArray>("value");
    const QByteArray on("\1\0\0\0", 4);
    const QByteArray off(4, '\0');
    QTest::newRow("a source") << Names{"Flatbed", "ADF", "ADF Duplex"} << QByteArray() << true
                              << QByteArray("ADF Duplex") << QByteArray();
    QTest::newRow("a source, not wanted") << Names{"Flatbed", "ADF", "ADF Duplex"} << QByteArray()
                                          << false << QByteArray("ADF") << QByteArray();
    QTest::newRow("a switch") << Names{"Flatbed", "ADF"} << QByteArray("duplex") << true
                              << QByteArray("ADF") << on;
    QTest::newRow("a switch, not wanted")
        << Names{"Flatbed", "ADF"} << QByteArray("duplex") << false << QByteArray("ADF") << off;
    QTest::newRow("a mode") << Names{"Flatbed", "ADF"} << QByteArray("adf-mode") << true
                            << QByteArray("ADF") << QByteArray("Duplex");
}

void SaneAcquisitionTest::both_sides_are_read_where_the_device_can() {
    QFETCH(QList<QByteArray>, sources);
    QFETCH(QByteArray, extra);
    QFETCH(bool, wanted);
    QFETCH(QByteArray, source);
    QFETCH(QByteArray, value);
    device_.options.front() = test::text_option("source", sources);
    if (extra == "duplex")
        device_.options.push_back(test::switch_option(extra));
    else if (!extra.isEmpty())
        device_.options.push_back(test::text_option(extra, {"Simplex", "Duplex"}));
    feeder_with(2);
    scan({true, true, wanted, true});
    QCOMPARE(spool_->count(), 2);
    QCOMPARE(sane_->option("source"), source);
    QCOMPARE(sane_->option(extra), value);
}

void SaneAcquisitionTest::three_passes_in_any_order_make_one_colour_page() {
    const auto frame = [](SANE_Frame colour, char sample, bool last) {
        ScriptedFrame pass = gray_frame(40, 30, sample);
        pass.parameters.format = colour;
        pass.parameters.last_frame = last ? SANE_TRUE : SANE_FALSE;
        return pass;
    };
    device_.feeder = {frame(SANE_FRAME_BLUE, '\x20', false), frame(SANE_FRAME_RED, '\xe0', false),
                      frame(SANE_FRAME_GREEN, '\x80', true), gray_frame(41, 30)};
    scan();
    QCOMPARE(spool_->count(), 2);
    QCOMPARE(spool_->page(1).type, PixelType::kRgb);
    QCOMPARE(picture(1).size(), QSize(40, 30));
    const QColor colour = picture(1).pixelColor(20, 15);
    QVERIFY2(qAbs(colour.red() - 0xe0) < 6 && qAbs(colour.green() - 0x80) < 6 &&
                 qAbs(colour.blue() - 0x20) < 6,
             qPrintable(colour.name()));
}

void SaneAcquisitionTest::a_colour_that_is_missing_is_reported() {
    ScriptedFrame pass = gray_frame(40, 30);
    pass.parameters.format = SANE_FRAME_RED;
    device_.feeder = {pass};
    try {
        scan();
        QFAIL("nothing was reported");
    } catch (const Error& error) {
        QVERIFY(error.description.contains(QStringLiteral("colour missing")));
    }
}

void SaneAcquisitionTest::a_page_of_unknown_height_is_as_high_as_its_rows() {
    ScriptedFrame frame = gray_frame(40, 33);
    frame.parameters.lines = -1;
    device_.feeder = {frame};
    scan();
    QCOMPARE(spool_->page(1).height, 33);
    QCOMPARE(picture(1).size(), QSize(40, 33));
}

void SaneAcquisitionTest::fewer_and_more_rows_than_announced_are_taken_as_they_come() {
    ScriptedFrame fewer = gray_frame(40, 20);
    fewer.parameters.lines = 30;
    ScriptedFrame more = gray_frame(40, 40);
    more.parameters.lines = 30;
    device_.feeder = {fewer, more};
    scan();
    QCOMPARE(picture(1).size(), QSize(40, 20));
    QCOMPARE(picture(2).size(), QSize(40, 40));
}

void SaneAcquisitionTest::short_reads_make_a_whole_page() {
    ScriptedFrame frame = gray_frame(40, 30);
    frame.portion = 7;
    device_.feeder = {frame};
    scan();
    QCOMPARE(picture(1).size(), QSize(40, 30));
}

void SaneAcquisitionTest::reads_without_data_are_waited_out() {
    device_.feeder = {gray_frame(40, 30)};
    sane_->add(device_);
    SaneApi api = sane_->api();
    int empty = 3;
    api.read = [&, read = api.read](SANE_Handle handle, SANE_Byte* data, SANE_Int size,
                                    SANE_Int* got) {
        *got = 0;
        return empty-- > 0 ? SANE_STATUS_GOOD : read(handle, data, size, got);
    };
    SANE_Handle handle = nullptr;
    QCOMPARE(api.open("script:0", &handle), SANE_STATUS_GOOD);
    SaneAcquisition(api, handle, {}, {true, true, true, true}, *control_, *spool_).run();
    QCOMPARE(spool_->count(), 1);
    QVERIFY(empty < 0);
}

void SaneAcquisitionTest::sixteen_bits_become_eight() {
    ScriptedFrame frame = gray_frame(40, 30);
    frame.parameters.depth = 16;
    frame.parameters.bytes_per_line = 80;
    frame.bytes = QByteArray(80 * 30, '\xc0');
    device_.feeder = {frame};
    scan();
    QCOMPARE(picture(1).size(), QSize(40, 30));
    QVERIFY(qAbs(qGray(picture(1).pixel(20, 15)) - 0xc0) < 4);
}

void SaneAcquisitionTest::a_page_without_rows_is_reported() {
    device_.feeder = {gray_frame(40, 0)};
    try {
        scan();
        QFAIL("nothing was reported");
    } catch (const Error& error) {
        QVERIFY(error.description.contains(QStringLiteral("Acme Scan")));
        QVERIFY(error.description.contains(QStringLiteral("without any content")));
    }
}

void SaneAcquisitionTest::a_feeder_that_runs_out_in_mid_page_keeps_what_came() {
    ScriptedFrame half = gray_frame(40, 10);
    half.parameters.lines = 30;
    half.ending = SANE_STATUS_NO_DOCS;
    device_.feeder = {gray_frame(40, 30), half};
    scan();
    QCOMPARE(spool_->count(), 2);
    QCOMPARE(picture(2).size(), QSize(40, 10));
}

void SaneAcquisitionTest::a_jam_keeps_the_pages_already_scanned_data() {
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("while_reading");
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<int>("pages");
    for (const SANE_Status status : {SANE_STATUS_JAMMED, SANE_STATUS_COVER_OPEN})
        for (const bool reading : {false, true}) {
            const auto row = [&](const char* name, Answer answer, int pages) {
                QTest::addRow("%s, status %d, %s", name, int{status},
                              reading ? "while reading" : "at the start")
                    << int{status} << reading << answer << pages;
            };
            row("continue", Answer::kContinue, 5);
            row("keep", Answer::kKeep, 2);
            row("discard", Answer::kDiscard, 0);
        }
}

void SaneAcquisitionTest::a_jam_keeps_the_pages_already_scanned() {
    QFETCH(int, status);
    QFETCH(bool, while_reading);
    QFETCH(Answer, answer);
    QFETCH(int, pages);
    ScriptedFrame jam = failing_start(static_cast<SANE_Status>(status));
    if (while_reading) {
        jam = gray_frame(102, 20);
        jam.ending = static_cast<SANE_Status>(status);
    }
    feeder_with(5);
    device_.feeder.insert(device_.feeder.begin() + 2, jam);
    std::thread scanning([this] { scan(); });
    const bool asked =
        QTest::qWaitFor([this] { return control_->state().trouble.has_value(); }, 30000);
    control_->answer(answer);
    if (!asked)
        control_->cancel();
    scanning.join();
    QVERIFY(asked);
    QCOMPARE(spool_->count(), pages);
    for (int page = 1; page <= pages; ++page)
        QCOMPARE(spool_->page(page).width, 99 + page);
}

void SaneAcquisitionTest::a_jam_is_told_with_its_page_and_words() {
    feeder_with(2).feeder.push_back(failing_start(SANE_STATUS_JAMMED));
    std::thread scanning([this] { scan(); });
    const bool asked =
        QTest::qWaitFor([this] { return control_->state().trouble.has_value(); }, 30000);
    const auto trouble = control_->state().trouble;
    control_->cancel();
    scanning.join();
    QVERIFY(asked);
    QCOMPARE(trouble->page, 3);
    QCOMPARE(trouble->pages_so_far, 2);
    QCOMPARE(trouble->words, QString::fromLatin1(sane_strstatus(SANE_STATUS_JAMMED)));
    QCOMPARE(spool_->count(), 0);
}

void SaneAcquisitionTest::a_failure_names_the_device_and_what_to_do_data() {
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("while_reading");
    QTest::addColumn<QString>("advice");
    QTest::addColumn<int>("number");
    const QString check = QStringLiteral("switched on and connected");
    QTest::newRow("gone") << int{SANE_STATUS_IO_ERROR} << true << check << 57;
    QTest::newRow("gone at the start") << int{SANE_STATUS_IO_ERROR} << false << check << 57;
    QTest::newRow("refused") << int{SANE_STATUS_ACCESS_DENIED} << false << QStringLiteral("right")
                             << 70;
    QTest::newRow("busy") << int{SANE_STATUS_DEVICE_BUSY} << false << QStringLiteral("until it is")
                          << 68;
    QTest::newRow("no memory") << int{SANE_STATUS_NO_MEM} << true
                               << QStringLiteral("other programs") << 7;
    QTest::newRow("nonsense") << int{SANE_STATUS_INVAL} << false << check << 68;
}

void SaneAcquisitionTest::a_failure_names_the_device_and_what_to_do() {
    QFETCH(int, status);
    QFETCH(bool, while_reading);
    QFETCH(QString, advice);
    QFETCH(int, number);
    ScriptedFrame failure = failing_start(static_cast<SANE_Status>(status));
    if (while_reading) {
        failure = gray_frame(40, 10);
        failure.ending = static_cast<SANE_Status>(status);
    }
    feeder_with(1).feeder.push_back(failure);
    try {
        scan();
        QFAIL("nothing was reported");
    } catch (const Error& error) {
        QCOMPARE(error.number, number);
        for (const QString& part :
             {QStringLiteral("\"Acme Scan\""), QStringLiteral("(script:0)"), advice,
              QString::fromLatin1(sane_strstatus(static_cast<SANE_Status>(status)))})
            QVERIFY2(error.description.contains(part), qPrintable(error.description));
    }
    QCOMPARE(sane_->calls().last(), QStringLiteral("cancel"));
}

void SaneAcquisitionTest::cancelled_at_the_device_leaves_no_pages() {
    feeder_with(1).feeder.push_back(failing_start(SANE_STATUS_CANCELLED));
    scan();
    QCOMPARE(spool_->count(), 0);
    QVERIFY(control_->cancelled());
}

void SaneAcquisitionTest::the_device_is_told_that_the_scan_is_over() {
    feeder_with(1);
    scan();
    QCOMPARE(sane_->calls().last(), QStringLiteral("cancel"));
}

} // namespace folidex

Q_DECLARE_METATYPE(folidex::ScanControl::Answer)
QTEST_GUILESS_MAIN(folidex::SaneAcquisitionTest)
#include "test_sane_acquisition.moc"
