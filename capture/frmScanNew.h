// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QDialog>
#include <memory>
#include <optional>

class QLabel;
class QLineEdit;
class QPushButton;
class QTimer;
class QToolButton;

namespace Ui {
class frmScanNew;
}

namespace folidex {

class ActiveLink;
class DatePicker;
class DropMenu;
class Grid;
class Scanner;
class TagCombo;

/// The capture form: one document with its description, date, tags and pages, new (sel_link
/// below 1) or on file. Set sel_link, construct, exec(); a document on file is loaded once the
/// form is on screen. One instance serves one opening; every way of closing it drops a scan
/// that was not saved.
class frmScanNew : public QDialog {
    Q_OBJECT

public:
    explicit frmScanNew(QWidget* parent = nullptr);
    ~frmScanNew() override;

    /// The one road by which the form closes, by whatever means.
    void done(int result) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    // frmScanNew.cpp
    void take_controls(const Ui::frmScanNew& layout);
    void dress_controls();
    void connect_controls();
    void Form_Load();
    void Form_QueryUnload();
    void cmdCancel_Click();
    void cmdHelp_Click();
    void OsenXPButton1_Click();
    void Dmnu_ItemClick(int index);
    void keep_tags(bool keep);

    // document_editor.cpp
    void Timer1_Timer();
    void fill_me();
    void fill_tag_grid();
    void pop_me();
    void clr_me();
    void enb_me();
    void show_mode();
    void cmdAdd_Click();
    void add_tag_row(const QString& description, const QString& link);
    void cmbTags_KeyDown(int key_code);
    void fg1_Click();
    void show_tag_hint();
    void dt_Change();
    void txtDescription_Change();

    // filing.cpp
    bool save_me();
    void file_new_document();
    void file_edited_document();
    bool validate_save();
    bool refuse(const QString& prompt, QWidget* focus);
    bool del_efile();
    void del_tmpfile();
    void cmdSave_Click();
    void cmdSave2_Click();
    void cmdDrop_Click();
    double document_date() const;
    QStringList assigned_tags() const;

    // scanning.cpp
    void cmdScan_Click();
    void scan_file(int source_index, QString& file_path);
    void acquire_into(int source_index, QString& file_path);
    void show_scanners();
    void show_pages_state();
    void cmdView_Click();
    void mnu_pdf();
    void open_file(const QString& path);

    QLineEdit* txtDescription = nullptr;
    DatePicker* dt = nullptr;
    TagCombo* cmbTags = nullptr;
    QPushButton* cmdAdd = nullptr;
    Grid* fg1 = nullptr;
    QLabel* Picture1 = nullptr;
    QPushButton* cmdScan = nullptr;
    QLabel* lblScan = nullptr;
    QLabel* lblPagesState = nullptr;
    QLabel* lblTagHint = nullptr;
    QPushButton* cmdView = nullptr;
    QPushButton* cmdSave = nullptr;
    QPushButton* cmdSave2 = nullptr;
    QToolButton* cmdDrop = nullptr;
    QPushButton* cmdCancel = nullptr;
    QPushButton* cmdHelp = nullptr;
    QPushButton* OsenXPButton1 = nullptr;
    QTimer* Timer1 = nullptr;
    ActiveLink* AL1 = nullptr;
    DropMenu* Dmnu = nullptr;
    std::unique_ptr<Scanner> Twain1;

    int doc_link = 0;
    QString doc_fname;
    QString doc_location;
    QString tmp_file;
    bool new_scan = false;
    bool is_dirty = false;
    bool retain_tags = false;

    /// A stored date as it was and as the date picker shows it: what the picker cannot hold is
    /// filed again unchanged unless the user sets another date.
    struct LoadedDate {
        double stored;
        double shown;
    };
    std::optional<LoadedDate> loaded_date_;
    int scanned_pages_ = 0;
    bool unloaded_ = false;
};

} // namespace folidex
