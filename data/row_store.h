// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <QVariant>
#include <string_view>
#include <vector>

struct sqlite3_stmt;

namespace folidex {

/// One value of a row; its text is a view into the store and good until the store changes.
struct Cell {
    enum class Kind : char { Null, Integer, Real, Text };

    Kind kind = Kind::Null;
    qint64 integer = 0;
    double real = 0;
    std::string_view text;

    /// A null QVariant, qlonglong, double or QString.
    QVariant value() const;
    /// "" & value: Null is empty, a number has up to 15 significant digits.
    QString to_text() const;
};

/// Rows packed one behind the other into one block of memory, about 90 bytes for a document:
/// record sets of a hundred thousand rows are read at one go and kept.
class RowStore {
public:
    explicit RowStore(int columns) : columns_(columns) {}

    std::size_t size() const { return starts_.size(); }
    Cell cell(std::size_t row, int column) const;

    /// Takes the statement's current row.
    void append(sqlite3_stmt* statement);
    void replace(std::size_t row, sqlite3_stmt* statement);
    void remove(std::size_t row);
    /// Puts the rows into another order: the new first row is rows[0] of the old ones.
    void reorder(const std::vector<std::size_t>& rows);

private:
    std::size_t pack(sqlite3_stmt* statement);
    void put(Cell::Kind kind, const void* data, std::size_t size);
    void put(const void* data, std::size_t size);

    int columns_;
    std::vector<char> bytes_;
    std::vector<std::size_t> starts_;
};

} // namespace folidex
