// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "answers.h"

#include <QAccessible>
#include <QApplication>
#include <QHash>
#include <QJsonArray>
#include <QMetaEnum>
#include <QWidget>

namespace {

using namespace Qt::StringLiterals;

QJsonObject gone(const QString& what) {
    return {{u"gone"_s, what}};
}

QString role_word(QAccessible::Role role) {
    return QString::fromLatin1(QMetaEnum::fromType<QAccessible::Role>().valueToKey(role));
}

QJsonArray state_words(QAccessible::State state) {
    QJsonArray words;
    const auto add = [&words](bool holds, const QString& word) {
        if (holds)
            words.append(word);
    };
    add(state.checked, u"checked"_s);
    add(state.editable, u"editable"_s);
    add(!state.disabled, u"enabled"_s);
    add(state.focused, u"focused"_s);
    add(state.modal, u"modal"_s);
    add(state.selected, u"selected"_s);
    add(!state.disabled, u"sensitive"_s);
    add(!state.invisible && !state.offscreen, u"showing"_s);
    add(!state.invisible, u"visible"_s);
    return words;
}

qint64 number_of(QAccessibleInterface* widget) {
    return QAccessible::uniqueId(widget);
}

QJsonObject facts(QAccessibleInterface* widget) {
    return {{u"id"_s, number_of(widget)},
            {u"role"_s, role_word(widget->role())},
            {u"name"_s, widget->text(QAccessible::Name)},
            {u"states"_s, state_words(widget->state())}};
}

QJsonObject children_of(QAccessibleInterface* widget, const QJsonObject&) {
    QJsonArray children;
    for (int i = 0; i < widget->childCount(); ++i)
        if (QAccessibleInterface* child = widget->child(i))
            children.append(number_of(child));
    return {{u"children"_s, children}};
}

QJsonObject parent_of(QAccessibleInterface* widget, const QJsonObject&) {
    QAccessibleInterface* parent = widget->parent();
    return parent ? facts(parent) : gone(u"no parent"_s);
}

QJsonObject rectangle_of(QAccessibleInterface* widget, const QJsonObject&) {
    const QRect rectangle = widget->rect();
    return {{u"extents"_s,
             QJsonArray{rectangle.x(), rectangle.y(), rectangle.width(), rectangle.height()}}};
}

QJsonObject text_of(QAccessibleInterface* widget, const QJsonObject&) {
    QAccessibleTextInterface* text = widget->textInterface();
    if (!text)
        return gone(u"no text"_s);
    return {{u"text"_s, text->text(0, text->characterCount())},
            {u"caret"_s, text->cursorPosition()}};
}

QJsonObject set_text(QAccessibleInterface* widget, const QJsonObject& question) {
    const QString content = question[u"text"].toString();
    QAccessibleTextInterface* text = widget->textInterface();
    if (QAccessibleEditableTextInterface* editable = widget->editableTextInterface();
        editable && text)
        editable->replaceText(0, text->characterCount(), content);
    else
        widget->setText(QAccessible::Value, content);
    return {};
}

QJsonObject table_size(QAccessibleInterface* widget, const QJsonObject&) {
    QAccessibleTableInterface* table = widget->tableInterface();
    if (!table)
        return gone(u"no table"_s);
    return {{u"size"_s, QJsonArray{table->rowCount(), table->columnCount()}}};
}

// A table learns of its model's changes only while an assistive program runs; until then it may
// give cells of before.
bool lies_at(QAccessibleInterface* cell, int row, int column) {
    const QAccessibleTableCellInterface* place =
        cell->isValid() ? cell->tableCellInterface() : nullptr;
    return place && place->rowIndex() == row && place->columnIndex() == column;
}

QJsonObject table_cell(QAccessibleInterface* widget, const QJsonObject& question) {
    QAccessibleTableInterface* table = widget->tableInterface();
    if (!table)
        return gone(u"no table"_s);
    const int row = question[u"row"].toInt();
    const int column = question[u"column"].toInt();
    QAccessibleInterface* cell = table->cellAt(row, column);
    if (cell && !lies_at(cell, row, column)) {
        QAccessibleTableModelChangeEvent change(widget->object(),
                                                QAccessibleTableModelChangeEvent::ModelReset);
        table->modelChange(&change);
        cell = table->cellAt(row, column);
    }
    return cell ? facts(cell) : gone(u"no such cell"_s);
}

QJsonObject facts_of(QAccessibleInterface* widget, const QJsonObject&) {
    return facts(widget);
}

void add_tree(QAccessibleInterface* widget, QJsonArray& widgets) {
    widgets.append(facts(widget));
    if (widget->tableInterface())
        return; // of very many cells
    for (int i = 0; i < widget->childCount(); ++i)
        if (QAccessibleInterface* child = widget->child(i))
            add_tree(child, widgets);
}

QJsonObject tree_of(QAccessibleInterface* widget, const QJsonObject&) {
    QJsonArray widgets;
    add_tree(widget, widgets);
    return {{u"widgets"_s, widgets}};
}

QJsonObject application(const QJsonObject&) {
    QAccessibleInterface* root = QAccessible::queryAccessibleInterface(qApp);
    return root ? QJsonObject{{u"id"_s, number_of(root)}} : gone(u"no application"_s);
}

// They belong to no window's tree.
QJsonObject open_popups(const QJsonObject&) {
    QJsonArray popups;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->windowType() == Qt::Popup && widget->isVisible())
            if (QAccessibleInterface* popup = QAccessible::queryAccessibleInterface(widget))
                popups.append(number_of(popup));
    return {{u"popups"_s, popups}};
}

using AboutOne = QJsonObject (*)(QAccessibleInterface*, const QJsonObject&);
using AboutAll = QJsonObject (*)(const QJsonObject&);

const QHash<QString, AboutOne>& about_one() {
    static const QHash<QString, AboutOne> operations{
        {u"facts"_s, facts_of},        {u"parent"_s, parent_of},      {u"children"_s, children_of},
        {u"extents"_s, rectangle_of},  {u"text"_s, text_of},          {u"set_text"_s, set_text},
        {u"table_size"_s, table_size}, {u"table_cell"_s, table_cell}, {u"tree"_s, tree_of}};
    return operations;
}

const QHash<QString, AboutAll>& about_all() {
    static const QHash<QString, AboutAll> operations{{u"application"_s, application},
                                                     {u"popups"_s, open_popups}};
    return operations;
}

} // namespace

QJsonObject answer(const QJsonObject& question) {
    const QString operation = question[u"op"].toString();
    if (const AboutAll all = about_all().value(operation))
        return all(question);
    const AboutOne one = about_one().value(operation);
    if (!one)
        return gone(u"no such operation: "_s + operation);
    const auto number = static_cast<QAccessible::Id>(question[u"id"].toInteger());
    QAccessibleInterface* widget = QAccessible::accessibleInterface(number);
    return widget && widget->isValid() ? one(widget, question) : gone(u"no such widget"_s);
}
