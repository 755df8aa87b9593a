// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/filing.h"
#include "capture/frmScanNew.h"
#include "common/error_trap.h"
#include "common/message_box.h"
#include "common/paths.h"
#include "controls/date_picker.h"
#include "controls/grid.h"
#include "controls/tag_combo.h"
#include "tests/forms/capture/scripted_scanner.h"
#include "tests/support/planned_boxes.h"
#include "tests/support/test_station.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

namespace folidex::test {

/// A clerk at a station with the capture form open: a scripted scanner, planned boxes, a clock
/// that stands at 12 October 2009, 14:30:05, and hands that use the form's controls by name.
class CaptureDesk {
public:
    CaptureDesk();
    ~CaptureDesk();

    TestStation station;
    PlannedBoxes boxes;
    std::shared_ptr<ScannerScript> scanner = std::make_shared<ScannerScript>();
    QDateTime now{{2009, 10, 12}, {14, 30, 5}};
    QStringList opened; ///< targets that the link control was given
    QList<int> ended;   ///< numbers of failures that would have ended the program
    std::unique_ptr<frmScanNew> form;

    /// Opens the form for a document, or a new one, and waits until it is loaded.
    frmScanNew& open(int link = -1);
    /// The same without waiting for the document.
    frmScanNew& show(int link);
    template <class T> T* control(const char* name) const {
        T* found = form->findChild<T*>(QString::fromLatin1(name));
        if (!found)
            qFatal("no control %s", name);
        return found;
    }
    QLineEdit* description() const { return control<QLineEdit>("txtDescription"); }
    TagCombo* tags() const { return control<TagCombo>("cmbTags"); }
    Grid* assigned() const { return control<Grid>("fg1"); }
    DatePicker* date() const { return control<DatePicker>("dt"); }

    /// The named control that the focus is in, "" when there is none; also while the form is
    /// not the active window.
    QString focus_name() const;
    bool has_focus(const char* control) const {
        return focus_name() == QString::fromLatin1(control);
    }
    void click(const char* button) const;
    /// Types a description over what is there.
    void describe(const QString& text) const;
    /// Types a tag and presses Enter.
    void add_tag(const QString& text) const;
    /// Scans with a source by its name.
    void scan(const QString& source = QStringLiteral("Front desk"));
    /// Chooses an item of the menu that is open.
    void choose(const QString& caption) const;
    /// Captions of the menu built last, "-" for a separator, "*" before a checked item and "!"
    /// before one that cannot be chosen.
    QStringList menu() const;
    /// Descriptions and links in the tag grid, "Invoice=3".
    QStringList assigned_tags() const;
    /// What lies in the database: each document's description, date, file name and folder, and
    /// each pair of a document and a tag, in the order of their numbers.
    QStringList scans() const;
    QStringList tagged() const;
    void click_cell(int row, int column) const;
    void set_date(const QDate& date) const;

    /// A complete new document, ready to save.
    void fill_in(const QString& text, const QString& tag);

    QString temporary_scan() const {
        return join_path(station.app_data(), QStringLiteral("current_scan.pdf"));
    }
    /// The text of a filed PDF, "<none>" when there is none.
    QString filed(const QString& location, const QString& name) const;
    void put_file(const QString& location, const QString& name, const QByteArray& content) const;
    QStringList files(const QString& location) const;
    /// Puts a help page where the program looks for it.
    void have_help_page() const;

private:
    std::function<void(const Error&)> end_program_before_;
};

/// The end of a test: nothing was shown but what was planned, and nothing ended the program.
void leave(std::unique_ptr<CaptureDesk>& desk);

QString content_of(const QString& path);

} // namespace folidex::test
