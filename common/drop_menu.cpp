// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/drop_menu.h"

#include "common/error_trap.h"

#include <QAction>

namespace folidex {

using namespace Qt::StringLiterals;

namespace {

// In an action's text "&" marks an access key and a tab begins a second column.
QString action_text(const QString& caption) {
    return DropMenu::shown_caption(caption).replace(u'&', "&&"_L1).replace(u'\t', u' ');
}

} // namespace

DropMenu::~DropMenu() = default;

QString DropMenu::shown_caption(QString caption) {
    return caption.replace("&&"_L1, "&"_L1);
}

void DropMenu::ClearItems() {
    items_.clear();
    clear();
}

void DropMenu::AddItem(const QString& caption, int kind, int item_number) {
    Item item;
    item.caption = caption;
    item.separator = kind == kSeparator;
    item.item_number = item_number;
    item.action = item.separator ? addSeparator() : addAction(action_text(caption));
    items_.push_back(std::move(item));
}

int DropMenu::ItemCount() const {
    return static_cast<int>(items_.size());
}

DropMenu::Item& DropMenu::item(int index) {
    if (index < 1 || index > ItemCount())
        throw Error{kSubscriptOutOfRange, u"Subscript out of range"_s};
    return items_[static_cast<size_t>(index) - 1];
}

const DropMenu::Item& DropMenu::item(int index) const {
    return const_cast<DropMenu*>(this)->item(index);
}

const DropMenu::Item* DropMenu::item_of(const QAction* action) const {
    for (const Item& item : items_)
        if (item.action == action)
            return &item;
    return nullptr;
}

QString DropMenu::ItemCaption(int index) const {
    return item(index).caption;
}

void DropMenu::ItemSubText(int index, const QString& text) {
    item(index).sub_text = text;
    item(index).action->setStatusTip(text);
}

void DropMenu::ItemClip(int index, int clip) {
    item(index).clip = clip;
}

void DropMenu::ItemEnabled(int index, bool enabled) {
    item(index).enabled = enabled;
    item(index).action->setEnabled(enabled);
}

void DropMenu::ItemForeColor(int index, const QColor& color) {
    item(index).fore_color = color;
}

void DropMenu::ItemBackColor(int index, const QColor& color) {
    item(index).back_color = color;
}

void DropMenu::ItemChecked(int index, bool checked) {
    Item& changed = item(index);
    changed.checked = checked;
    changed.action->setCheckable(checked);
    changed.action->setChecked(checked);
}

QString DropMenu::item_sub_text(int index) const {
    return item(index).sub_text;
}

int DropMenu::item_clip(int index) const {
    return item(index).clip;
}

bool DropMenu::item_enabled(int index) const {
    return item(index).enabled;
}

QColor DropMenu::item_fore_color(int index) const {
    return item(index).fore_color;
}

QColor DropMenu::item_back_color(int index) const {
    return item(index).back_color;
}

bool DropMenu::item_checked(int index) const {
    return item(index).checked;
}

bool DropMenu::is_separator(int index) const {
    return item(index).separator;
}

void DropMenu::choose(const QAction* action) {
    for (int index = 1; index <= ItemCount(); ++index) {
        if (item(index).action != action)
            continue;
        // The tick is the caller's to move; a chosen item only loses it by being built anew.
        item(index).action->setChecked(item(index).checked);
        later(this, 0, [this, index] { Q_EMIT ItemClick(index); });
        return;
    }
}

void DropMenu::show_under(QWidget* widget) {
    popup(widget->mapToGlobal(QPoint(0, widget->height())));
}

} // namespace folidex
