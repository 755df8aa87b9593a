// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "data/database.h"
#include "data/number_set.h"
#include "data/results_query.h"
#include "data/statement.h"
#include "tests/support/test_station.h"
#include "tests/unit/data/thrown.h"

#include <QRandomGenerator>
#include <QTest>
#include <set>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

namespace {

QString statement(const QString& tags, const QString& range = {}) {
    return u"SELECT DISTINCT scans.date, scans.description, scans.fname, "
           "scans.location, scans.link FROM scans INNER JOIN tagged ON "
           "scans.link = tagged.scan WHERE tagged.tag In "_s +
           tags + range + u" ORDER BY scans.date, scans.link"_s;
}

QString range(const QString& from, const QString& to) {
    return u" and scans.date >= "_s + from + u" and scans.date <= "_s + to;
}

QString in_tags(const QList<int>& tags) {
    QStringList texts;
    for (const int tag : tags)
        texts.append(QString::number(tag));
    return u"("_s + texts.join(u',') + u")"_s;
}

// A row as comparable text that tells Null from "" and 1 from 1.0.
QString row_text(const RowStore& rows, std::size_t row, int columns) {
    QStringList texts;
    for (int column = 0; column < columns; ++column) {
        const Cell cell = rows.cell(row, column);
        texts.append(u"%1:%2"_s.arg(static_cast<int>(cell.kind)).arg(cell.to_text()));
    }
    return texts.join(u'|');
}

QStringList literal_rows(const QString& sql) {
    Statement select(database(), sql);
    RowStore rows(select.column_count());
    while (select.step())
        rows.append(select.handle());
    QStringList texts;
    for (std::size_t row = 0; row < rows.size(); ++row)
        texts.append(row_text(rows, row, 5));
    return texts;
}

QStringList found_rows(const QString& sql) {
    const auto query = recognised_results_query(sql);
    if (!query)
        return {u"not recognised"_s};
    const RowStore rows = results_rows(database(), *query);
    QStringList texts;
    for (std::size_t row = 0; row < rows.size(); ++row)
        texts.append(row_text(rows, row, 5));
    return texts;
}

/// A file of many documents with everything that can go wrong in it, the same for every seed.
class RandomFile {
public:
    RandomFile(unsigned seed, int documents, int tags) : random_(seed), tags_(tags) {
        Statement(database(), u"BEGIN"_s).run();
        Statement document(database(), u"INSERT INTO scans VALUES (?, ?, ?, ?, ?)"_s);
        Statement tagged(database(), u"INSERT INTO tagged (scan, tag) VALUES (?, ?)"_s);
        for (int i = 1; i <= documents; ++i) {
            const int link = i * 3 - static_cast<int>(random_.bounded(3));
            add_document(document, link);
            for (int pairs = static_cast<int>(random_.bounded(5)); pairs > 0; --pairs)
                add_pair(tagged, link);
            if (i % 7 == 0)
                add_strange_pair(tagged, link);
        }
        for (const qint64 link : {qint64(-5), qint64(0), qint64(1) << 31, qint64(1) << 40}) {
            add_document(document, link);
            add_pair(tagged, link);
            add_pair(tagged, link);
        }
        for (int orphan = 0; orphan < 50; ++orphan)
            add_pair(tagged, 1000000 + orphan);
        add_pair(tagged, {});
        add_pair(tagged, u"no number"_s);
        add_pair(tagged, 4.5);
        Statement(database(), u"COMMIT"_s).run();
    }

    QString tag_list(int count) {
        QList<int> tags;
        for (int i = 0; i < count; ++i)
            tags.append(tag());
        return in_tags(tags);
    }
    QString day() {
        return QString::number(40000 + random_.bounded(400)) +
               (random_.bounded(2) == 0 ? u""_s : u".5"_s);
    }

private:
    // The square makes low numbers common and high ones rare.
    int tag() {
        const double part = random_.generateDouble();
        return static_cast<int>(part * part * tags_);
    }
    QVariant date() {
        switch (random_.bounded(20)) {
        case 0:
            return {};
        case 1:
            return u"NaN"_s;
        case 2:
            return u"12 October "_s + QString::number(random_.bounded(3));
        case 3:
            return -5.25;
        case 4:
            return std::numeric_limits<double>::infinity();
        case 5:
            return 40000 + random_.bounded(400) + random_.generateDouble();
        default:
            return 40000 + static_cast<int>(random_.bounded(800)) / 2.0;
        }
    }
    void add_document(Statement& insert, qint64 link) {
        insert.bind(1, link);
        insert.bind(2, random_.bounded(10) == 0 ? QVariant()
                                                : QVariant(u"Ärger 🧾 %1"_s.arg(link % 7)));
        insert.bind(3, date());
        insert.bind(4, u"%1.pdf"_s.arg(link));
        insert.bind(5, random_.bounded(10) == 0 ? QVariant(u""_s) : QVariant(u"0109"_s));
        insert.run();
        insert.reset();
    }
    void add_pair(Statement& insert, const QVariant& link) { add_pair(insert, link, tag()); }
    // Such tags are on none of the lists, though some of them begin with a number.
    void add_strange_pair(Statement& insert, qint64 link) {
        const QVariant tags[] = {{}, tag() + 0.5, u"%1 and more"_s.arg(tag()), u""_s};
        add_pair(insert, link, tags[random_.bounded(4)]);
    }
    void add_pair(Statement& insert, const QVariant& link, const QVariant& tag) {
        insert.bind(1, link);
        insert.bind(2, tag);
        insert.run();
        insert.reset();
    }

    QRandomGenerator random_;
    int tags_;
};

} // namespace

class TestResultsQuery : public QObject {
    Q_OBJECT

private slots:
    void init() { station_ = std::make_unique<TestStation>(); }
    void cleanup() { station_.reset(); }

    void exactly_the_results_statement_is_recognised_data();
    void exactly_the_results_statement_is_recognised();
    void the_rows_are_those_of_the_literal_statement_data();
    void the_rows_are_those_of_the_literal_statement();
    void a_document_with_two_of_the_tags_appears_once();
    void both_ends_of_the_range_belong_to_it();
    void a_broken_tag_list_fails_as_sqlite_says_data();
    void a_broken_tag_list_fails_as_sqlite_says();
    void a_file_of_another_shape_gets_the_literal_statement();
    void a_file_without_the_tables_is_reported();
    void the_record_set_has_the_statements_names();
    void the_record_set_cannot_be_changed();
    void no_lock_is_left_behind();
    void an_edit_in_progress_is_not_disturbed();
    void a_set_of_links_holds_every_number();

private:
    std::unique_ptr<TestStation> station_;
};

void TestResultsQuery::exactly_the_results_statement_is_recognised_data() {
    QTest::addColumn<QString>("sql");
    QTest::addColumn<QString>("parts");
    QTest::newRow("one tag") << statement(u"(3)"_s) << u"3;;"_s;
    QTest::newRow("tags") << statement(u"(3,17,40)"_s) << u"3,17,40;;"_s;
    QTest::newRow("a negative tag") << statement(u"(-1)"_s) << u"-1;;"_s;
    QTest::newRow("range") << statement(u"(3,17)"_s, range(u"40087"_s, u"40098.5"_s))
                           << u"3,17;40087;40098.5"_s;
    QTest::newRow("negative range")
        << statement(u"(3)"_s, range(u"-7"_s, u"-0.25"_s)) << u"3;-7;-0.25"_s;
    auto other = [](const char* name, const QString& sql) { QTest::newRow(name) << sql << u""_s; };
    other("empty list", statement(u"()"_s));
    other("no closing parenthesis", statement(u"(3,17"_s));
    other("a comma at the end", statement(u"(3,17,)"_s));
    other("a tag without a number", statement(u"(3,,17)"_s));
    other("a name for a tag", statement(u"(3,tag)"_s));
    other("blanks in the list", statement(u"(3, 17)"_s));
    other("a number too long", statement(u"(12345678901234567890)"_s));
    other("digits of another script", statement(u"(٣)"_s));
    other("one bound", statement(u"(3)"_s, u" and scans.date >= 40087"_s));
    other("an exponent", statement(u"(3)"_s, range(u"1e5"_s, u"2e5"_s)));
    other("a decimal comma", statement(u"(3)"_s, range(u"40087,5"_s, u"40098"_s)));
    other("a line break behind", statement(u"(3)"_s) + u'\n');
    other("something behind", statement(u"(3)"_s) + u" DESC"_s);
    other("small letters", statement(u"(3)"_s).toLower());
    other("another list", u"Select * from tags"_s);
}

void TestResultsQuery::exactly_the_results_statement_is_recognised() {
    QFETCH(QString, sql);
    QFETCH(QString, parts);
    const auto query = recognised_results_query(sql);
    QCOMPARE(query.has_value(), !parts.isEmpty());
    if (query)
        QCOMPARE(query->tags + u';' + query->from + u';' + query->to, parts);
}

void TestResultsQuery::the_rows_are_those_of_the_literal_statement_data() {
    QTest::addColumn<int>("documents");
    QTest::addColumn<int>("tags");
    QTest::addRow("empty file") << 0 << 5;
    QTest::addRow("few documents") << 60 << 20;
    QTest::addRow("many documents, few tags") << 4000 << 8;
    QTest::addRow("many documents, many tags") << 4000 << 400;
    QTest::addRow("more documents than a tag has") << 9000 << 60;
}

void TestResultsQuery::the_rows_are_those_of_the_literal_statement() {
    QFETCH(int, documents);
    QFETCH(int, tags);
    RandomFile file(20091012, documents, tags);
    QVERIFY(fits_results_query(database()));
    qsizetype total = 0;
    for (const int count : {1, 1, 1, 2, 5, 20, 200}) {
        const QString list = file.tag_list(count);
        QStringList ranges = {QString(), range(u"40000"_s, u"40001"_s), range(u"-10"_s, u"90000"_s),
                              range(u"40100"_s, u"40099"_s), range(u"40010.5"_s, u"40010.5"_s)};
        for (int i = 0; i < 4; ++i)
            ranges.append(range(file.day(), file.day()));
        for (const QString& dates : ranges) {
            const QString sql = statement(list, dates);
            const QStringList expected = literal_rows(sql);
            const QStringList found = found_rows(sql);
            QVERIFY2(found == expected, qPrintable(sql));
            total += expected.size();
        }
    }
    QVERIFY(documents == 0 || total > documents);
}

void TestResultsQuery::a_document_with_two_of_the_tags_appears_once() {
    const int link = station_->add_document(u"a"_s, 40098, {3, 17, 3}, u"1009"_s, u"a.pdf"_s);
    QCOMPARE(station_->rows(statement(u"(17,3,40,3)"_s)),
             QStringList{u"40098|a|a.pdf|1009|%1"_s.arg(link)});
}

void TestResultsQuery::both_ends_of_the_range_belong_to_it() {
    for (const double date : {40086.999, 40087.0, 40090.0, 40098.0, 40098.001})
        station_->add_document(u"a"_s, date, {3});
    QCOMPARE(station_->rows(statement(u"(3)"_s, range(u"40087"_s, u"40098"_s))).size(), 3);
    QCOMPARE(station_->rows(statement(u"(3)"_s)).size(), 5);
}

void TestResultsQuery::a_broken_tag_list_fails_as_sqlite_says_data() {
    QTest::addColumn<QString>("tags");
    QTest::addColumn<QString>("words");
    QTest::newRow("no end") << u"(3,17"_s << u"near \"ORDER\": syntax error"_s;
    QTest::newRow("comma at the end") << u"(3,)"_s << u"near \")\": syntax error"_s;
    QTest::newRow("nothing between") << u"(3,,4)"_s << u"near \",\": syntax error"_s;
    QTest::newRow("no list") << u""_s << u"near \"ORDER\": syntax error"_s;
    QTest::newRow("a name") << u"(colour)"_s << u"no such column: colour"_s;
}

void TestResultsQuery::a_broken_tag_list_fails_as_sqlite_says() {
    QFETCH(QString, tags);
    QFETCH(QString, words);
    const auto error = thrown([&] { database().open_recordset(statement(tags)); });
    QVERIFY(error);
    QCOMPARE(error->number, 1);
    QCOMPARE(error->description, words + u": "_s + station_->database_path());
}

void TestResultsQuery::a_file_of_another_shape_gets_the_literal_statement() {
    database().execute(u"DROP TABLE scans"_s);
    database().execute(u"CREATE TABLE scans (link INTEGER, description TEXT, date REAL, "
                       "fname TEXT, location TEXT)"_s);
    for (int i = 0; i < 2; ++i)
        station_->add_document(u"a"_s, 40098, {3}, u"1009"_s, u"a.pdf"_s);
    database().execute(u"UPDATE scans SET link = 1"_s);
    QVERIFY(!fits_results_query(database()));
    QCOMPARE(station_->rows(statement(u"(3)"_s)), QStringList{u"40098|a|a.pdf|1009|1"_s});
}

void TestResultsQuery::a_file_without_the_tables_is_reported() {
    database().execute(u"DROP TABLE tagged"_s);
    const auto error = thrown([&] { database().open_recordset(statement(u"(3)"_s)); });
    QVERIFY(error);
    QCOMPARE(error->description, u"no such table: tagged: "_s + station_->database_path());
}

void TestResultsQuery::the_record_set_has_the_statements_names() {
    station_->add_document(u"a"_s, 40098, {3}, u"1009"_s, u"a.pdf"_s);
    const Recordset set = database().open_recordset(statement(u"(3)"_s));
    QCOMPARE(set.record_count(), 1);
    QCOMPARE(set.text(u"Date"_s), u"40098"_s);
    QCOMPARE(set.text(u"Description"_s), u"a"_s);
    QCOMPARE(set.text(u"fName"_s), u"a.pdf"_s);
    QCOMPARE(set.text(u"location"_s), u"1009"_s);
    QCOMPARE(set.text(u"link"_s), u"1"_s);
    QCOMPARE(set.field(u"date"_s).typeId(), static_cast<int>(QMetaType::Double));
    QCOMPARE(set.field(u"link"_s).typeId(), static_cast<int>(QMetaType::LongLong));
}

void TestResultsQuery::the_record_set_cannot_be_changed() {
    station_->add_document(u"a"_s, 40098, {3});
    Recordset set = database().open_recordset(statement(u"(3)"_s));
    QCOMPARE(thrown_number([&] { set.edit(); }), 3027);
    QCOMPARE(thrown_number([&] { set.delete_current(); }), 3027);
}

void TestResultsQuery::no_lock_is_left_behind() {
    station_->add_document(u"a"_s, 40098, {3});
    const Recordset set = database().open_recordset(statement(u"(3)"_s));
    const auto other = Database::open(station_->database_path());
    other->execute(u"PRAGMA busy_timeout = 0"_s);
    other->execute(u"DELETE * FROM scans"_s);
    QCOMPARE(station_->rows(statement(u"(3)"_s)), QStringList());
    QVERIFY(!set.eof());
}

void TestResultsQuery::an_edit_in_progress_is_not_disturbed() {
    station_->add_document(u"a"_s, 40098, {3});
    Recordset counter = database().open_recordset(u"Select * from comp"_s);
    counter.edit();
    QCOMPARE(station_->rows(statement(u"(3)"_s)).size(), 1);
    counter.set_field(u"NewLink"_s, 50);
    counter.update();
    QCOMPARE(station_->value(u"Select * from comp"_s), u"50"_s);
}

void TestResultsQuery::a_set_of_links_holds_every_number() {
    QRandomGenerator random(7);
    NumberSet links;
    std::set<qint64> expected;
    const auto add = [&](qint64 link) {
        links.add(link);
        expected.insert(link);
    };
    for (int i = 0; i < 3000; ++i)
        add(static_cast<qint64>(random.bounded(5000)));
    for (const qint64 link :
         {qint64(0), qint64(63), qint64(64), (qint64(1) << 27) - 1, qint64(1) << 27,
          qint64(1) << 62, qint64(-1), qint64(-1) << 40, qint64(-1)})
        add(link);
    links.finish();
    QCOMPARE(links.size(), expected.size());
    QCOMPARE(links.numbers(), std::vector<qint64>(expected.begin(), expected.end()));
    for (qint64 link = -2; link < 6000; ++link)
        QCOMPARE(links.contains(link), expected.contains(link));
    QVERIFY(!links.contains((qint64(1) << 27) - 2));
    QVERIFY(!links.contains((qint64(1) << 27) + 1));
}

QTEST_GUILESS_MAIN(TestResultsQuery)
#include "test_results_query.moc"
