// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QAbstractTableModel>
#include <QColor>
#include <QPixmap>
#include <QStringList>
#include <vector>

namespace folidex {

/// The rows of a grid of its own: plain texts, and a picture or colour only for the cells that
/// have one. Rows count from 0, without the header; what does not exist reads as empty.
class GridModel : public QAbstractTableModel {
    Q_OBJECT

public:
    explicit GridModel(QObject* parent) : QAbstractTableModel(parent) {}

    void set_columns(int columns);
    void set_headers(const QStringList& captions);
    void set_row_count(int rows);
    void remove_row(int row);

    QString text(int row, int column) const;
    void set_text(int row, int column, const QString& text);
    QColor color(int row, int column) const;
    void set_color(int row, int column, const QColor& color);
    void set_picture(int row, int column, const QPixmap& picture);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    struct Row {
        std::vector<QString> texts;
        std::vector<QColor> colors;
        std::vector<QPixmap> pictures;
    };
    Row* row_at(int row, int column);
    const Row* row_at(int row, int column) const;

    int columns_ = 0;
    QStringList headers_;
    std::vector<Row> rows_;
};

} // namespace folidex
