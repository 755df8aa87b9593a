// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/forms/browser/main_window.h"

#include "app/process_values.h"
#include "common/error_trap.h"
#include "controls/active_link.h"
#include "controls/grid.h"
#include "controls/tag_combo.h"

#include <QLineEdit>
#include <QTest>

namespace folidex::test {

MainWindow::MainWindow() : former_end_(end_program), former_opener_(ActiveLink::opener) {
    end_program = [this](const Error& error) { ended.append(error.number); };
    ActiveLink::opener = [this](const QString& target) { opened.append(target); };
}

MainWindow::~MainWindow() {
    delete window;
    end_program = former_end_;
    ActiveLink::opener = former_opener_;
}

frmMain& MainWindow::open() {
    delete window;
    MainRoads roads;
    roads.show_capture = [this](QWidget* parent) {
        QCOMPARE(parent, window);
        captured.append(sel_link);
        in_capture();
    };
    roads.show_tags = [this](QWidget* parent) {
        QCOMPARE(parent, window);
        ++tag_catalogues;
        in_tags();
    };
    roads.show_data_location = [this] { ++data_locations; };
    roads.show_file = [this](const QString& path) { shown_files.append(path); };
    window = new frmMain(std::move(roads));
    window->show();
    if (!QTest::qWaitForWindowExposed(window))
        qFatal("the main window did not come up");
    return *window;
}

void MainWindow::choose(const QString& tag) {
    // To the widget with the focus, as a keyboard gives them: that is not the combo's field.
    window->cmbTags->setFocus();
    QTest::keyClicks(window->focusWidget(), tag);
    QTest::keyClick(window->focusWidget(), Qt::Key_Return);
}

QStringList MainWindow::chosen() const {
    QStringList tags;
    for (int row = 0; row < window->fgL->rows(); ++row)
        tags.append(window->fgL->text(row, 1));
    return tags;
}

QStringList MainWindow::documents() const {
    QStringList descriptions;
    for (int row = 1; row < window->fgR->rows(); ++row)
        descriptions.append(window->fgR->text(row, 1));
    return descriptions;
}

void MainWindow::click(Grid* grid, int row, int column) const {
    const QModelIndex index = grid->model()->index(row - grid->fixed_rows(), column);
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(index).center());
}

QStringList MainWindow::highlighted() const {
    QStringList tags;
    for (int row = 0; row < window->fgL->rows(); ++row)
        if (window->fgL->cell_color(row, 0) == window->tag_color(true))
            tags.append(window->fgL->text(row, 1));
    return tags;
}

QString MainWindow::saved_flag(int tag) const {
    Preferences().move_to_root();
    return Preferences()
        .child(QStringLiteral("tagprofiles"))
        .child(QStringLiteral("fdxloadfilter"))
        .child_text(QStringLiteral("Tag") + QString::number(tag));
}

QString MainWindow::preference(const QString& element) const {
    Preferences().move_to_root();
    return Preferences().child_text(element);
}

void MainWindow::set_preference(const QString& element, const QString& text) {
    Preferences().move_to_root();
    Preferences().set_child_text(element, text);
}

} // namespace folidex::test
