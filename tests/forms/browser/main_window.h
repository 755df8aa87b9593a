// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "browser/frmMain.h"
#include "common/error.h"
#include "tests/support/planned_boxes.h"
#include "tests/support/test_station.h"

#include <QPointer>
#include <QStringList>

class QModelIndex;

namespace folidex::test {

/// The main window on a station of its own. What start-up hands the window is played here: each
/// form that it shows runs a step of the test instead.
class MainWindow {
public:
    MainWindow();
    ~MainWindow();

    /// Opens the window, a new one each time, as a new run of the program would.
    frmMain& open();
    frmMain& operator*() const { return *window; }
    frmMain* operator->() const { return window; }

    /// Types a tag into the combo and presses Enter.
    void choose(const QString& tag);
    QStringList chosen() const;    ///< column 1 of the chosen tags
    QStringList documents() const; ///< descriptions of the listed documents
    void click(Grid* grid, int row, int column) const;
    /// The highlighted chosen tags, by description.
    QStringList highlighted() const;
    /// The saved flag of a tag, as text.
    QString saved_flag(int tag) const;
    /// Text of an element of the preferences document under the root.
    QString preference(const QString& element) const;
    void set_preference(const QString& element, const QString& text);

    TestStation station;
    PlannedBoxes boxes;
    QPointer<frmMain> window;

    std::function<void()> in_capture = [] {};
    std::function<void()> in_tags = [] {};
    QList<int> captured; ///< sel_link each time the capture form was shown
    int tag_catalogues = 0;
    int data_locations = 0;
    QStringList shown_files;
    QStringList opened; ///< what the link control handed to the desktop
    QList<int> ended;   ///< numbers of the errors that ended the program

    /// 12 October 2009.
    static constexpr double kDay = 40098;

private:
    std::function<void(const Error&)> former_end_;
    std::function<void(const QString&)> former_opener_;
};

} // namespace folidex::test
