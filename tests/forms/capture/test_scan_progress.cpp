// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/scan_progress.h"
#include "common/error_trap.h"

#include <QApplication>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <thread>

namespace folidex {

using Answer = ScanControl::Answer;
using Outcome = ScanProgress::Outcome;

namespace {

constexpr std::chrono::seconds kLongestWait{60};
const QString kSource = QStringLiteral("Acme Scan & Copy <b>");

} // namespace

class ScanProgressTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void it_shows_the_source_the_page_and_how_much_of_it();
    void a_page_of_unknown_height_shows_a_busy_bar();
    void it_covers_the_form_while_it_is_up();
    void an_operation_that_is_quick_shows_no_window();
    void without_progress_it_comes_up_for_a_question_only();
    void while_the_user_chooses_it_stays_away_and_still_covers_the_form();
    void a_source_that_falls_silent_can_be_cancelled();
    void a_question_leaves_time_for_something_else();
    void every_way_out_cancels_data();
    void every_way_out_cancels();
    void a_scanner_that_does_not_answer_is_left_within_two_seconds_after_cancel();
    void a_scanner_that_lags_is_nudged_once();
    void a_scanner_is_not_left_before_it_was_nudged();
    void a_jam_offers_three_ways_on_data();
    void a_jam_offers_three_ways_on();
    void a_jam_on_the_first_page_has_nothing_to_keep();
    void leaving_a_jam_by_escape_loses_nothing();
    void after_continue_the_progress_comes_back();
    void writing_cannot_be_cancelled();
    void the_window_keeps_its_size();
    void every_control_has_names_and_no_text_is_clipped_data();
    void every_control_has_names_and_no_text_is_clipped();

private:
    /// Runs the window and does something meanwhile, after which the operation ends.
    Outcome run(const std::function<void()>& meanwhile, int show_after = 0, bool ends = true,
                std::function<void()> nudge = {});
    template <class Control> Control* find(const char* name) const {
        return window_->findChild<Control*>(QString::fromLatin1(name));
    }
    /// Asks from a thread, as the scanner does; the answer is kept in answer_.
    void ask(int page, int pages_so_far);
    void click(const char* button);
    /// Waits until the window has looked at the operation again.
    void wait_for_a_look();
    void wait_until(const std::function<bool()>& condition);

    std::shared_ptr<ScanControl> control_;
    std::unique_ptr<ScanProgress> window_;
    std::thread scanner_;
    Answer answer_ = Answer::kContinue;
};

void ScanProgressTest::init() {
    control_ = std::make_shared<ScanControl>(ScanControl::Phase::kScanning);
    window_ = std::make_unique<ScanProgress>(kSource, nullptr);
}

void ScanProgressTest::cleanup() {
    control_->cancel();
    if (scanner_.joinable())
        scanner_.join();
}

Outcome ScanProgressTest::run(const std::function<void()>& meanwhile, int show_after, bool ends,
                              std::function<void()> nudge) {
    later(window_.get(), 0, [this, meanwhile, ends] {
        meanwhile();
        if (ends)
            control_->finish();
    });
    return window_->run(control_, show_after, std::move(nudge));
}

void ScanProgressTest::ask(int page, int pages_so_far) {
    scanner_ = std::thread([this, page, pages_so_far] {
        answer_ = control_->ask({page, pages_so_far, QStringLiteral("Document feeder jammed")});
    });
    wait_until([this] { return find<QPushButton>("cmdContinue")->isVisible(); });
}

void ScanProgressTest::click(const char* button) {
    auto* control = find<QPushButton>(button);
    QVERIFY2(control && control->isVisible(), button);
    QTest::mouseClick(control, Qt::LeftButton);
}

void ScanProgressTest::wait_until(const std::function<bool()>& condition) {
    QVERIFY(QTest::qWaitFor(condition, int(std::chrono::milliseconds(kLongestWait).count())));
}

void ScanProgressTest::wait_for_a_look() {
    const auto* bar = find<QProgressBar>("pbPage");
    const double fraction = bar->value() * 2 < bar->maximum() ? 0.75 : 0.25;
    control_->set_fraction(fraction);
    wait_until(
        [&] { return bar->maximum() > 0 && bar->value() == int(fraction * bar->maximum()); });
}

void ScanProgressTest::it_shows_the_source_the_page_and_how_much_of_it() {
    run([this] {
        QCOMPARE(find<QLabel>("lblSource")->text(), kSource);
        QCOMPARE(find<QLabel>("lblSource")->textFormat(), Qt::PlainText);
        control_->begin_page(7);
        control_->set_fraction(0.25);
        wait_until([this] { return find<QLabel>("lblPage")->text() == QStringLiteral("Page 7"); });
        auto* bar = find<QProgressBar>("pbPage");
        QCOMPARE(bar->value() * 4, bar->maximum());
    });
}

void ScanProgressTest::a_page_of_unknown_height_shows_a_busy_bar() {
    run([this] {
        auto* bar = find<QProgressBar>("pbPage");
        control_->set_fraction(0.5);
        wait_until([&] { return bar->maximum() > 0; });
        control_->begin_page(2);
        wait_until([&] { return bar->maximum() == 0; });
        QCOMPARE(bar->minimum(), 0);
    });
}

void ScanProgressTest::it_covers_the_form_while_it_is_up() {
    run([this] {
        QVERIFY(window_->isVisible());
        QVERIFY(window_->isModal());
    });
    window_->release();
    QTRY_VERIFY(!window_->isVisible());
}

void ScanProgressTest::an_operation_that_is_quick_shows_no_window() {
    const Outcome outcome = run([] {}, 60000);
    QCOMPARE(outcome, Outcome::kEnded);
    QVERIFY(!window_->isVisible());
}

void ScanProgressTest::without_progress_it_comes_up_for_a_question_only() {
    run(
        [this] {
            QVERIFY(!window_->isVisible());
            ask(3, 2);
            QVERIFY(window_->isVisible());
            click("cmdKeepPages");
        },
        ScanProgress::kNever);
}

void ScanProgressTest::while_the_user_chooses_it_stays_away_and_still_covers_the_form() {
    control_ = std::make_shared<ScanControl>(ScanControl::Phase::kChoosing);
    QWidget form;
    form.show();
    run([&] {
        auto* shield = window_->findChild<QDialog*>(QStringLiteral("shield"));
        wait_until([&] { return QApplication::activeModalWidget() == shield; });
        QVERIFY(!window_->isVisible());
        QVERIFY(shield->testAttribute(Qt::WA_DontShowOnScreen));
        control_->begin_page(1);
        wait_until([this] { return window_->isVisible(); });
        QCOMPARE(QApplication::activeModalWidget(), window_.get());
        QCOMPARE(find<QLabel>("lblPage")->text(), QStringLiteral("Page 1"));
    });
    window_->release();
    QTRY_VERIFY(!QApplication::activeModalWidget());
}

void ScanProgressTest::a_source_that_falls_silent_can_be_cancelled() {
    control_ = std::make_shared<ScanControl>(ScanControl::Phase::kChoosing);
    // Even without progress: there must be a way out.
    run(
        [this] {
            control_->set_silent(true);
            wait_until([this] { return window_->isVisible(); });
            QCOMPARE(find<QLabel>("lblPage")->text(),
                     QStringLiteral("The scanner's driver does not answer."));
            control_->set_silent(false);
            wait_until([this] { return !window_->isVisible(); });
            control_->set_silent(true);
            wait_until([this] { return window_->isVisible(); });
            click("cmdCancelScan");
            QVERIFY(control_->cancelled());
        },
        ScanProgress::kNever);
}

void ScanProgressTest::a_question_leaves_time_for_something_else() {
    std::atomic<int> done{0};
    scanner_ = std::thread([&] {
        answer_ = control_->ask({2, 1, QStringLiteral("Jammed")}, [&] { ++done; });
    });
    run([&] {
        wait_until([&] { return done >= 3; });
        wait_until([this] { return find<QPushButton>("cmdKeepPages")->isVisible(); });
        click("cmdKeepPages");
        scanner_.join();
    });
    QCOMPARE(answer_, Answer::kKeep);
}

void ScanProgressTest::every_way_out_cancels_data() {
    QTest::addColumn<QString>("way");
    for (const char* way : {"button", "escape", "close"})
        QTest::newRow(way) << QString::fromLatin1(way);
}

void ScanProgressTest::every_way_out_cancels() {
    QFETCH(QString, way);
    const Outcome outcome = run([&] {
        if (way == QStringLiteral("button"))
            click("cmdCancelScan");
        else if (way == QStringLiteral("escape"))
            QTest::keyClick(window_.get(), Qt::Key_Escape);
        else
            window_->close();
        QVERIFY(control_->cancelled());
        QVERIFY(window_->isVisible());
        QVERIFY(!find<QPushButton>("cmdCancelScan")->isEnabled());
        QCOMPARE(find<QLabel>("lblPage")->text(), QStringLiteral("Cancelling..."));
    });
    QCOMPARE(outcome, Outcome::kEnded);
}

void ScanProgressTest::a_scanner_that_does_not_answer_is_left_within_two_seconds_after_cancel() {
    QVERIFY(ScanPatience{}.give_up + ScanProgress::kFollowEvery < std::chrono::seconds(2));
    // Who waits for the scanner meets its answer.
    later(this, int(std::chrono::milliseconds(kLongestWait).count()),
          [control = control_] { control->finish(); });
    const Outcome outcome = run([&] { click("cmdCancelScan"); }, 0, false);
    QCOMPARE(outcome, Outcome::kNoAnswer);
    QVERIFY(!control_->state().done);
}

void ScanProgressTest::a_scanner_that_lags_is_nudged_once() {
    QVERIFY(ScanPatience{}.nudge < ScanPatience{}.give_up);
    const ScanPatience patience{{}, std::chrono::milliseconds(50), kLongestWait};
    window_ = std::make_unique<ScanProgress>(kSource, nullptr, patience);
    int nudges = 0;
    const Outcome outcome = run(
        [&] {
            wait_for_a_look();
            QCOMPARE(nudges, 0);
            click("cmdCancelScan");
            wait_until([&] { return nudges > 0; });
            for (int look = 0; look < 3; ++look)
                wait_for_a_look();
        },
        0, true, [&] { ++nudges; });
    QCOMPARE(outcome, Outcome::kEnded);
    QCOMPARE(nudges, 1);
}

void ScanProgressTest::a_scanner_is_not_left_before_it_was_nudged() {
    // As after a pause of the whole computer: both times are over when the window looks again.
    const ScanPatience patience{{}, std::chrono::milliseconds(1), std::chrono::milliseconds(1)};
    window_ = std::make_unique<ScanProgress>(kSource, nullptr, patience);
    int nudges = 0;
    const Outcome outcome = run([&] { click("cmdCancelScan"); }, 0, false, [&] { ++nudges; });
    QCOMPARE(outcome, Outcome::kNoAnswer);
    QCOMPARE(nudges, 1);
}

void ScanProgressTest::a_jam_offers_three_ways_on_data() {
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<Answer>("answer");
    QTest::newRow("continue") << QByteArray("cmdContinue") << Answer::kContinue;
    QTest::newRow("keep") << QByteArray("cmdKeepPages") << Answer::kKeep;
    QTest::newRow("discard") << QByteArray("cmdDiscardPages") << Answer::kDiscard;
}

void ScanProgressTest::a_jam_offers_three_ways_on() {
    QFETCH(QByteArray, button);
    QFETCH(Answer, answer);
    run([&] {
        ask(3, 2);
        QCOMPARE(find<QLabel>("lblPage")->text(), QStringLiteral("Page 3 could not be scanned"));
        const QString words = find<QLabel>("lblTrouble")->text();
        QVERIFY2(words.startsWith(QStringLiteral("Document feeder jammed.\n")), qPrintable(words));
        QVERIFY(!find<QPushButton>("cmdCancelScan")->isVisible());
        QVERIFY(find<QPushButton>("cmdContinue")->isDefault());
        click(button.constData());
        scanner_.join();
    });
    QCOMPARE(answer_, answer);
    QVERIFY(!control_->cancelled());
}

void ScanProgressTest::a_jam_on_the_first_page_has_nothing_to_keep() {
    run([this] {
        ask(1, 0);
        QVERIFY(find<QPushButton>("cmdContinue")->isEnabled());
        QVERIFY(!find<QPushButton>("cmdKeepPages")->isEnabled());
        QTest::keyClick(window_.get(), Qt::Key_Escape);
        scanner_.join();
    });
    QCOMPARE(answer_, Answer::kDiscard);
}

void ScanProgressTest::leaving_a_jam_by_escape_loses_nothing() {
    run([this] {
        ask(3, 2);
        QTest::keyClick(window_.get(), Qt::Key_Escape);
        scanner_.join();
    });
    QCOMPARE(answer_, Answer::kKeep);
}

void ScanProgressTest::after_continue_the_progress_comes_back() {
    run([this] {
        ask(3, 2);
        click("cmdContinue");
        QVERIFY(find<QProgressBar>("pbPage")->isVisible());
        QVERIFY(find<QPushButton>("cmdCancelScan")->isVisible());
        QVERIFY(!find<QPushButton>("cmdContinue")->isVisible());
        scanner_.join();
    });
}

void ScanProgressTest::writing_cannot_be_cancelled() {
    control_ = std::make_shared<ScanControl>(ScanControl::Phase::kWriting);
    run([this] {
        QVERIFY(!find<QPushButton>("cmdCancelScan")->isEnabled());
        QTest::keyClick(window_.get(), Qt::Key_Escape);
        QVERIFY(!control_->cancelled());
    });
}

void ScanProgressTest::the_window_keeps_its_size() {
    run([this] {
        const QRect before = window_->geometry();
        control_->begin_page(12);
        control_->set_fraction(0.5);
        ask(12, 11);
        QCOMPARE(window_->geometry(), before);
        click("cmdKeepPages");
    });
}

void ScanProgressTest::every_control_has_names_and_no_text_is_clipped_data() {
    QTest::addColumn<double>("scale");
    QTest::newRow("100 %") << 1.0;
    QTest::newRow("200 %") << 2.0;
}

void ScanProgressTest::every_control_has_names_and_no_text_is_clipped() {
    QFETCH(double, scale);
    const QFont usual = QApplication::font();
    QFont font = usual;
    font.setPointSizeF(usual.pointSizeF() * scale);
    QApplication::setFont(font);
    window_ = std::make_unique<ScanProgress>(QString(200, u'W'), nullptr);
    run([this] {
        ask(88, 87);
        for (const QWidget* control : window_->findChildren<QWidget*>()) {
            if (!qobject_cast<const QLabel*>(control) && !qobject_cast<const QPushButton*>(control))
                continue;
            QVERIFY(!control->objectName().isEmpty());
            QVERIFY(!control->accessibleName().isEmpty());
            if (!control->isVisible())
                continue;
            const QLabel* label = qobject_cast<const QLabel*>(control);
            const QSize wanted = label && label->wordWrap()
                                     ? QSize(0, label->heightForWidth(label->width()))
                                     : control->minimumSizeHint();
            QVERIFY2(control->width() >= wanted.width() && control->height() >= wanted.height(),
                     qPrintable(control->objectName()));
        }
        click("cmdDiscardPages");
    });
    QApplication::setFont(usual);
}

} // namespace folidex

QTEST_MAIN(folidex::ScanProgressTest)
#include "test_scan_progress.moc"
