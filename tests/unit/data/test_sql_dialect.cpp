// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "data/sql_dialect.h"
#include "data/sql_tokens.h"
#include "data/text_order.h"

#include <QTest>

using namespace folidex;
using namespace Qt::StringLiterals;

class TestSqlDialect : public QObject {
    Q_OBJECT

private slots:
    void a_statement_becomes_sqlites_data();
    void a_statement_becomes_sqlites();
    void a_statement_falls_into_tokens_data();
    void a_statement_falls_into_tokens();
    void names_and_texts_lose_their_quotes();
    void a_text_is_quoted_by_doubling();
    void texts_order_by_folded_code_points_data();
    void texts_order_by_folded_code_points();
    void bytes_that_are_no_text_order_too();
};

void TestSqlDialect::a_statement_becomes_sqlites_data() {
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("sqlite");
    auto same = [](const char* name, const QString& statement) {
        QTest::newRow(name) << statement << statement;
    };
    QTest::newRow("delete") << u"DELETE * FROM tagged where scan = 5"_s
                            << u"DELETE  FROM tagged where scan = 5"_s;
    QTest::newRow("delete in small letters")
        << u"delete *\nfrom scans"_s << u"delete \nfrom scans"_s;
    same("plain delete", u"DELETE FROM tagged"_s);
    same("delete in a text", u"UPDATE scans SET description = 'DELETE * FROM tagged'"_s);
    same("a product", u"Select 2 * 3 from comp"_s);
    QTest::newRow("qualified columns of an update")
        << u"UPDATE settings SET form = 'a', settings.user = -1, settings.[value] = 'b' where id = 1"_s
        << u"UPDATE settings SET form = 'a', user = -1, \"value\" = 'b' where id = 1"_s;
    same("qualified columns behind the update's where",
         u"UPDATE settings SET form = 'a' where settings.id = 1, settings.user = 3"_s);
    same("qualified columns on the right side",
         u"UPDATE comp SET NewLink = comp.NewLink + max(1, comp.NewLink)"_s);
    same("qualified columns in a text", u"UPDATE s SET a = ', settings.user = ', b = ''''"_s);
    same("where in a text", u"UPDATE s SET a = ' where ', b = 'x'"_s);
    same("qualified columns of a select", u"SELECT scans.date FROM scans"_s);
    QTest::newRow("bracketed names") << u"INSERT INTO t ([form], [a b]) VALUES ('[x]', 1)"_s
                                     << u"INSERT INTO t (\"form\", \"a b\") VALUES ('[x]', 1)"_s;
    QTest::newRow("a bracketed name with a quote")
        << u"select [a\"b] from t"_s << u"select \"a\"\"b\" from t"_s;
    same("a name in quotes", u"select \"DELETE * FROM [x]\" from t"_s);
    same("doubled quotes", u"select '''[x]''' from t"_s);
    same("a text that never ends", u"select * from t where a = 'its [x]"_s);
    same("a bracket that never ends", u"select [x from t"_s);
    same("two blanks", u"Select Description, Link from Tags  order by description"_s);
    same("line breaks in a text", u"select 'a\r\n  b' from t"_s);
    same("empty", u""_s);
    same("blanks only", u"  \n "_s);
}

void TestSqlDialect::a_statement_becomes_sqlites() {
    QFETCH(QString, statement);
    QFETCH(QString, sqlite);
    QCOMPARE(to_sqlite(statement), sqlite);
}

void TestSqlDialect::a_statement_falls_into_tokens_data() {
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QString>("kinds");
    QTest::newRow("names and symbols")
        << u"scans.link=tags.Link2"_s
        << QStringList({u"scans"_s, u"."_s, u"link"_s, u"="_s, u"tags"_s, u"."_s, u"Link2"_s})
        << u"NSNSNSN"_s;
    QTest::newRow("numbers") << u"1 40098.5 .5 1e5 2E-3 7e x"_s
                             << QStringList({u"1"_s, u"40098.5"_s, u".5"_s, u"1e5"_s, u"2E-3"_s,
                                             u"7"_s, u"e"_s, u"x"_s})
                             << u"######NN"_s;
    QTest::newRow("comparisons") << u"a<>1 b<=2 c>=3 d<4"_s
                                 << QStringList({u"a"_s, u"<>"_s, u"1"_s, u"b"_s, u"<="_s, u"2"_s,
                                                 u"c"_s, u">="_s, u"3"_s, u"d"_s, u"<"_s, u"4"_s})
                                 << u"NS#NS#NS#NS#"_s;
    QTest::newRow("quotes") << u"'it''s' [a b]\"c\"\"d\"''"_s
                            << QStringList({u"'it''s'"_s, u"[a b]"_s, u"\"c\"\"d\""_s, u"''"_s})
                            << u"TQQT"_s;
    QTest::newRow("letters of the world")
        << u"größe=1"_s << QStringList({u"größe"_s, u"="_s, u"1"_s}) << u"NS#"_s;
}

void TestSqlDialect::a_statement_falls_into_tokens() {
    QFETCH(QString, statement);
    QFETCH(QStringList, texts);
    QFETCH(QString, kinds);
    QStringList found;
    QString found_kinds;
    for (const SqlToken& token : sql_tokens(statement)) {
        found.append(token.text.toString());
        found_kinds += u"NQT#S"[static_cast<int>(token.kind)];
        QCOMPARE(statement.mid(token.start, token.end() - token.start), found.back());
    }
    QCOMPARE(found, texts);
    QCOMPARE(found_kinds, kinds);
}

void TestSqlDialect::names_and_texts_lose_their_quotes() {
    const QString statement = u"[a b] \"c\"\"d\" plain 'it''s' ''"_s;
    const std::vector<SqlToken> tokens = sql_tokens(statement);
    QCOMPARE(tokens.size(), std::size_t(5));
    QCOMPARE(bare_name(tokens[0]), u"a b"_s);
    QCOMPARE(bare_name(tokens[1]), u"c\"d"_s);
    QCOMPARE(bare_name(tokens[2]), u"plain"_s);
    QCOMPARE(bare_text(tokens[3]), u"it's"_s);
    QCOMPARE(bare_text(tokens[4]), QString());
    QCOMPARE(quoted_name(u"c\"d"_s), u"\"c\"\"d\""_s);
}

void TestSqlDialect::a_text_is_quoted_by_doubling() {
    QCOMPARE(quoted(u"it's 'so'"_s), u"it''s ''so''"_s);
    QCOMPARE(quoted(u"\"plain\" % &"_s), u"\"plain\" % &"_s);
    QCOMPARE(quoted(QString()), QString());
}

void TestSqlDialect::texts_order_by_folded_code_points_data() {
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    QTest::addColumn<int>("order");
    QTest::newRow("equal") << u"abc"_s << u"ABC"_s << 0;
    QTest::newRow("less") << u"abc"_s << u"ABD"_s << -1;
    QTest::newRow("longer") << u"abcd"_s << u"ABC"_s << 1;
    QTest::newRow("empty") << u""_s << u"a"_s << -1;
    QTest::newRow("both empty") << u""_s << u""_s << 0;
    QTest::newRow("two bytes") << u"ÄÖÜ"_s << u"äöü"_s << 0;
    QTest::newRow("three bytes") << u"ẞ᲻Ꙁ"_s << u"ß᲻ꙁ"_s << 0;
    QTest::newRow("four bytes") << u"𐐀"_s << u"𐐨"_s << 0;
    QTest::newRow("beyond ASCII comes last") << u"z"_s << u"Ä"_s << -1;
    QTest::newRow("between Z and a") << u"Z"_s << u"_"_s << 1;
}

void TestSqlDialect::texts_order_by_folded_code_points() {
    QFETCH(QString, left);
    QFETCH(QString, right);
    QFETCH(int, order);
    const std::string a = left.toStdString();
    const std::string b = right.toStdString();
    QCOMPARE(compare_texts(a, b), order);
    QCOMPARE(compare_texts(b, a), -order);
}

void TestSqlDialect::bytes_that_are_no_text_order_too() {
    for (const std::string& broken :
         {std::string("\xFF"), std::string("\xC3"), std::string("\xE2\x82"), std::string("\x80"),
          std::string("\xF0\x9F\x98"), std::string("\xC3(")}) {
        QCOMPARE(compare_texts(broken, broken), 0);
        QCOMPARE(compare_texts(broken, "z"), 1);
        QCOMPARE(compare_texts("z", broken), -1);
        QCOMPARE(compare_texts("a" + broken, "A" + broken), 0);
    }
}

QTEST_APPLESS_MAIN(TestSqlDialect)
#include "test_sql_dialect.moc"
