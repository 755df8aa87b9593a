// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

namespace folidex {

class DropMenu;

/// The highest item index that the next menu may use; the caller sets it before p_popMenu.
extern int pop_count;
/// The key of each item of the menu built last, by its index (0 to pop_count).
extern QStringList pop_keys;

/// Empties a menu, gives it the program's one look and clears pop_keys.
void p_popMenu(DropMenu& menu);

/// Appends one item and records its key; kind 1 is a separator and records none. fore_color
/// and back_color take a QColor, the word "Grey" (fore_color only) or nothing.
void add_pop_menu(DropMenu& menu, int& kind, int& item_number, const QVariant& caption,
                  const QVariant& subtext, const QVariant& key, bool clip, bool enabled,
                  QVariant fore_color, const QVariant& back_color);

/// The forms' common cases of add_pop_menu: a grey item, a grey title that cannot be chosen,
/// a separator.
void add_grey_item(DropMenu& menu, const QString& caption, const QString& key);
void add_menu_title(DropMenu& menu, const QString& caption);
void add_menu_separator(DropMenu& menu);

/// Kept as an empty entry point; the main window calls it while closing.
void test_clipboard(const QString& text);

} // namespace folidex
