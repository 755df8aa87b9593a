// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/drop_menu.h"
#include "tests/forms/capture/twain_desk.h"

#include <QProgressBar>
#include <QRegularExpression>
#include <QWindow>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

namespace {

/// Counts the times that a window was painted.
class Paintings : public QObject {
public:
    explicit Paintings(QObject* window) { window->installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        count += event->type() == QEvent::Paint;
        return false;
    }
    int count = 0;
};

} // namespace

/// Sources, opening one, and the time in which the user decides in the source's own window.
class TwainChoosingTest : public TwainDeskTest {
    Q_OBJECT

    QStringList scanners() const {
        desk_->click("cmdScan");
        const QStringList menu = desk_->menu();
        desk_->control<DropMenu>("Dmnu")->close();
        return menu.mid(2);
    }
    /// Command lines of helpers that scanned.
    QStringList scans() const { return desk_->twain.log().filter(u" --index "_s); }
    /// A scan whose helper stays when all is done, until the gate is open.
    static QStringList lingering(const QString& gate) {
        return QStringList{u"opened"_s, u"await"_s, u"deaf"_s} +
               ScriptedTwain::pages({100}).mid(2) + QStringList{u"gate "_s + gate};
    }

private Q_SLOTS:
    void the_64_bit_sources_come_first() {
        desk_->open();
        QCOMPARE(scanners(), QStringList({u"Front desk"_s, u"Archive"_s, u"Old copier"_s}));
    }

    void a_list_that_comes_late_joins_at_the_end() {
        desk_->patience.first_answer = std::chrono::milliseconds(50);
        desk_->twain.list(32, {u"gate late"_s, u"source 0 Old copier"_s, u"done 0"_s});
        desk_->open();
        const QStringList first{u"Front desk"_s, u"Archive"_s};
        QVERIFY(wait_until([&] { return scanners() == first; }));
        desk_->twain.open_gate(u"late"_s);
        QVERIFY(wait_until([&] { return scanners() == first + QStringList{u"Old copier"_s}; }));
    }

    void the_first_source_of_all_switches_the_button_on() {
        desk_->patience.first_answer = std::chrono::milliseconds(50);
        desk_->twain.list(64, {u"gate late"_s, u"source 0 Front desk"_s, u"done 0"_s});
        desk_->twain.list(32, {u"done 4 1"_s});
        desk_->open();
        const auto* scan = desk_->control<QPushButton>("cmdScan");
        QVERIFY(!scan->isEnabled());
        QCOMPARE(desk_->control<QLabel>("lblPagesState")->text(), u"Looking for scanners..."_s);
        desk_->twain.open_gate(u"late"_s);
        QVERIFY(wait_until([&] { return scan->isEnabled(); }));
        QCOMPARE(desk_->control<QLabel>("lblPagesState")->text(), u"No pages yet: choose Scan."_s);
    }

    void a_search_that_ends_with_nothing_says_so() {
        desk_->patience.first_answer = std::chrono::milliseconds(50);
        desk_->twain.list(64, {u"gate late"_s, u"done 0"_s});
        desk_->twain.list(32, {u"done 4 1"_s});
        desk_->open();
        const auto* state = desk_->control<QLabel>("lblPagesState");
        QCOMPARE(state->text(), u"Looking for scanners..."_s);
        desk_->twain.open_gate(u"late"_s);
        QVERIFY(wait_until([&] { return state->text().startsWith(u"No scanner found."_s); }));
        QVERIFY(!desk_->control<QPushButton>("cmdScan")->isEnabled());
    }

    void the_form_does_not_wait_for_a_list_that_hangs() {
        desk_->patience = ScanPatience{};
        QVERIFY(desk_->patience.first_answer < std::chrono::seconds(1));
        desk_->twain.list(64, {u"hang"_s});
        desk_->open();
        QVERIFY2(desk_->session()->sources().searching(), "the form came up after the list's end");
        QVERIFY(!desk_->control<QPushButton>("cmdScan")->isEnabled());
    }

    void without_a_manager_the_button_is_off_and_nothing_is_said() {
        desk_->twain.list(64, {u"done 4 1"_s});
        desk_->twain.list(32, {u"done 4 1"_s});
        desk_->open_listed();
        QVERIFY(!desk_->control<QPushButton>("cmdScan")->isEnabled());
        QCOMPARE(scanners(), QStringList());
    }

    void opening_the_form_again_waits_for_no_list() {
        desk_->open_listed();
        desk_->twain.list(64, {u"hang"_s});
        desk_->twain.list(32, {u"hang"_s});
        desk_->open();
        QVERIFY(desk_->session()->sources().searching());
        QCOMPARE(scanners(), QStringList({u"Front desk"_s, u"Archive"_s, u"Old copier"_s}));
    }

    void a_32_bit_source_is_scanned_by_the_32_bit_helper() {
        desk_->open_listed();
        desk_->twain.scan(32, ScriptedTwain::pages({100}));
        desk_->scan(u"Old copier"_s);
        QCOMPARE(desk_->scanned_widths(), QList<int>({100}));
        QCOMPARE(scans().size(), 1);
        QVERIFY(scans().constFirst().startsWith(u"scan32 --index 0 --name Old copier --owner "_s));
    }

    void the_helper_is_told_the_source_the_window_and_all_wishes() {
        desk_->open_listed();
        desk_->twain.scan(64, ScriptedTwain::pages({100}));
        desk_->scan(u"Archive"_s);
        QCOMPARE(scans(),
                 QStringList(u"scan64 --index 1 --name Archive --owner %1 --wishes 31"_s.arg(
                     desk_->form->winId())));
    }

    void a_source_that_does_not_open_is_left_without_a_word_data() {
        QTest::addColumn<QString>("answer");
        QTest::newRow("the manager would not") << u"done 3 4 1 4"_s;
        QTest::newRow("cancelled in the driver") << u"done 1 4"_s;
    }
    void a_source_that_does_not_open_is_left_without_a_word() {
        QFETCH(QString, answer);
        desk_->open_listed();
        desk_->scan_with({answer});
        QCOMPARE(desk_->scanned_pdf(), QByteArray());
        QCOMPARE(desk_->scan_label(), u"Scan"_s);
    }

    void a_slow_opening_shows_and_can_be_cancelled() {
        desk_->open_listed();
        desk_->while_opening([this] {
            QVERIFY(wait_until([this] { return desk_->twain.noted(u"scan64: at never"_s); }));
            QVERIFY(wait_until([] { return progress_control("cmdCancelScan") != nullptr; }));
            const auto* page = progress_window()->findChild<QLabel*>(u"lblPage"_s);
            QCOMPARE(page->text(), u"Opening the scanner..."_s);
            QTest::mouseClick(progress_control("cmdCancelScan"), Qt::LeftButton);
        });
        desk_->scan_with({u"gate never"_s});
        QVERIFY(wait_until([this] { return desk_->twain.noted(u"scan64: command c"_s); }));
        QCOMPARE(desk_->scan_label(), u"Scan"_s);
        QTRY_VERIFY(!progress_window());
    }

    void the_progress_window_comes_with_the_first_page() {
        desk_->open_listed();
        desk_->while_scanning([this] {
            QVERIFY(wait_until([this] { return desk_->twain.noted(u"scan64: at choosing"_s); }));
            QVERIFY(!progress_window());
            desk_->twain.open_gate(u"choosing"_s);
            QVERIFY(wait_until([] { return progress_window() != nullptr; }));
            const auto* page = progress_window()->findChild<QLabel*>(u"lblPage"_s);
            const auto* bar = progress_window()->findChild<QProgressBar*>(u"pbPage"_s);
            QVERIFY(wait_until(
                [&] { return bar->maximum() > 0 && bar->value() * 2 == bar->maximum(); }));
            QCOMPARE(page->text(), u"Page 1"_s);
            desk_->twain.open_gate(u"half"_s);
            QVERIFY(wait_until([&] { return page->text() == u"Page 2"_s; }));
            desk_->twain.open_gate(u"second"_s);
        });
        desk_->scan_with({u"opened"_s, u"await"_s, u"window"_s, u"alive choosing"_s,
                          u"page gray 100 50 100 100"_s, u"rows 25"_s, u"gate half"_s, u"rows 25"_s,
                          u"end"_s, u"page gray 200 50 100 100"_s, u"gate second"_s, u"rows 50"_s,
                          u"end"_s, u"done 0"_s});
        QCOMPARE(desk_->scanned_widths(), QList<int>({100, 200}));
        QTRY_VERIFY(!progress_window());
    }

    void a_page_that_comes_all_at_once_is_shown_while_it_comes() {
        // As soon as nothing is heard of a driver that has no page, it counts as hanging.
        desk_->twain.settings.silence = std::chrono::milliseconds(0);
        desk_->open_listed();
        desk_->while_scanning([this] {
            for (const QString& page : {u"1"_s, u"2"_s}) {
                QVERIFY(wait_until([&] {
                    return progress_window() &&
                           progress_window()->findChild<QLabel*>(u"lblPage"_s)->text() ==
                               u"Page "_s + page;
                }));
                const auto* bar = progress_window()->findChild<QProgressBar*>(u"pbPage"_s);
                QVERIFY(wait_until([&] { return bar->maximum() == 0; }));
                QVERIFY(progress_control("cmdCancelScan"));
                desk_->twain.open_gate(u"whole"_s + page);
            }
        });
        desk_->scan_with({u"opened"_s, u"await"_s, u"window"_s, u"ready"_s, u"busy whole1"_s,
                          u"page gray 100 50 100 100"_s, u"rows 50"_s, u"end"_s, u"ready"_s,
                          u"busy whole2"_s, u"page gray 200 50 100 100"_s, u"rows 50"_s, u"end"_s,
                          u"done 0"_s});
        QCOMPARE(desk_->scanned_widths(), QList<int>({100, 200}));
    }

    void the_form_is_alive_but_out_of_reach_while_the_user_chooses() {
        desk_->open_listed();
        Paintings paintings(desk_->form.get());
        desk_->while_scanning([&] {
            QVERIFY(wait_until([this] { return desk_->twain.noted(u"scan64: at choosing"_s); }));
            const int before = paintings.count;
            desk_->form->update();
            QVERIFY(wait_until([&] { return paintings.count > before; }));
            const auto* cancel = desk_->control<QPushButton>("cmdCancel");
            QTest::mouseClick(desk_->form->windowHandle(), Qt::LeftButton, {},
                              cancel->mapTo(desk_->form.get(), cancel->rect().center()));
            QTest::keyClick(desk_->form->windowHandle(), Qt::Key_Escape);
            QCoreApplication::processEvents();
            QVERIFY(desk_->form->isVisible());
            desk_->twain.open_gate(u"choosing"_s);
        });
        desk_->scan_with({u"opened"_s, u"await"_s, u"window"_s, u"alive choosing"_s, u"done 1"_s});
        QVERIFY(desk_->form->isVisible());
        // And within reach again.
        const auto* cancel = desk_->control<QPushButton>("cmdCancel");
        QTest::mouseClick(desk_->form->windowHandle(), Qt::LeftButton, {},
                          cancel->mapTo(desk_->form.get(), cancel->rect().center()));
        QTRY_VERIFY(!desk_->form->isVisible());
    }

    void a_scan_without_pages_leaves_everything_as_it_was_data() {
        QTest::addColumn<QStringList>("script");
        const QStringList begin{u"opened"_s, u"await"_s, u"window"_s};
        QTest::newRow("cancelled in the source's window") << begin + QStringList{u"done 1"_s};
        QTest::newRow("cancelled after a page")
            << begin +
                   QStringList{u"page gray 100 50 100 100"_s, u"rows 50"_s, u"end"_s, u"done 1"_s};
        QTest::newRow("no page came") << begin + QStringList{u"done 0"_s};
    }
    void a_scan_without_pages_leaves_everything_as_it_was() {
        QFETCH(QStringList, script);
        desk_->open_listed();
        desk_->scan_with(script);
        QCOMPARE(desk_->scanned_pdf(), QByteArray());
        QCOMPARE(desk_->scan_label(), u"Scan"_s);
        desk_->scan_with(ScriptedTwain::pages({300}));
        const QByteArray before = desk_->scanned_pdf();
        desk_->scan_with(script);
        QCOMPARE(desk_->scanned_pdf(), before);
        QCOMPARE(desk_->scan_label(), u"Re-Scan"_s);
    }

    void the_next_scan_waits_until_the_driver_has_let_go() {
        desk_->open_listed();
        desk_->scan_with(lingering(u"let_go"_s));
        QCOMPARE(desk_->scanned_widths(), QList<int>({100}));
        desk_->while_opening([this] {
            QVERIFY(wait_until([] { return progress_window() != nullptr; }));
            QCOMPARE(scans().size(), 1);
            desk_->twain.open_gate(u"let_go"_s);
        });
        desk_->scan_with(ScriptedTwain::pages({200}));
        QCOMPARE(desk_->scanned_widths(), QList<int>({200}));
        QCOMPARE(scans().size(), 2);
    }

    void a_driver_that_does_not_let_go_is_ended() {
        desk_->twain.settings.release = std::chrono::milliseconds(300);
        desk_->open_listed();
        desk_->scan_with(lingering(u"never"_s));
        QCOMPARE(desk_->scanned_widths(), QList<int>({100}));
        desk_->twain.scan(32, ScriptedTwain::pages({200}));
        desk_->scan(u"Old copier"_s);
        QCOMPARE(desk_->scanned_widths(), QList<int>({200}));
        // The first one is gone, since the second was opened, and not by itself.
        QCOMPARE(desk_->twain.log().filter(u"scan64: left"_s), QStringList());
    }

    void waiting_for_a_driver_to_let_go_can_be_cancelled() {
        desk_->open_listed();
        desk_->scan_with(lingering(u"never"_s));
        desk_->while_opening([] { TwainDesk::press_when_shown("cmdCancelScan"); });
        desk_->scan_with(ScriptedTwain::pages({200}));
        QCOMPARE(desk_->scanned_widths(), QList<int>({100}));
        QCOMPARE(scans().size(), 1);
        desk_->scan_with(ScriptedTwain::pages({300}));
        QCOMPARE(desk_->scanned_widths(), QList<int>({300}));
    }

    void a_source_that_was_opened_for_nothing_is_closed() {
        desk_->open_listed();
        desk_->twain.scan(64, ScriptedTwain::pages({100}));
        {
            TwainScanner scanner(desk_->session());
            QCOMPARE(scanner.source_count(), 3);
            QVERIFY(scanner.open_source());
        }
        QVERIFY(wait_until([this] { return desk_->twain.noted(u"scan64: left with 0"_s); }));
        QVERIFY(desk_->twain.noted(u"scan64: input ended"_s));
        QVERIFY(!desk_->twain.noted(u"scan64: command a"_s));
    }
};

QTEST_MAIN(TwainChoosingTest)
#include "test_twain_choosing.moc"
