// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QStyledItemDelegate>

namespace folidex {

/// Shows any text on one line, however long and whatever breaks it holds; the cell keeps it
/// unchanged.
class OneLineDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QString displayText(const QVariant& value, const QLocale& locale) const override;
};

/// The mark that removes a row: the cell's own background, and the picture, which gets a ground
/// of its own under the pointer.
class RemoveMarkDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};

} // namespace folidex
