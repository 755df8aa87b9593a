// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "data/database.h"

#include "common/error.h"
#include "data/busy_wait.h"
#include "data/number_set.h"
#include "data/recordset_state.h"
#include "data/results_query.h"
#include "data/sql_dialect.h"
#include "data/sql_tokens.h"
#include "data/statement.h"
#include "data/text_order.h"
#include "platform/system_files.h"

#include <QDir>
#include <QFileInfo>
#include <array>
#include <sqlite3.h>
#include <string_view>

namespace folidex {

namespace {

constexpr int kCannotExecuteSelect = 3065;
constexpr int kInvalidOperation = 3219;

// A few thousandths of a second, far below what a user notices.
constexpr int kStepsBetweenPulses = 20000;

constexpr std::string_view kFileMark{"SQLite format 3\0", 16};
constexpr const char* kTables[] = {"scans", "tags", "tagged", "settings", "comp"};

int compare_columns(void*, int left_size, const void* left, int right_size,
                    const void* right) noexcept {
    return compare_texts({static_cast<const char*>(left), static_cast<std::size_t>(left_size)},
                         {static_cast<const char*>(right), static_cast<std::size_t>(right_size)});
}

QString native(const QString& path) {
    return QDir::toNativeSeparators(path);
}

// Where the usual one gives up on long paths SQLite offers another beside it.
const char* file_system() {
    constexpr const char* kLongPaths = "win32-longpath";
    return sqlite3_vfs_find(kLongPaths) ? kLongPaths : nullptr;
}

// Through SQLite's own file object: a second one of ours would, when closed, drop the locks that
// the process holds on the file.
bool has_file_mark(sqlite3* handle) {
    sqlite3_file* file = nullptr;
    sqlite3_file_control(handle, "main", SQLITE_FCNTL_FILE_POINTER, &file);
    if (file == nullptr || file->pMethods == nullptr)
        return false;
    std::array<char, kFileMark.size()> start{};
    const int code = file->pMethods->xRead(file, start.data(), static_cast<int>(start.size()), 0);
    return code == SQLITE_OK && std::string_view(start.data(), start.size()) == kFileMark;
}

} // namespace

std::shared_ptr<Database> Database::open(const QString& path) {
    if (!QDir(QFileInfo(path).path()).exists())
        throw Error{kBadFileName, QStringLiteral("Bad file name or number: ") + native(path)};
    sqlite3* handle = nullptr;
    // Only the main thread asks for data, so SQLite need not lock for every row that it gives.
    const int code = sqlite3_open_v2(path_of_any_length(path).toUtf8().constData(), &handle,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, file_system());
    const std::shared_ptr<Database> database(new Database(handle, path));
    if (code != SQLITE_OK)
        database->fail(code);
    database->require_file_of_ours();
    database->prepare_connection();
    return database;
}

Database::Database(sqlite3* handle, QString path) : handle_(handle), path_(std::move(path)) {}

Database::~Database() {
    sqlite3_close_v2(handle_);
}

void Database::require_file_of_ours() {
    sqlite3_extended_result_codes(handle_, 1);
    sqlite3_busy_handler(handle_, wait_for_file, this);
    // Until the file is known to be ours, closing must not write another program's log into it.
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    if (!has_file_mark(handle_))
        throw Error{SQLITE_NOTADB, QString::fromLatin1(sqlite3_errstr(SQLITE_NOTADB)) +
                                       QStringLiteral(": ") + native(path_)};
    for (const char* table : kTables)
        Statement(*this, QStringLiteral("SELECT * FROM ") + QString::fromLatin1(table));
}

void Database::prepare_connection() const {
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
    const int code = sqlite3_create_collation_v2(handle_, "NOCASE", SQLITE_UTF8, nullptr,
                                                 compare_columns, nullptr);
    if (code != SQLITE_OK)
        fail(code);
    offer_number_sets(*this);
    // A rollback journal and no memory map, because the file may lie on a network drive; an
    // emptied journal that stays costs the drive less than one made anew for every change.
    for (const char* setting : {"journal_mode=TRUNCATE", "synchronous=FULL", "temp_store=MEMORY",
                                "cache_size=-65536", "mmap_size=0"})
        Statement(*this, QStringLiteral("PRAGMA ") + QString::fromLatin1(setting)).run();
}

void Database::execute(const QString& sql) {
    const QString statement = to_sqlite(sql);
    const std::vector<SqlToken> tokens = sql_tokens(statement);
    if (!tokens.empty() && tokens.front().is_keyword(u"SELECT"))
        throw Error{kCannotExecuteSelect,
                    QStringLiteral("Cannot execute a select query: ") + native(path_)};
    Statement(*this, statement).run();
}

Recordset Database::open_recordset(const QString& sql) {
    if (const auto query = recognised_results_query(sql); query && fits_results_query(*this))
        return Recordset{Recordset::State::of_results(shared_from_this(), *query)};
    const QString statement = to_sqlite(sql);
    const std::vector<SqlToken> tokens = sql_tokens(statement);
    if (!tokens.empty() && !tokens.front().is_keyword(u"SELECT"))
        throw Error{kInvalidOperation, QStringLiteral("Invalid operation: ") + native(path_)};
    return Recordset{Recordset::State::of_select(shared_from_this(), statement)};
}

void Database::set_pulse(std::function<void()> pulse) {
    pulse_ = std::move(pulse);
    sqlite3_progress_handler(handle_, kStepsBetweenPulses, pulse_ ? on_progress : nullptr, this);
}

int Database::wait_for_file(void* self, int tries) noexcept {
    const auto* database = static_cast<Database*>(self);
    if (database->pulse_)
        database->pulse_();
    return wait_while_busy(tries);
}

int Database::on_progress(void* self) noexcept {
    static_cast<Database*>(self)->pulse_();
    return 0;
}

QString Database::path() const {
    return path_;
}

sqlite3* Database::handle() const {
    return handle_;
}

void Database::fail(int code) const {
    const int current = sqlite3_extended_errcode(handle_);
    const bool same = (current & 0xFF) == (code & 0xFF);
    const QString words = QString::fromUtf8(same ? sqlite3_errmsg(handle_) : sqlite3_errstr(code));
    throw Error{same ? current : code, words + QStringLiteral(": ") + native(path_)};
}

} // namespace folidex
