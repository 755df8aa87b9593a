// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// The results of a filter. The query runs three ways in the same run, taken in turns: as the
// program asks it, as SQLite runs the statement word for word, and the floor: the same rows read
// from a table in memory that holds just them. Times are processor time, so that a busy machine
// does not decide. Ends with the ratios, the goals and an exit code of 1 when one is missed.
// FOLIDEX_BENCH_DOCUMENTS sets another size than 100,000.

#include "app/process_values.h"
#include "common/error.h"
#include "data/database.h"
#include "data/statement.h"
#include "tests/bench/comparison.h"
#include "tests/bench/sample_data.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTextStream>
#include <benchmark/benchmark.h>
#include <map>
#include <memory>
#include <sqlite3.h>

using namespace folidex;
using namespace Qt::StringLiterals;

namespace {

constexpr int kRepetitions = 9;

struct Filter {
    const char* name;
    int first_tag;
    int tags;
    bool half_a_year;
    double most_of_floor;   ///< goals: ours by the floor's, 0 for none
    double most_of_literal; ///< ours by the literal's
};
constexpr Filter kFilters[] = {
    {"rare tag", 190, 1, false, 0, 1.1},
    {"1 tag", 1, 1, false, 0, 1.1},
    {"1 tag, 6 months", 1, 1, true, 15, 0.5},
    {"10 tags", 20, 10, false, 5, 1.1},
    {"10 tags, 6 months", 20, 10, true, 15, 0.5},
    {"200 tags", 0, bench::kTags, false, 5, 1.1},
    {"200 tags, 6 months", 0, bench::kTags, true, 15, 0.5},
};

std::map<std::string, std::size_t> row_counts;

QString statement_of(const Filter& filter) {
    QStringList tags;
    for (int i = 0; i < filter.tags; ++i)
        tags.append(QString::number(filter.first_tag + i));
    const QString range =
        filter.half_a_year ? u" and scans.date >= 38000 and scans.date <= 38182"_s : QString();
    return u"SELECT DISTINCT scans.date, scans.description, scans.fname, scans.location, "
           "scans.link FROM scans INNER JOIN tagged ON scans.link = tagged.scan WHERE "
           "tagged.tag In ("_s +
           tags.join(u',') + u")"_s + range + u" ORDER BY scans.date, scans.link"_s;
}

/// The rows of one filter in a table in memory, in their order.
class Floor {
public:
    explicit Floor(const Filter& filter) {
        sqlite3_open(":memory:", &handle_);
        run("CREATE TABLE rows (date REAL, description TEXT, fname TEXT, location TEXT, link INT)");
        run("BEGIN");
        sqlite3_stmt* insert = nullptr;
        sqlite3_prepare_v2(handle_, "INSERT INTO rows VALUES (?, ?, ?, ?, ?)", -1, &insert,
                           nullptr);
        Statement literal(database(), statement_of(filter));
        while (literal.step()) {
            for (int i = 0; i < 5; ++i)
                sqlite3_bind_value(insert, i + 1, sqlite3_column_value(literal.handle(), i));
            sqlite3_step(insert);
            sqlite3_reset(insert);
        }
        sqlite3_finalize(insert);
        run("COMMIT");
    }
    ~Floor() { sqlite3_close(handle_); }
    Floor(const Floor&) = delete;
    Floor& operator=(const Floor&) = delete;

    std::size_t read() const {
        sqlite3_stmt* select = nullptr;
        sqlite3_prepare_v2(handle_, "SELECT * FROM rows", -1, &select, nullptr);
        std::size_t rows = 0;
        for (; sqlite3_step(select) == SQLITE_ROW; ++rows) {
            benchmark::DoNotOptimize(sqlite3_column_double(select, 0));
            for (int column = 1; column < 4; ++column)
                benchmark::DoNotOptimize(sqlite3_column_text(select, column));
            benchmark::DoNotOptimize(sqlite3_column_int64(select, 4));
        }
        sqlite3_finalize(select);
        return rows;
    }

private:
    void run(const char* sql) { sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr); }

    sqlite3* handle_ = nullptr;
};

std::size_t rows_of(const QString& sql) {
    Recordset set = database().open_recordset(sql);
    set.move_last();
    return static_cast<std::size_t>(set.record_count());
}

std::string label(const Filter& filter, const char* way) {
    return std::string(filter.name) + '/' + way;
}

void add(bench::Comparison& comparison, const std::string& name,
         std::function<std::size_t()> count_rows) {
    comparison.add(name, kRepetitions, [name, count_rows = std::move(count_rows)] {
        return bench::processor_seconds([&] { row_counts[name] = count_rows(); });
    });
}

void add_queries(bench::Comparison& comparison) {
    for (const Filter& filter : kFilters) {
        const QString sql = statement_of(filter);
        const auto floor = std::make_shared<Floor>(filter);
        add(comparison, label(filter, "ours"), [sql] { return rows_of(sql); });
        // A blank behind it, and it is no longer the statement that is recognised.
        add(comparison, label(filter, "literal"), [sql] { return rows_of(sql + u' '); });
        add(comparison, label(filter, "floor"), [floor] { return floor->read(); });
    }
}

bool meets(QTextStream& out, double ratio, double most) {
    const bool good = most == 0 || ratio <= most;
    out << QString::number(ratio, 'f', 2).rightJustified(8)
        << (most == 0 ? u""_s : u" (goal %1%2)"_s.arg(most).arg(good ? u""_s : u", MISSED"_s))
               .leftJustified(20);
    return good;
}

bool report_queries(QTextStream& out, const bench::Comparison& comparison) {
    bool good = true;
    out << "\nfilter                  rows   ours ms   by floor                    by literal\n";
    for (const Filter& filter : kFilters) {
        const double ours = comparison.median(label(filter, "ours"));
        const double floor = comparison.median(label(filter, "floor"));
        const double literal = comparison.median(label(filter, "literal"));
        if (floor == 0 || literal == 0)
            continue;
        const std::size_t rows = row_counts[label(filter, "ours")];
        good = rows == row_counts[label(filter, "literal")] && good;
        out << QString::fromLatin1(filter.name).leftJustified(20)
            << QString::number(rows).rightJustified(8)
            << QString::number(ours * 1000, 'f', 2).rightJustified(10);
        good = meets(out, ours / floor, filter.most_of_floor) && good;
        good = meets(out, ours / literal, filter.most_of_literal) && good;
        out << '\n';
    }
    return good;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    bench::Comparison comparison(argc, argv);
    QTextStream out(stdout);
    try {
        const QTemporaryDir folder;
        bench::open_sample(folder.filePath(u"db.mdb"_s), bench::sample_size());
        add_queries(comparison);
        comparison.run();
        const bool good = report_queries(out, comparison);
        set_database(nullptr);
        return good ? 0 : 1;
    } catch (const Error& error) {
        out << error.description << Qt::endl;
        return 2;
    }
}
