// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/results_model.h"
#include "browser/results_statement.h"

#include <QAbstractItemModelTester>
#include <QTest>
#include <limits>

using namespace folidex;

/// What the browser decides without a window: the statement and the listed rows.
class TestResults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void the_statement_is_written_word_for_word();
    void with_all_dates_the_statement_has_no_range();
    void a_time_of_day_stays_in_the_bounds();
    void every_value_comes_back_as_it_was_stored();
    void a_missing_value_is_an_empty_cell();
    void a_date_is_shown_in_the_short_format();
    void odd_dates_are_shown_as_far_as_they_can_be_data();
    void odd_dates_are_shown_as_far_as_they_can_be();
    void a_document_is_found_by_its_link();
    void the_columns_have_their_captions();
    void new_rows_replace_all_rows();
    void the_model_keeps_the_rules_of_models();
};

namespace {

ResultRows one_row(const QVariant& date, const QString& description) {
    ResultRows rows;
    rows.add(date, description, QStringLiteral("101209143005_57.pdf"), QStringLiteral("1009"),
             QStringLiteral("57"));
    return rows;
}

QString shown(const ResultsModel& model, int row, int column) {
    return model.index(row, column).data().toString();
}

const QString kFormat = QStringLiteral("dd/MM/yyyy");

} // namespace

void TestResults::the_statement_is_written_word_for_word() {
    QCOMPARE(
        results_statement({QStringLiteral("3"), QStringLiteral("17")}, DateRange{40087, 40098}),
        QStringLiteral(
            "SELECT DISTINCT scans.date, scans.description, scans.fname, scans.location, "
            "scans.link FROM scans INNER JOIN tagged ON scans.link = tagged.scan WHERE "
            "tagged.tag In (3,17) and scans.date >= 40087 and scans.date <= 40098 ORDER BY "
            "scans.date, scans.link"));
}

void TestResults::with_all_dates_the_statement_has_no_range() {
    QCOMPARE(results_statement({QStringLiteral("3"), QStringLiteral("17"), QStringLiteral("40")},
                               std::nullopt),
             QStringLiteral(
                 "SELECT DISTINCT scans.date, scans.description, scans.fname, scans.location, "
                 "scans.link FROM scans INNER JOIN tagged ON scans.link = tagged.scan WHERE "
                 "tagged.tag In (3,17,40) ORDER BY scans.date, scans.link"));
}

void TestResults::a_time_of_day_stays_in_the_bounds() {
    const QString statement =
        results_statement({QStringLiteral("3")}, DateRange{40087.25, 40098.5});
    QVERIFY2(statement.contains(
                 QStringLiteral(" and scans.date >= 40087.25 and scans.date <= 40098.5 ORDER")),
             qPrintable(statement));
}

void TestResults::every_value_comes_back_as_it_was_stored() {
    const QString description =
        QStringLiteral("O'Brien \u05E9\u05DC\u05D5\u05DD \U0001F4C4\n100 %") +
        QString(32000, QLatin1Char('x'));
    ResultsModel model(kFormat);
    model.set_rows(one_row(40098.75, description));
    QCOMPARE(model.index(0, ResultsModel::kDate).data(Qt::EditRole).toString(),
             QStringLiteral("40098.75"));
    QCOMPARE(shown(model, 0, ResultsModel::kDescription), description);
    QCOMPARE(shown(model, 0, ResultsModel::kFileName), QStringLiteral("101209143005_57.pdf"));
    QCOMPARE(shown(model, 0, ResultsModel::kLocation), QStringLiteral("1009"));
    QCOMPARE(shown(model, 0, ResultsModel::kLink), QStringLiteral("57"));
}

void TestResults::a_missing_value_is_an_empty_cell() {
    ResultsModel model(kFormat);
    model.set_rows(one_row({}, {}));
    QCOMPARE(model.index(0, ResultsModel::kDate).data(Qt::EditRole).toString(), QString());
    QCOMPARE(shown(model, 0, ResultsModel::kDate), QString());
    QCOMPARE(shown(model, 0, ResultsModel::kDescription), QString());
    QCOMPARE(shown(model, 0, ResultsModel::kLink), QStringLiteral("57"));
}

void TestResults::a_date_is_shown_in_the_short_format() {
    QCOMPARE(short_date(40098.0, kFormat), QStringLiteral("12/10/2009"));
    QCOMPARE(short_date(40098.75, kFormat), QStringLiteral("12/10/2009"));
    QCOMPARE(short_date(qlonglong{40098}, kFormat), QStringLiteral("12/10/2009"));
}

void TestResults::odd_dates_are_shown_as_far_as_they_can_be_data() {
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("shown_as");
    QTest::newRow("before 1900") << QVariant(-18000.0) << QStringLiteral("18/09/1850");
    QTest::newRow("after 9999") << QVariant(4000000.0) << QStringLiteral("4000000");
    QTest::newRow("text") << QVariant(QStringLiteral("last spring"))
                          << QStringLiteral("last spring");
    QTest::newRow("infinity") << QVariant(std::numeric_limits<double>::infinity())
                              << QStringLiteral("inf");
    QTest::newRow("not a number") << QVariant(std::numeric_limits<double>::quiet_NaN())
                                  << QStringLiteral("nan");
    QTest::newRow("nothing") << QVariant() << QString();
}

void TestResults::odd_dates_are_shown_as_far_as_they_can_be() {
    QFETCH(QVariant, stored);
    QFETCH(QString, shown_as);
    ResultsModel model(kFormat);
    model.set_rows(one_row(stored, QStringLiteral("odd")));
    QCOMPARE(shown(model, 0, ResultsModel::kDate), shown_as);
    QCOMPARE(shown(model, 0, ResultsModel::kDescription), QStringLiteral("odd"));
    QVERIFY(shown_as.isEmpty() ==
            model.index(0, ResultsModel::kDate).data(Qt::EditRole).toString().isEmpty());
}

void TestResults::a_document_is_found_by_its_link() {
    ResultRows rows = one_row(40098, QStringLiteral("first"));
    rows.add(40099, QStringLiteral("second"), {}, {}, QStringLiteral("5"));
    ResultsModel model(kFormat);
    model.set_rows(std::move(rows));
    QCOMPARE(model.find_link(QStringLiteral("57")), 0);
    QCOMPARE(model.find_link(QStringLiteral("5")), 1);
    QCOMPARE(model.find_link(QStringLiteral("7")), -1);
}

void TestResults::the_columns_have_their_captions() {
    const ResultsModel model(kFormat);
    QCOMPARE(model.columnCount(), 5);
    QCOMPARE(model.headerData(0, Qt::Horizontal).toString(), QStringLiteral("Date"));
    QCOMPARE(model.headerData(1, Qt::Horizontal).toString(), QStringLiteral("Description"));
}

void TestResults::new_rows_replace_all_rows() {
    ResultsModel model(kFormat);
    model.set_rows(one_row(40098, QStringLiteral("old")));
    ResultRows rows = one_row(40099, QStringLiteral("new"));
    rows.add(40100, QStringLiteral("newer"), {}, {}, QStringLiteral("60"));
    model.set_rows(std::move(rows));
    QCOMPARE(model.rowCount(), 2);
    QCOMPARE(shown(model, 1, ResultsModel::kDescription), QStringLiteral("newer"));
    model.set_rows({});
    QCOMPARE(model.rowCount(), 0);
}

void TestResults::the_model_keeps_the_rules_of_models() {
    ResultsModel model(kFormat);
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    model.set_rows(one_row(40098, QStringLiteral("one")));
    model.set_rows({});
    QCOMPARE(model.rowCount(), 0);
}

QTEST_GUILESS_MAIN(TestResults)
#include "test_results.moc"
