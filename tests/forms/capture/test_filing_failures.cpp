// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "data/database.h"
#include "tests/forms/capture/capture_desk.h"
#include "tests/support/test_system.h"

#include <QDir>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

namespace {

constexpr double kOctober12 = 40098;

} // namespace

/// What a failure half-way leaves behind: nothing is undone, and nothing is lost.
class TestFilingFailures : public QObject {
    Q_OBJECT

    std::unique_ptr<CaptureDesk> desk_;

    // A failure in save_me passes the button's procedure and would end the program there.
    void fails_in_save_me(int number, const char* button, const QString& procedure) {
        desk_->boxes.expect_report(u"frmScanNew"_s, u"save_me"_s, number);
        desk_->boxes.expect_report(u"frmScanNew"_s, procedure, kPassedOn);
        desk_->click(button);
        QVERIFY(desk_->boxes.verify());
        QCOMPARE(desk_->ended, QList<int>({kPassedOn}));
        desk_->ended.clear();
    }

private Q_SLOTS:
    void init() { desk_ = std::make_unique<CaptureDesk>(); }
    void cleanup() { leave(desk_); }

    // The rows of a new document are written before its file is copied, and nothing is undone.
    void a_failing_copy_leaves_the_rows_of_a_new_document_and_its_scan() {
        desk_->open();
        desk_->fill_in(u"Letter"_s, u"Letters"_s);
        const int link = desk_->station.value(u"Select NewLink from comp"_s).toInt();
        QVERIFY(QDir().mkpath(document_path(u"1009"_s, u"101209143005_%1.pdf/x"_s.arg(link))));
        fails_in_save_me(kInternalError, "cmdSave", u"cmdSave_Click"_s);
        QCOMPARE(desk_->scans().size(), 1);
        QCOMPARE(desk_->tagged().size(), 1);
        QCOMPARE(desk_->station.value(u"Select NewLink from comp"_s).toInt(), link + 1);
        QCOMPARE(content_of(desk_->temporary_scan()), u"scan 1: pages 1"_s);
        QCOMPARE(desk_->description()->text(), u"Letter"_s);
        QVERIFY(desk_->form->isVisible());
    }

    // The file of an edited document is replaced before its rows are written.
    void a_failing_copy_leaves_the_rows_of_an_edited_document_without_its_old_pages() {
        const int letters = desk_->station.add_tag(u"Letters"_s);
        const int link =
            desk_->station.add_document(u"Old"_s, kOctober12, {letters}, u"1009"_s, u"a.pdf"_s);
        desk_->put_file(u"1009"_s, u"a.pdf"_s, "filed pages");
        const QStringList before = desk_->tagged();
        desk_->open(link);
        desk_->describe(u"New"_s);
        desk_->add_tag(u"More"_s);
        desk_->scan();
        QVERIFY(QFile::remove(desk_->temporary_scan()));
        fails_in_save_me(kFileNotFound, "cmdSave2", u"cmdSave2_Click"_s);
        QVERIFY(desk_->boxes.shown().size() >= 2);
        QCOMPARE(desk_->filed(u"1009"_s, u"a.pdf"_s), u"<none>"_s);
        QCOMPARE(desk_->scans(), QStringList(u"Old|40098|a.pdf|1009"_s));
        QCOMPARE(desk_->tagged(), before);
    }

    void a_folder_that_cannot_be_made_is_named_and_writes_nothing() {
        desk_->open();
        desk_->fill_in(u"Letter"_s, u"Letters"_s);
        QFile in_the_way(desk_->station.data_folder() + u"/scanned_files/0131"_s);
        QVERIFY(in_the_way.open(QIODevice::WriteOnly));
        desk_->set_date({2031, 1, 1});
        fails_in_save_me(kFileExists, "cmdSave", u"cmdSave_Click"_s);
        const QList<ShownBox> shown = desk_->boxes.shown();
        QVERIFY(shown.at(shown.size() - 2)
                    .prompt.contains(QDir::toNativeSeparators(in_the_way.fileName())));
        QCOMPARE(desk_->scans(), QStringList());
        QCOMPARE(content_of(desk_->temporary_scan()), u"scan 1: pages 1"_s);
    }

    void a_full_disk_is_reported_with_the_path_and_the_scan_stays() {
        desk_->open();
        desk_->fill_in(u"Letter"_s, u"Letters"_s);
        QFile pages(desk_->temporary_scan());
        QVERIFY(pages.open(QIODevice::WriteOnly));
        QCOMPARE(pages.write(QByteArray(4 << 20, 'p')), 4 << 20);
        pages.close();
        const QString own_folder = DataFolder;
        {
            const SmallDisk disk;
            DataFolder = QDir::toNativeSeparators(disk.folder());
            QVERIFY(QDir().mkpath(document_path(u"1009"_s, {})));
            fails_in_save_me(disk.error_number(), "cmdSave", u"cmdSave_Click"_s);
            const QString report = desk_->boxes.shown().at(desk_->boxes.shown().size() - 2).prompt;
            QVERIFY2(report.contains(document_path(u"1009"_s, u"101209"_s)), qPrintable(report));
            QCOMPARE(QDir(document_path(u"1009"_s, {})).entryList(QDir::Files), QStringList());
        }
        DataFolder = own_folder;
        QCOMPARE(desk_->files(u"1009"_s), QStringList());
        QCOMPARE(QFileInfo(desk_->temporary_scan()).size(), 4 << 20);
        desk_->click("cmdSave");
        QCOMPARE(desk_->files(u"1009"_s).size(), 1);
    }

    void a_database_that_refuses_leaves_form_and_scan() {
        desk_->open();
        desk_->fill_in(u"Letter"_s, u"Letters"_s);
        database().execute(u"DROP TABLE scans"_s);
        desk_->boxes.expect_containing(desk_->station.database_path(), kCriticalIcon,
                                       QString::fromLatin1(kReportTitle));
        desk_->boxes.expect_report(u"frmScanNew"_s, u"cmdSave_Click"_s, kPassedOn);
        desk_->click("cmdSave");
        QCOMPARE(desk_->ended, QList<int>({kPassedOn}));
        desk_->ended.clear();
        QCOMPARE(desk_->files(u"1009"_s), QStringList());
        QCOMPARE(content_of(desk_->temporary_scan()), u"scan 1: pages 1"_s);
        QCOMPARE(desk_->description()->text(), u"Letter"_s);
    }
};

QTEST_MAIN(TestFilingFailures)
#include "test_filing_failures.moc"
