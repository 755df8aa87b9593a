// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "controls/tag_combo.h"

#include "common/error_trap.h"
#include "tests/forms/controls/counting.h"

#include <QApplication>
#include <QCompleter>
#include <QDialog>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSignalSpy>
#include <QStyledItemDelegate>
#include <QTest>
#include <QVBoxLayout>

using namespace folidex;
using namespace Qt::StringLiterals;

class TagComboTest : public QObject {
    Q_OBJECT

private:
    static void fill(TagCombo& combo) {
        combo.set_column_format(u"0;2700;<;Description|1;0;>;Code"_s);
        combo.set_prompt(u"Enter or Select"_s);
        combo.set_items({{u"Bank"_s, u"3"_s},
                         {u"Car"_s, u"17"_s},
                         {u"Car insurance"_s, u"21"_s},
                         {u"House"_s, u"40"_s},
                         {u"House"_s, u"41"_s},
                         {u"\u00C4rzte"_s, u"52"_s}});
    }

    static void show(QWidget& widget) {
        widget.show();
        widget.setFocus();
        widget.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&widget));
    }

    /// A key of the keyboard, to whatever the window system would give it to.
    static void press(int key, const QString& text = {}) {
        QWidget* popup = QApplication::activePopupWidget();
        QWidget* window = popup ? popup : QApplication::activeWindow();
        QVERIFY(window);
        QTest::sendKeyEvent(QTest::Click, window->windowHandle(), Qt::Key(key), text,
                            Qt::NoModifier);
    }

    static void type(const QString& text) {
        for (const QChar c : text)
            press(Qt::Key_unknown, QString(c));
    }

    static QAbstractItemView* completions(const TagCombo& combo) {
        return combo.completer()->popup();
    }

private Q_SLOTS:
    void a_filled_combo_has_no_text_but_its_prompt() {
        TagCombo combo;
        fill(combo);
        QCOMPARE(combo.entered_text(), QString());
        QCOMPARE(combo.list_index(), -1);
        QCOMPARE(combo.lineEdit()->placeholderText(), u"Enter or Select"_s);
        QCOMPARE(combo.item_count(), 6);
        QCOMPARE(combo.item(1).code, u"17"_s);
        QVERIFY(combo.sizeHint().width() >= 180);
    }

    void an_empty_list_is_no_trouble() {
        TagCombo combo;
        fill(combo);
        combo.clear_items();
        QCOMPARE(combo.item_count(), 0);
        combo.set_entered_text(u"Car"_s);
        QCOMPARE(combo.list_index(), -1);
        show(combo);
        combo.showPopup();
        combo.hidePopup();
        press(Qt::Key_Down);
        QCOMPARE(combo.entered_text(), u"Car"_s);
        QVERIFY_THROWS_EXCEPTION(Error, combo.item(0));
    }

    void a_text_equal_to_an_item_is_that_item_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("index");
        QTest::newRow("same") << u"Car"_s << 1;
        QTest::newRow("other case") << u"cAR"_s << 1;
        QTest::newRow("other case beyond ASCII") << u"\u00E4RZTE"_s << 5;
        QTest::newRow("first of two") << u"House"_s << 3;
        QTest::newRow("beginning") << u"Ca"_s << -1;
        QTest::newRow("blank behind") << u"Car "_s << -1;
        QTest::newRow("nothing") << QString() << -1;
        QTest::newRow("new") << u"Taxes"_s << -1;
    }
    void a_text_equal_to_an_item_is_that_item() {
        QFETCH(QString, text);
        QFETCH(int, index);
        TagCombo combo;
        fill(combo);
        combo.set_entered_text(text);
        QCOMPARE(combo.entered_text(), text);
        QCOMPARE(combo.list_index(), index);
        combo.set_entered_text({});
        show(combo);
        type(text);
        QCOMPARE(combo.entered_text(), text);
        QCOMPARE(combo.list_index(), index);
    }

    void enter_at_the_window_reaches_the_combo_once() {
        QDialog dialog;
        auto* layout = new QVBoxLayout(&dialog);
        auto* combo = new TagCombo;
        layout->addWidget(combo);
        fill(*combo);
        show(dialog);
        combo->setFocus();
        QSignalSpy keys(combo, &TagCombo::key_down);
        // As the window system delivers it: to whatever widget has the focus.
        for (const char letter : {'t', 'a', 'x'})
            QTest::keyClick(dialog.windowHandle(), letter);
        keys.clear();
        QTest::keyClick(dialog.windowHandle(), Qt::Key_Return);
        QCOMPARE(combo->entered_text(), u"tax"_s);
        QCOMPARE(keys.size(), 1);
        QCOMPARE(keys[0][0].toInt(), 13);
        QVERIFY(dialog.isVisible());
    }

    void two_items_with_one_description_can_both_be_chosen() {
        TagCombo combo;
        fill(combo);
        combo.set_list_index(4);
        QCOMPARE(combo.entered_text(), u"House"_s);
        QCOMPARE(combo.list_index(), 4);
        combo.set_list_index(3);
        QCOMPARE(combo.list_index(), 3);
        show(combo);
        combo.set_entered_text({});
        combo.showPopup();
        combo.view()->setCurrentIndex(combo.model()->index(4, 0));
        press(Qt::Key_Return);
        QCOMPARE(combo.entered_text(), u"House"_s);
        QCOMPARE(combo.list_index(), 4);
        combo.clearFocus();
        QCOMPARE(combo.list_index(), 4);
        combo.activateWindow();
        combo.setFocus();
        QTRY_VERIFY(QApplication::focusWidget());
        type(u"s"_s);
        press(Qt::Key_Backspace);
        QCOMPARE(combo.list_index(), 3);
    }

    void an_index_that_is_no_item_empties_the_entry() {
        TagCombo combo;
        fill(combo);
        combo.set_list_index(2);
        combo.set_list_index(-1);
        QCOMPARE(combo.entered_text(), QString());
        combo.set_list_index(6);
        QCOMPARE(combo.list_index(), -1);
    }

    void refilling_keeps_what_is_entered() {
        TagCombo combo;
        fill(combo);
        combo.set_entered_text(u"Half a ta"_s);
        combo.set_items({{u"Half a tag"_s, u"1"_s}});
        QCOMPARE(combo.entered_text(), u"Half a ta"_s);
        QCOMPARE(combo.item_count(), 1);
    }

    void typing_is_never_changed_by_the_list() {
        TagCombo combo;
        fill(combo);
        show(combo);
        type(u"ca"_s);
        QTRY_VERIFY(completions(combo)->isVisible());
        QCOMPARE(combo.completer()->completionCount(), 2);
        QCOMPARE(combo.entered_text(), u"ca"_s);
        press(Qt::Key_R, u"r"_s);
        QCOMPARE(combo.entered_text(), u"car"_s);
        completions(combo)->hide();
        combo.clearFocus();
        QCOMPARE(combo.entered_text(), u"car"_s);
    }

    void enter_comes_once_with_the_text_as_it_is_seen() {
        TagCombo combo;
        fill(combo);
        show(combo);
        QStringList entered;
        on(&combo, &TagCombo::key_down, &combo, [&](int key) {
            if (key == 13)
                entered.append(combo.entered_text());
        });
        type(u"Taxes"_s);
        press(Qt::Key_Return);
        QCOMPARE(entered, QStringList{u"Taxes"_s});
        combo.set_entered_text({});
        type(u"ca"_s);
        QTRY_VERIFY(completions(combo)->isVisible());
        press(Qt::Key_Enter);
        QVERIFY(!completions(combo)->isVisible());
        QCOMPARE(entered, QStringList({u"Taxes"_s, u"ca"_s}));
    }

    void enter_comes_where_the_focus_is() {
        TagCombo combo;
        fill(combo);
        show(combo);
        combo.setFocus();
        int entered = 0;
        on(&combo, &TagCombo::key_down, &combo, [&](int key) { entered += key == 13; });
        QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget*>(&combo));
        QTest::keyClicks(QApplication::focusWidget(), u"Deeds"_s);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(combo.entered_text(), u"Deeds"_s);
        QCOMPARE(entered, 1);
    }

    void enter_takes_the_marked_completion_first() {
        TagCombo combo;
        fill(combo);
        show(combo);
        QList<int> entered;
        on(&combo, &TagCombo::key_down, &combo, [&](int key) {
            if (key == 13)
                entered.append(combo.list_index());
        });
        type(u"ous"_s);
        QTRY_VERIFY(completions(combo)->isVisible());
        press(Qt::Key_Down);
        press(Qt::Key_Down);
        press(Qt::Key_Return);
        QCOMPARE(combo.entered_text(), u"House"_s);
        QCOMPARE(entered, QList<int>{4});
    }

    void enter_in_the_open_list_takes_its_item_and_comes_once() {
        TagCombo combo;
        fill(combo);
        show(combo);
        QSignalSpy keys(&combo, &TagCombo::key_down);
        combo.showPopup();
        combo.view()->setCurrentIndex(combo.model()->index(2, 0));
        press(Qt::Key_Return);
        QVERIFY(!combo.view()->isVisible());
        QCOMPARE(keys.size(), 1);
        QCOMPARE(keys.constFirst().constFirst().toInt(), 13);
        QCOMPARE(combo.entered_text(), u"Car insurance"_s);
    }

    void a_click_on_a_completion_is_a_choice() {
        TagCombo combo;
        fill(combo);
        show(combo);
        type(u"hou"_s);
        QTRY_VERIFY(completions(combo)->isVisible());
        const QModelIndex second = combo.completer()->completionModel()->index(1, 0);
        const QRect place = completions(combo)->visualRect(second);
        QTest::mouseClick(completions(combo)->viewport(), Qt::LeftButton, {}, place.center());
        QCOMPARE(combo.entered_text(), u"House"_s);
        QCOMPARE(combo.list_index(), 4);
    }

    void every_key_is_told_once() {
        TagCombo combo;
        fill(combo);
        show(combo);
        QSignalSpy keys(&combo, &TagCombo::key_down);
        press(Qt::Key_H, u"h"_s);
        QTRY_VERIFY(completions(combo)->isVisible());
        press(Qt::Key_O, u"o"_s);
        QCOMPARE(combo.entered_text(), u"ho"_s);
        QCOMPARE(keys.size(), 2);
        QCOMPARE(keys.at(1).constFirst().toInt(), int(Qt::Key_O));
        QTest::keyClick(combo.lineEdit(), Qt::Key_Return);
        QCOMPARE(keys.size(), 3);
    }

    void enter_presses_no_button_of_the_form() {
        QDialog form;
        auto* layout = new QVBoxLayout(&form);
        auto* combo = new TagCombo;
        auto* save = new QPushButton(u"Save"_s);
        layout->addWidget(combo);
        layout->addWidget(save);
        save->setDefault(true);
        fill(*combo);
        show(form);
        combo->setFocus();
        QSignalSpy saved(save, &QPushButton::clicked);
        QSignalSpy keys(combo, &TagCombo::key_down);
        press(Qt::Key_Return);
        QCOMPARE(keys.size(), 1);
        QCOMPARE(saved.size(), 0);
    }

    void a_handler_may_refill_and_empty_the_combo() {
        TagCombo combo;
        fill(combo);
        show(combo);
        int handled = 0;
        on(&combo, &TagCombo::key_down, &combo, [&](int key) {
            if (key != 13)
                return;
            ++handled;
            combo.set_items({{u"New"_s, u"99"_s}});
            combo.set_entered_text({});
            combo.setFocus();
        });
        type(u"car"_s);
        QTRY_VERIFY(completions(combo)->isVisible());
        press(Qt::Key_Down);
        press(Qt::Key_Return);
        QCOMPARE(handled, 1);
        QCOMPARE(combo.entered_text(), QString());
        QVERIFY(combo.lineEdit()->hasFocus());
        type(u"new"_s);
        QCOMPARE(combo.list_index(), 0);
    }

    void odd_tags_are_shown_and_kept_data() {
        QTest::addColumn<QString>("tag");
        QTest::newRow("quotes") << u"O'Brien \"& Sons\" 100%"_s;
        QTest::newRow("right to left") << u"\u05E9\u05DC\u05D5\u05DD"_s;
        QTest::newRow("emoji") << u"\U0001F4C4 papers \U0001F468\u200D\U0001F469"_s;
        QTest::newRow("line break") << u"one\ntwo"_s;
        QTest::newRow("32,000 characters") << QString(32000, u'm');
        QTest::newRow("40,000 characters") << QString(40000, u'm');
    }
    void odd_tags_are_shown_and_kept() {
        QFETCH(QString, tag);
        TagCombo combo;
        combo.set_items({{u"a"_s, u"1"_s}, {tag, u"2"_s}});
        show(combo);
        combo.set_list_index(1);
        QCOMPARE(combo.entered_text(), tag);
        combo.set_entered_text(tag);
        QCOMPARE(combo.list_index(), 1);
        combo.showPopup();
        QVERIFY(combo.view()->window()->width() <= combo.screen()->geometry().width());
        QVERIFY(combo.view()->visualRect(combo.model()->index(1, 0)).height() <
                3 * combo.fontMetrics().height());
        combo.hidePopup();
    }

    void twenty_thousand_tags_are_not_looked_at_one_by_one() {
        std::vector<TagCombo::Item> tags;
        for (int i = 0; i < 20000; ++i)
            tags.push_back({u"Tag number %1"_s.arg(i), QString::number(i)});
        tags.push_back({QString(300, u'W'), u"-1"_s});
        test::CountingDelegate<QStyledItemDelegate> in_list;
        test::CountingDelegate<QStyledItemDelegate> in_completions;
        TagCombo combo;
        combo.setItemDelegate(&in_list);
        completions(combo)->setItemDelegate(&in_completions);
        show(combo);
        const QSize empty = combo.sizeHint();
        combo.set_items(tags);
        QCOMPARE(combo.sizeHint(), empty);
        combo.showPopup();
        QVERIFY(!combo.view()->grab().isNull());
        combo.hidePopup();
        type(u"tag number 19999"_s);
        QCOMPARE(combo.list_index(), 19999);
        QCOMPARE(combo.completer()->completionCount(), 1);
        // Those that can be seen in a list, however many there are.
        QVERIFY2(in_list.count < 1000, qPrintable(QString::number(in_list.count)));
        QVERIFY2(in_completions.count < 1000, qPrintable(QString::number(in_completions.count)));
    }
};

QTEST_MAIN(TagComboTest)
#include "tag_combo_test.moc"
