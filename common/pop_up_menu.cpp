// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/pop_up_menu.h"

#include "common/drop_menu.h"
#include "common/error_trap.h"

namespace folidex {

int pop_count = 0;
QStringList pop_keys;

namespace {

using namespace Qt::StringLiterals;

constexpr int kTypeMismatch = 13;
const QColor kGrey(128, 128, 128);

// "" & value: a colour without a value is no text, as an empty argument is none.
bool is_given(const QVariant& value) {
    if (value.metaType() == QMetaType::fromType<QColor>())
        return value.value<QColor>().isValid();
    return !value.toString().isEmpty();
}

// A number holds red in its lowest byte, then green, then blue.
QColor color_of(const QVariant& value) {
    if (value.metaType() == QMetaType::fromType<QColor>())
        return value.value<QColor>();
    bool is_number = false;
    const uint number = value.toString().toUInt(&is_number);
    if (!is_number)
        throw Error{kTypeMismatch, u"Type mismatch: "_s + value.toString()};
    return QColor(static_cast<int>(number & 0xff), static_cast<int>(number >> 8 & 0xff),
                  static_cast<int>(number >> 16 & 0xff));
}

void store_key(int index, const QString& key) {
    if (index < 0 || index >= pop_keys.size())
        throw Error{kSubscriptOutOfRange, u"Subscript out of range"_s};
    pop_keys[index] = key;
}

void add_item(DropMenu& menu, const QString& caption, const QString& key, bool enabled) {
    int kind = DropMenu::kItem;
    int item_number = 0;
    add_pop_menu(menu, kind, item_number, caption, {}, key, false, enabled, u"Grey"_s, {});
}

} // namespace

void p_popMenu(DropMenu& menu) {
    trapped("Utilities", "p_popMenu", [&] {
        if (pop_count < 0)
            throw Error{kSubscriptOutOfRange, u"Subscript out of range"_s};
        pop_keys = QStringList(qsizetype{pop_count} + 1);
        menu.ClearItems();
        const QPalette palette = menu.palette();
        menu.look.Alignment = 0;
        menu.look.MenuBackColor = palette.color(QPalette::Window);
        menu.look.MenuMarginColor = QColor();
        menu.look.SelectBackColor = palette.color(QPalette::Highlight);
        menu.look.SelectBorderColor = QColor();
        menu.look.SelectForeColor = palette.color(QPalette::HighlightedText);
        // The system's colours above are the ground on which the program's own are laid.
        menu.look.MenuBackColor = QColor(255, 255, 255);
        menu.look.MarginBackColorTo = QColor(240, 240, 240);
        menu.look.MarginBackColor = QColor(250, 250, 250);
        menu.look.MarginFillType = 1;
        menu.look.SelectBackColor = QColor(255, 238, 194);
        menu.look.SelectBorderColor = QColor(0, 0, 128);
        menu.look.SelectForeColor = palette.color(QPalette::WindowText);
        menu.look.LimitSelect = true;
        menu.ClearItems();
        menu.look.SubTextColor = QColor(0, 0, 255);
        menu.look.DisableColor = QColor(0, 0, 0);
    });
}

void add_pop_menu(DropMenu& menu, int& kind, int& item_number, const QVariant& caption,
                  const QVariant& subtext, const QVariant& key, bool clip, bool enabled,
                  QVariant fore_color, const QVariant& back_color) {
    trapped("Utilities", "add_pop_menu", [&] {
        if (kind == DropMenu::kSeparator) {
            menu.AddItem(QString(), DropMenu::kSeparator, item_number);
            return;
        }
        if (fore_color.toString() == "Grey"_L1)
            fore_color = kGrey;
        menu.AddItem(caption.toString(), DropMenu::kItem, item_number);
        const int index = menu.ItemCount();
        store_key(index, key.toString());
        if (is_given(subtext))
            menu.ItemSubText(index, subtext.toString());
        if (clip)
            menu.ItemClip(index, 1);
        if (!enabled)
            menu.ItemEnabled(index, false);
        if (is_given(fore_color))
            menu.ItemForeColor(index, color_of(fore_color));
        if (is_given(back_color))
            menu.ItemBackColor(index, color_of(back_color));
    });
}

void add_grey_item(DropMenu& menu, const QString& caption, const QString& key) {
    add_item(menu, caption, key, true);
}

void add_menu_title(DropMenu& menu, const QString& caption) {
    add_item(menu, caption, u"mnuAddFile"_s, false);
}

void add_menu_separator(DropMenu& menu) {
    int kind = DropMenu::kSeparator;
    int item_number = 0;
    add_pop_menu(menu, kind, item_number, {}, {}, {}, false, true, {}, {});
}

void test_clipboard(const QString& text) {
    trapped("Utilities", "test_clipboard", [&] { static_cast<void>(text); });
}

} // namespace folidex
