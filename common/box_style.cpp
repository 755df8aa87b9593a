// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/box_style.h"

#include <QPainter>
#include <QPainterPath>

namespace folidex {

using namespace Qt::StringLiterals;

namespace {

const QColor kBlue(0x2b, 0x6c, 0xc4);
const QColor kRed(0xc9, 0x30, 0x2c);

void draw_cross(QPainter& painter) {
    painter.drawLine(QPointF(34, 34), QPointF(66, 66));
    painter.drawLine(QPointF(66, 34), QPointF(34, 66));
}

void draw_letter_i(QPainter& painter) {
    painter.drawLine(QPointF(50, 46), QPointF(50, 72));
    painter.drawPoint(QPointF(50, 29));
}

void draw_question_mark(QPainter& painter) {
    QPainterPath hook(QPointF(37, 39));
    hook.cubicTo(37, 22, 63, 22, 63, 39);
    hook.cubicTo(63, 49, 50, 49, 50, 60);
    painter.drawPath(hook);
    painter.drawPoint(QPointF(50, 75));
}

// Drawn on a square of 100 by 100, whatever its size in pixels.
QPixmap drawn(QStyle::StandardPixmap which, int size) {
    const bool critical = which == QStyle::SP_MessageBoxCritical;
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 100.0, size / 100.0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(critical ? kRed : kBlue);
    painter.drawEllipse(QRectF(4, 4, 92, 92));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::white, 9, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    if (critical)
        draw_cross(painter);
    else if (which == QStyle::SP_MessageBoxQuestion)
        draw_question_mark(painter);
    else
        draw_letter_i(painter);
    return pixmap;
}

bool is_ours(QStyle::StandardPixmap which) {
    switch (which) {
    case QStyle::SP_MessageBoxCritical:
        return !QIcon::hasThemeIcon(u"dialog-error"_s);
    case QStyle::SP_MessageBoxInformation:
        return !QIcon::hasThemeIcon(u"dialog-information"_s);
    case QStyle::SP_MessageBoxQuestion:
        return !QIcon::hasThemeIcon(u"dialog-question"_s);
    default:
        return false;
    }
}

} // namespace

QIcon BoxStyle::standardIcon(StandardPixmap which, const QStyleOption* option,
                             const QWidget* widget) const {
    // Other styles than this one bring the icons of their system.
    const bool no_system = baseStyle()->name().compare("fusion"_L1, Qt::CaseInsensitive) == 0;
    if (!no_system || !is_ours(which))
        return QProxyStyle::standardIcon(which, option, widget);
    QIcon icon;
    for (const int size : {32, 40, 48, 64, 72, 96, 144})
        icon.addPixmap(drawn(which, size));
    return icon;
}

} // namespace folidex
