// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "data/recordset.h"

#include <QString>
#include <functional>
#include <memory>

struct sqlite3;

namespace folidex {

/// The one open connection to a data folder's database file. Statements are given in the
/// program's SQL dialect (sql_dialect.h). A file that another station holds is waited for.
/// Failures throw Error with SQLite's extended code as number and, as description, SQLite's
/// words followed by the file's path.
class Database : public std::enable_shared_from_this<Database> {
public:
    /// Opens an existing file shared and read-write; never creates one. Throws Error 52 when
    /// the file's folder cannot be reached, SQLite's code when it is not a database or lacks
    /// one of the program's tables; such a file is not changed.
    static std::shared_ptr<Database> open(const QString& path);

    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Runs one statement that returns no rows.
    void execute(const QString& sql);
    /// Opens a record set on a SELECT; the rows are those of this moment.
    Recordset open_recordset(const QString& sql);

    /// Calls a function now and then, on the calling thread, while a statement runs or waits for
    /// the file; none when empty. The function must not use this database and must not throw.
    void set_pulse(std::function<void()> pulse);

    QString path() const;
    sqlite3* handle() const;
    /// Throws the connection's current error.
    [[noreturn]] void fail(int code) const;

private:
    explicit Database(sqlite3* handle, QString path);

    void require_file_of_ours();
    void prepare_connection() const;

    static int wait_for_file(void* self, int tries) noexcept;
    static int on_progress(void* self) noexcept;

    sqlite3* handle_;
    QString path_;
    std::function<void()> pulse_;
};

/// A database's pulse for as long as this object lives.
class DatabasePulse {
public:
    DatabasePulse(Database& database, std::function<void()> pulse) : database_(database) {
        database_.set_pulse(std::move(pulse));
    }
    ~DatabasePulse() { database_.set_pulse({}); }
    DatabasePulse(const DatabasePulse&) = delete;
    DatabasePulse& operator=(const DatabasePulse&) = delete;

private:
    Database& database_;
};

} // namespace folidex
