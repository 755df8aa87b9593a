// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QComboBox>
#include <QHash>
#include <QString>
#include <vector>

class QCompleter;

namespace folidex {

class TagModel;

/// The editable two-column combo of tags: a shown description and a hidden code (the tag's
/// link number). Typed text that equals a list item, without regard to case, is that item; of
/// several with one description the one that was picked, else the first. While typing, a list
/// of the items that hold the text comes up; it never changes what was typed unless one of
/// them is picked.
class TagCombo : public QComboBox {
    Q_OBJECT

public:
    struct Item {
        QString description;
        QString code;
    };

    explicit TagCombo(QWidget* parent = nullptr);

    /// Columns as "column;width;alignment;caption" joined by "|"; widths in twips, 0 hides.
    void set_column_format(const QString& format);
    /// Replaces the list; the entered text stays.
    void set_items(std::vector<Item> items);
    void clear_items();
    int item_count() const;
    const Item& item(int index) const;
    /// The prompt shown while the text is empty.
    void set_prompt(const QString& prompt);

    QString entered_text() const;
    void set_entered_text(const QString& text);
    /// The list item that the entered text is, -1 for none.
    int list_index() const;
    /// Chooses an item: its description becomes the text.
    void set_list_index(int index);

    QSize sizeHint() const override;

Q_SIGNALS:
    /// A key was pressed in the combo or its lists; Enter is 13, other keys their Qt code. Enter
    /// comes when an open list is closed and its marked item is the text.
    void key_down(int key_code);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void set_up_lists();
    void pick(int index);
    bool enter_pressed(QObject* watched);

    std::vector<Item> tags_;
    QHash<QString, int> exact_;
    QHash<QString, int> folded_;
    TagModel* model_;
    QCompleter* completer_ = nullptr;
    int picked_ = -1;
    int shown_width_ = 0;
};

} // namespace folidex
