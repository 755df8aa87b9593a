// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/drop_menu.h"

#include "common/error_trap.h"
#include "common/pop_up_menu.h"

#include <QAccessible>
#include <QSignalSpy>
#include <QTest>

using namespace folidex;
using namespace Qt::StringLiterals;

class DropMenuTest : public QObject {
    Q_OBJECT

private:
    /// A title, a separator, a checked item, an item with a second line, a plain one.
    static void fill(DropMenu& menu) {
        pop_count = 10;
        p_popMenu(menu);
        add_menu_title(menu, u"When double clicking on a file..."_s);
        add_menu_separator(menu);
        menu.AddItem(u" -> Edit Scan"_s, DropMenu::kItem, 0);
        menu.ItemChecked(3, true);
        menu.AddItem(u"Source"_s, DropMenu::kItem, 0);
        menu.ItemSubText(4, u"both sides"_s);
        menu.AddItem(u"Save && New & more\tgo"_s, DropMenu::kItem, 0);
    }

    static void show(DropMenu& menu) {
        menu.popup(QPoint(50, 50));
        QVERIFY(QTest::qWaitForWindowExposed(&menu));
    }

    static QRect place(const DropMenu& menu, int index) {
        return menu.actionGeometry(menu.actions().at(index - 1));
    }

    static bool holds_color(const QImage& image, const QRect& area, const QColor& color) {
        for (int y = area.top(); y <= area.bottom(); ++y)
            for (int x = area.left(); x <= area.right(); ++x)
                if (image.pixelColor(x, y) == color)
                    return true;
        return false;
    }

private Q_SLOTS:
    void items_count_from_one_with_their_separators() {
        DropMenu menu;
        fill(menu);
        QCOMPARE(menu.ItemCount(), 5);
        QCOMPARE(menu.ItemCaption(1), u"When double clicking on a file..."_s);
        QVERIFY(menu.is_separator(2));
        QVERIFY(menu.item_checked(3));
        QVERIFY(!menu.item_checked(4));
    }

    void an_index_that_is_no_item_is_refused() {
        DropMenu menu;
        fill(menu);
        QVERIFY_THROWS_EXCEPTION(Error, menu.ItemCaption(0));
        QVERIFY_THROWS_EXCEPTION(Error, menu.ItemEnabled(6, false));
        QVERIFY_THROWS_EXCEPTION(Error, menu.ItemSubText(-1, u"x"_s));
    }

    void keys_choose_over_titles_and_separators() {
        DropMenu menu;
        QSignalSpy chosen(&menu, &DropMenu::ItemClick);
        fill(menu);
        show(menu);
        QTest::keyClick(&menu, Qt::Key_Down);
        QTest::keyClick(&menu, Qt::Key_Down);
        QTest::keyClick(&menu, Qt::Key_Return);
        QVERIFY(!menu.isVisible());
        QTRY_COMPARE(chosen.size(), 1);
        QCOMPARE(chosen.constFirst().constFirst().toInt(), 4);
    }

    void escape_chooses_nothing() {
        DropMenu menu;
        QSignalSpy chosen(&menu, &DropMenu::ItemClick);
        fill(menu);
        show(menu);
        QTest::keyClick(&menu, Qt::Key_Down);
        QTest::keyClick(&menu, Qt::Key_Escape);
        QVERIFY(!menu.isVisible());
        QCoreApplication::processEvents();
        QVERIFY(chosen.isEmpty());
    }

    void a_click_chooses_and_one_on_the_title_does_not() {
        DropMenu menu;
        QSignalSpy chosen(&menu, &DropMenu::ItemClick);
        fill(menu);
        show(menu);
        QTest::mouseClick(&menu, Qt::LeftButton, {}, place(menu, 1).center());
        QVERIFY(menu.isVisible());
        QTest::mouseClick(&menu, Qt::LeftButton, {}, place(menu, 5).center());
        QTRY_COMPARE(chosen.size(), 1);
        QCOMPARE(chosen.constFirst().constFirst().toInt(), 5);
    }

    void an_ampersand_is_no_access_key() {
        DropMenu menu;
        QSignalSpy chosen(&menu, &DropMenu::ItemClick);
        menu.AddItem(u"&Quit"_s, DropMenu::kItem, 0);
        show(menu);
        QTest::keyClick(&menu, Qt::Key_Q);
        QCoreApplication::processEvents();
        QVERIFY(chosen.isEmpty());
        QCOMPARE(menu.ItemCaption(1), u"&Quit"_s);
    }

    void the_choice_arrives_when_the_menu_is_closed() {
        auto* menu = new DropMenu;
        bool open = true;
        on(menu, &DropMenu::ItemClick, menu, [&, menu] {
            open = menu->isVisible();
            delete menu;
        });
        fill(*menu);
        show(*menu);
        QPointer<DropMenu> alive = menu;
        QTest::keyClick(menu, Qt::Key_Down);
        QTest::keyClick(menu, Qt::Key_Return);
        QTRY_VERIFY(alive.isNull());
        QVERIFY(!open);
    }

    void choosing_leaves_the_ticks_where_the_caller_set_them() {
        DropMenu menu;
        QSignalSpy chosen(&menu, &DropMenu::ItemClick);
        fill(menu);
        menu.actions().at(2)->trigger();
        QTRY_COMPARE(chosen.size(), 1);
        QVERIFY(menu.item_checked(3));
        QVERIFY(menu.actions().at(2)->isChecked());
    }

    void screen_readers_hear_captions_ticks_and_states() {
        DropMenu menu;
        fill(menu);
        QAccessibleInterface* bar = QAccessible::queryAccessibleInterface(&menu);
        QVERIFY(bar);
        QCOMPARE(bar->childCount(), 5);
        QCOMPARE(bar->child(3)->text(QAccessible::Name), u"Source"_s);
        QCOMPARE(bar->child(4)->text(QAccessible::Name), u"Save & New & more go"_s);
        QVERIFY(bar->child(2)->state().checked);
        QVERIFY(bar->child(0)->state().disabled);
        QVERIFY(!bar->child(3)->state().disabled);
    }

    void a_trailing_separator_is_shown() {
        DropMenu menu;
        menu.AddItem(u"Select a scanner"_s, DropMenu::kItem, 0);
        menu.AddItem({}, DropMenu::kSeparator, 0);
        show(menu);
        QVERIFY(!place(menu, 2).isEmpty());
    }

    void every_text_has_room_and_padding() {
        DropMenu menu;
        fill(menu);
        show(menu);
        const QFontMetrics metrics(menu.font());
        const QRect item = place(menu, 1);
        QVERIFY(item.width() >= metrics.horizontalAdvance(menu.ItemCaption(1)) + 24 + 24);
        QVERIFY(item.height() >= metrics.height() + 4);
        QVERIFY(place(menu, 4).height() >= item.height() + metrics.height() * 3 / 4);
    }

    void a_clipped_or_endless_caption_does_not_widen_the_menu() {
        DropMenu menu;
        menu.AddItem(QString(32000, u'W'), DropMenu::kItem, 0);
        show(menu);
        QVERIFY(menu.width() <= menu.screen()->geometry().width());
        menu.hide();
        menu.ItemClip(1, 1);
        menu.ItemSubText(1, u"x"_s);
        menu.addAction(u"later"_s);
        show(menu);
        QVERIFY(menu.width() < 400);
    }

    void the_look_is_painted() {
        DropMenu menu;
        menu.setPalette(QPalette(QColor(240, 240, 240)));
        fill(menu);
        show(menu);
        QTest::keyClick(&menu, Qt::Key_Down);
        QTest::keyClick(&menu, Qt::Key_Down);
        QCOMPARE(menu.activeAction(), menu.actions().at(3));
        const QImage image = menu.grab().toImage();
        const QRect selected = place(menu, 4);
        QCOMPARE(image.pixelColor(selected.left() + 2, selected.center().y()), QColor(0, 0, 128));
        QCOMPARE(image.pixelColor(selected.left() + 6, selected.center().y()),
                 QColor(255, 238, 194));
        QVERIFY(holds_color(image, selected, QColor(0, 0, 255)));
        const QRect plain = place(menu, 5);
        QCOMPARE(image.pixelColor(plain.right() - 4, plain.center().y()), QColor(255, 255, 255));
        const int near_edge = image.pixelColor(1, plain.center().y()).red();
        QVERIFY2(near_edge >= 248 && near_edge <= 250, qPrintable(QString::number(near_edge)));
        QVERIFY(holds_color(image, place(menu, 1), QColor(128, 128, 128)));
        QVERIFY(!holds_color(image, place(menu, 1), QColor(0, 0, 0)));
        const QRect tick(1, place(menu, 3).top(), 22, place(menu, 3).height());
        QVERIFY(holds_color(image, tick, menu.palette().color(QPalette::WindowText)));
    }

    void a_dark_palette_gets_a_dark_menu_with_light_text() {
        DropMenu menu;
        QPalette dark(QColor(45, 45, 45));
        dark.setColor(QPalette::WindowText, Qt::white);
        menu.setPalette(dark);
        fill(menu);
        show(menu);
        const QImage image = menu.grab().toImage();
        const QRect plain = place(menu, 5);
        QVERIFY(image.pixelColor(plain.right() - 4, plain.center().y()).lightness() < 80);
        QVERIFY(holds_color(image, plain, QColor(255, 255, 255)));
    }

    void it_opens_under_its_widget_without_blocking() {
        QWidget button;
        button.setGeometry(200, 100, 80, 30);
        button.show();
        QVERIFY(QTest::qWaitForWindowExposed(&button));
        DropMenu menu;
        fill(menu);
        menu.show_under(&button);
        QVERIFY(menu.isVisible());
        QCOMPARE(menu.pos(), button.mapToGlobal(QPoint(0, button.height())));
    }
};

QTEST_MAIN(DropMenuTest)
#include "drop_menu_test.moc"
