// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// Filing a document: the program's statements for one with three tags, by one station and by
// eight at once. Counted are the syncs that the disk is asked for, which is what filing costs on a
// share; timed is how long the unluckiest document waits. Ends with the goals and an exit code of
// 1 when one is missed, or when a number was lost or drawn twice.

#include "app/process_values.h"
#include "common/error.h"
#include "data/database.h"
#include "data/link_numbers.h"
#include "tests/bench/comparison.h"
#include "tests/bench/sample_data.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>
#include <algorithm>
#include <memory>
#include <sys/syscall.h>
#include <unistd.h>

using namespace folidex;
using namespace Qt::StringLiterals;

namespace {

constexpr int kAlone = 100;
constexpr int kStations = 8;
constexpr int kDocumentsAStation = 40;
constexpr double kMostSyncs = 25;
constexpr double kLongestWaitSeconds = 1;

long syncs = 0;

} // namespace

// In the place of the C library's, so that SQLite's are counted.
extern "C" int fsync(int file) {
    ++syncs;
    return static_cast<int>(syscall(SYS_fsync, file));
}
extern "C" int fdatasync(int file) {
    ++syncs;
    return static_cast<int>(syscall(SYS_fdatasync, file));
}

namespace {

double seconds(const QElapsedTimer& timer) {
    return static_cast<double>(timer.nsecsElapsed()) * 1e-9;
}

void file_document() {
    const int link = getNewLink(QString());
    database().execute(u"INSERT INTO scans ([link], [description], [date], [fname], [location]) "
                       "VALUES (%1, 'Bill', 40098, '%1.pdf', '1009')"_s.arg(link));
    for (int tag = 1; tag <= 3; ++tag)
        database().execute(u"INSERT INTO tagged (scan, tag) VALUES (%1, %2)"_s.arg(link).arg(tag));
}

// A station of its own: prints its longest document in seconds.
int be_station(const QString& file) {
    QTextStream out(stdout);
    set_database(Database::open(file));
    out << "ready" << Qt::endl;
    QTextStream(stdin).readLine();
    double longest = 0;
    for (int i = 0; i < kDocumentsAStation; ++i) {
        QElapsedTimer timer;
        timer.start();
        file_document();
        longest = std::max(longest, seconds(timer));
    }
    out << longest << Qt::endl;
    set_database(nullptr);
    return 0;
}

bool file_alone(QTextStream& out) {
    QElapsedTimer timer;
    timer.start();
    syncs = 0;
    for (int i = 0; i < kAlone; ++i)
        file_document();
    out << "one station: " << seconds(timer) * 1000 / kAlone << " ms a document" << Qt::endl;
    if (syncs == 0) {
        out << "no sync was seen, so none was counted" << Qt::endl;
        return false;
    }
    return bench::report(u"syncs a document"_s, static_cast<double>(syncs) / kAlone, kMostSyncs);
}

bool file_together(QTextStream& out, const QString& program, const QString& file_name) {
    std::vector<std::unique_ptr<QProcess>> stations;
    for (int i = 0; i < kStations; ++i) {
        stations.push_back(std::make_unique<QProcess>());
        stations.back()->start(program, {u"--station"_s, file_name});
        stations.back()->waitForReadyRead();
    }
    const int before = getNewLink(QString());
    QElapsedTimer timer;
    timer.start();
    for (const auto& station : stations) {
        station->write("go\n");
        station->waitForBytesWritten();
    }
    double longest = 0;
    bool complete = true;
    for (const auto& station : stations) {
        complete = station->waitForFinished(-1) && station->exitCode() == 0 && complete;
        const QList<QByteArray> lines = station->readAllStandardOutput().trimmed().split('\n');
        longest = std::max(longest, lines.last().toDouble());
    }
    const int filed = kStations * kDocumentsAStation;
    out << kStations << " stations at once: " << filed / seconds(timer) << " documents/s"
        << Qt::endl;
    complete = getNewLink(QString()) == before + filed + 1 && complete;
    out << "numbers " << (complete ? "complete" : "NOT COMPLETE") << Qt::endl;
    return bench::report(u"longest wait, seconds"_s, longest, kLongestWaitSeconds) && complete;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    if (argc > 2 && QByteArrayView(argv[1]) == QByteArrayView("--station"))
        return be_station(QString::fromLocal8Bit(argv[2]));
    QTextStream out(stdout);
    try {
        const QTemporaryDir folder;
        const QString file_name = folder.filePath(u"db.mdb"_s);
        bench::open_sample(file_name, bench::sample_size());
        bool good = file_alone(out);
        good = file_together(out, QCoreApplication::applicationFilePath(), file_name) && good;
        set_database(nullptr);
        return good ? 0 : 1;
    } catch (const Error& error) {
        out << error.description << Qt::endl;
        return 2;
    }
}
