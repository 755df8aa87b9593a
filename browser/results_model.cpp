// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/results_model.h"

#include "common/day_number.h"

#include <QLocale>
#include <cmath>

namespace folidex {

namespace {

// Infinity can stand in a database file; it has no decimal text.
QString number_text(double number) {
    return std::isfinite(number) ? day_number_text(number) : QString::number(number);
}

} // namespace

QString short_date(const QVariant& stored, const QString& format) {
    if (stored.isNull() || stored.typeId() == QMetaType::QString)
        return stored.toString();
    const double number = stored.toDouble();
    if (const auto moment = from_day_number(number))
        return QLocale::system().toString(moment->date(), format);
    return number_text(number);
}

void ResultRows::append(Row& row, int column, const QString& text) {
    const QByteArray bytes = text.toUtf8();
    row.length[column] = static_cast<quint32>(bytes.size());
    texts_.append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

void ResultRows::add(const QVariant& date, const QString& description, const QString& file_name,
                     const QString& location, const QString& link) {
    const bool dated = date.typeId() == QMetaType::Double || date.typeId() == QMetaType::LongLong;
    Row row{dated ? date.toDouble() : 0, texts_.size(), {}, dated};
    append(row, ResultsModel::kDate, dated ? QString() : date.toString());
    append(row, ResultsModel::kDescription, description);
    append(row, ResultsModel::kFileName, file_name);
    append(row, ResultsModel::kLocation, location);
    append(row, ResultsModel::kLink, link);
    rows_.push_back(row);
}

void ResultRows::squeeze() {
    rows_.shrink_to_fit();
    texts_.shrink_to_fit();
}

QString ResultRows::text(int row, int column) const {
    const Row& stored = rows_[static_cast<std::size_t>(row)];
    if (column == ResultsModel::kDate && stored.dated)
        return number_text(stored.date);
    const char* begin = texts_.data() + stored.begin;
    for (int before = 0; before < column; ++before)
        begin += stored.length[before];
    return QString::fromUtf8(begin, static_cast<qsizetype>(stored.length[column]));
}

QVariant ResultRows::date(int row) const {
    const Row& stored = rows_[static_cast<std::size_t>(row)];
    return stored.dated ? QVariant(stored.date) : QVariant(text(row, ResultsModel::kDate));
}

ResultsModel::ResultsModel(QString date_format, QObject* parent)
    : QAbstractTableModel(parent), date_format_(std::move(date_format)) {}

void ResultsModel::set_rows(ResultRows rows) {
    beginResetModel();
    rows_ = std::move(rows);
    rows_.squeeze();
    endResetModel();
}

int ResultsModel::find_link(const QString& link) const {
    for (int row = 0; row < rows_.count(); ++row)
        if (rows_.text(row, kLink) == link)
            return row;
    return -1;
}

int ResultsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_.count();
}

int ResultsModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(kColumns);
}

QVariant ResultsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    if (role == Qt::DisplayRole && index.column() == kDate)
        return short_date(rows_.date(index.row()), date_format_);
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return rows_.text(index.row(), index.column());
    return {};
}

QVariant ResultsModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section >= kColumns)
        return QAbstractTableModel::headerData(section, orientation, role);
    static const QStringList captions{QStringLiteral("Date"), QStringLiteral("Description"),
                                      QStringLiteral("File"), QStringLiteral("Folder"),
                                      QStringLiteral("Link")};
    return captions[section];
}

} // namespace folidex
