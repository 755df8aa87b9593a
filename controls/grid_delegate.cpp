// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "controls/grid_delegate.h"

#include "common/dark_colors.h"
#include "common/one_line.h"

#include <QApplication>
#include <QPainter>

namespace folidex {

namespace {

constexpr int kMarkPadding = 3;
constexpr float kMarkShade = 0.16F;

} // namespace

QString GridDelegate::displayText(const QVariant& value, const QLocale& locale) const {
    return one_line(QStyledItemDelegate::displayText(value, locale));
}

void GridDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    const QBrush given = option->backgroundBrush;
    // White is the ground of every light list; its counterpart is that of the dark one.
    if (given.style() == Qt::SolidPattern && is_dark(option->palette))
        option->backgroundBrush = given.color() == QColor(Qt::white)
                                      ? QBrush()
                                      : QBrush(ground_color(given.color(), option->palette));
    // The whole row is current; a frame around one cell of it would say otherwise.
    option->state &= ~QStyle::State_HasFocus;
}

void GridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    const QPixmap picture = qvariant_cast<QPixmap>(index.data(Qt::DecorationRole));
    if (picture.isNull()) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    cell.icon = QIcon();
    cell.features &= ~QStyleOptionViewItem::HasDecoration;
    const QStyle* style = cell.widget ? cell.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);

    const QSizeF size = picture.deviceIndependentSize();
    QRectF mark(QPointF(), size);
    mark.moveCenter(QRectF(cell.rect).center());
    mark.moveTopLeft(mark.topLeft().toPoint());
    painter->save();
    if (cell.state & QStyle::State_MouseOver) {
        QColor shade = cell.palette.color(
            cell.state & QStyle::State_Selected ? QPalette::HighlightedText : QPalette::Text);
        shade.setAlphaF(kMarkShade);
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(shade);
        painter->drawRoundedRect(
            mark.adjusted(-kMarkPadding, -kMarkPadding, kMarkPadding, kMarkPadding), 4, 4);
    }
    painter->drawPixmap(mark.topLeft(), picture);
    painter->restore();
}

} // namespace folidex
