// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// How the pop-up menu measures and paints its items.
#include "common/dark_colors.h"
#include "common/drop_menu.h"
#include "common/error_trap.h"
#include "common/one_line.h"

#include <QPainter>
#include <QProxyStyle>
#include <QScreen>
#include <QStyleOptionMenuItem>

namespace folidex {

namespace {

// Device-independent pixels.
constexpr int kFrame = 1;
constexpr int kGap = 2;
constexpr int kTextIndent = 8;
constexpr int kRightPadding = 24;
constexpr int kLinePadding = 4;
constexpr int kSeparatorHeight = 7;
constexpr int kClippedWidth = 280;
constexpr double kSubTextScale = 0.9;
constexpr double kDisabledStrength = 0.5;

} // namespace

/// Leaves the menu's sizes to the menu and keeps every separator, also one at the end.
class DropMenuStyle : public QProxyStyle {
public:
    using QProxyStyle::QProxyStyle;

    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override {
        const auto* menu = qobject_cast<const DropMenu*>(widget);
        const auto* action = option ? qobject_cast<QAction*>(option->styleObject) : nullptr;
        if (type == CT_MenuItem && menu && action)
            return menu->item_size(action);
        return QProxyStyle::sizeFromContents(type, option, size, widget);
    }
    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override {
        switch (metric) {
        case PM_MenuPanelWidth:
            return kFrame;
        case PM_MenuHMargin:
            return 0;
        case PM_MenuVMargin:
            return kGap;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
        }
    }
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* result) const override {
        if (hint == SH_Menu_AllowActiveAndDisabled)
            return 0;
        if (hint == SH_Menu_Mask)
            return 0;
        return QProxyStyle::styleHint(hint, option, widget, result);
    }
};

DropMenu::DropMenu(QWidget* parent) : QMenu(parent) {
    auto* style = new DropMenuStyle;
    style->setParent(this);
    setStyle(style);
    setSeparatorsCollapsible(false);
    on(this, &QMenu::triggered, this, [this](const QAction* action) { choose(action); });
}

void DropMenu::initStyleOption(QStyleOptionMenuItem* option, const QAction* action) const {
    QMenu::initStyleOption(option, action);
    // The style is asked for sizes with nothing but this option in hand.
    option->styleObject = const_cast<QAction*>(action);
}

QFont DropMenu::sub_text_font() const {
    QFont smaller = font();
    if (smaller.pointSizeF() > 0)
        smaller.setPointSizeF(smaller.pointSizeF() * kSubTextScale);
    else
        smaller.setPixelSize(qRound(smaller.pixelSize() * kSubTextScale));
    return smaller;
}

int DropMenu::margin_width() const {
    return std::max(24, fontMetrics().height() + 8);
}

int DropMenu::widest_text(const Item& item) const {
    if (item.clip)
        return kClippedWidth;
    return screen()->availableGeometry().width() * 2 / 3;
}

QSize DropMenu::item_size(const QAction* action) const {
    const Item* item = item_of(action);
    if (!item || item->separator)
        return {margin_width() + kRightPadding, kSeparatorHeight};
    const QFontMetrics caption(font());
    int width = caption.horizontalAdvance(one_line(shown_caption(item->caption)));
    int height = caption.height() + 2 * kLinePadding;
    if (!item->sub_text.isEmpty()) {
        const QFontMetrics sub_text(sub_text_font());
        width = std::max(width, sub_text.horizontalAdvance(one_line(item->sub_text)));
        height += sub_text.height();
    }
    width = std::min(width, widest_text(*item));
    return {margin_width() + kTextIndent + width + kRightPadding, height};
}

QColor DropMenu::text_color_of(const Item& item, bool selected) const {
    if (item.fore_color.isValid())
        return text_color(item.fore_color, palette());
    if (!item.enabled) {
        // Half of the way to the ground, or a disabled item would look like any other.
        QColor color = text_color(look.DisableColor, palette());
        color.setAlphaF(static_cast<float>(kDisabledStrength));
        return color;
    }
    if (selected && look.SelectForeColor.isValid())
        return look.SelectForeColor;
    return palette().color(QPalette::WindowText);
}

void DropMenu::paint_ground(QPainter& painter) const {
    const QColor back =
        look.MenuBackColor.isValid() ? look.MenuBackColor : palette().color(QPalette::Window);
    painter.fillRect(rect(), ground_color(back, palette()));
    if (look.MarginBackColor.isValid()) {
        const QRect margin =
            QStyle::visualRect(layoutDirection(), rect(),
                               QRect(kFrame, kFrame, margin_width(), height() - 2 * kFrame));
        const bool rtl = isRightToLeft();
        QLinearGradient gradient(rtl ? margin.topRight() : margin.topLeft(),
                                 rtl ? margin.topLeft() : margin.topRight());
        gradient.setColorAt(0, ground_color(look.MarginBackColor, palette()));
        gradient.setColorAt(1, ground_color(look.MarginBackColorTo, palette()));
        painter.fillRect(margin, gradient);
    }
    painter.setPen(ground_color(QColor(160, 160, 160), palette()));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
}

void DropMenu::paint_check(QPainter& painter, const QRect& rect) const {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const double size = rect.height() * 0.5;
    const QPointF middle = QRectF(rect).center();
    painter.setPen(QPen(palette().color(QPalette::WindowText), std::max(1.6, size / 6),
                        Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF({middle + QPointF(-0.45 * size, 0.02 * size),
                                    middle + QPointF(-0.12 * size, 0.36 * size),
                                    middle + QPointF(0.48 * size, -0.36 * size)}));
    painter.restore();
}

void DropMenu::paint_item(QPainter& painter, const QRect& rect, const Item& item,
                          bool selected) const {
    const auto placed = [&](const QRect& logical) {
        return QStyle::visualRect(layoutDirection(), rect, logical);
    };
    const int margin = margin_width();
    if (item.separator) {
        painter.setPen(ground_color(QColor(200, 200, 200), palette()));
        const QRect line = placed(rect.adjusted(margin + kTextIndent, 0, -kGap, 0));
        const double y = rect.top() + kSeparatorHeight / 2 + 0.5;
        painter.drawLine(QPointF(line.left(), y), QPointF(line.right() + 1, y));
        return;
    }
    if (item.back_color.isValid())
        painter.fillRect(placed(rect.adjusted(margin, 0, 0, 0)),
                         ground_color(item.back_color, palette()));
    if (selected) {
        painter.setBrush(ground_color(look.SelectBackColor, palette()));
        painter.setPen(look.SelectBorderColor.isValid()
                           ? QPen(text_color(look.SelectBorderColor, palette()))
                           : QPen(Qt::NoPen));
        painter.drawRect(QRectF(rect).adjusted(kGap + 0.5, 0.5, -kGap - 0.5, -0.5));
    }
    const int line_height = QFontMetrics(font()).height();
    QRect text = placed(rect.adjusted(margin + kTextIndent, kLinePadding, -kRightPadding / 2, 0));
    text.setHeight(line_height);
    if (item.checked)
        paint_check(painter, placed(QRect(rect.left(), text.top(), margin, line_height)));
    const int flags = static_cast<int>(
        QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter) |
        Qt::TextSingleLine);
    painter.setFont(font());
    painter.setPen(text_color_of(item, selected));
    painter.drawText(text, flags,
                     QFontMetrics(font()).elidedText(one_line(shown_caption(item.caption)),
                                                     Qt::ElideRight, text.width()));
    if (item.sub_text.isEmpty())
        return;
    const QFontMetrics sub_text(sub_text_font());
    painter.setFont(sub_text_font());
    painter.setPen(text_color(look.SubTextColor, palette()));
    painter.drawText(QRect(text.left(), text.bottom() + 1, text.width(), sub_text.height()), flags,
                     sub_text.elidedText(one_line(item.sub_text), Qt::ElideRight, text.width()));
}

void DropMenu::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paint_ground(painter);
    const QAction* active = activeAction();
    for (const Item& item : items_) {
        const QRect place = actionGeometry(item.action);
        const bool selected = item.action == active && (item.enabled || !look.LimitSelect);
        if (!place.isEmpty())
            paint_item(painter, place, item, selected);
    }
}

} // namespace folidex
