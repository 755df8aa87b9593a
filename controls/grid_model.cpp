// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "controls/grid_model.h"

namespace folidex {

namespace {

// Rows keep no place for what none of their cells has.
template <class Value> void put(std::vector<Value>& values, int column, const Value& value) {
    const auto at = static_cast<size_t>(column);
    if (values.size() <= at)
        values.resize(at + 1);
    values[at] = value;
}

template <class Value> Value get(const std::vector<Value>& values, int column) {
    const auto at = static_cast<size_t>(column);
    return at < values.size() ? values[at] : Value();
}

} // namespace

void GridModel::set_columns(int columns) {
    beginResetModel();
    columns_ = columns;
    rows_.clear();
    headers_.clear();
    endResetModel();
}

void GridModel::set_headers(const QStringList& captions) {
    headers_ = captions;
    if (columns_ > 0)
        Q_EMIT headerDataChanged(Qt::Horizontal, 0, columns_ - 1);
}

void GridModel::set_row_count(int rows) {
    const int now = rowCount();
    if (rows > now) {
        beginInsertRows({}, now, rows - 1);
        rows_.resize(static_cast<size_t>(rows));
        endInsertRows();
    } else if (rows < now) {
        beginRemoveRows({}, rows, now - 1);
        rows_.resize(static_cast<size_t>(rows));
        endRemoveRows();
    }
}

void GridModel::remove_row(int row) {
    if (!row_at(row, 0))
        return;
    beginRemoveRows({}, row, row);
    rows_.erase(rows_.begin() + row);
    endRemoveRows();
}

GridModel::Row* GridModel::row_at(int row, int column) {
    const bool exists = row >= 0 && row < rowCount() && column >= 0 && column < columns_;
    return exists ? &rows_[static_cast<size_t>(row)] : nullptr;
}

const GridModel::Row* GridModel::row_at(int row, int column) const {
    return const_cast<GridModel*>(this)->row_at(row, column);
}

QString GridModel::text(int row, int column) const {
    const Row* found = row_at(row, column);
    return found ? get(found->texts, column) : QString();
}

void GridModel::set_text(int row, int column, const QString& text) {
    Row* found = row_at(row, column);
    if (!found)
        return;
    put(found->texts, column, text);
    Q_EMIT dataChanged(index(row, column), index(row, column), {Qt::DisplayRole});
}

QColor GridModel::color(int row, int column) const {
    const Row* found = row_at(row, column);
    return found ? get(found->colors, column) : QColor();
}

void GridModel::set_color(int row, int column, const QColor& color) {
    Row* found = row_at(row, column);
    if (!found || get(found->colors, column) == color)
        return;
    put(found->colors, column, color);
    Q_EMIT dataChanged(index(row, column), index(row, column), {Qt::BackgroundRole});
}

void GridModel::set_picture(int row, int column, const QPixmap& picture) {
    Row* found = row_at(row, column);
    if (!found || get(found->pictures, column).cacheKey() == picture.cacheKey())
        return;
    put(found->pictures, column, picture);
    Q_EMIT dataChanged(index(row, column), index(row, column), {Qt::DecorationRole});
}

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columns_;
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
    const Row* row = row_at(index.row(), index.column());
    if (!row)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return get(row->texts, index.column());
    case Qt::DecorationRole: {
        const QPixmap picture = get(row->pictures, index.column());
        return picture.isNull() ? QVariant() : QVariant(picture);
    }
    case Qt::BackgroundRole: {
        const QColor color = get(row->colors, index.column());
        return color.isValid() ? QVariant(color) : QVariant();
    }
    default:
        return {};
    }
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    return headers_.value(section);
}

} // namespace folidex
