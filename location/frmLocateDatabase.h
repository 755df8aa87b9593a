// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QDialog>
#include <functional>
#include <memory>
#include <optional>

namespace Ui {
class frmLocateDatabase;
}

namespace folidex {

class ActiveLink;

/// The form that tells the program where its data folder is: makes a new one from the template
/// database or points at an existing one, records it and starts the program again. It is the
/// only window open while it shows; cancelling it ends the program.
class frmLocateDatabase : public QDialog {
    Q_OBJECT

public:
    /// start_again is the way back into start-up once a folder has been recorded.
    explicit frmLocateDatabase(std::function<void()> start_again, QWidget* parent = nullptr);
    ~frmLocateDatabase() override;

    /// Seam for tests: the folder picker.
    static std::function<std::optional<QString>(QWidget* owner, const QString& title)>
        folder_picker;

private:
    void Form_Load();
    void cmdBrowse1_Click();
    void cmdBrowse2_Click();
    void cmdSave_Click();
    void cmdCancel_Click();
    void cmdHelp_Click();
    bool create_folder();
    // Two entry points without an action.
    void open_db();
    void OsenXPButton1_Click();

    void connect_controls();
    void follow_option();
    bool save_new_folder();
    void record_and_start_again();

    std::unique_ptr<Ui::frmLocateDatabase> ui_;
    std::function<void()> start_again_;
    ActiveLink* AL1;
};

/// The form's explanatory text; the last sentence only on a first start.
QString location_explanation(const QString& product, bool with_note);
/// A path without one separator at its end.
QString without_trailing_separator(const QString& path);

} // namespace folidex
