// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/pop_up_menu.h"

#include "common/drop_menu.h"
#include "common/error_trap.h"
#include "tests/support/planned_boxes.h"

#include <QTest>

using namespace folidex;
using namespace Qt::StringLiterals;

class PopUpMenuTest : public QObject {
    Q_OBJECT

private:
    static void add(DropMenu& menu, const QString& caption, const QString& key,
                    const QVariant& fore_color = {}, const QVariant& back_color = {}) {
        int kind = 0;
        int item_number = 0;
        add_pop_menu(menu, kind, item_number, caption, {}, key, false, true, fore_color,
                     back_color);
    }

private Q_SLOTS:
    void keys_are_stored_by_index_and_separators_leave_theirs_empty() {
        DropMenu menu;
        pop_count = 3;
        p_popMenu(menu);
        add(menu, u"First"_s, u"mnuFirst"_s);
        add_menu_separator(menu);
        add(menu, u"Last"_s, u"mnuLast"_s);
        QCOMPARE(pop_keys, QStringList({{}, u"mnuFirst"_s, {}, u"mnuLast"_s}));
        QCOMPARE(menu.ItemCount(), 3);
        QVERIFY(menu.is_separator(2));
        QCOMPARE(menu.ItemCaption(3), u"Last"_s);
    }

    void grey_is_a_colour_and_nothing_leaves_the_default() {
        DropMenu menu;
        pop_count = 4;
        p_popMenu(menu);
        add(menu, u"a"_s, u"a"_s, u"Grey"_s);
        add(menu, u"b"_s, u"b"_s);
        add(menu, u"c"_s, u"c"_s, QColor(1, 2, 3), QColor(4, 5, 6));
        add(menu, u"d"_s, u"d"_s, 0x030201);
        QCOMPARE(menu.item_fore_color(1), QColor(128, 128, 128));
        QVERIFY(!menu.item_fore_color(2).isValid());
        QVERIFY(!menu.item_back_color(2).isValid());
        QCOMPARE(menu.item_fore_color(3), QColor(1, 2, 3));
        QCOMPARE(menu.item_back_color(3), QColor(4, 5, 6));
        QCOMPARE(menu.item_fore_color(4), QColor(1, 2, 3));
    }

    void the_word_grey_counts_letter_for_letter() {
        test::PlannedBoxes boxes;
        DropMenu menu;
        pop_count = 2;
        p_popMenu(menu);
        boxes.expect_report(u"Utilities"_s, u"add_pop_menu"_s, 13);
        QVERIFY_THROWS_EXCEPTION(Error, add(menu, u"a"_s, u"a"_s, u"grey"_s));
        QVERIFY(boxes.verify());
    }

    void an_item_beyond_the_highest_index_is_reported_and_its_key_not_stored() {
        test::PlannedBoxes boxes;
        DropMenu menu;
        pop_count = 2;
        p_popMenu(menu);
        add(menu, u"1"_s, u"mnu1"_s);
        add(menu, u"2"_s, u"mnu2"_s);
        boxes.expect_report(u"Utilities"_s, u"add_pop_menu"_s, kSubscriptOutOfRange);
        try {
            add(menu, u"3"_s, u"mnu3"_s);
            QFAIL("the item was taken");
        } catch (const Error& error) {
            QCOMPARE(error.number, kPassedOn);
        }
        QVERIFY(boxes.shown().constFirst().prompt.contains(u"Subscript out of range (9)"_s));
        QVERIFY(boxes.verify());
        QCOMPARE(pop_keys, QStringList({{}, u"mnu1"_s, u"mnu2"_s}));
    }

    void a_separator_needs_no_place_in_the_key_list() {
        DropMenu menu;
        pop_count = 1;
        p_popMenu(menu);
        add(menu, u"1"_s, u"mnu1"_s);
        add_menu_separator(menu);
        QCOMPARE(menu.ItemCount(), 2);
        QCOMPARE(pop_keys.size(), 2);
    }

    void a_negative_highest_index_is_reported() {
        test::PlannedBoxes boxes;
        DropMenu menu;
        pop_count = -1;
        boxes.expect_report(u"Utilities"_s, u"p_popMenu"_s, kSubscriptOutOfRange);
        QVERIFY_THROWS_EXCEPTION(Error, p_popMenu(menu));
        QVERIFY(boxes.verify());
    }

    void preparing_twice_leaves_an_empty_menu_with_the_one_look() {
        DropMenu menu;
        pop_count = 5;
        p_popMenu(menu);
        add(menu, u"1"_s, u"mnu1"_s);
        p_popMenu(menu);
        p_popMenu(menu);
        QCOMPARE(menu.ItemCount(), 0);
        QVERIFY(menu.actions().isEmpty());
        QCOMPARE(pop_keys, QStringList(QList<QString>(6)));
        QCOMPARE(menu.look.Alignment, 0);
        QCOMPARE(menu.look.MenuBackColor, QColor(255, 255, 255));
        QVERIFY(!menu.look.MenuMarginColor.isValid());
        QCOMPARE(menu.look.MarginBackColor, QColor(250, 250, 250));
        QCOMPARE(menu.look.MarginBackColorTo, QColor(240, 240, 240));
        QCOMPARE(menu.look.MarginFillType, 1);
        QCOMPARE(menu.look.SelectBackColor, QColor(255, 238, 194));
        QCOMPARE(menu.look.SelectBorderColor, QColor(0, 0, 128));
        QCOMPARE(menu.look.SelectForeColor, menu.palette().color(QPalette::WindowText));
        QVERIFY(menu.look.LimitSelect);
        QCOMPARE(menu.look.SubTextColor, QColor(0, 0, 255));
        QCOMPARE(menu.look.DisableColor, QColor(0, 0, 0));
    }

    void a_menu_built_on_another_form_discards_the_keys_of_the_first() {
        DropMenu first;
        DropMenu second;
        pop_count = 20;
        p_popMenu(first);
        add(first, u"1"_s, u"mnu1"_s);
        pop_count = 10;
        p_popMenu(second);
        QCOMPARE(pop_keys, QStringList(QList<QString>(11)));
        QCOMPARE(first.ItemCount(), 1);
    }

    void sub_text_clip_and_disabled_reach_the_item() {
        DropMenu menu;
        pop_count = 2;
        p_popMenu(menu);
        int kind = 7;
        int item_number = 99;
        add_pop_menu(menu, kind, item_number, u"Source"_s, u"not ready"_s, u"mnuScan1"_s, true,
                     false, {}, {});
        add(menu, u"plain"_s, {});
        QVERIFY(!menu.is_separator(1));
        QCOMPARE(menu.item_sub_text(1), u"not ready"_s);
        QCOMPARE(menu.item_clip(1), 1);
        QVERIFY(!menu.item_enabled(1));
        QCOMPARE(menu.item_sub_text(2), QString());
        QCOMPARE(menu.item_clip(2), 0);
        QVERIFY(menu.item_enabled(2));
        QCOMPARE(kind, 7);
        QCOMPARE(item_number, 99);
    }

    void a_title_is_grey_and_cannot_be_chosen() {
        DropMenu menu;
        pop_count = 3;
        p_popMenu(menu);
        add_menu_title(menu, u"Which one ?"_s);
        add_menu_separator(menu);
        add_grey_item(menu, u"This"_s, u"mnuThis"_s);
        QCOMPARE(pop_keys, QStringList({{}, u"mnuAddFile"_s, {}, u"mnuThis"_s}));
        QVERIFY(!menu.item_enabled(1));
        QCOMPARE(menu.item_fore_color(1), QColor(128, 128, 128));
        QVERIFY(menu.item_enabled(3));
        QCOMPARE(menu.item_fore_color(3), QColor(128, 128, 128));
    }

    void the_clipboard_test_does_nothing() {
        test::PlannedBoxes boxes;
        test_clipboard(u"anything"_s);
        QVERIFY(boxes.verify());
    }
};

QTEST_MAIN(PopUpMenuTest)
#include "pop_up_menu_test.moc"
