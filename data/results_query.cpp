// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "data/results_query.h"

#include "data/database.h"
#include "data/number_set.h"
#include "data/statement.h"

#include <QRegularExpression>
#include <algorithm>
#include <cstring>
#include <sqlite3.h>

namespace folidex {

namespace {

constexpr int kColumns = 5;
// So few documents are looked up one by one without asking what else could be done.
constexpr std::size_t kFew = 500;
// Reading all documents in turn beats looking up more than one of so many.
constexpr qint64 kScanInsteadOfLookUps = 8;
// A range that leaves more than one document of so many is no help in finding them.
constexpr qint64 kWideRange = 4;
// Collecting is given up after so many rows for each document in the range: with more than about
// four times as many, looking up each document's own tags would have been quicker.
constexpr qint64 kTaggedRowsALookUp = 6;

const QString& columns() {
    static const QString text =
        QStringLiteral("SELECT date, description, fname, location, link FROM scans");
    return text;
}

/// One run of the statement, in one read transaction: all its parts see the same moment.
class ResultsReader {
public:
    ResultsReader(const Database& database, const ResultsQuery& query)
        : database_(database), query_(query), rows_(kColumns),
          own_transaction_(sqlite3_get_autocommit(database.handle()) != 0) {
        if (own_transaction_)
            Statement(database_, QStringLiteral("BEGIN")).run();
    }
    ~ResultsReader() {
        if (own_transaction_ && sqlite3_get_autocommit(database_.handle()) == 0)
            sqlite3_exec(database_.handle(), "COMMIT", nullptr, nullptr, nullptr);
    }
    ResultsReader(const ResultsReader&) = delete;
    ResultsReader& operator=(const ResultsReader&) = delete;

    RowStore rows() {
        Statement tagged(
            database_,
            QStringLiteral("SELECT scan FROM tagged WHERE tag IN (%1)").arg(query_.tags));
        if (collect(tagged, kFew))
            look_up();
        else if (query_.has_range() && is_narrow())
            read_range(tagged);
        else
            read_all(tagged);
        return std::move(rows_);
    }

private:
    QString range(const char* keyword) const {
        if (!query_.has_range())
            return {};
        return QStringLiteral(" %1 date >= %2 AND date <= %3")
            .arg(QLatin1String(keyword), query_.from, query_.to);
    }

    qint64 number(const QString& sql) {
        Statement select(database_, sql);
        select.step();
        return select.integer(0);
    }

    // Links are drawn one after the other, so their span tells about how many documents there
    // are; counting would read them all.
    qint64 documents() {
        return number(QStringLiteral("SELECT (SELECT max(link) FROM scans) - "
                                     "(SELECT min(link) FROM scans) + 1"));
    }

    bool is_narrow() {
        in_range_ = number(QStringLiteral("SELECT count(*) FROM scans") + range("WHERE"));
        return in_range_ * kWideRange < documents();
    }

    // Goes on collecting; true when all of the tags' rows were read, false after the limit.
    bool collect(Statement& tagged, qint64 limit) {
        while (limit-- > 0) {
            if (!tagged.step()) {
                links_.finish();
                return true;
            }
            if (sqlite3_column_type(tagged.handle(), 0) == SQLITE_INTEGER)
                links_.add(tagged.integer(0));
        }
        return false;
    }

    bool is_far_below(qint64 documents) const {
        return static_cast<qint64>(links_.size()) * kScanInsteadOfLookUps < documents;
    }

    void collect_all(Statement& tagged) {
        while (!collect(tagged, std::numeric_limits<qint64>::max())) {
        }
    }

    void read_range(Statement& tagged) {
        if (!collect(tagged, in_range_ * kTaggedRowsALookUp))
            read_range_looking_up_tags();
        else if (is_far_below(in_range_))
            look_up();
        else
            read_in_order(QStringLiteral("in_number_set(link, ?1)"), {&links_});
    }

    void read_range_looking_up_tags() {
        // What has been collected needs no looking up.
        links_.finish();
        NumberSet tags;
        for (const QString& tag : query_.tags.split(u','))
            tags.add(tag.toLongLong());
        tags.finish();
        // A document has few tags of its own; a list of tags would let SQLite search for each.
        read_in_order(QStringLiteral("(in_number_set(link, ?1) OR EXISTS (SELECT 1 FROM tagged "
                                     "WHERE scan = link AND in_number_set(tag, ?2)))"),
                      {&links_, &tags});
    }

    /// The documents of the range that a condition holds for; sets are its parameters.
    void read_in_order(const QString& condition, std::initializer_list<const NumberSet*> sets) {
        Statement select(database_, columns() + range("WHERE") + QStringLiteral(" AND ") +
                                        condition + QStringLiteral(" ORDER BY date, link"));
        int parameter = 0;
        for (const NumberSet* set : sets)
            bind(select, ++parameter, *set);
        while (select.step())
            rows_.append(select.handle());
    }

    static void bind(const Statement& statement, int parameter, const NumberSet& set) {
        // SQLite takes all pointers as such that may be written to; the function only reads.
        sqlite3_bind_pointer(statement.handle(), parameter, const_cast<NumberSet*>(&set),
                             NumberSet::kPointerType, nullptr);
    }

    void read_all(Statement& tagged) {
        collect_all(tagged);
        if (is_far_below(documents()))
            look_up();
        else
            scan();
    }

    void look_up() {
        Statement select(database_, columns() + QStringLiteral(" WHERE link = ?1") + range("AND"));
        for (const qint64 link : links_.numbers()) {
            select.bind(1, link);
            if (select.step())
                rows_.append(select.handle());
            select.reset();
        }
        sort();
    }

    void scan() {
        // NOT INDEXED keeps the order of links, on which sorting relies.
        Statement select(database_,
                         columns() + QStringLiteral(" NOT INDEXED WHERE in_number_set(link, ?1)") +
                             range("AND") + QStringLiteral(" ORDER BY link"));
        bind(select, 1, links_);
        while (select.step())
            rows_.append(select.handle());
        sort();
    }

    // The rows come in order of links; they leave in SQLite's order of dates, equal ones as they
    // came: Null, then numbers, then texts by their bytes.
    void sort() {
        std::vector<std::size_t> order;
        std::vector<std::pair<double, std::size_t>> numbers;
        std::vector<std::pair<std::string_view, std::size_t>> texts;
        numbers.reserve(rows_.size());
        for (std::size_t row = 0; row < rows_.size(); ++row) {
            const Cell date = rows_.cell(row, 0);
            if (date.kind == Cell::Kind::Null)
                order.push_back(row);
            else if (date.kind == Cell::Kind::Text)
                texts.emplace_back(date.text, row);
            else
                numbers.emplace_back(
                    date.kind == Cell::Kind::Real ? date.real : static_cast<double>(date.integer),
                    row);
        }
        std::sort(numbers.begin(), numbers.end());
        std::sort(texts.begin(), texts.end());
        order.reserve(rows_.size());
        for (const auto& [date, row] : numbers)
            order.push_back(row);
        for (const auto& [date, row] : texts)
            order.push_back(row);
        rows_.reorder(order);
    }

    const Database& database_;
    const ResultsQuery& query_;
    RowStore rows_;
    NumberSet links_;
    qint64 in_range_ = 0;
    bool own_transaction_;
};

bool has_column(const Database& database, const char* table, const char* column, const char* type,
                bool key) {
    const char* found_type = nullptr;
    const char* collation = nullptr;
    int not_null = 0;
    int primary_key = 0;
    int auto_increment = 0;
    const int code =
        sqlite3_table_column_metadata(database.handle(), "main", table, column, &found_type,
                                      &collation, &not_null, &primary_key, &auto_increment);
    return code == SQLITE_OK && found_type != nullptr && sqlite3_stricmp(found_type, type) == 0 &&
           sqlite3_stricmp(collation, "BINARY") == 0 && (!key || primary_key != 0);
}

} // namespace

std::optional<ResultsQuery> recognised_results_query(const QString& sql) {
    static const QRegularExpression shape(QStringLiteral(
        "\\ASELECT DISTINCT scans\\.date, scans\\.description, scans\\.fname, scans\\.location, "
        "scans\\.link FROM scans INNER JOIN tagged ON scans\\.link = tagged\\.scan WHERE "
        "tagged\\.tag In \\((-?[0-9]{1,18}(?:,-?[0-9]{1,18})*)\\)"
        "(?: and scans\\.date >= (-?[0-9]{1,18}(?:\\.[0-9]{1,18})?)"
        " and scans\\.date <= (-?[0-9]{1,18}(?:\\.[0-9]{1,18})?))?"
        " ORDER BY scans\\.date, scans\\.link\\z"));
    const QRegularExpressionMatch match = shape.match(sql);
    if (!match.hasMatch())
        return std::nullopt;
    return ResultsQuery{match.captured(1), match.captured(2), match.captured(3)};
}

bool fits_results_query(const Database& database) {
    return has_column(database, "scans", "link", "INTEGER", true) &&
           has_column(database, "scans", "date", "REAL", false) &&
           has_column(database, "tagged", "scan", "INTEGER", false) &&
           has_column(database, "tagged", "tag", "INTEGER", false);
}

RowStore results_rows(const Database& database, const ResultsQuery& query) {
    return ResultsReader(database, query).rows();
}

QStringList results_names() {
    return {QStringLiteral("date"), QStringLiteral("description"), QStringLiteral("fname"),
            QStringLiteral("location"), QStringLiteral("link")};
}

} // namespace folidex
