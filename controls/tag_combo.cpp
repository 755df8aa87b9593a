// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "controls/tag_combo.h"

#include "common/error_trap.h"
#include "controls/form_window.h"

#include <QAbstractListModel>
#include <QAbstractProxyModel>
#include <QCompleter>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QSignalBlocker>

namespace folidex {

using namespace Qt::StringLiterals;

namespace {

constexpr int kEnter = 13;
constexpr int kListRows = 12;
constexpr int kLeastLetters = 16;
/// Longer than any tag: one that was cut off would not be found in the list.
constexpr int kLongestText = 1 << 30;

} // namespace

/// The combo's items as its lists see them.
class TagModel : public QAbstractListModel {
public:
    TagModel(const std::vector<TagCombo::Item>& tags, QObject* parent)
        : QAbstractListModel(parent), tags_(tags) {}

    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(tags_.size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        if (role != Qt::DisplayRole && role != Qt::EditRole)
            return {};
        return tags_[static_cast<size_t>(index.row())].description;
    }
    template <class Replace> void replace(Replace replace_items) {
        beginResetModel();
        replace_items();
        endResetModel();
    }

private:
    const std::vector<TagCombo::Item>& tags_;
};

TagCombo::TagCombo(QWidget* parent) : QComboBox(parent), model_(new TagModel(tags_, this)) {
    setEditable(true);
    lineEdit()->setMaxLength(kLongestText);
    setInsertPolicy(NoInsert);
    setMaxVisibleItems(kListRows);
    // Measuring every tag for the width would take longer the more tags there are.
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(kLeastLetters);
    setFocusPolicy(Qt::StrongFocus);
    setModel(model_);
    set_up_lists();
    // Keys go to the combo, which has the focus and hands them on to its edit by itself.
    installEventFilter(this);
    lineEdit()->installEventFilter(this);
    // The combo would go over to the first item with the text when the field is left, also
    // from another one with the same description that was picked.
    QObject::disconnect(lineEdit(), &QLineEdit::editingFinished, this, nullptr);
    QObject::disconnect(lineEdit(), &QLineEdit::returnPressed, this, nullptr);
    on(lineEdit(), &QLineEdit::textEdited, this, [this] { picked_ = -1; });
    on(this, &QComboBox::activated, this, [this](int index) { picked_ = index; });
}

void TagCombo::set_up_lists() {
    auto* list = new QListView(this);
    list->setUniformItemSizes(true);
    list->setTextElideMode(Qt::ElideRight);
    setView(list);
    list->installEventFilter(this);

    completer_ = new QCompleter(model_, this);
    completer_->setCaseSensitivity(Qt::CaseInsensitive);
    completer_->setFilterMode(Qt::MatchContains);
    completer_->setCompletionMode(QCompleter::PopupCompletion);
    completer_->setMaxVisibleItems(kListRows);
    setCompleter(completer_);
    if (auto* popup = qobject_cast<QListView*>(completer_->popup())) {
        popup->setUniformItemSizes(true);
        popup->setTextElideMode(Qt::ElideRight);
    }
    completer_->popup()->installEventFilter(this);
    on(completer_, qOverload<const QModelIndex&>(&QCompleter::highlighted), this,
       [this](const QModelIndex& index) {
           const auto* proxy = qobject_cast<QAbstractProxyModel*>(completer_->completionModel());
           picked_ = proxy ? proxy->mapToSource(index).row() : -1;
       });
}

void TagCombo::set_column_format(const QString& format) {
    shown_width_ = 0;
    const QStringList columns = format.split(u'|', Qt::SkipEmptyParts);
    for (const QString& column : columns)
        shown_width_ += to_pixels(column.section(u';', 1, 1).toDouble());
    updateGeometry();
}

QSize TagCombo::sizeHint() const {
    const QSize hint = QComboBox::sizeHint();
    return {std::max(hint.width(), shown_width_), hint.height()};
}

void TagCombo::set_items(std::vector<Item> items) {
    const QSignalBlocker quiet(this);
    const QString text = currentText();
    model_->replace([&] {
        tags_ = std::move(items);
        exact_.clear();
        folded_.clear();
        for (int index = item_count() - 1; index >= 0; --index) {
            exact_.insert(item(index).description, index);
            folded_.insert(item(index).description.toCaseFolded(), index);
        }
    });
    set_entered_text(text);
}

void TagCombo::clear_items() {
    set_items({});
}

int TagCombo::item_count() const {
    return static_cast<int>(tags_.size());
}

const TagCombo::Item& TagCombo::item(int index) const {
    if (index < 0 || index >= item_count())
        throw Error{kSubscriptOutOfRange, u"Subscript out of range"_s};
    return tags_[static_cast<size_t>(index)];
}

void TagCombo::set_prompt(const QString& prompt) {
    lineEdit()->setPlaceholderText(prompt);
}

QString TagCombo::entered_text() const {
    return lineEdit()->text();
}

void TagCombo::set_entered_text(const QString& text) {
    {
        const QSignalBlocker quiet(this);
        setCurrentIndex(-1);
    }
    picked_ = -1;
    setEditText(text);
}

int TagCombo::list_index() const {
    const QString text = entered_text();
    if (picked_ >= 0 && picked_ < item_count() && item(picked_).description == text)
        return picked_;
    const int same = exact_.value(text, -1);
    return same >= 0 ? same : folded_.value(text.toCaseFolded(), -1);
}

void TagCombo::set_list_index(int index) {
    if (index < 0 || index >= item_count()) {
        set_entered_text({});
        return;
    }
    setCurrentIndex(index);
    setEditText(item(index).description);
    picked_ = index;
}

bool TagCombo::enter_pressed(QObject* watched) {
    if (watched == view()) {
        const QModelIndex marked = view()->currentIndex();
        hidePopup();
        if (marked.isValid())
            set_list_index(marked.row());
    } else if (completer_->popup()->isVisible()) {
        completer_->popup()->hide();
    }
    Q_EMIT key_down(kEnter);
    return true;
}

bool TagCombo::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter)
            return enter_pressed(watched);
        Q_EMIT key_down(key);
    }
    return QComboBox::eventFilter(watched, event);
}

void TagCombo::wheelEvent(QWheelEvent* event) {
    // Scrolling a window past the field must not change the entry.
    if (hasFocus())
        QComboBox::wheelEvent(event);
    else
        event->ignore();
}

} // namespace folidex
