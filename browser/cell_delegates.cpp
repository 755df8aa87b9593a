// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/cell_delegates.h"

#include <QIcon>
#include <QPainter>

namespace folidex {

QString OneLineDelegate::displayText(const QVariant& value, const QLocale& locale) const {
    // A cell shows a few hundred characters at most; measuring more only costs time.
    constexpr int kShown = 1000;
    QString text = QStyledItemDelegate::displayText(value, locale).left(kShown);
    for (QChar& character : text)
        if (character == QChar::LineSeparator || character == QChar::ParagraphSeparator ||
            character.category() == QChar::Other_Control)
            character = QLatin1Char(' ');
    return text;
}

void RemoveMarkDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const {
    painter->save();
    painter->fillRect(option.rect, index.data(Qt::BackgroundRole).isValid()
                                       ? index.data(Qt::BackgroundRole).value<QBrush>()
                                       : option.palette.brush(QPalette::Base));
    const bool pointed = option.state.testFlag(QStyle::State_MouseOver);
    constexpr int kGround = 22;
    constexpr int kMark = 16;
    QRect ground(0, 0, kGround, kGround);
    ground.moveCenter(option.rect.center());
    if (pointed) {
        QColor shade = option.palette.color(QPalette::Text);
        shade.setAlpha(36);
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(shade);
        painter->drawRoundedRect(ground, 4, 4);
    }
    QRect mark(0, 0, kMark, kMark);
    mark.moveCenter(option.rect.center());
    painter->setOpacity(pointed ? 1.0 : 0.6);
    const QVariant picture = index.data(Qt::DecorationRole);
    if (picture.canConvert<QIcon>())
        picture.value<QIcon>().paint(painter, mark);
    else
        painter->drawPixmap(mark, picture.value<QPixmap>());
    painter->restore();
}

} // namespace folidex
