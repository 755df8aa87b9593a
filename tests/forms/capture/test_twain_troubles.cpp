// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/forms/capture/twain_desk.h"

#include <QTemporaryDir>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

/// Drivers that crash, hang, jam and talk nonsense: a box in plain words, the form as it was, and
/// the next scan works.
class TwainTroublesTest : public TwainDeskTest {
    Q_OBJECT

    QString heading() const {
        return progress_window() ? progress_window()->findChild<QLabel*>(u"lblPage"_s)->text()
                                 : QString();
    }
    /// The form as it was before a scan, and the next scan works.
    void unchanged() {
        QVERIFY(!progress_window());
        QCOMPARE(desk_->scanned_pdf(), QByteArray());
        QCOMPARE(desk_->scan_label(), u"Scan"_s);
        QVERIFY(!desk_->control<QPushButton>("cmdView")->isEnabled());
        QCOMPARE(desk_->description()->text(), u"Typed before"_s);
        desk_->scan_with(ScriptedTwain::pages({120}));
        QCOMPARE(desk_->scanned_widths(), QList<int>({120}));
    }

private Q_SLOTS:
    void a_crash_is_told_and_changes_nothing_data() {
        QTest::addColumn<QStringList>("script");
        QTest::addColumn<QString>("told");
        const QString nothing = u"No page was kept. The document is as it was before."_s;
        QTest::newRow("while opening")
            << QStringList{u"done 5 4 0 0 3221225477"_s} << nothing + u"*(Exception C0000005)"_s;
        QTest::newRow("while opening, without a word")
            << QStringList{u"exit 3"_s} << nothing + u"*(Exit code 00000003)"_s;
        QTest::newRow("before it is to scan") << QStringList{u"opened"_s, u"exit 3"_s} << nothing;
        QTest::newRow("before the first page") << kBegin + QStringList{u"exit 3"_s} << nothing;
        QTest::newRow("in the first page")
            << kBegin + kHalfAPage + QStringList{u"done 5 7 0 0 3221225725"_s}
            << nothing + u"*(Exception C00000FD)"_s;
        QTest::newRow("after whole pages")
            << kBegin + kPage + kPage + kHalfAPage + QStringList{u"exit 7"_s}
            << u"The 2 pages scanned before were not kept.*(Exit code 00000007)"_s;
    }
    void a_crash_is_told_and_changes_nothing() {
        QFETCH(QStringList, script);
        QFETCH(QString, told);
        desk_->open_listed();
        desk_->describe(u"Typed before"_s);
        desk_->expect_box(u"The driver of the scanner \"Front desk\" has crashed."_s);
        desk_->scan_with(script);
        const QString box = desk_->boxes.shown().value(0).prompt;
        for (const QString& part : told.split(u'*'))
            QVERIFY2(box.contains(part), qPrintable(box));
        unchanged();
    }

    void a_crash_leaves_the_scan_before_it() {
        desk_->open_listed();
        desk_->scan_with(ScriptedTwain::pages({100, 200}));
        const QByteArray before = desk_->scanned_pdf();
        desk_->expect_box(u"has crashed"_s);
        desk_->scan_with(kBegin + kPage + QStringList{u"exit 3"_s});
        QCOMPARE(desk_->scanned_pdf(), before);
        QCOMPARE(desk_->scan_label(), u"Re-Scan"_s);
    }

    void a_failure_is_told_in_words_data() {
        QTest::addColumn<QStringList>("script");
        QTest::addColumn<QString>("told");
        QTest::newRow("the manager went")
            << QStringList{u"done 4 1"_s} << u"source manager is missing"_s;
        QTest::newRow("no paper") << kBegin + QStringList{u"done 2 5 1 29"_s}
                                  << u"There is no paper in the feeder."_s;
        QTest::newRow("switched off")
            << kBegin + kPage + kHalfAPage + QStringList{u"drop"_s, u"done 2 7 1 23"_s}
            << u"It is switched off or not connected. The page scanned before was not kept."_s;
        QTest::newRow("sizes that do not agree")
            << kBegin + QStringList{u"done 2 8"_s} << u"The sizes of a page do not agree"_s;
    }
    void a_failure_is_told_in_words() {
        QFETCH(QStringList, script);
        QFETCH(QString, told);
        desk_->open_listed();
        desk_->describe(u"Typed before"_s);
        desk_->expect_box(told);
        desk_->scan_with(script);
        QVERIFY(desk_->boxes.shown().value(0).prompt.startsWith(u"The scanner \"Front desk\" "_s));
        unchanged();
    }

    void what_cannot_be_read_is_told_data() {
        QTest::addColumn<QStringList>("lines");
        QTest::newRow("a driver that prints") << QStringList{u"raw 4f 6f 70 73 20 2e 2e 2e"_s};
        QTest::newRow("rows of 4 GB") << QStringList{u"raw 52 0 0 0 ff ff ff ff"_s};
        QTest::newRow("rows without a page") << QStringList{u"raw 52 0 0 0 1 0 0 0 7"_s};
        QTest::newRow("the end of no page") << QStringList{u"end 5"_s};
        QTest::newRow("a page in a page") << kHalfAPage + kHalfAPage;
        QTest::newRow("a page announced in a page") << kHalfAPage + QStringList{u"ready"_s};
        QTest::newRow("an end in a page") << kHalfAPage + QStringList{u"done 0"_s};
        QTest::newRow("a source") << QStringList{u"source 0 Front desk"_s};
        QTest::newRow("opened twice") << QStringList{u"opened"_s};
    }
    void what_cannot_be_read_is_told() {
        QFETCH(QStringList, lines);
        desk_->open_listed();
        desk_->describe(u"Typed before"_s);
        desk_->expect_box(u"The driver of the scanner \"Front desk\" delivered what cannot be "
                          u"read. No page was kept."_s);
        desk_->scan_with(kBegin + kPage + lines + QStringList{u"gate never"_s});
        unchanged();
    }

    void an_opening_that_makes_no_sense_is_told() {
        desk_->open_listed();
        desk_->describe(u"Typed before"_s);
        desk_->expect_box(u"\"Front desk\" delivered what cannot be read."_s);
        desk_->scan_with({u"window"_s, u"gate never"_s});
        unchanged();
    }

    void a_helper_program_that_is_gone_is_told_with_its_path() {
        const QTemporaryDir folder;
        QString& program = desk_->twain.settings.program64.path;
        const QString copy = folder.filePath(QFileInfo(program).fileName());
        QVERIFY(QFile::copy(program, copy));
        program = copy;
        desk_->open_listed();
        QVERIFY(wait_until([&] { return QFile::remove(copy) || !QFile::exists(copy); }));
        desk_->expect_box(u"The scanner \"Front desk\" cannot be used: the program %1 could not "
                          u"be started"_s.arg(QDir::toNativeSeparators(copy)));
        desk_->scan_with(ScriptedTwain::pages({100}));
        QCOMPARE(desk_->scan_label(), u"Scan"_s);
        QVERIFY(!progress_window());
    }

    void a_driver_that_hangs_is_shown_and_cancelled_data() {
        QTest::addColumn<QStringList>("script");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<int>("release");
        constexpr int kBeyondTheTest = 600'000;
        const QStringList hang{u"hang"_s};
        QTest::newRow("while opening") << hang << u"Opening the scanner..."_s << kBeyondTheTest;
        QTest::newRow("before the first page")
            << kBegin + hang << u"The scanner's driver does not answer."_s << kBeyondTheTest;
        // In a page it may have good reasons.
        QTest::newRow("in the second page")
            << kBegin + kPage + kHalfAPage + hang << u"Page 2"_s << 300;
    }
    void a_driver_that_hangs_is_shown_and_cancelled() {
        QFETCH(QStringList, script);
        QFETCH(QString, shown);
        QFETCH(int, release);
        desk_->twain.settings.silence = std::chrono::milliseconds(300);
        desk_->twain.settings.release = std::chrono::milliseconds(release);
        desk_->open_listed();
        desk_->describe(u"Typed before"_s);
        const auto cancel = [&] {
            QVERIFY(wait_until([this] { return desk_->twain.noted(u"scan64: hangs"_s); }));
            QVERIFY(wait_until(
                [&] { return heading() == shown && progress_control("cmdCancelScan"); }));
            QTest::mouseClick(progress_control("cmdCancelScan"), Qt::LeftButton);
        };
        if (script.contains(u"opened"_s))
            desk_->while_scanning(cancel);
        else
            desk_->while_opening(cancel);
        desk_->scan_with(script);
        QTRY_VERIFY(!progress_window());
        unchanged();
        QVERIFY2(!desk_->twain.noted(u"scan64: left with 9"_s), "the user waited for the driver");
    }

    void a_driver_that_answers_again_is_left_to_the_user() {
        desk_->twain.settings.silence = std::chrono::milliseconds(300);
        desk_->open_listed();
        desk_->while_scanning([&] {
            QVERIFY(wait_until([this] { return desk_->twain.noted(u"scan64: at quiet"_s); }));
            QVERIFY(wait_until([] { return progress_window() != nullptr; }));
            desk_->twain.open_gate(u"quiet"_s);
            QVERIFY(wait_until([] { return progress_window() == nullptr; }));
            desk_->twain.open_gate(u"choosing"_s);
        });
        desk_->scan_with(kBegin + QStringList{u"gate quiet"_s, u"alive choosing"_s} + kPage +
                         QStringList{u"done 0"_s});
        QCOMPARE(desk_->scanned_widths(), QList<int>({100}));
    }

    void cancelling_in_mid_page_keeps_nothing() {
        desk_->open_listed();
        desk_->describe(u"Typed before"_s);
        desk_->while_scanning([this] {
            QVERIFY(wait_until([this] { return desk_->twain.noted(u"scan64: at never"_s); }));
            TwainDesk::press_when_shown("cmdCancelScan");
        });
        desk_->scan_with(kBegin + kPage + kHalfAPage + QStringList{u"gate never"_s});
        QVERIFY(wait_until([this] { return desk_->twain.noted(u"scan64: command c"_s); }));
        QTRY_VERIFY(!progress_window());
        unchanged();
    }

    void a_jam_is_put_to_the_user_data() {
        QTest::addColumn<QByteArray>("button");
        QTest::addColumn<QList<int>>("widths");
        QTest::addColumn<QString>("command");
        QTest::newRow("continue") << QByteArray("cmdContinue") << QList<int>{100, 100, 200}
                                  << u"scan64: command g"_s;
        QTest::newRow("keep") << QByteArray("cmdKeepPages") << QList<int>{100, 100}
                              << u"scan64: command k"_s;
        QTest::newRow("discard") << QByteArray("cmdDiscardPages") << QList<int>{}
                                 << u"scan64: command c"_s;
    }
    void a_jam_is_put_to_the_user() {
        QFETCH(QByteArray, button);
        QFETCH(QList<int>, widths);
        QFETCH(QString, command);
        desk_->open_listed();
        desk_->while_scanning([&] {
            QVERIFY(wait_until([&] { return progress_control(button.constData()) != nullptr; }));
            QCOMPARE(heading(), u"Page 3 could not be scanned"_s);
            const auto* words = progress_window()->findChild<QLabel*>(u"lblTrouble"_s);
            QVERIFY(words->text().startsWith(u"Paper is jammed in the feeder.\n"_s));
            QTest::mouseClick(progress_control(button.constData()), Qt::LeftButton);
        });
        desk_->scan_with(kBegin + kPage + kPage + kHalfAPage +
                         QStringList{u"drop"_s, u"trouble 1 20"_s, u"page gray 200 50 100 100"_s,
                                     u"rows 50"_s, u"end"_s, u"done 0"_s});
        QCOMPARE(desk_->scanned_widths(), widths);
        QVERIFY(wait_until([&] { return desk_->twain.noted(command); }));
        QTRY_VERIFY(!progress_window());
    }

    void pages_are_kept_though_the_driver_crashes_at_the_question() {
        desk_->open_listed();
        desk_->while_scanning([] { TwainDesk::press_when_shown("cmdKeepPages"); });
        desk_->scan_with(kBegin + kPage + QStringList{u"trouble 1 24 exit"_s});
        QCOMPARE(desk_->scanned_widths(), QList<int>({100}));
    }

    void going_on_with_a_driver_that_crashed_is_told() {
        desk_->open_listed();
        desk_->describe(u"Typed before"_s);
        desk_->while_scanning([] { TwainDesk::press_when_shown("cmdContinue"); });
        desk_->expect_box(u"has crashed. The page scanned before was not kept."_s);
        desk_->scan_with(kBegin + kPage + QStringList{u"trouble 1 24 exit"_s});
        unchanged();
    }
};

QTEST_MAIN(TwainTroublesTest)
#include "test_twain_troubles.moc"
