// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// The results of a filter, and filing. The query runs three ways in the same run, taken in turns:
// as the program asks it, as SQLite runs the statement word for word, and the floor: the same rows
// read from a table in memory that holds just them. Times are processor time, so that a busy
// machine does not decide. Ends with the ratios, the goals and an exit code of 1 when one is
// missed. FOLIDEX_BENCH_DOCUMENTS sets another size than 100,000.

#include "app/process_values.h"
#include "common/error.h"
#include "data/database.h"
#include "data/link_numbers.h"
#include "data/statement.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTextStream>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>
#include <ctime>
#include <map>
#include <sqlite3.h>

using namespace folidex;
using namespace Qt::StringLiterals;

namespace {

constexpr int kTags = 200;
constexpr int kRepetitions = 9;
constexpr int kFirstDay = 36500;
constexpr int kDays = 3650;
constexpr int kStations = 8;
constexpr int kDocumentsAStation = 40;

struct Filter {
    const char* name;
    int first_tag;
    int tags;
    bool half_a_year;
    double most_of_floor;   ///< goals: ours by the floor's, 0 for none
    double most_of_literal; ///< ours by the literal's
};
constexpr Filter kFilters[] = {
    {"rare tag", 190, 1, false, 0, 1.1},           {"1 tag", 1, 1, false, 0, 1.1},
    {"1 tag, 6 months", 1, 1, true, 15, 0.5},      {"10 tags", 20, 10, false, 5, 1.1},
    {"10 tags, 6 months", 20, 10, true, 15, 0.5},  {"200 tags", 0, 200, false, 5, 1.1},
    {"200 tags, 6 months", 0, 200, true, 15, 0.5},
};
const char* const kWays[] = {"ours", "literal", "floor"};
constexpr double kLongestWaitSeconds = 1;

std::map<std::string, std::vector<double>> samples;
std::map<std::string, std::size_t> row_counts;
QString file_name;
int document_count = 100000;

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

// Common tags first: tag 0 is on a good part of all documents, tag 199 on a few hundred.
int some_tag(QRandomGenerator& random) {
    return static_cast<int>(std::pow(random.generateDouble(), 2.5) * kTags);
}

void fill() {
    QRandomGenerator random(2009);
    Statement(database(), u"BEGIN"_s).run();
    Statement document(database(), u"INSERT INTO scans VALUES (?, ?, ?, ?, ?)"_s);
    Statement tagged(database(), u"INSERT INTO tagged (scan, tag) VALUES (?, ?)"_s);
    for (int link = 1000; link < 1000 + document_count; ++link) {
        const QVariant fields[] = {link, u"Invoice %1 of the year's deliveries"_s.arg(link),
                                   static_cast<double>(kFirstDay + random.bounded(kDays)),
                                   u"101209120000_%1.pdf"_s.arg(link), u"1009"_s};
        for (int i = 0; i < 5; ++i)
            document.bind(i + 1, fields[i]);
        document.run();
        document.reset();
        for (int pairs = 1 + static_cast<int>(random.bounded(5)); pairs > 0; --pairs) {
            tagged.bind(1, static_cast<qint64>(link));
            tagged.bind(2, static_cast<qint64>(some_tag(random)));
            tagged.run();
            tagged.reset();
        }
    }
    Statement(database(), u"UPDATE comp SET NewLink = %1"_s.arg(1000 + document_count)).run();
    Statement(database(), u"COMMIT"_s).run();
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

double processor_seconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

template <class Action> void add(const std::string& name, Action action) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [name, action](benchmark::State& state) {
                                     for (auto unused : state) {
                                         benchmark::DoNotOptimize(unused);
                                         const double start = processor_seconds();
                                         row_counts[name] = action();
                                         const double seconds = processor_seconds() - start;
                                         state.SetIterationTime(seconds);
                                         samples[name].push_back(seconds);
                                     }
                                 })
        ->UseManualTime()
        ->Iterations(1)
        ->Repetitions(kRepetitions)
        ->ReportAggregatesOnly(true)
        ->Unit(benchmark::kMillisecond);
}

std::string label(const Filter& filter, const char* way) {
    return std::string(filter.name) + '/' + way;
}

void register_queries() {
    for (const Filter& filter : kFilters) {
        const QString sql = statement_of(filter);
        const auto floor = std::make_shared<Floor>(filter);
        add(label(filter, kWays[0]), [sql] { return rows_of(sql); });
        // A blank behind it, and it is no longer the statement that is recognised.
        add(label(filter, kWays[1]), [sql] { return rows_of(sql + u' '); });
        add(label(filter, kWays[2]), [floor] { return floor->read(); });
    }
}

double median(const std::string& name) {
    std::vector<double> sorted = samples[name];
    if (sorted.empty())
        return 0;
    std::sort(sorted.begin(), sorted.end());
    return sorted[sorted.size() / 2];
}

bool meets(QTextStream& out, double ratio, double most) {
    const bool good = most == 0 || ratio <= most;
    out << QString::number(ratio, 'f', 2).rightJustified(8)
        << (most == 0 ? u""_s : u" (goal %1%2)"_s.arg(most).arg(good ? u""_s : u", MISSED"_s))
               .leftJustified(20);
    return good;
}

bool report_queries(QTextStream& out) {
    bool good = true;
    out << "\nfilter                  rows   ours ms   by floor                    by literal\n";
    for (const Filter& filter : kFilters) {
        const double ours = median(label(filter, "ours"));
        const double floor = median(label(filter, "floor"));
        const double literal = median(label(filter, "literal"));
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

// The program's statements for a document with three tags.
void file_document() {
    const int link = getNewLink(QString());
    database().execute(u"INSERT INTO scans ([link], [description], [date], [fname], [location]) "
                       "VALUES (%1, 'Bill', 40098, '%1.pdf', '1009')"_s.arg(link));
    for (int tag = 1; tag <= 3; ++tag)
        database().execute(u"INSERT INTO tagged (scan, tag) VALUES (%1, %2)"_s.arg(link).arg(tag));
}

// A station of its own: prints its longest document in seconds.
int be_station(const QString& file, int documents) {
    QTextStream out(stdout);
    set_database(Database::open(file));
    out << "ready" << Qt::endl;
    QTextStream(stdin).readLine();
    double longest = 0;
    for (; documents > 0; --documents) {
        QElapsedTimer timer;
        timer.start();
        file_document();
        longest = std::max(longest, static_cast<double>(timer.nsecsElapsed()) * 1e-9);
    }
    out << longest << Qt::endl;
    set_database(nullptr);
    return 0;
}

bool report_filing(QTextStream& out, const QString& program) {
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 100; ++i)
        file_document();
    const double alone = static_cast<double>(timer.nsecsElapsed()) * 1e-9 / 100;
    std::vector<std::unique_ptr<QProcess>> stations;
    for (int i = 0; i < kStations; ++i) {
        stations.push_back(std::make_unique<QProcess>());
        stations.back()->start(program, {u"--station"_s, file_name});
        stations.back()->waitForReadyRead();
    }
    const int before = getNewLink(QString());
    timer.start();
    for (const auto& station : stations) {
        station->write("go\n");
        station->waitForBytesWritten();
    }
    double longest = 0;
    bool good = true;
    for (const auto& station : stations) {
        good = station->waitForFinished(-1) && station->exitCode() == 0 && good;
        const QList<QByteArray> lines = station->readAllStandardOutput().trimmed().split('\n');
        longest = std::max(longest, lines.last().toDouble());
    }
    const double all = static_cast<double>(timer.nsecsElapsed()) * 1e-9;
    const int filed = kStations * kDocumentsAStation;
    good = getNewLink(QString()) == before + filed + 1 && good;
    out << "\nfiling one document (3 tags), one station: " << alone * 1000 << " ms\n"
        << kStations << " stations at once: " << filed / all << " documents/s, longest "
        << longest * 1000 << " ms (goal " << kLongestWaitSeconds * 1000
        << (longest > kLongestWaitSeconds ? ", MISSED" : "") << "), numbers "
        << (good ? "complete" : "NOT COMPLETE") << '\n';
    return good && longest <= kLongestWaitSeconds;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    if (argc > 2 && QByteArrayView(argv[1]) == QByteArrayView("--station"))
        return be_station(QString::fromLocal8Bit(argv[2]), kDocumentsAStation);
    std::vector<char*> arguments(argv, argv + argc);
    std::string in_turns = "--benchmark_enable_random_interleaving=true";
    arguments.push_back(in_turns.data());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (qEnvironmentVariableIntValue("FOLIDEX_BENCH_DOCUMENTS") > 0)
        document_count = qEnvironmentVariableIntValue("FOLIDEX_BENCH_DOCUMENTS");

    QTextStream out(stdout);
    try {
        const QTemporaryDir folder;
        file_name = folder.filePath(u"db.mdb"_s);
        if (!QFile::copy(QStringLiteral(FOLIDEX_TEMPLATE), file_name))
            throw Error{kFileNotFound, QStringLiteral(FOLIDEX_TEMPLATE)};
        set_database(Database::open(file_name));
        fill();
        register_queries();
        benchmark::RunSpecifiedBenchmarks();
        bool good = report_queries(out);
        good = report_filing(out, QString::fromLocal8Bit(argv[0])) && good;
        benchmark::ClearRegisteredBenchmarks();
        set_database(nullptr);
        return good ? 0 : 1;
    } catch (const Error& error) {
        out << error.description << Qt::endl;
        return 2;
    }
}
