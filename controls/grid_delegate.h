// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QStyledItemDelegate>

namespace folidex {

/// Shows a grid's cells: every text on one line, colours turned for dark palettes, a picture in
/// the middle of its cell, set off while the pointer is over it.
class GridDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit GridDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

    QString displayText(const QVariant& value, const QLocale& locale) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

} // namespace folidex
