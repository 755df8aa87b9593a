// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QComboBox>
#include <QString>
#include <vector>

namespace folidex {

/// The editable two-column combo of tags: a shown description and a hidden code (the tag's
/// link number). Typed text that equals a list item, without regard to case, is that item.
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

Q_SIGNALS:
    /// A key was pressed in the combo; Enter is 13, other keys their Qt code.
    void key_down(int key_code);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::vector<Item> tags_;
};

} // namespace folidex
