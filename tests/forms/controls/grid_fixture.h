// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "controls/grid.h"

#include <QTest>

/// What the tests of the grid share.
namespace grid_fixture {

using namespace folidex;
using namespace Qt::StringLiterals;

inline void fill(Grid& grid, int fixed_rows, int rows = 4) {
    grid.set_layout(3, fixed_rows);
    grid.set_headers({u"Date"_s, u"Description"_s, u"Link"_s});
    for (int i = 0; i < rows; ++i) {
        const int row = grid.add_row(u"a%1"_s.arg(i));
        grid.set_text(row, 1, u"b%1"_s.arg(i));
        grid.set_text(row, 2, u"c%1"_s.arg(i));
    }
}

inline void show(Grid& grid) {
    grid.resize(400, 300);
    grid.show();
    grid.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&grid));
}

/// The middle of a data cell in the viewport; rows as the grid counts them.
inline QPoint middle(const Grid& grid, int row, int column) {
    return grid.visualRect(grid.model()->index(row - grid.fixed_rows(), column)).center();
}

inline bool marked(const Grid& grid, int row) {
    return grid.selectionModel()->isRowSelected(row - grid.fixed_rows(), {});
}

inline QPixmap mark() {
    QPixmap picture(16, 16);
    picture.fill(Qt::black);
    return picture;
}

} // namespace grid_fixture
