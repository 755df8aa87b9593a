// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/error_trap.h"
#include "controls/grid_delegate.h"
#include "tests/forms/controls/counting.h"
#include "tests/forms/controls/grid_fixture.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QLineEdit>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

using namespace folidex;
using namespace grid_fixture;
using namespace Qt::StringLiterals;

class GridTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rows_count_from_the_header_when_there_is_one() {
        Grid plain;
        fill(plain, 0);
        QCOMPARE(plain.rows(), 4);
        QCOMPARE(plain.text(0, 1), u"b0"_s);
        QVERIFY(plain.horizontalHeader()->isHidden());
        Grid headed;
        fill(headed, 1);
        QCOMPARE(headed.rows(), 5);
        QCOMPARE(headed.text(0, 1), u"Description"_s);
        QCOMPARE(headed.text(1, 1), u"b0"_s);
        QVERIFY(!headed.horizontalHeader()->isHidden());
    }

    void an_empty_grid_has_no_row_or_its_header_row() {
        Grid plain;
        plain.set_layout(3, 0);
        QCOMPARE(plain.row(), -1);
        QCOMPARE(plain.rows(), 0);
        Grid headed;
        headed.set_layout(3, 1);
        QCOMPARE(headed.row(), 0);
        QCOMPARE(headed.rows(), 1);
    }

    void what_does_not_exist_reads_as_empty_and_is_not_written() {
        Grid grid;
        fill(grid, 1);
        QCOMPARE(grid.text(1, 3), QString());
        QCOMPARE(grid.text(5, 0), QString());
        QCOMPARE(grid.text(-1, 0), QString());
        grid.set_text(9, 0, u"x"_s);
        grid.set_text(1, 9, u"x"_s);
        grid.remove_row(0);
        grid.remove_row(99);
        QCOMPARE(grid.rows(), 5);
        QVERIFY(!grid.cell_color(9, 9).isValid());
    }

    void shrinking_to_the_header_empties_the_grid() {
        Grid grid;
        fill(grid, 1);
        grid.set_row(3);
        grid.set_rows(1);
        QCOMPARE(grid.rows(), 1);
        QCOMPARE(grid.row(), 0);
        grid.set_rows(0);
        QCOMPARE(grid.rows(), 1);
    }

    void removing_a_row_moves_the_others_up() {
        Grid grid;
        fill(grid, 0);
        grid.remove_row(1);
        QCOMPARE(grid.rows(), 3);
        QCOMPARE(grid.text(1, 2), u"c2"_s);
    }

    void a_found_row_holds_exactly_the_text() {
        Grid grid;
        grid.set_layout(2, 1);
        for (const QString& text : {u"Bills 2026"_s, u"bills"_s, u"Bills"_s, u"Bills"_s})
            grid.set_text(grid.add_row(), 1, text);
        QCOMPARE(grid.find_row(u"Bills"_s, 0, 1), 3);
        QCOMPARE(grid.find_row(u"Bills"_s, 4, 1), 4);
        QCOMPARE(grid.find_row(u"Bills"_s, 5, 1), -1);
        QCOMPARE(grid.find_row(u"ills"_s, 0, 1), -1);
        QCOMPARE(grid.find_row(u"Bills"_s, 0, 0), -1);
    }

    void a_change_by_removal_is_told_when_the_rows_are_gone() {
        Grid grid;
        fill(grid, 1);
        grid.set_row(2);
        QList<int> seen;
        on(&grid, &Grid::after_row_col_change, &grid, [&] { seen.append(grid.rows()); });
        grid.set_rows(1);
        QCOMPARE(seen, QList<int>{1});
    }

    void keys_are_told_and_enter_is_thirteen() {
        QWidget form;
        Grid grid(&form);
        fill(grid, 1);
        form.show();
        grid.setFocus();
        QSignalSpy keys(&grid, &Grid::key_down);
        QTest::keyClick(&grid, Qt::Key_Return);
        QTest::keyClick(&grid, Qt::Key_Enter);
        QTest::keyClick(&grid, Qt::Key_A);
        QCOMPARE(keys.size(), 3);
        QCOMPARE(keys.at(0).constFirst().toInt(), 13);
        QCOMPARE(keys.at(1).constFirst().toInt(), 13);
        QCOMPARE(keys.at(2).constFirst().toInt(), int(Qt::Key_A));
    }

    void tab_comes_and_goes_and_marks_the_first_row() {
        QWidget form;
        QLineEdit before(&form);
        Grid grid(&form);
        QLineEdit after(&form);
        fill(grid, 1);
        QWidget::setTabOrder(&before, &grid);
        QWidget::setTabOrder(&grid, &after);
        before.setFocus();
        form.show();
        form.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&form));
        QTest::keyClick(&before, Qt::Key_Tab);
        QVERIFY(grid.hasFocus());
        QCOMPARE(grid.row(), 1);
        QVERIFY(marked(grid, 1));
        QTest::keyClick(&grid, Qt::Key_Tab);
        QVERIFY(after.hasFocus());
    }

    void focus_without_a_key_chooses_no_row() {
        QWidget form;
        QLineEdit before(&form);
        Grid grid(&form);
        fill(grid, 1);
        form.show();
        form.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&form));
        before.setFocus();
        grid.setFocus();
        QVERIFY(grid.hasFocus());
        QCOMPARE(grid.row(), 0);
    }

    void delete_on_a_row_with_a_mark_is_a_click_on_the_mark() {
        Grid grid;
        fill(grid, 0);
        show(grid);
        grid.set_picture(2, 0, mark());
        QSignalSpy clicks(&grid, &Grid::click);
        grid.set_row(1);
        QTest::keyClick(&grid, Qt::Key_Delete);
        QCOMPARE(clicks.size(), 0);
        grid.set_row(2);
        QTest::keyClick(&grid, Qt::Key_Delete);
        QCOMPARE(clicks.size(), 1);
        QCOMPARE(grid.mouse_row(), 2);
        QCOMPARE(grid.mouse_column(), 0);
    }

    void cell_colours_are_kept_and_painted() {
        Grid grid;
        fill(grid, 0);
        const QColor pale(240, 240, 250);
        grid.set_cell_color(1, 0, pale);
        QCOMPARE(grid.cell_color(1, 0), pale);
        QVERIFY(!grid.cell_color(1, 1).isValid());
        show(grid);
        const QRect cell = grid.visualRect(grid.model()->index(1, 0));
        QCOMPARE(grid.viewport()->grab().toImage().pixelColor(cell.right() - 3, cell.center().y()),
                 pale);
        grid.set_cell_color(1, 0, {});
        QVERIFY(!grid.cell_color(1, 0).isValid());
    }

    void texts_are_shown_on_one_line_and_kept_as_they_are_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("line breaks") << u"one\r\ntwo\nthree\u2028four"_s;
        QTest::newRow("32,000 characters") << QString(32000, u'm');
        QTest::newRow("right to left") << u"\u05E9\u05DC\u05D5\u05DD & \u202Ex"_s;
        QTest::newRow("emoji") << QString(u"\U0001F4C4"_s).repeated(800);
        QTest::newRow("quotes") << u"'\"%1 & <b>"_s;
    }

    void texts_are_shown_on_one_line_and_kept_as_they_are() {
        QFETCH(QString, text);
        Grid grid;
        fill(grid, 0);
        show(grid);
        const int height = grid.rowHeight(1);
        grid.set_text(1, 1, text);
        QCOMPARE(grid.text(1, 1), text);
        QCOMPARE(grid.find_row(text, 0, 1), 1);
        QCOMPARE(grid.rowHeight(1), height);
        auto* delegate = qobject_cast<QStyledItemDelegate*>(grid.itemDelegate());
        const QString shown = delegate->displayText(text, {});
        QVERIFY(!shown.isEmpty());
        QVERIFY(!shown.contains(u'\n') && !shown.contains(u'\r') && !shown.contains(u'\u2028'));
        QVERIFY(!grid.viewport()->grab().isNull());
    }

    void row_height_follows_the_font() {
        Grid grid;
        fill(grid, 0);
        show(grid);
        QVERIFY(grid.rowHeight(0) >= grid.fontMetrics().height());
        QFont large = grid.font();
        large.setPointSize(30);
        grid.setFont(large);
        QVERIFY(grid.rowHeight(0) >= QFontMetrics(large).height());
        grid.add_row(u"x"_s);
        QCOMPARE(grid.rowHeight(4), grid.rowHeight(0));
    }

    void another_model_is_shown_and_not_written() {
        QStandardItemModel model(3, 2);
        model.setHorizontalHeaderLabels({u"Date"_s, u"Description"_s});
        model.setItem(1, 1, new QStandardItem(u"Second"_s));
        Grid grid;
        grid.set_layout(2, 1);
        grid.setModel(&model);
        QCOMPARE(grid.rows(), 4);
        QCOMPARE(grid.text(0, 1), u"Description"_s);
        QCOMPARE(grid.text(2, 1), u"Second"_s);
        QCOMPARE(grid.find_row(u"Second"_s, 0, 1), 2);
        QSignalSpy changes(&grid, &Grid::after_row_col_change);
        grid.set_row(2);
        QCOMPARE(grid.row(), 2);
        QCOMPARE(changes.size(), 1);
        grid.set_rows(1);
        grid.set_text(2, 1, u"x"_s);
        QCOMPARE(grid.rows(), 4);
        QCOMPARE(grid.text(2, 1), u"Second"_s);
        model.clear();
        QCOMPARE(grid.row(), 0);
        QCOMPARE(changes.size(), 2);
    }

    void the_model_keeps_the_rules_of_models() {
        Grid grid;
        const QAbstractItemModelTester tester(
            grid.model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        fill(grid, 1, 20);
        grid.set_picture(3, 0, mark());
        grid.set_cell_color(3, 0, Qt::white);
        grid.remove_row(5);
        grid.remove_row(1);
        grid.set_rows(4);
        grid.set_rows(9);
        grid.set_layout(5, 0);
        QCOMPARE(grid.rows(), 0);
    }

    void a_hundred_thousand_rows_come_and_go_at_once() {
        Grid grid;
        grid.set_layout(5, 1);
        test::CountingDelegate<GridDelegate> delegate;
        grid.setItemDelegate(&delegate);
        show(grid);
        const QSignalSpy came(grid.model(), &QAbstractItemModel::rowsInserted);
        const QSignalSpy went(grid.model(), &QAbstractItemModel::rowsRemoved);
        grid.set_rows(100001);
        for (int row = 1; row <= 100000; ++row)
            grid.set_text(row, 1, u"x"_s);
        grid.set_row(100000);
        QVERIFY(!grid.grab().isNull());
        QCOMPARE(grid.row(), 100000);
        grid.set_rows(1);
        QCOMPARE(came.size(), 1);
        QCOMPARE(went.size(), 1);
        // The few that can be seen, however many there are.
        QVERIFY2(delegate.count < 1000, qPrintable(QString::number(delegate.count)));
    }
};

QTEST_MAIN(GridTest)
#include "grid_test.moc"
