// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QAbstractTableModel>
#include <QVariant>
#include <string>
#include <vector>

namespace folidex {

/// A stored date as the results show it: in a date format; a number that is no date as a number,
/// a text as it stands.
QString short_date(const QVariant& stored, const QString& format);

/// The documents found by one query, packed: one text buffer for all of them, so that a hundred
/// thousand take megabytes, not an object for each cell.
class ResultRows {
public:
    void add(const QVariant& date, const QString& description, const QString& file_name,
             const QString& location, const QString& link);
    /// Gives back what was taken in advance for rows that did not come.
    void squeeze();
    int count() const { return static_cast<int>(rows_.size()); }
    /// A value as text, exactly as stored; column 0 is the day number.
    QString text(int row, int column) const;
    QVariant date(int row) const;

private:
    static constexpr int kTexts = 5;
    struct Row {
        double date;
        quint64 begin;
        quint32 length[kTexts];
        bool dated; ///< whether date holds the date; else it is a text like the others
    };
    void append(Row& row, int column, const QString& text);

    std::vector<Row> rows_;
    std::string texts_;
};

/// The results grid's model. Shown are the date and the description; file name, folder and link
/// stand in the columns after them for the commands on a document.
class ResultsModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { kDate, kDescription, kFileName, kLocation, kLink, kColumns };

    explicit ResultsModel(QString date_format, QObject* parent = nullptr);

    /// Replaces all rows at once.
    void set_rows(ResultRows rows);
    /// The row of a document, counted from 0; -1 when it is not listed.
    int find_link(const QString& link) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    QString date_format_;
    ResultRows rows_;
};

} // namespace folidex
