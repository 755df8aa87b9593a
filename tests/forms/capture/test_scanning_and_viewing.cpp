// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "common/drop_menu.h"
#include "platform/shell.h"
#include "tests/forms/capture/capture_desk.h"

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

class TestScanningAndViewing : public QObject {
    Q_OBJECT

    std::unique_ptr<CaptureDesk> desk_;

    QString scan_label() const { return desk_->control<QLabel>("lblScan")->text(); }
    bool can_view() const { return desk_->control<QPushButton>("cmdView")->isEnabled(); }
    QString hint() const { return desk_->control<QLabel>("lblPagesState")->text(); }

private Q_SLOTS:
    void init() { desk_ = std::make_unique<CaptureDesk>(); }
    void cleanup() { leave(desk_); }

    void without_a_scanner_the_button_is_disabled() {
        desk_->scanner->sources.clear();
        desk_->open();
        QVERIFY(!desk_->control<QPushButton>("cmdScan")->isEnabled());
        QVERIFY(hint().startsWith(u"No scanner found."_s));
    }

    void nothing_is_missed_before_the_search_has_ended() {
        desk_->scanner->sources.clear();
        desk_->scanner->searching = true;
        desk_->open();
        QVERIFY(!desk_->control<QPushButton>("cmdScan")->isEnabled());
        QCOMPARE(hint(), u"Looking for scanners..."_s);
        desk_->scanner->searching = false;
        desk_->scanner->sources_changed();
        QVERIFY(hint().startsWith(u"No scanner found."_s));
    }

    void without_a_scanner_the_menu_holds_only_its_title() {
        desk_->scanner->sources.clear();
        desk_->open();
        desk_->control<QPushButton>("cmdScan")->setEnabled(true);
        desk_->click("cmdScan");
        QCOMPARE(desk_->menu(), QStringList({u"!Select which scanner"_s, u"-"_s}));
    }

    void the_menu_lists_the_scanners_in_their_order() {
        desk_->open();
        desk_->click("cmdScan");
        QCOMPARE(desk_->menu(),
                 QStringList({u"!Select which scanner"_s, u"-"_s, u"Front desk"_s, u"Archive"_s}));
    }

    void a_scanner_is_found_by_all_digits_of_its_number() {
        desk_->scanner->sources.clear();
        for (int k = 0; k < 12; ++k)
            desk_->scanner->sources.append(u"Scanner "_s + QString::number(k));
        desk_->open();
        desk_->scan(u"Scanner 11"_s);
        QVERIFY(desk_->scanner->calls.contains(u"source 11"_s));
    }

    void a_scanner_that_answers_late_can_be_chosen() {
        desk_->scanner->sources.clear();
        desk_->open();
        desk_->scanner->sources.append(u"Network scanner"_s);
        desk_->scanner->sources_changed();
        QVERIFY(desk_->control<QPushButton>("cmdScan")->isEnabled());
        QCOMPARE(hint(), u"No pages yet: choose Scan."_s);
        desk_->scan(u"Network scanner"_s);
        QCOMPARE(scan_label(), u"Re-Scan"_s);
    }

    void a_scan_goes_step_by_step() {
        desk_->scanner->pages = 2;
        desk_->scanner->duplex = true;
        desk_->open();
        desk_->scan(u"Archive"_s);
        QCOMPARE(
            desk_->scanner->calls,
            QStringList({u"feeder on"_s, u"auto feed on"_s, u"progress on"_s, u"duplex?"_s,
                         u"duplex on"_s, u"source 1"_s, u"open"_s, u"until empty on"_s,
                         u"discard"_s, u"acquire over frmScanNew"_s, u"select 1"_s, u"append 1"_s,
                         u"select 2"_s, u"append 2"_s, u"write "_s + desk_->temporary_scan()}));
    }

    void one_sided_scanners_are_not_asked_for_both_sides() {
        desk_->open();
        desk_->scan();
        QVERIFY(desk_->scanner->calls.contains(u"duplex?"_s));
        QVERIFY(!desk_->scanner->calls.contains(u"duplex on"_s));
    }

    void many_pages_make_one_pdf_in_their_order() {
        desk_->scanner->pages = 10;
        desk_->open();
        desk_->scan();
        QCOMPARE(content_of(desk_->temporary_scan()), u"scan 1: pages 1 2 3 4 5 6 7 8 9 10"_s);
        QVERIFY(hint().startsWith(u"10 pages scanned"_s));
    }

    void the_second_scan_replaces_the_first_and_is_the_one_filed() {
        desk_->open();
        desk_->scan();
        desk_->scanner->pages = 3;
        desk_->scan(u"Archive"_s);
        QCOMPARE(content_of(desk_->temporary_scan()), u"scan 2: pages 1 2 3"_s);
        desk_->describe(u"Letter"_s);
        desk_->add_tag(u"Letters"_s);
        desk_->click("cmdSave");
        const QStringList files = desk_->files(u"1009"_s);
        QCOMPARE(files.size(), 1);
        QCOMPARE(desk_->filed(u"1009"_s, files.first()), u"scan 2: pages 1 2 3"_s);
    }

    void a_source_that_cannot_be_opened_ends_the_scan_silently() {
        desk_->scanner->opens = false;
        desk_->open();
        desk_->scan();
        QCOMPARE(desk_->scanner->calls.last(), u"open"_s);
        QCOMPARE(scan_label(), u"Scan"_s);
        QVERIFY(!can_view());
        QVERIFY(!QFile::exists(desk_->temporary_scan()));
    }

    void no_pages_leave_everything_as_it_was() {
        desk_->open();
        desk_->scan();
        const QString before = content_of(desk_->temporary_scan());
        desk_->scanner->pages = 0;
        desk_->scan();
        QCOMPARE(content_of(desk_->temporary_scan()), before);
        QCOMPARE(scan_label(), u"Re-Scan"_s);
        QVERIFY(hint().startsWith(u"1 page scanned"_s));
    }

    void no_pages_at_first_leave_nothing_to_view() {
        desk_->scanner->pages = 0;
        desk_->open();
        desk_->scan();
        QCOMPARE(scan_label(), u"Scan"_s);
        QVERIFY(!can_view());
        QCOMPARE(hint(), u"No pages yet: choose Scan."_s);
        QVERIFY(!QFile::exists(desk_->temporary_scan()));
    }

    void a_failing_scanner_says_why_in_its_own_words() {
        desk_->open();
        desk_->scanner->jam = Error{7, u"Front desk: the document feeder is jammed."_s};
        desk_->boxes.expect(u"Front desk: the document feeder is jammed."_s, kOkOnly, u"Folidex"_s);
        desk_->scan();
        QCOMPARE(scan_label(), u"Scan"_s);
        QVERIFY(!can_view());
    }

    void a_failing_second_scan_keeps_the_first() {
        desk_->open();
        desk_->scan();
        desk_->scanner->jam = Error{7, u"The cover is open."_s};
        desk_->boxes.expect(u"The cover is open."_s, kOkOnly, u"Folidex"_s);
        desk_->scan();
        QCOMPARE(content_of(desk_->temporary_scan()), u"scan 1: pages 1"_s);
        QCOMPARE(scan_label(), u"Re-Scan"_s);
        QVERIFY(can_view());
        QVERIFY(hint().startsWith(u"1 page scanned"_s));
    }

    void a_pdf_that_cannot_be_written_is_no_scan() {
        desk_->open();
        desk_->scanner->full_disk = Error{kDiskFull, u"Cannot write current_scan.pdf: disk full"_s};
        desk_->boxes.expect(u"Cannot write current_scan.pdf: disk full"_s, kOkOnly, u"Folidex"_s);
        desk_->scan();
        QCOMPARE(scan_label(), u"Scan"_s);
        desk_->describe(u"Letter"_s);
        desk_->add_tag(u"Letters"_s);
        desk_->boxes.expect(u"You have no scanned document."_s, kInformationIcon, u"Error"_s);
        desk_->click("cmdSave");
    }

    void view_opens_the_new_scan_of_a_new_document() {
        desk_->open();
        desk_->scan();
        desk_->click("cmdView");
        QCOMPARE(desk_->opened, QStringList(desk_->temporary_scan()));
    }

    void view_opens_the_pages_on_file() {
        const int link = desk_->station.add_document(u"Letter"_s, 40098, {}, u"1009"_s, u"a.pdf"_s);
        desk_->open(link);
        desk_->click("cmdView");
        QCOMPARE(desk_->opened, QStringList(document_path(u"1009"_s, u"a.pdf"_s)));
    }

    void after_a_rescan_view_asks_which_and_shows_either() {
        const int link = desk_->station.add_document(u"Letter"_s, 40098, {}, u"1009"_s, u"a.pdf"_s);
        desk_->open(link);
        desk_->scan();
        desk_->click("cmdView");
        QCOMPARE(desk_->menu(), QStringList({u"!Which document do you want to open ?"_s, u"-"_s,
                                             u"My new scan"_s, u"The scan on file."_s}));
        QCOMPARE(desk_->opened, QStringList());
        desk_->choose(u"My new scan"_s);
        desk_->click("cmdView");
        desk_->choose(u"The scan on file."_s);
        QCOMPARE(desk_->opened,
                 QStringList({desk_->temporary_scan(), document_path(u"1009"_s, u"a.pdf"_s)}));
    }

    void help_opens_the_help_page() {
        desk_->have_help_page();
        desk_->open();
        desk_->click("cmdHelp");
        QCOMPARE(desk_->opened, QStringList(site_page(u"/help/index.html"_s)));
    }

    void a_title_of_a_menu_does_nothing() {
        desk_->open();
        desk_->click("cmdScan");
        Q_EMIT desk_->control<DropMenu>("Dmnu")->ItemClick(1);
        Q_EMIT desk_->control<DropMenu>("Dmnu")->ItemClick(2);
        QCOMPARE(desk_->scanner->calls, QStringList());
        QCOMPARE(desk_->opened, QStringList());
    }
};

QTEST_MAIN(TestScanningAndViewing)
#include "test_scanning_and_viewing.moc"
