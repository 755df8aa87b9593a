// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/error_trap.h"
#include "tests/forms/controls/grid_fixture.h"

#include <QHeaderView>
#include <QSignalSpy>
#include <QTest>

using namespace folidex;
using namespace grid_fixture;
using namespace Qt::StringLiterals;

class GridPointerTest : public QObject {
    Q_OBJECT

private:
    static void press_at(Grid& grid, int row, int column) {
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, middle(grid, row, column));
    }

    static void double_click_at(Grid& grid, int row, int column) {
        press_at(grid, row, column);
        QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, middle(grid, row, column));
    }

    static QPoint header_middle(const Grid& grid, int column) {
        const QHeaderView* header = grid.horizontalHeader();
        return {header->sectionViewportPosition(column) + header->sectionSize(column) / 2,
                header->height() / 2};
    }

private Q_SLOTS:
    void the_current_row_is_always_the_marked_one() {
        Grid grid;
        fill(grid, 0);
        show(grid);
        grid.set_row(2);
        QVERIFY(marked(grid, 2));
        grid.remove_row(2);
        QVERIFY(grid.row() >= 0);
        QVERIFY(marked(grid, grid.row()));
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, Qt::ControlModifier, middle(grid, 0, 1));
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, Qt::ControlModifier, middle(grid, 0, 1));
        QCOMPARE(grid.row(), 0);
        QVERIFY(marked(grid, 0));
    }

    void a_click_tells_its_place_when_the_button_is_let_go() {
        Grid grid;
        fill(grid, 0);
        show(grid);
        QSignalSpy clicks(&grid, &Grid::click);
        QTest::mousePress(grid.viewport(), Qt::LeftButton, {}, middle(grid, 2, 1));
        QCOMPARE(clicks.size(), 0);
        QCOMPARE(grid.row(), 2);
        QTest::mouseRelease(grid.viewport(), Qt::LeftButton, {}, middle(grid, 2, 1));
        QCOMPARE(clicks.size(), 1);
        QCOMPARE(grid.mouse_row(), 2);
        QCOMPARE(grid.mouse_column(), 1);
    }

    void a_button_let_go_on_another_cell_or_another_button_is_no_click() {
        Grid grid;
        fill(grid, 0);
        show(grid);
        QSignalSpy clicks(&grid, &Grid::click);
        QTest::mousePress(grid.viewport(), Qt::LeftButton, {}, middle(grid, 2, 0));
        QTest::mouseRelease(grid.viewport(), Qt::LeftButton, {}, middle(grid, 2, 1));
        QTest::mouseClick(grid.viewport(), Qt::RightButton, {}, middle(grid, 1, 1));
        QCOMPARE(clicks.size(), 0);
    }

    void a_click_beside_the_rows_changes_nothing() {
        Grid grid;
        fill(grid, 0);
        show(grid);
        grid.set_row(1);
        QSignalSpy clicks(&grid, &Grid::click);
        QSignalSpy doubles(&grid, &Grid::dbl_click);
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, QPoint(20, 280));
        QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, QPoint(20, 280));
        QCOMPARE(clicks.size(), 0);
        QCOMPARE(doubles.size(), 0);
        QCOMPARE(grid.mouse_row(), -1);
        QCOMPARE(grid.row(), 1);
        QVERIFY(marked(grid, 1));
    }

    void a_handler_may_remove_the_clicked_row() {
        Grid grid;
        fill(grid, 0);
        show(grid);
        on(&grid, &Grid::click, &grid, [&] { grid.remove_row(grid.mouse_row()); });
        press_at(grid, 1, 0);
        QCOMPARE(grid.rows(), 3);
        QCOMPARE(grid.find_row(u"a1"_s, 0, 0), -1);
    }

    void a_double_click_is_one_click_and_one_double_click() {
        Grid grid;
        fill(grid, 1);
        show(grid);
        QSignalSpy clicks(&grid, &Grid::click);
        QSignalSpy doubles(&grid, &Grid::dbl_click);
        double_click_at(grid, 3, 1);
        QCOMPARE(clicks.size(), 1);
        QCOMPARE(doubles.size(), 1);
        QCOMPARE(grid.row(), 3);
    }

    void the_header_is_row_zero() {
        Grid grid;
        fill(grid, 1);
        show(grid);
        grid.set_row(2);
        QSignalSpy clicks(&grid, &Grid::click);
        QSignalSpy doubles(&grid, &Grid::dbl_click);
        QSignalSpy changes(&grid, &Grid::after_row_col_change);
        QWidget* header = grid.horizontalHeader()->viewport();
        QTest::mouseClick(header, Qt::LeftButton, {}, header_middle(grid, 1));
        QCOMPARE(grid.row(), 0);
        QVERIFY(!grid.selectionModel()->hasSelection());
        QCOMPARE(changes.size(), 1);
        QCOMPARE(clicks.size(), 1);
        QCOMPARE(grid.mouse_row(), 0);
        QCOMPARE(grid.mouse_column(), 1);
        QTest::mouseDClick(header, Qt::LeftButton, {}, header_middle(grid, 0));
        QCOMPARE(doubles.size(), 1);
        QCOMPARE(grid.row(), 0);
    }

    void a_change_of_the_current_row_is_told_once_however_it_comes() {
        Grid grid;
        fill(grid, 1);
        show(grid);
        QSignalSpy changes(&grid, &Grid::after_row_col_change);
        grid.set_row(2);
        QCOMPARE(changes.size(), 1);
        grid.set_row(2);
        QCOMPARE(changes.size(), 1);
        QTest::keyClick(&grid, Qt::Key_Down);
        QCOMPARE(changes.size(), 2);
        QCOMPARE(grid.row(), 3);
        press_at(grid, 1, 1);
        QCOMPARE(changes.size(), 3);
        press_at(grid, 1, 0);
        QCOMPARE(changes.size(), 3);
        grid.set_row(0);
        QCOMPARE(changes.size(), 4);
    }

    void a_mark_reacts_to_the_pointer() {
        Grid grid;
        fill(grid, 0);
        grid.set_picture(1, 0, mark());
        show(grid);
        const QRect cell = grid.visualRect(grid.model()->index(1, 0));
        const QImage before = grid.viewport()->grab(cell).toImage();
        QTest::mouseMove(grid.viewport(), middle(grid, 3, 2));
        QTest::mouseMove(grid.viewport(), cell.center());
        QTRY_COMPARE(grid.viewport()->cursor().shape(), Qt::PointingHandCursor);
        QTRY_VERIFY(grid.viewport()->grab(cell).toImage() != before);
        QTest::mouseMove(grid.viewport(), middle(grid, 3, 2));
        QTRY_COMPARE(grid.viewport()->cursor().shape(), Qt::ArrowCursor);
    }
};

QTEST_MAIN(GridPointerTest)
#include "grid_pointer_test.moc"
