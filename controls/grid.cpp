// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "controls/grid.h"

#include "common/error_trap.h"
#include "controls/grid_delegate.h"
#include "controls/grid_model.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <algorithm>

namespace folidex {

namespace {

constexpr int kRowPadding = 8;
constexpr int kEnter = 13;
constexpr int kHeaderRow = 0;
constexpr int kNoRow = -1;

} // namespace

// Removing rows moves the current row while the model is half changed; the forms hear of it
// when the change is done.
class Grid::Change {
public:
    explicit Change(Grid& grid) : grid_(grid) { ++grid_.changes_; }
    ~Change() {
        if (--grid_.changes_ > 0)
            return;
        const QModelIndex current = grid_.currentIndex();
        if (current.isValid() && !grid_.selectionModel()->isSelected(current))
            grid_.selectRow(current.row());
        if (grid_.row_changed_)
            grid_.announce_row();
    }
    Change(const Change&) = delete;
    Change& operator=(const Change&) = delete;

private:
    Grid& grid_;
};

Grid::Grid(QWidget* parent) : QTableView(parent), model_(new GridModel(this)) {
    setItemDelegate(new GridDelegate(this));
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setShowGrid(false);
    setHorizontalScrollMode(ScrollPerPixel);
    setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_Hover);
    setCornerButtonEnabled(false);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    connect_header();
    fit_row_height();
    setModel(model_);
    set_layout(1, 0);
}

void Grid::connect_header() {
    QHeaderView* header = horizontalHeader();
    header->setSectionsClickable(true);
    header->setHighlightSections(false);
    header->setStretchLastSection(true);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    on(header, &QHeaderView::sectionPressed, this, [this](int section) {
        set_row(kHeaderRow);
        mouse_row_ = kHeaderRow;
        mouse_column_ = section;
    });
    on(header, &QHeaderView::sectionClicked, this, [this](int) { Q_EMIT click(); });
    on(header, &QHeaderView::sectionDoubleClicked, this, [this](int section) {
        mouse_row_ = kHeaderRow;
        mouse_column_ = section;
        Q_EMIT dbl_click();
    });
}

void Grid::set_layout(int columns, int fixed_rows) {
    fixed_rows_ = fixed_rows > 0 ? 1 : 0;
    horizontalHeader()->setVisible(fixed_rows_ > 0);
    model_->set_columns(columns);
    if (model() != model_)
        setModel(model_);
    announced_row_ = row();
}

void Grid::set_headers(const QStringList& captions) {
    model_->set_headers(captions);
}

int Grid::rows() const {
    return model()->rowCount() + fixed_rows_;
}

void Grid::set_rows(int rows) {
    if (model() != model_)
        return;
    const Change change(*this);
    model_->set_row_count(std::max(rows - fixed_rows_, 0));
}

int Grid::add_row(const QString& text) {
    set_rows(rows() + 1);
    const int last = rows() - 1;
    set_text(last, 0, text);
    return last;
}

void Grid::remove_row(int row) {
    if (model() != model_)
        return;
    const Change change(*this);
    model_->remove_row(row - fixed_rows_);
}

QString Grid::text(int row, int column) const {
    if (row < fixed_rows_)
        return row == kHeaderRow
                   ? model()->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString()
                   : QString();
    return model()->index(row - fixed_rows_, column).data(Qt::DisplayRole).toString();
}

void Grid::set_text(int row, int column, const QString& text) {
    if (model() == model_)
        model_->set_text(row - fixed_rows_, column, text);
}

void Grid::set_picture(int row, int column, const QPixmap& picture) {
    if (model() == model_)
        model_->set_picture(row - fixed_rows_, column, picture);
}

void Grid::set_cell_color(int row, int column, const QColor& color) {
    if (model() == model_)
        model_->set_color(row - fixed_rows_, column, color);
}

QColor Grid::cell_color(int row, int column) const {
    return qvariant_cast<QColor>(
        model()->index(row - fixed_rows_, column).data(Qt::BackgroundRole));
}

int Grid::row() const {
    const QModelIndex current = currentIndex();
    if (current.isValid())
        return current.row() + fixed_rows_;
    return fixed_rows_ > 0 ? kHeaderRow : kNoRow;
}

void Grid::set_row(int row) {
    const QModelIndex wanted = model()->index(row - fixed_rows_, std::max(0, columnAt(0)));
    if (!wanted.isValid()) {
        selectionModel()->clear();
        return;
    }
    setCurrentIndex(wanted);
}

void Grid::show_row(int row) {
    scrollTo(model()->index(row - fixed_rows_, std::max(0, columnAt(0))));
}

int Grid::find_row(const QString& text, int from_row, int column) const {
    const int count = model()->rowCount();
    for (int at = std::max(from_row - fixed_rows_, 0); at < count; ++at)
        if (model()->index(at, column).data(Qt::DisplayRole).toString() == text)
            return at + fixed_rows_;
    return kNoRow;
}

void Grid::setModel(QAbstractItemModel* model) {
    const QItemSelectionModel* former = selectionModel();
    QTableView::setModel(model);
    if (former != selectionModel())
        delete former;
    announced_row_ = row();
}

void Grid::reset() {
    QTableView::reset();
    if (selectionModel() && announced_row_ != row())
        announce_row();
}

void Grid::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTableView::currentChanged(current, previous);
    if (current.row() == previous.row())
        return;
    if (changes_ > 0)
        row_changed_ = true;
    else
        announce_row();
}

void Grid::announce_row() {
    row_changed_ = false;
    announced_row_ = row();
    Q_EMIT after_row_col_change();
}

QItemSelectionModel::SelectionFlags Grid::selectionCommand(const QModelIndex& index,
                                                           const QEvent* event) const {
    const auto command = QTableView::selectionCommand(index, event);
    // The current row is always the marked one; nothing may leave it current but unmarked.
    if (command & (QItemSelectionModel::Deselect | QItemSelectionModel::Toggle))
        return QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows;
    return command;
}

bool Grid::is_mark(const QModelIndex& index) const {
    return index.isValid() && index.column() == 0 &&
           !index.data(Qt::DecorationRole).value<QPixmap>().isNull();
}

void Grid::remember_place(const QModelIndex& index) {
    pressed_ = index;
    mouse_row_ = index.isValid() ? index.row() + fixed_rows_ : kNoRow;
    mouse_column_ = index.isValid() ? index.column() : -1;
}

void Grid::mousePressEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    remember_place(index);
    // Beside the rows nothing is chosen, and what is chosen stays.
    if (index.isValid())
        QTableView::mousePressEvent(event);
}

void Grid::mouseMoveEvent(QMouseEvent* event) {
    const bool over_mark = is_mark(indexAt(event->position().toPoint()));
    viewport()->setCursor(over_mark ? Qt::PointingHandCursor : Qt::ArrowCursor);
    QTableView::mouseMoveEvent(event);
}

void Grid::mouseReleaseEvent(QMouseEvent* event) {
    QTableView::mouseReleaseEvent(event);
    const QModelIndex index = indexAt(event->position().toPoint());
    const bool same = index.isValid() && pressed_ == index;
    pressed_ = QModelIndex();
    if (same && event->button() == Qt::LeftButton)
        Q_EMIT click();
}

void Grid::mouseDoubleClickEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    remember_place(index);
    // The release that follows belongs to the double click and is no click of its own.
    pressed_ = QModelIndex();
    if (!index.isValid())
        return;
    QTableView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton)
        Q_EMIT dbl_click();
}

void Grid::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const QPersistentModelIndex mark = currentIndex().siblingAtColumn(0);
    if (!enter)
        QTableView::keyPressEvent(event);
    // Enter belongs to the grid, not to the default button of the form around it.
    event->setAccepted(enter || event->isAccepted());
    if (event->key() == Qt::Key_Delete && is_mark(mark)) {
        event->accept();
        remember_place(mark);
        Q_EMIT click();
        return;
    }
    Q_EMIT key_down(enter ? kEnter : event->key());
}

void Grid::focusInEvent(QFocusEvent* event) {
    const bool by_key =
        event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    if (currentIndex().isValid() || !by_key) {
        // The view would make its first row current without marking it.
        QAbstractScrollArea::focusInEvent(event);
        viewport()->update();
        return;
    }
    QTableView::focusInEvent(event);
    if (currentIndex().isValid())
        selectRow(currentIndex().row());
}

void Grid::fit_row_height() {
    const int height = fontMetrics().height() + kRowPadding;
    verticalHeader()->setMinimumSectionSize(height);
    verticalHeader()->setDefaultSectionSize(height);
}

void Grid::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        fit_row_height();
}

bool Grid::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::Leave)
        viewport()->unsetCursor();
    return QTableView::viewportEvent(event);
}

} // namespace folidex
