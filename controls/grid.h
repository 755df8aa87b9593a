// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QColor>
#include <QPixmap>
#include <QTableView>

namespace folidex {

class GridModel;

/// The grid of the forms: rows of text, whole rows selected, a current row. Row numbers count
/// the header as row 0 when the grid has one (fixed_rows 1), so that data begins at row 1; a
/// click on the header makes row 0 the current one. It shows its own model or any other table
/// model; the members that change rows work on the grid's own model only and do nothing while
/// another is shown. A cell that does not exist reads as empty. Texts are shown on one line;
/// the last visible column takes the width that is left.
/// A picture in column 0 is a mark to click on: it reacts to the pointer, and Delete on its
/// row does what a click on it does.
class Grid : public QTableView {
    Q_OBJECT

public:
    explicit Grid(QWidget* parent = nullptr);

    /// Columns and whether there is a header row (0 or 1). Clears the grid.
    void set_layout(int columns, int fixed_rows);
    int fixed_rows() const { return fixed_rows_; }
    void set_headers(const QStringList& captions);

    /// Number of rows, the header included.
    int rows() const;
    void set_rows(int rows);
    /// Appends a row with a text in column 0 and returns its number.
    int add_row(const QString& text = {});
    void remove_row(int row);

    QString text(int row, int column) const;
    void set_text(int row, int column, const QString& text);
    void set_picture(int row, int column, const QPixmap& picture);
    /// Colours a cell's background; an invalid colour is the default.
    void set_cell_color(int row, int column, const QColor& color);
    QColor cell_color(int row, int column) const;

    /// The current row: 0 is the header, -1 none at all (only without a header row).
    int row() const;
    void set_row(int row);
    /// Scrolls a row into view.
    void show_row(int row);
    /// Where the last mouse press was; -1 outside the rows. The header row is row 0.
    int mouse_row() const { return mouse_row_; }
    int mouse_column() const { return mouse_column_; }

    /// First row from a row on whose cell in a column is exactly a text; -1 when none is.
    int find_row(const QString& text, int from_row, int column) const;

    void setModel(QAbstractItemModel* model) override;
    void reset() override;

Q_SIGNALS:
    void click();
    void dbl_click();
    void after_row_col_change();
    /// A key was pressed in the grid; Enter is 13, other keys their Qt code.
    void key_down(int key_code);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override;

private:
    class Change;
    void connect_header();
    void fit_row_height();
    bool is_mark(const QModelIndex& index) const;
    void remember_place(const QModelIndex& index);
    void announce_row();

    GridModel* model_;
    int fixed_rows_ = 0;
    int mouse_row_ = -1;
    int mouse_column_ = -1;
    QPersistentModelIndex pressed_;
    int changes_ = 0;
    bool row_changed_ = false;
    int announced_row_ = -1;
};

} // namespace folidex
