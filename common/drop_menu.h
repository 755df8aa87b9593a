// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QColor>
#include <QMenu>
#include <vector>

namespace folidex {

/// The pop-up menu control that every form carries as Dmnu: items counted from 1, separators
/// among them, each with an optional second line, check mark and colours. Captions are shown
/// letter for letter ("&" is no access key). The members bear the names that pop_up_menu.h and
/// the forms use; an index that is no item throws Error 9. Every item is an action of the menu,
/// so keys, pointer and screen readers find what they find in any menu.
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
    /// A caption as it is shown: "&&" stands for one "&"; no letter becomes an access key.
    static QString shown_caption(QString caption);

    void ItemSubText(int index, const QString& text);
    /// 1 keeps a long caption from widening the menu: it ends in dots.
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
    /// The user chose the item with this index. Comes from the event loop, when the menu is
    /// closed, so that the handler may show windows or close the menu's own form.
    void ItemClick(int index);

protected:
    void initStyleOption(QStyleOptionMenuItem* option, const QAction* action) const override;
    void paintEvent(QPaintEvent* event) override;

private:
    friend class DropMenuStyle;
    struct Item {
        QAction* action = nullptr;
        QString caption;
        QString sub_text;
        int clip = 0;
        bool enabled = true;
        bool checked = false;
        bool separator = false;
        QColor fore_color;
        QColor back_color;
        int item_number = 0;
    };
    Item& item(int index);
    const Item& item(int index) const;
    const Item* item_of(const QAction* action) const;
    QSize item_size(const QAction* action) const;
    QFont sub_text_font() const;
    int margin_width() const;
    int widest_text(const Item& item) const;
    QColor text_color_of(const Item& item, bool selected) const;
    void paint_ground(QPainter& painter) const;
    void paint_item(QPainter& painter, const QRect& rect, const Item& item, bool selected) const;
    void paint_check(QPainter& painter, const QRect& rect) const;
    void choose(const QAction* action);

    std::vector<Item> items_;
};

} // namespace folidex
