// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "data/row_store.h"

#include "common/day_number.h"

#include <cmath>
#include <cstring>
#include <sqlite3.h>

namespace folidex {

namespace {

template <class Number> Number number_at(const char* bytes) {
    Number number;
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

using TextSize = quint32;

const char* after_cell(const char* at) {
    switch (static_cast<Cell::Kind>(*at)) {
    case Cell::Kind::Integer:
        return at + 1 + sizeof(qint64);
    case Cell::Kind::Real:
        return at + 1 + sizeof(double);
    case Cell::Kind::Text:
        return at + 1 + sizeof(TextSize) + number_at<TextSize>(at + 1);
    case Cell::Kind::Null:
        break;
    }
    return at + 1;
}

} // namespace

QVariant Cell::value() const {
    switch (kind) {
    case Kind::Integer:
        return QVariant(integer);
    case Kind::Real:
        return QVariant(real);
    case Kind::Text:
        return QVariant(to_text());
    case Kind::Null:
        break;
    }
    return {};
}

QString Cell::to_text() const {
    switch (kind) {
    case Kind::Integer:
        return QString::number(integer);
    case Kind::Real:
        return std::isfinite(real) ? day_number_text(real) : QString::number(real);
    case Kind::Text:
        return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    case Kind::Null:
        break;
    }
    return {};
}

Cell RowStore::cell(std::size_t row, int column) const {
    const char* at = bytes_.data() + starts_[row];
    for (int i = 0; i < column; ++i)
        at = after_cell(at);
    Cell cell;
    cell.kind = static_cast<Cell::Kind>(*at);
    ++at;
    if (cell.kind == Cell::Kind::Integer)
        cell.integer = number_at<qint64>(at);
    else if (cell.kind == Cell::Kind::Real)
        cell.real = number_at<double>(at);
    else if (cell.kind == Cell::Kind::Text)
        cell.text = {at + sizeof(TextSize), number_at<TextSize>(at)};
    return cell;
}

void RowStore::append(sqlite3_stmt* statement) {
    starts_.push_back(pack(statement));
}

void RowStore::replace(std::size_t row, sqlite3_stmt* statement) {
    starts_[row] = pack(statement);
}

void RowStore::remove(std::size_t row) {
    starts_.erase(starts_.begin() + static_cast<std::ptrdiff_t>(row));
}

void RowStore::reorder(const std::vector<std::size_t>& rows) {
    std::vector<std::size_t> starts;
    starts.reserve(rows.size());
    for (const std::size_t row : rows)
        starts.push_back(starts_[row]);
    starts_ = std::move(starts);
}

std::size_t RowStore::pack(sqlite3_stmt* statement) {
    const std::size_t start = bytes_.size();
    for (int column = 0; column < columns_; ++column) {
        switch (sqlite3_column_type(statement, column)) {
        case SQLITE_NULL:
            put(Cell::Kind::Null, nullptr, 0);
            break;
        case SQLITE_INTEGER: {
            const qint64 number = sqlite3_column_int64(statement, column);
            put(Cell::Kind::Integer, &number, sizeof number);
            break;
        }
        case SQLITE_FLOAT: {
            const double number = sqlite3_column_double(statement, column);
            put(Cell::Kind::Real, &number, sizeof number);
            break;
        }
        default: {
            const unsigned char* text = sqlite3_column_text(statement, column);
            const auto size = static_cast<TextSize>(sqlite3_column_bytes(statement, column));
            put(Cell::Kind::Text, &size, sizeof size);
            put(text, size);
        }
        }
    }
    return start;
}

void RowStore::put(Cell::Kind kind, const void* data, std::size_t size) {
    bytes_.push_back(static_cast<char>(kind));
    put(data, size);
}

void RowStore::put(const void* data, std::size_t size) {
    const char* first = static_cast<const char*>(data);
    bytes_.insert(bytes_.end(), first, first + size);
}

} // namespace folidex
