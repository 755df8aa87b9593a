// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QDialog>
#include <memory>

class QAction;

namespace Ui {
class frmTags;
}

namespace folidex {

class DropMenu;

/// The tag catalogue: lists every tag, adds and renames tags, deletes those that no document
/// uses. It browses (the list is enabled) or edits (the box is). Shown modally.
class frmTags : public QDialog {
    Q_OBJECT

public:
    explicit frmTags(QWidget* parent = nullptr);
    ~frmTags() override;

protected:
    void done(int result) override;

private:
    void Form_Load();
    void Form_Unload();
    void fill_grid();
    /// Loads one tag for editing; link is any text, read as a number.
    void fill_me(const QString& link);
    bool save_me();
    void clr_box();
    void cmdSave_Click();
    void cmdSaveNew_Click();
    void cmdCancel_Click();
    void fg1_DblClick();
    void fg1_KeyDown(int key_code);
    void TB1_ButtonClick(const QString& key);
    void Dmnu_ItemClick(int index);
    /// The command is deliberately empty.
    void mnu_pref();

    void connect_controls();
    void add_button(const QString& key, const QString& icon_name, const QString& tooltip);
    void set_editing(bool editing);
    void begin_new();
    void edit_current();
    void delete_current();
    bool is_duplicate(const QString& description) const;
    bool write_tag(const QString& description);

    std::unique_ptr<Ui::frmTags> ui_;
    DropMenu* Dmnu;
    QString cur_link; ///< the tag being edited; empty for a new one
};

} // namespace folidex
