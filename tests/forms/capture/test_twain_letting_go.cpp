// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/forms/capture/twain_desk.h"

#include <QProcess>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

/// The way down of a driver that takes its time: it is never ended in the midst of it, and nobody
/// waits for it but the next scan.
class TwainLettingGoTest : public TwainDeskTest {
    Q_OBJECT

    bool wait_until_noted(const QString& line) const {
        return wait_until([&] { return desk_->twain.noted(line); });
    }
    /// What no helper says that was killed.
    bool wait_until_left() const { return wait_until_noted(u"scan64: left with 0"_s); }

    /// Presses Cancel as soon as the program has heard of a page.
    void cancel_in_the_page() const {
        QVERIFY(wait_until_noted(u"scan64: at moving"_s));
        QVERIFY(wait_until([] {
            return progress_window() &&
                   progress_window()->findChild<QLabel*>(u"lblPage"_s)->text() == u"Page 1"_s;
        }));
        TwainDesk::press_when_shown("cmdCancelScan");
    }

private Q_SLOTS:
    void a_driver_gets_the_time_that_its_helper_allows_itself() {
        QCOMPARE(TwainSettings{}.release, std::chrono::seconds(10));
    }

    void cancelling_frees_the_user_at_once_and_lets_the_driver_finish_data() {
        QTest::addColumn<QStringList>("page");
        QTest::newRow("a page that comes in strips") << kHalfAPage;
        QTest::newRow("a page that comes all at once") << QStringList{u"ready"_s};
    }
    void cancelling_frees_the_user_at_once_and_lets_the_driver_finish() {
        QFETCH(QStringList, page);
        // Silence means nothing while paper moves, or a scanner is put away.
        desk_->twain.settings.silence = std::chrono::milliseconds(0);
        desk_->open_listed();
        desk_->while_scanning([this] { cancel_in_the_page(); });
        desk_->scan_with(QStringList{u"parks ejecting"_s} + kBegin + page +
                         QStringList{u"busy moving"_s});
        QCOMPARE(desk_->scanned_pdf(), QByteArray());
        QVERIFY(wait_until([] { return !progress_window(); }));
        QVERIFY(wait_until_noted(u"scan64: input ended"_s));
        QVERIFY(desk_->twain.noted(u"scan64: command c"_s));
        desk_->twain.open_gate(u"moving"_s);
        QVERIFY(wait_until_noted(u"scan64: at ejecting"_s));
        desk_->twain.open_gate(u"ejecting"_s);
        QVERIFY(wait_until_left());
    }

    void the_way_down_after_the_last_page_is_not_cut_short() {
        desk_->twain.settings.silence = std::chrono::milliseconds(0);
        desk_->open_listed();
        desk_->scan_with(QStringList{u"parks ejecting"_s} + ScriptedTwain::pages({100}));
        QCOMPARE(desk_->scanned_widths(), QList<int>({100}));
        QVERIFY(wait_until_noted(u"scan64: at ejecting"_s));
        QVERIFY(wait_until_noted(u"scan64: input ended"_s));
        desk_->twain.open_gate(u"ejecting"_s);
        QVERIFY(wait_until_left());
    }

    void a_driver_that_falls_silent_after_cancel_is_ended() {
        desk_->twain.settings.silence = std::chrono::milliseconds(300);
        desk_->open_listed();
        desk_->while_opening([this] {
            QVERIFY(wait_until_noted(u"scan64: hangs"_s));
            TwainDesk::press_when_shown("cmdCancelScan");
        });
        desk_->scan_with({u"hang"_s});
        desk_->scan_with(ScriptedTwain::pages({200}));
        QCOMPARE(desk_->scanned_widths(), QList<int>({200}));
        QVERIFY(!desk_->twain.noted(u"scan64: left with 9"_s));
    }

    void a_driver_that_cannot_be_read_any_more_is_let_go() {
        desk_->open_listed();
        desk_->expect_box(u"delivered what cannot be read."_s);
        desk_->scan_with(QStringList{u"parks ejecting"_s} + kBegin + kPage +
                         QStringList{u"raw 4f 6f 70 73 20 2e 2e 2e"_s, u"gate never"_s});
        QVERIFY(wait_until_noted(u"scan64: at ejecting"_s));
        desk_->twain.open_gate(u"ejecting"_s);
        QVERIFY(wait_until_left());
    }

    void the_end_of_the_program_does_not_end_the_driver() {
        desk_->twain.scan(64, {u"parks ejecting"_s, u"opened"_s, u"await"_s});
        const TwainProgram& helper = desk_->twain.settings.program64;
        QProcess program;
        program.start(QString::fromUtf8(FOLIDEX_TWAIN_PROBE), {helper.path, helper.arguments[0]});
        QVERIFY(wait_until_noted(u"scan64: at ejecting"_s));
        program.closeWriteChannel();
        QVERIFY(wait_until([&] { return program.state() == QProcess::NotRunning; }));
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QVERIFY(!desk_->twain.noted(u"scan64: left with 0"_s));
        desk_->twain.open_gate(u"ejecting"_s);
        QVERIFY(wait_until_left());
    }
};

QTEST_MAIN(TwainLettingGoTest)
#include "test_twain_letting_go.moc"
