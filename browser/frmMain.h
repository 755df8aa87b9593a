// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/shell.h"

#include <QVariant>
#include <QWidget>
#include <functional>

class QCheckBox;
class QGroupBox;
class QLabel;
class QPushButton;
class QToolBar;

namespace folidex {

class ActiveLink;
class DatePicker;
class DropMenu;
class EmptyNote;
class Grid;
class ResultsModel;
class StatusLine;
class TagCombo;

/// Where the main window leads; start-up hands these over, so that the window knows no other
/// form. Modal forms return when they close. The data location form is shown after the main
/// window was closed.
struct MainRoads {
    std::function<void(QWidget* parent)> show_capture;
    std::function<void(QWidget* parent)> show_tags;
    std::function<void()> show_data_location;
    std::function<void(const QString& path)> show_file = show_in_file_manager;
};

/// The main window: the document browser. Chosen tags and a date range filter the documents;
/// commands act on the one selected. Form_Load runs when it is shown for the first time; closing
/// it destroys it.
class frmMain : public QWidget {
    Q_OBJECT

public:
    explicit frmMain(MainRoads roads, QWidget* parent = nullptr);
    ~frmMain() override;

    // Tag filter and results
    void Form_Load();
    void pop_me();
    void fill_me();
    void color_tags();
    void cmdAdd_Click();
    void cmbTags_KeyDown(int key_code);
    void fgL_Click();
    void chkDates_Click();
    void dtFrom_Change();
    void dtTo_Change();
    void fgR_AfterRowColChange();

    // Saved filters and tag profiles
    void save_filter();
    void load_filter();
    void profile_save();
    void mnu_profiles();
    void load_profile();
    void save_profile();

    // Document commands
    void edit_scan();
    void open_scan();
    void locate_scan();
    void delete_scan();
    void fgR_DblClick();
    void TB1_ButtonClick(const QString& key);
    void OsenXPToolBar1_Highlight();
    void mnu_maintenance();
    void mnu_Help();
    void Dmnu_ItemClick(int index);
    void Label1_Click();
    void Form_Resize();
    void Form_QueryUnload();

    /// A chosen tag's background in column 0 of fgL: whether the selected document carries it.
    QColor tag_color(bool carried) const;

    QToolBar* TB1;
    QGroupBox* frL;
    TagCombo* cmbTags;
    QPushButton* cmdAdd;
    QCheckBox* chkDates;
    DatePicker* dtFrom;
    DatePicker* dtTo;
    Grid* fgL;
    QPushButton* Label1;
    QGroupBox* frR;
    Grid* fgR;
    QLabel* Picture1; ///< never shown: holds the mark that removes a chosen tag
    DropMenu* Dmnu;
    ActiveLink* AL1;

protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void make_toolbar();
    void make_filter();
    void make_results();
    void connect_controls();
    void place_controls();
    void place_bars();
    void dress_controls();
    void show_status();

    void add_chosen_tag(const QString& description, const QString& link);
    void mark_chosen_tags();
    void clear_highlight();
    QStringList chosen_links() const;
    void query_documents();
    void let_pending_events_run();
    QString double_click_hint() const;

    QString selected_link() const;
    QString selected_path() const;
    void drop_deleted_tags();
    void open_page(const QString& path);
    void set_double_click(const QString& action);
    void tag_maintenance();
    void data_location();
    QWidget* toolbar_button(const QString& key) const;

    static constexpr int kEnterKey = 13; ///< as key_down of the grids and the combo has it

    MainRoads roads_;
    QWidget* entry_;
    QLabel* hint_;
    EmptyNote* no_tags_;
    EmptyNote* no_documents_;
    StatusLine* status_;
    ResultsModel* results_;
    bool loaded_ = false;
};

} // namespace folidex
