// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <QVariant>

struct sqlite3_stmt;

namespace folidex {

class Database;

/// One prepared statement of SQLite's own SQL, finalised with the object, whatever happens: no
/// lock outlives it. Failures throw through Database::fail.
class Statement {
public:
    /// Throws Error 3142 when more than one statement was given.
    Statement(const Database& database, const QString& sql);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    /// Parameters and columns count from 1 and from 0, as SQLite has it.
    void bind(int parameter, const QVariant& value);
    void bind(int parameter, qint64 value);
    /// True while there is a row.
    bool step();
    void run();
    void reset();

    int column_count() const;
    QString column_name(int column) const;
    qint64 integer(int column) const;
    sqlite3_stmt* handle() const { return handle_; }

private:
    const Database& database_;
    sqlite3_stmt* handle_ = nullptr;
};

} // namespace folidex
