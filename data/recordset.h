// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <QStringView>
#include <QVariant>
#include <memory>
#include <vector>

namespace folidex {

class Database;

/// The rows of a SELECT with a current row, as the record-set idiom has it. It holds no lock
/// while it is open. Field names are matched without regard to case; an unknown one throws
/// Error 3265.
class Recordset {
public:
    Recordset(Recordset&&) noexcept;
    Recordset& operator=(Recordset&&) noexcept;
    ~Recordset();

    /// 0 when empty, else 1 until the set was read to its end, then the number of rows.
    int record_count() const;
    bool eof() const;
    void move_first();
    void move_last();
    void move_next();

    /// Positions on the first row that meets a criterion such as "tag = 17".
    void find_first(const QString& criterion);
    bool no_match() const;

    /// A field of the current row: a null QVariant for Null, else qlonglong, double or QString.
    /// Throws Error 3021 when there is no current row.
    QVariant field(const QString& name) const;
    /// "" & field: Null is empty; numbers with up to 15 significant digits.
    QString text(const QString& name) const;
    /// Position of a field for text_at; walk large sets with it.
    int field_index(const QString& name) const;
    int field_count() const;
    QString text_at(int field_index) const;
    QVariant value_at(int field_index) const;

    /// Takes the file's write lock and reads the current row afresh under it; update() writes
    /// and lets go. add_new() prepares a new row, written by update().
    void edit();
    void add_new();
    void set_field(const QString& name, const QVariant& value);
    void update();
    /// Deletes the current row from its table; move_next() goes on to the next one.
    void delete_current();

    /// All rows from the current one on, each with the fields in order; moves to the end.
    std::vector<std::vector<QVariant>> get_rows();

    void close();

private:
    friend class Database;
    struct State;
    explicit Recordset(std::unique_ptr<State> state);
    std::unique_ptr<State> state_;
};

} // namespace folidex
