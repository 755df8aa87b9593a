// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QColor>
#include <QList>
#include <QMenu>

namespace folidex {

/// The pop-up menu control that every form carries as Dmnu: items counted from 1, separators
/// among them, each with an optional second line, check mark and colours. The members bear the
/// names that pop_up_menu.h and the forms use.
class DropMenu : public QMenu {
    Q_OBJECT

public:
    enum ItemKind { kItem = 0, kSeparator = 1 };

    explicit DropMenu(QWidget* parent = nullptr);
    ~DropMenu() override;

    void ClearItems();
    /// Appends an item; item_number is kept with it and has no effect.
    void AddItem(const QString& caption, int kind, int item_number);
    int ItemCount() const;
    QString ItemCaption(int index) const;

    void ItemSubText(int index, const QString& text);
    void ItemClip(int index, int clip);
    void ItemEnabled(int index, bool enabled);
    void ItemForeColor(int index, const QColor& color);
    void ItemBackColor(int index, const QColor& color);
    void ItemChecked(int index, bool checked);

    QString item_sub_text(int index) const;
    int item_clip(int index) const;
    bool item_enabled(int index) const;
    QColor item_fore_color(int index) const; ///< invalid: the menu's default
    QColor item_back_color(int index) const; ///< invalid: the menu's default
    bool item_checked(int index) const;
    bool is_separator(int index) const;

    /// The look; an invalid colour means "none" (the control's -1).
    struct Look {
        int Alignment = 0;
        QColor MenuBackColor;
        QColor MenuMarginColor;
        QColor SelectBackColor;
        QColor SelectBorderColor;
        QColor SelectForeColor;
        QColor MarginBackColor;
        QColor MarginBackColorTo;
        int MarginFillType = 0;
        bool LimitSelect = false;
        QColor SubTextColor;
        QColor DisableColor;
    };
    Look look;

    /// Shows the menu under a widget (its left edge) without blocking; the choice arrives
    /// through ItemClick.
    void show_under(QWidget* widget);

Q_SIGNALS:
    /// The user chose the item with this index.
    void ItemClick(int index);

private:
    struct Item;
    QList<Item*> items_;
};

} // namespace folidex
