// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/preferences.h"
#include "app/process_values.h"
#include "tests/forms/capture/capture_desk.h"

#include <QDir>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

namespace {

constexpr double kOctober12 = 40098;
const QString kNoDescription = u"Please enter a valid description."_s;
const QString kNoTag = u"You need to assign at least 1 tag."_s;
const QString kNoScan = u"You have no scanned document."_s;
const QString kInUse = u"Cannot replace the old scanned document with your new one. Please ensure "
                       "that the old scanned document is not open."_s;

} // namespace

class TestFilingADocument : public QObject {
    Q_OBJECT

    std::unique_ptr<CaptureDesk> desk_;

    void refused(const QString& prompt) {
        desk_->boxes.expect(prompt, kInformationIcon, u"Error"_s);
        desk_->click("cmdSave");
        QVERIFY(desk_->boxes.verify());
        QVERIFY(desk_->form->isVisible());
    }

private Q_SLOTS:
    void init() { desk_ = std::make_unique<CaptureDesk>(); }
    void cleanup() { leave(desk_); }

    void a_new_document_is_filed_by_its_date_and_the_moment() {
        const int tag = desk_->station.add_tag(u"Letters"_s);
        desk_->open();
        desk_->fill_in(u"Letter of March"_s, u"Letters"_s);
        desk_->set_date({2010, 3, 1});
        const int link = desk_->station.value(u"Select NewLink from comp"_s).toInt();
        desk_->click("cmdSave");
        QVERIFY(!desk_->form->isVisible());
        const QString name = u"101209143005_%1.pdf"_s.arg(link);
        QCOMPARE(desk_->scans(), QStringList(u"Letter of March|40238|"_s + name + u"|0310"_s));
        QCOMPARE(desk_->station.rows(u"Select scan, tag from tagged"_s),
                 QStringList(u"%1|%2"_s.arg(link).arg(tag)));
        QCOMPARE(desk_->filed(u"0310"_s, name), u"scan 1: pages 1"_s);
        QCOMPARE(desk_->files(u"0310"_s), QStringList(name));
        QVERIFY(!QFile::exists(desk_->temporary_scan()));
    }

    void tags_are_filed_in_the_order_of_the_grid() {
        desk_->open();
        desk_->fill_in(u"Letter"_s, u"Zebra"_s);
        desk_->add_tag(u"Apple"_s);
        desk_->add_tag(u"Mango"_s);
        QStringList links;
        for (int row = 0; row < 3; ++row)
            links.append(desk_->assigned()->text(row, 2));
        desk_->click("cmdSave");
        QCOMPARE(desk_->station.rows(u"Select tag from tagged"_s), links);
    }

    void an_apostrophe_is_stored_as_typed() {
        desk_->open();
        desk_->fill_in(u"O'Brien's"_s, u"Letter's"_s);
        desk_->click("cmdSave");
        QCOMPARE(desk_->station.rows(u"Select description from scans"_s),
                 QStringList(u"O'Brien's"_s));
        QCOMPARE(desk_->station.rows(u"Select description from tags"_s),
                 QStringList(u"Letter's"_s));
    }

    void the_checks_come_in_their_order() {
        desk_->open();
        refused(kNoDescription);
        QVERIFY(desk_->has_focus("txtDescription"));
        desk_->describe(u"Letter"_s);
        refused(kNoTag);
        QVERIFY(desk_->has_focus("cmbTags"));
        desk_->add_tag(u"Letters"_s);
        refused(kNoScan);
        QCOMPARE(desk_->scans(), QStringList());
        desk_->scan();
        desk_->click("cmdSave");
        QCOMPARE(desk_->scans().size(), 1);
    }

    void a_refusal_keeps_the_form_and_the_scan() {
        desk_->open();
        desk_->describe(u"Letter"_s);
        desk_->scan();
        desk_->set_date({2010, 3, 1});
        refused(kNoTag);
        QCOMPARE(desk_->description()->text(), u"Letter"_s);
        QCOMPARE(desk_->date()->date(), QDate(2010, 3, 1));
        QCOMPARE(content_of(desk_->temporary_scan()), u"scan 1: pages 1"_s);
    }

    void a_description_of_blanks_is_accepted() {
        desk_->open();
        desk_->fill_in(u"   "_s, u"Letters"_s);
        desk_->click("cmdSave");
        QCOMPARE(desk_->station.rows(u"Select description from scans"_s), QStringList(u"   "_s));
    }

    void saving_without_a_new_scan_never_touches_the_pdf() {
        const int letters = desk_->station.add_tag(u"Letters"_s);
        const int link =
            desk_->station.add_document(u"Old"_s, kOctober12, {letters}, u"1009"_s, u"a.pdf"_s);
        desk_->put_file(u"1009"_s, u"a.pdf"_s, "filed pages");
        const QDateTime written = QFileInfo(document_path(u"1009"_s, u"a.pdf"_s)).lastModified();
        desk_->open(link);
        desk_->describe(u"New"_s);
        desk_->click("cmdSave");
        QCOMPARE(desk_->scans(), QStringList(u"New|40098|a.pdf|1009"_s));
        QCOMPARE(desk_->filed(u"1009"_s, u"a.pdf"_s), u"filed pages"_s);
        QCOMPARE(QFileInfo(document_path(u"1009"_s, u"a.pdf"_s)).lastModified(), written);
    }

    void a_document_without_its_file_can_be_edited_but_not_rescanned() {
        const int letters = desk_->station.add_tag(u"Letters"_s);
        const int link =
            desk_->station.add_document(u"Old"_s, kOctober12, {letters}, u"1009"_s, u"a.pdf"_s);
        desk_->open(link);
        desk_->scan();
        refused(kInUse);
        desk_->open(link);
        desk_->describe(u"New"_s);
        desk_->click("cmdSave");
        QCOMPARE(desk_->scans(), QStringList(u"New|40098|a.pdf|1009"_s));
    }

    void a_new_scan_takes_the_old_name_and_folder() {
        const int letters = desk_->station.add_tag(u"Letters"_s);
        const int link =
            desk_->station.add_document(u"Old"_s, kOctober12, {letters}, u"1009"_s, u"a.pdf"_s);
        desk_->put_file(u"1009"_s, u"a.pdf"_s, "filed pages");
        desk_->open(link);
        desk_->scan();
        desk_->click("cmdSave");
        QCOMPARE(desk_->filed(u"1009"_s, u"a.pdf"_s), u"scan 1: pages 1"_s);
        QCOMPARE(desk_->files(u"1009"_s), QStringList(u"a.pdf"_s));
        QVERIFY(!QFile::exists(desk_->temporary_scan()));
    }

    // What a viewer does to the file on some systems, a folder in its place does on all.
    void pages_that_are_open_elsewhere_refuse_the_new_scan() {
        const int letters = desk_->station.add_tag(u"Letters"_s);
        const int link =
            desk_->station.add_document(u"Old"_s, kOctober12, {letters}, u"1009"_s, u"a.pdf"_s);
        QVERIFY(QDir().mkpath(document_path(u"1009"_s, u"a.pdf"_s)));
        const QStringList before = desk_->tagged();
        desk_->open(link);
        desk_->describe(u"New"_s);
        desk_->add_tag(u"More"_s);
        desk_->scan();
        refused(kInUse);
        QCOMPARE(desk_->scans(), QStringList(u"Old|40098|a.pdf|1009"_s));
        QCOMPARE(desk_->tagged(), before);
        QCOMPARE(content_of(desk_->temporary_scan()), u"scan 1: pages 1"_s);
    }

    void the_old_pages_go_only_after_all_other_checks() {
        const int letters = desk_->station.add_tag(u"Letters"_s);
        const int link =
            desk_->station.add_document(u"Old"_s, kOctober12, {letters}, u"1009"_s, u"a.pdf"_s);
        desk_->put_file(u"1009"_s, u"a.pdf"_s, "filed pages");
        desk_->open(link);
        desk_->scan();
        desk_->describe({});
        refused(kNoDescription);
        QCOMPARE(desk_->filed(u"1009"_s, u"a.pdf"_s), u"filed pages"_s);
        desk_->describe(u"Old"_s);
        desk_->click_cell(0, 0);
        refused(kNoTag);
        QCOMPARE(desk_->filed(u"1009"_s, u"a.pdf"_s), u"filed pages"_s);
    }

    void a_changed_date_leaves_the_file_where_it_was_filed() {
        const int letters = desk_->station.add_tag(u"Letters"_s);
        const int link =
            desk_->station.add_document(u"Old"_s, kOctober12, {letters}, u"1009"_s, u"a.pdf"_s);
        desk_->put_file(u"1009"_s, u"a.pdf"_s, "filed pages");
        desk_->open(link);
        desk_->set_date({2010, 3, 1});
        desk_->click("cmdSave");
        QCOMPARE(desk_->scans(), QStringList(u"Old|40238|a.pdf|1009"_s));
        QCOMPARE(desk_->filed(u"1009"_s, u"a.pdf"_s), u"filed pages"_s);
        QVERIFY(!QDir(desk_->station.data_folder() + u"/scanned_files/0310"_s).exists());
    }

    void two_saves_in_one_second_differ_by_their_link() {
        desk_->open();
        desk_->fill_in(u"First"_s, u"Letters"_s);
        desk_->click("cmdSave2");
        desk_->fill_in(u"Second"_s, u"Letters"_s);
        desk_->click("cmdSave2");
        const QStringList links = desk_->station.rows(u"Select link from scans order by link"_s);
        QCOMPARE(links.size(), 2);
        QVERIFY(links[0] != links[1]);
        QCOMPARE(desk_->station.rows(u"Select fname from scans order by link"_s),
                 QStringList({u"101209143005_"_s + links[0] + u".pdf"_s,
                              u"101209143005_"_s + links[1] + u".pdf"_s}));
        QCOMPARE(desk_->files(u"1009"_s).size(), 2);
    }

    void removing_one_of_three_tags_deletes_one_row() {
        QList<int> tags;
        for (const QString& name : {u"A"_s, u"B"_s, u"C"_s})
            tags.append(desk_->station.add_tag(name));
        const int link = desk_->station.add_document(u"Old"_s, kOctober12, tags);
        QStringList rows = desk_->tagged();
        QCOMPARE(rows.size(), 3);
        desk_->open(link);
        desk_->click_cell(1, 0);
        desk_->click("cmdSave");
        rows.removeAt(1);
        QCOMPARE(desk_->tagged(), rows);
    }

    void adding_one_tag_inserts_one_row() {
        QList<int> tags;
        for (const QString& name : {u"A"_s, u"B"_s, u"C"_s})
            tags.append(desk_->station.add_tag(name));
        const int link = desk_->station.add_document(u"Old"_s, kOctober12, {tags[2], tags[0]});
        const int other = desk_->station.add_document(u"Other"_s, kOctober12, {tags[1]});
        const QStringList before = desk_->tagged();
        desk_->open(link);
        desk_->add_tag(u"B"_s);
        desk_->click("cmdSave");
        QCOMPARE(desk_->tagged().first(before.size()), before);
        QCOMPARE(desk_->tagged().size(), before.size() + 1);
        QCOMPARE(
            desk_->station.rows(u"Select tag from tagged where scan = "_s + QString::number(link)),
            QStringList(
                {QString::number(tags[2]), QString::number(tags[0]), QString::number(tags[1])}));
        QCOMPARE(
            desk_->station.rows(u"Select tag from tagged where scan = "_s + QString::number(other)),
            QStringList(QString::number(tags[1])));
    }

    void a_new_month_gets_its_folder_and_the_next_document_uses_it() {
        const QString folder = desk_->station.data_folder() + u"/scanned_files/0131"_s;
        QVERIFY(!QDir(folder).exists());
        desk_->open();
        for (const QString& text : {u"First"_s, u"Second"_s}) {
            desk_->fill_in(text, u"Letters"_s);
            desk_->set_date({2031, 1, 31});
            desk_->click("cmdSave2");
            QVERIFY(QDir(folder).exists());
        }
        QCOMPARE(desk_->files(u"0131"_s).size(), 2);
    }

    void save_and_new_goes_on_with_an_empty_form() {
        desk_->open();
        desk_->fill_in(u"First"_s, u"Letters"_s);
        desk_->set_date({2010, 3, 1});
        desk_->click("cmdSave2");
        QVERIFY(desk_->form->isVisible());
        QVERIFY(desk_->has_focus("txtDescription"));
        QCOMPARE(desk_->description()->text(), QString());
        QCOMPARE(desk_->date()->date(), QDate(2009, 10, 12));
        QCOMPARE(desk_->assigned_tags(), QStringList());
        QCOMPARE(desk_->control<QLabel>("lblScan")->text(), u"Scan"_s);
        QVERIFY(!QFile::exists(desk_->temporary_scan()));
        desk_->describe(u"Second"_s);
        desk_->add_tag(u"Letters"_s);
        refused(kNoScan);
    }

    void save_and_new_on_an_edited_document_goes_on_with_a_new_one() {
        const int letters = desk_->station.add_tag(u"Letters"_s);
        const int link =
            desk_->station.add_document(u"Old"_s, kOctober12, {letters}, u"1009"_s, u"a.pdf"_s);
        desk_->open(link);
        QCOMPARE(desk_->form->windowTitle(), u"Edit Scan"_s);
        desk_->click("cmdSave2");
        QCOMPARE(desk_->form->windowTitle(), u"New Scan"_s);
        desk_->fill_in(u"New"_s, u"Letters"_s);
        desk_->click("cmdSave");
        QCOMPARE(desk_->station.rows(u"Select description from scans order by link"_s),
                 QStringList({u"Old"_s, u"New"_s}));
    }

    void save_and_new_keeps_the_tags_when_told_so() {
        desk_->open();
        desk_->fill_in(u"First"_s, u"Letters"_s);
        desk_->click("cmdDrop");
        QCOMPARE(desk_->menu(), menu_with(false));
        desk_->choose(u"Keep the previous tags"_s);
        QVERIFY(content_of(preferences_path()).contains(u"<retaintags>1</retaintags>"_s));
        const QStringList kept = desk_->assigned_tags();
        desk_->click("cmdSave2");
        QCOMPARE(desk_->assigned_tags(), kept);
        desk_->click("cmdDrop");
        QCOMPARE(desk_->menu(), menu_with(true));
        desk_->choose(u"Clear all tags"_s);
        QVERIFY(content_of(preferences_path()).contains(u"<retaintags>0</retaintags>"_s));
        desk_->describe(u"Second"_s);
        desk_->scan();
        desk_->click("cmdSave2");
        QCOMPARE(desk_->assigned_tags(), QStringList());
    }

    void the_choice_to_keep_tags_is_read_when_the_form_loads_data() {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<bool>("keeps");
        QTest::newRow("never chosen") << QString() << false;
        QTest::newRow("kept") << u"1"_s << true;
        QTest::newRow("cleared") << u"0"_s << false;
        QTest::newRow("other number") << u"2"_s << false;
        QTest::newRow("words") << u"yes"_s << false;
        QTest::newRow("leading number") << u"1 tag"_s << true;
    }
    void the_choice_to_keep_tags_is_read_when_the_form_loads() {
        QFETCH(QString, stored);
        QFETCH(bool, keeps);
        Preferences().move_to_root();
        Preferences().set_child_text(u"retaintags"_s, stored);
        desk_->open();
        desk_->click("cmdDrop");
        QCOMPARE(desk_->menu(), menu_with(keeps));
    }

private:
    static QStringList menu_with(bool kept) {
        return {u"!After you click 'Save && New...'"_s, u"-"_s,
                kept ? u"*Keep the previous tags"_s : u"Keep the previous tags"_s,
                kept ? u"Clear all tags"_s : u"*Clear all tags"_s};
    }
};

QTEST_MAIN(TestFilingADocument)
#include "test_filing_a_document.moc"
