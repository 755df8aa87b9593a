// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "common/paths.h"
#include "data/database.h"
#include "tests/support/test_station.h"
#include "tests/support/test_system.h"
#include "tests/unit/data/thrown.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTest>
#include <QThread>
#include <sqlite3.h>

using namespace folidex;
using namespace folidex::test;
using namespace Qt::StringLiterals;

namespace {

QByteArray hash_of(const QString& path) {
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result() : QByteArray();
}

QByteArray content_of(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString& path, const QByteArray& content) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        throw Error{1, file.errorString()};
}

// Straight through SQLite, as another program would.
void run_raw(const QString& path, const char* sql) {
    sqlite3* handle = nullptr;
    sqlite3_open(path.toUtf8().constData(), &handle);
    const int code = sqlite3_exec(handle, sql, nullptr, nullptr, nullptr);
    const QString words = QString::fromUtf8(sqlite3_errmsg(handle));
    sqlite3_close(handle);
    if (code != SQLITE_OK)
        throw Error{code, words};
}

} // namespace

class TestDatabase : public QObject {
    Q_OBJECT

private slots:
    void init() { station_ = std::make_unique<TestStation>(); }
    void cleanup() { station_.reset(); }

    void the_connection_waits_syncs_and_keeps_its_journal_beside_the_file();

    void a_missing_folder_is_a_bad_file_name();
    void a_missing_file_is_not_created();
    void a_folder_is_no_database();
    void a_file_that_is_not_ours_is_refused_and_stays_as_it_was_data();
    void a_file_that_is_not_ours_is_refused_and_stays_as_it_was();
    void a_file_that_lacks_a_table_is_refused_and_stays_as_it_was_data();
    void a_file_that_lacks_a_table_is_refused_and_stays_as_it_was();
    void another_programs_write_ahead_log_is_not_touched();
    void opening_a_good_file_does_not_change_it();
    void a_file_with_a_write_ahead_log_goes_back_to_a_journal();
    void a_damaged_file_is_reported_with_its_path();

    void a_read_only_file_is_read_and_its_first_write_is_reported();
    void a_read_only_folder_is_reported_at_the_first_write();
    void a_file_that_may_not_be_read_is_reported();

    void a_wrong_statement_is_reported_with_the_path_data();
    void a_wrong_statement_is_reported_with_the_path();
    void a_statement_with_another_behind_it_runs_neither();
    void a_select_cannot_be_executed_nor_a_change_opened();
    void a_failed_statement_leaves_no_lock();
    void a_file_that_is_held_is_waited_for();
    void a_long_statement_is_felt_while_it_runs();
    void a_wait_for_the_file_is_felt_and_ends_when_the_file_is_free();
    void a_path_beyond_ASCII_is_opened();

private:
    QString path(const QString& name) const { return join_path(station_->data_folder(), name); }
    void refused(const QString& file, int number, const QString& words);

    std::unique_ptr<TestStation> station_;
};

void TestDatabase::the_connection_waits_syncs_and_keeps_its_journal_beside_the_file() {
    auto setting = [](sqlite3* handle, const char* name) {
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(handle, (QByteArray("PRAGMA ") + name).constData(), -1, &statement,
                           nullptr);
        QString text;
        if (sqlite3_step(statement) == SQLITE_ROW)
            text = QString::fromUtf8(
                QByteArray(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0))));
        sqlite3_finalize(statement);
        return text;
    };
    sqlite3* handle = database().handle();
    QCOMPARE(setting(handle, "journal_mode"), u"truncate"_s);
    QCOMPARE(setting(handle, "synchronous"), u"2"_s);
    QCOMPARE(setting(handle, "temp_store"), u"2"_s);
    QCOMPARE(setting(handle, "cache_size"), u"-65536"_s);
    QCOMPARE(setting(handle, "mmap_size"), u"0"_s);
}

void TestDatabase::a_missing_folder_is_a_bad_file_name() {
    const QString file = join_path(path(u"gone"_s), u"db.mdb"_s);
    const auto error = thrown([&] { Database::open(file); });
    QVERIFY(error);
    QCOMPARE(error->number, 52);
    QVERIFY(error->description.endsWith(file));
    QVERIFY(!QFile::exists(path(u"gone"_s)));
}

void TestDatabase::a_missing_file_is_not_created() {
    refused(path(u"none.mdb"_s), SQLITE_CANTOPEN, u"unable to open database file"_s);
    QVERIFY(!QFile::exists(path(u"none.mdb"_s)));
}

void TestDatabase::a_folder_is_no_database() {
    QVERIFY(QDir(station_->data_folder()).mkdir(u"folder.mdb"_s));
    const auto error = thrown([&] { Database::open(path(u"folder.mdb"_s)); });
    QVERIFY(error);
    QCOMPARE(error->number & 0xFF, SQLITE_CANTOPEN);
    QVERIFY(error->description.endsWith(path(u"folder.mdb"_s)));
}

void TestDatabase::refused(const QString& file, int number, const QString& words) {
    const auto error = thrown([&] { Database::open(file); });
    QVERIFY(error);
    QCOMPARE(error->number, number);
    QCOMPARE(error->description, words + u": "_s + file);
}

void TestDatabase::a_file_that_is_not_ours_is_refused_and_stays_as_it_was_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("text") << QByteArray("Dear Sir or Madam,\n").repeated(500);
    QTest::newRow("shorter than the mark") << QByteArray("SQLite");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("zeros") << QByteArray(40960, '\0');
    QTest::newRow("another desktop database")
        << QByteArray("\x00\x01\x00\x00Standard DB\x00", 16) + QByteArray(40944, '\x7f');
}

void TestDatabase::a_file_that_is_not_ours_is_refused_and_stays_as_it_was() {
    QFETCH(QByteArray, content);
    const QString file = path(u"other.mdb"_s);
    write(file, content);
    // A journal that would be played back if the file were taken for a database.
    const QByteArray journal = QByteArray::fromHex("d9d505f920a163d7").leftJustified(4096, '\1');
    write(file + u"-journal"_s, journal);
    refused(file, SQLITE_NOTADB, u"file is not a database"_s);
    QVERIFY(content_of(file) == content);
    QVERIFY(content_of(file + u"-journal"_s) == journal);
    QCOMPARE(QDir(station_->data_folder()).entryList({u"other*"_s}).size(), 2);
}

void TestDatabase::a_file_that_lacks_a_table_is_refused_and_stays_as_it_was_data() {
    QTest::addColumn<QString>("table");
    for (const char* table : {"scans", "tags", "tagged", "settings", "comp"})
        QTest::newRow(table) << QString::fromLatin1(table);
}

void TestDatabase::a_file_that_lacks_a_table_is_refused_and_stays_as_it_was() {
    QFETCH(QString, table);
    const QString file = path(u"other.mdb"_s);
    QVERIFY(QFile::copy(template_database(), file));
    run_raw(file, ("DROP TABLE " + table.toLatin1()).constData());
    const QByteArray before = hash_of(file);
    refused(file, SQLITE_ERROR, u"no such table: "_s + table);
    QCOMPARE(hash_of(file), before);
    QCOMPARE(QDir(station_->data_folder()).entryList({u"other*"_s}).size(), 1);
}

void TestDatabase::another_programs_write_ahead_log_is_not_touched() {
    const QString file = path(u"other.mdb"_s);
    run_raw(file,
            "PRAGMA journal_mode = WAL; CREATE TABLE notes (a); INSERT INTO notes VALUES (1)");
    // The other program is still running, or crashed, before its log was moved into the file.
    sqlite3* running = nullptr;
    QCOMPARE(sqlite3_open(file.toUtf8().constData(), &running), SQLITE_OK);
    QCOMPARE(sqlite3_exec(running, "INSERT INTO notes VALUES (2)", nullptr, nullptr, nullptr),
             SQLITE_OK);
    const QString crashed = path(u"crashed.mdb"_s);
    QVERIFY(QFile::copy(file, crashed));
    QVERIFY(QFile::copy(file + u"-wal"_s, crashed + u"-wal"_s));
    for (const QString& name : {file, crashed}) {
        const QByteArray before = hash_of(name);
        const QByteArray log_before = hash_of(name + u"-wal"_s);
        refused(name, SQLITE_ERROR, u"no such table: scans"_s);
        QCOMPARE(hash_of(name), before);
        QCOMPARE(hash_of(name + u"-wal"_s), log_before);
    }
    sqlite3_close(running);
}

void TestDatabase::opening_a_good_file_does_not_change_it() {
    const QString file = path(u"good.mdb"_s);
    QVERIFY(QFile::copy(template_database(), file));
    const QByteArray before = hash_of(file);
    Database::open(file)->open_recordset(u"Select * from tags"_s);
    QCOMPARE(hash_of(file), before);
    QCOMPARE(QDir(station_->data_folder()).entryList({u"good*"_s}).size(), 1);
}

void TestDatabase::a_file_with_a_write_ahead_log_goes_back_to_a_journal() {
    const QString file = path(u"good.mdb"_s);
    QVERIFY(QFile::copy(template_database(), file));
    run_raw(file, "PRAGMA journal_mode = WAL; INSERT INTO tags VALUES (1, 'x')");
    QCOMPARE(content_of(file).mid(18, 2), QByteArray("\x02\x02"));
    Database::open(file)->execute(u"INSERT INTO tags VALUES (2, 'y')"_s);
    QCOMPARE(content_of(file).mid(18, 2), QByteArray("\x01\x01"));
    QVERIFY(!QFile::exists(file + u"-wal"_s));
}

void TestDatabase::a_damaged_file_is_reported_with_its_path() {
    const QString file = path(u"damaged.mdb"_s);
    QByteArray content = content_of(template_database());
    content.replace(100, content.size() - 100, QByteArray(content.size() - 100, '\xA5'));
    write(file, content);
    const auto error = thrown([&] { Database::open(file); });
    QVERIFY(error);
    QCOMPARE(error->number & 0xFF, SQLITE_CORRUPT);
    QVERIFY(error->description.endsWith(file));
    QVERIFY(content_of(file) == content);
}

void TestDatabase::a_read_only_file_is_read_and_its_first_write_is_reported() {
    const QString file = station_->database_path();
    station_->add_tag(u"one"_s);
    set_database(nullptr);
    const QByteArray before = hash_of(file);
    const LimitedRights read_only(file, Rights::kRead);
    const auto opened = Database::open(file);
    QCOMPARE(opened->open_recordset(u"Select * from tags"_s).text_at(1), u"one"_s);
    const auto error = thrown([&] { opened->execute(u"DELETE * FROM tags"_s); });
    QVERIFY(error);
    QCOMPARE(error->number & 0xFF, SQLITE_READONLY);
    QCOMPARE(error->description, u"attempt to write a readonly database: "_s + file);
    Recordset counter = opened->open_recordset(u"Select * from comp"_s);
    QCOMPARE(thrown_number([&] { counter.edit(); }) & 0xFF, SQLITE_READONLY);
    QCOMPARE(hash_of(file), before);
}

void TestDatabase::a_read_only_folder_is_reported_at_the_first_write() {
    const QString folder = station_->data_folder();
    const QString file = station_->database_path();
    set_database(nullptr);
    QVERIFY(QFile::setPermissions(file, QFile::Permissions(0x6666)));
    const LimitedRights read_only(folder, Rights::kRead);
    const auto opened = Database::open(file);
    QCOMPARE(opened->open_recordset(u"Select * from comp"_s).text_at(0), u"1"_s);
    const auto error = thrown([&] { opened->execute(u"UPDATE comp SET NewLink = 2"_s); });
    QVERIFY(error);
    // Where rights are no modes SQLite only finds that it cannot make its journal.
    const bool modes = QDir::separator() == u'/';
    QCOMPARE(error->number, modes ? SQLITE_READONLY_DIRECTORY : SQLITE_CANTOPEN);
    QVERIFY(error->description.endsWith(file));
    QCOMPARE(opened->open_recordset(u"Select * from comp"_s).text_at(0), u"1"_s);
}

void TestDatabase::a_file_that_may_not_be_read_is_reported() {
    const QString file = station_->database_path();
    set_database(nullptr);
    const LimitedRights unreadable(file, Rights::kNone);
    const auto error = thrown([&] { Database::open(file); });
    QVERIFY(error);
    QCOMPARE(error->number & 0xFF, SQLITE_CANTOPEN);
    QVERIFY(error->description.endsWith(file));
}

void TestDatabase::a_wrong_statement_is_reported_with_the_path_data() {
    QTest::addColumn<QString>("sql");
    QTest::addColumn<QString>("words");
    QTest::newRow("no table") << u"Select * from papers"_s << u"no such table: papers"_s;
    QTest::newRow("no column") << u"Select colour from tags"_s << u"no such column: colour"_s;
    QTest::newRow("nonsense") << u"Selct * from tags"_s << u"near \"Selct\": syntax error"_s;
    QTest::newRow("open text") << u"Select * from tags where description = 'its"_s
                               << u"unrecognized token: \"'its\""_s;
    QTest::newRow("empty") << u""_s << u"empty statement"_s;
}

void TestDatabase::a_wrong_statement_is_reported_with_the_path() {
    QFETCH(QString, sql);
    QFETCH(QString, words);
    const auto error = thrown([&] {
        if (sql.startsWith(u"Select "_s))
            database().open_recordset(sql);
        else
            database().execute(sql);
    });
    QVERIFY(error);
    QCOMPARE(error->number, SQLITE_ERROR);
    QCOMPARE(error->description, words + u": "_s + station_->database_path());
}

void TestDatabase::a_statement_with_another_behind_it_runs_neither() {
    station_->add_tag(u"one"_s);
    const auto error =
        thrown([&] { database().execute(u"UPDATE comp SET NewLink = 9; DELETE * FROM tags"_s); });
    QVERIFY(error);
    QCOMPARE(error->number, 3142);
    QCOMPARE(station_->rows(u"Select * from tags"_s).size(), 1);
    QCOMPARE(station_->value(u"Select * from comp"_s), u"2"_s);
    database().execute(u"UPDATE comp SET NewLink = 9; "_s);
    QCOMPARE(station_->value(u"Select * from comp"_s), u"9"_s);
}

void TestDatabase::a_select_cannot_be_executed_nor_a_change_opened() {
    QCOMPARE(thrown_number([&] { database().execute(u"Select * from comp"_s); }), 3065);
    QCOMPARE(thrown_number([&] { database().open_recordset(u"DELETE * FROM comp"_s); }), 3219);
    QCOMPARE(station_->value(u"Select * from comp"_s), u"1"_s);
}

void TestDatabase::a_failed_statement_leaves_no_lock() {
    station_->add_tag(u"one"_s);
    const auto error = thrown(
        [&] { database().execute(u"INSERT into Tags ([Link], [Description]) VALUES (1, 'x')"_s); });
    QVERIFY(error);
    QCOMPARE(error->number, SQLITE_CONSTRAINT_PRIMARYKEY);
    QVERIFY(error->description.endsWith(station_->database_path()));
    const auto other = Database::open(station_->database_path());
    other->execute(u"PRAGMA busy_timeout = 0"_s);
    other->execute(u"INSERT into Tags ([Link], [Description]) VALUES (2, 'x')"_s);
    QCOMPARE(station_->rows(u"Select * from tags"_s).size(), 2);
}

void TestDatabase::a_file_that_is_held_is_waited_for() {
    Recordset counter = database().open_recordset(u"Select * from comp"_s);
    counter.edit();
    QAtomicInt waits = 0;
    QString failure;
    const std::unique_ptr<QThread> other(QThread::create([&] {
        const auto connection = Database::open(station_->database_path());
        const DatabasePulse pulse(*connection, [&waits] { waits.ref(); });
        if (const auto error =
                thrown([&] { connection->execute(u"UPDATE comp SET NewLink = NewLink + 10"_s); }))
            failure = error->description;
    }));
    other->start();
    const bool felt =
        QTest::qWaitFor([&] { return waits.loadAcquire() > 0 || other->isFinished(); }, 60000);
    counter.set_field(u"NewLink"_s, 5);
    counter.update();
    other->wait();
    QVERIFY(felt && waits.loadAcquire() > 0);
    QCOMPARE(failure, QString());
    QCOMPARE(station_->value(u"Select * from comp"_s), u"15"_s);
}

void TestDatabase::a_long_statement_is_felt_while_it_runs() {
    const QString long_one =
        u"SELECT count(*) AS n FROM (WITH RECURSIVE c(i) AS (SELECT 1 UNION ALL SELECT i + 1 "
        u"FROM c WHERE i < 200000) SELECT i FROM c)"_s;
    int beats = 0;
    {
        const DatabasePulse pulse(database(), [&beats] { ++beats; });
        QCOMPARE(database().open_recordset(long_one).text(u"n"_s), u"200000"_s);
    }
    QVERIFY(beats > 10);
    const int before = beats;
    database().open_recordset(long_one);
    QCOMPARE(beats, before);
}

void TestDatabase::a_wait_for_the_file_is_felt_and_ends_when_the_file_is_free() {
    const std::shared_ptr<Database> other = Database::open(station_->database_path());
    other->execute(u"BEGIN EXCLUSIVE"_s);
    int beats = 0;
    const DatabasePulse pulse(database(), [&] {
        if (++beats == 3)
            other->execute(u"COMMIT"_s);
    });
    QCOMPARE(database().open_recordset(u"Select * from comp"_s).record_count(), 1);
    QVERIFY(beats >= 3);
}

void TestDatabase::a_path_beyond_ASCII_is_opened() {
    QString folder = path(u"Büro 100 % #1 file&x Αρχείο 文書 \U0001F4C4"_s);
    if (QDir::separator() == u'/') // elsewhere a name cannot hold it
        folder += u'?';
    QVERIFY(QDir().mkpath(folder));
    const QString file = join_path(folder, u"db.mdb"_s);
    QVERIFY(QFile::copy(template_database(), file));
    const auto opened = Database::open(file);
    QCOMPARE(opened->path(), file);
    const auto error = thrown([&] { opened->execute(u"DELETE * FROM papers"_s); });
    QVERIFY(error);
    QVERIFY(error->description.endsWith(file));
}

QTEST_GUILESS_MAIN(TestDatabase)
#include "test_database.moc"
