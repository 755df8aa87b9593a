// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "common/error_trap.h"
#include "platform/safe_file.h"

#include <QTest>
#include <filesystem>

using namespace folidex;
using namespace Qt::StringLiterals;

class TestPreferences : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder_;
    QString file() const { return folder_->filePath(u"p.xml"_s); }
    PreferencesDocument reloaded(const PreferencesDocument& document) const {
        document.save(file());
        PreferencesDocument again;
        if (!again.load(file()))
            qFatal("the saved document does not load");
        return again;
    }

private Q_SLOTS:
    void init() { folder_ = std::make_unique<QTemporaryDir>(); }

    void a_new_document_holds_only_the_empty_root() {
        PreferencesDocument document;
        document.set_root_tag(u"folidex"_s);
        document.save(file());
        QFile saved(file());
        QVERIFY(saved.open(QIODevice::ReadOnly));
        QDomDocument dom;
        QVERIFY(dom.setContent(&saved));
        QCOMPARE(dom.documentElement().tagName(), u"folidex"_s);
        QVERIFY(!dom.documentElement().hasChildNodes());
    }

    void an_absent_child_reads_as_nothing() {
        PreferencesDocument document;
        document.set_root_tag(u"folidex"_s);
        QVERIFY(document.child(u"dblocation"_s).is_null());
        QCOMPARE(document.child_text(u"dblocation"_s), QString());
    }

    void a_document_that_was_never_loaded_reads_as_empty() {
        PreferencesDocument document;
        document.move_to_root();
        QCOMPARE(document.child_text(u"dblocation"_s), QString());
    }

    void the_first_child_with_a_tag_counts() {
        write_file(file(), "<folidex><a>1</a><b>x</b><a>2</a></folidex>");
        PreferencesDocument document;
        QVERIFY(document.load(file()));
        QCOMPARE(document.child_text(u"a"_s), u"1"_s);
        document.set_child_text(u"a"_s, u"3"_s);
        QCOMPARE(reloaded(document).cursor().children().size(), 3);
        QCOMPARE(document.child_text(u"a"_s), u"3"_s);
    }

    void a_missing_child_is_made_at_the_end() {
        write_file(file(), "<folidex><a>1</a></folidex>");
        PreferencesDocument document;
        QVERIFY(document.load(file()));
        document.set_child_text(u"z"_s, u"new"_s);
        const PreferencesDocument again = reloaded(document);
        QCOMPARE(again.cursor().children().last().tag(), u"z"_s);
        QCOMPARE(again.cursor().children().last().text(), u"new"_s);
    }

    void texts_come_back_unchanged_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("markup") << u"<a> & \"b\" 'c' ]]> 100%"_s;
        QTest::newRow("path") << u"\\\\server\\share\\O'Brien & Sons"_s;
        QTest::newRow("line break") << u"one\ntwo"_s;
        QTest::newRow("right to left") << u"שלום עולם"_s;
        QTest::newRow("emoji") << u"\U0001F4C4 paper"_s;
        QTest::newRow("long") << QString(32000, u'x');
        QTest::newRow("empty") << QString();
    }

    void texts_come_back_unchanged() {
        QFETCH(QString, text);
        PreferencesDocument document;
        document.set_root_tag(u"folidex"_s);
        document.set_child_text(u"dblocation"_s, text);
        QCOMPARE(reloaded(document).child_text(u"dblocation"_s), text);
    }

    void a_character_that_xml_cannot_hold_does_not_cost_the_file_data() {
        QTest::addColumn<QChar>("character");
        for (const int code : {0x0, 0x1, 0xb, 0xc, 0x1f, 0xfffe, 0xffff})
            QTest::addRow("%04x", static_cast<unsigned>(code)) << QChar(code);
    }

    void a_character_that_xml_cannot_hold_does_not_cost_the_file() {
        QFETCH(QChar, character);
        PreferencesDocument document;
        document.set_root_tag(u"folidex"_s);
        const QString pasted = u"Bills"_s + character + u"2009"_s;
        document.set_child_text(u"dblocation"_s, pasted);
        PreferencesElement profile = document.cursor().append_child(u"profile1"_s);
        profile.set_attribute(u"name"_s, pasted);
        const PreferencesDocument again = reloaded(document);
        const QString kept = u"Bills\ufffd2009"_s;
        QCOMPARE(again.child_text(u"dblocation"_s), kept);
        QCOMPARE(again.child(u"profile1"_s).attribute(u"name"_s), kept);
    }

    void nested_elements_are_found_made_and_kept() {
        PreferencesDocument document;
        document.set_root_tag(u"folidex"_s);
        PreferencesElement profiles = document.cursor().child_or_new(u"Profiles"_s);
        PreferencesElement profile = profiles.append_child(u"profile52"_s);
        profile.set_text(u"Bills"_s);
        profile.append_child(u"tag17"_s);
        const PreferencesElement again =
            reloaded(document).child(u"Profiles"_s).child(u"profile52"_s);
        QCOMPARE(again.text().trimmed(), u"Bills"_s);
        QVERIFY(!again.child(u"tag17"_s).is_null());
        QVERIFY(again.child(u"Tag17"_s).is_null());
    }

    void what_is_not_xml_does_not_load_and_leaves_the_document_alone_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("words") << QByteArray("not a document");
        QTest::newRow("cut off") << QByteArray("<folidex><dblocation>/dat");
        QTest::newRow("binary") << QByteArray("\0\1\2\xff", 4);
    }

    void what_is_not_xml_does_not_load_and_leaves_the_document_alone() {
        QFETCH(QByteArray, content);
        PreferencesDocument document;
        document.set_root_tag(u"folidex"_s);
        document.set_child_text(u"a"_s, u"1"_s);
        write_file(file(), content);
        QVERIFY(!document.load(file()));
        QCOMPARE(document.child_text(u"a"_s), u"1"_s);
    }

    void saving_never_writes_into_the_old_file() {
        const QByteArray old = "<folidex><a>1</a></folidex>";
        write_file(file(), old);
        // A second name of the same file: another station that has just opened it.
        const QString other = folder_->filePath(u"other"_s);
        std::filesystem::create_hard_link(file().toStdU16String(), other.toStdU16String());
        PreferencesDocument document;
        QVERIFY(document.load(file()));
        document.set_child_text(u"a"_s, u"2"_s);
        QCOMPARE(reloaded(document).child_text(u"a"_s), u"2"_s);
        QFile reader(other);
        QVERIFY(reader.open(QIODevice::ReadOnly));
        QCOMPARE(reader.readAll(), old);
        QCOMPARE(QDir(folder_->path()).entryList(QDir::Files | QDir::Hidden),
                 (QStringList{u"other"_s, u"p.xml"_s}));
    }

    void saving_reports_the_path_that_cannot_be_written() {
        AppDataFolder = QDir::toNativeSeparators(folder_->filePath(u"gone"_s));
        QList<Report> reports;
        show_report = [&](const Report& report) { reports << report; };
        Preferences().set_root_tag(u"folidex"_s);
        QVERIFY_EXCEPTION_THROWN(save_localXML(), Error);
        QCOMPARE(reports.size(), 1);
        QCOMPARE(reports[0].module, u"Utilities"_s);
        QCOMPARE(reports[0].procedure, u"save_localXML"_s);
        QVERIFY(reports[0].description.contains(preferences_path()));
    }

    void a_shell_folder_that_cannot_be_found_is_error_513() {
        QList<Report> reports;
        show_report = [&](const Report& report) { reports << report; };
        QVERIFY_EXCEPTION_THROWN(SpecialFolder(-1), Error);
        QCOMPARE(reports.size(), 1);
        QCOMPARE(reports[0].procedure, u"SpecialFolder"_s);
        QCOMPARE(reports[0].number, 513);
        QCOMPARE(reports[0].description, u"The folder path could not be detected"_s);
    }

    void the_document_path_follows_the_shared_layout() {
        DataFolder = QDir::toNativeSeparators(u"/data"_s);
        QCOMPARE(document_path(u"1009"_s, u"a.pdf"_s),
                 QDir::toNativeSeparators(u"/data/scanned_files/1009/a.pdf"_s));
    }
};

QTEST_GUILESS_MAIN(TestPreferences)
#include "test_preferences.moc"
