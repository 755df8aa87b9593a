// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tags/frmTags.h"

#include "app/process_values.h"
#include "common/day_number.h"
#include "common/drop_menu.h"
#include "common/error_trap.h"
#include "common/message_box.h"
#include "common/pop_up_menu.h"
#include "controls/form_window.h"
#include "controls/icons.h"
#include "data/database.h"
#include "data/link_numbers.h"
#include "data/settings_store.h"
#include "data/sql_dialect.h"
#include "ui_frmTags.h"

#include <QAction>

namespace folidex {

using namespace Qt::StringLiterals;

namespace {

constexpr const char* kModule = "frmTags";
constexpr int kEnter = 13;
// The list fills two columns. Enter has always read the third, which stays empty.
constexpr int kDescription = 0;
constexpr int kLink = 1;
constexpr int kNeverFilled = 2;

void refuse(const QString& prompt) {
    message_box(prompt, kInformationIcon, u"Error"_s);
}

QString number_text(const QString& text) {
    return QString::number(static_cast<qlonglong>(numeric_value(text)));
}

} // namespace

frmTags::frmTags(QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::frmTags>()), Dmnu(new DropMenu(this)) {
    ui_->setupUi(this);
    Dmnu->setObjectName(u"Dmnu"_s);
    add_button(u"New"_s, u"add"_s, u"Add a tag"_s);
    add_button(u"Edit"_s, u"edit"_s, u"Rename the selected tag"_s);
    add_button(u"Delete"_s, u"delete"_s, u"Delete the selected tag"_s);
    add_button(u"Preferences"_s, u"preferences"_s, {});
    connect_controls();
    // Loading is an event of its own: its failure ends the program, whoever opened the form.
    outermost([this] { Form_Load(); });
}

frmTags::~frmTags() = default;

void frmTags::add_button(const QString& key, const QString& icon_name, const QString& tooltip) {
    QAction* action = ui_->TB1->addAction(icon(icon_name), key);
    action->setObjectName(u"TB1_"_s + key);
    action->setToolTip(tooltip.isEmpty() ? key : tooltip);
    on(action, &QAction::triggered, this, [this, key] { TB1_ButtonClick(key); });
}

void frmTags::connect_controls() {
    on(ui_->cmdSave, &QPushButton::clicked, this, [this] { cmdSave_Click(); });
    on(ui_->cmdSaveNew, &QPushButton::clicked, this, [this] { cmdSaveNew_Click(); });
    on(ui_->cmdCancel, &QPushButton::clicked, this, [this] { cmdCancel_Click(); });
    on(ui_->cmdClose, &QPushButton::clicked, this, [this] { close(); });
    on(ui_->txtDescription, &QLineEdit::returnPressed, this, [this] { cmdSave_Click(); });
    on(ui_->fg1, &Grid::dbl_click, this, [this] { fg1_DblClick(); });
    on(ui_->fg1, &Grid::key_down, this, [this](int key) { fg1_KeyDown(key); });
    on(Dmnu, &DropMenu::ItemClick, this, [this](int index) { Dmnu_ItemClick(index); });
}

void frmTags::done(int result) {
    outermost([this] { Form_Unload(); });
    QDialog::done(result);
}

void frmTags::set_editing(bool editing) {
    ui_->fg1->setEnabled(!editing);
    ui_->Frame1->setEnabled(editing);
}

void frmTags::Form_Load() {
    trapped(kModule, "Form_Load", [this] {
        layout()->activate();
        FormWindow window(this);
        GetScreenPosition(window, false);
        set_editing(false);
        ui_->fg1->set_layout(3, 1);
        ui_->fg1->set_headers({u"Description"_s, u"Link"_s, {}});
        ui_->fg1->setColumnHidden(kLink, true);
        ui_->fg1->setColumnHidden(kNeverFilled, true);
        fill_grid();
    });
}

void frmTags::Form_Unload() {
    trapped(kModule, "Form_Unload", [this] { SetScreenPosition(FormWindow(this)); });
}

void frmTags::fill_grid() {
    trapped(kModule, "fill_grid", [this] {
        Recordset tags = database().open_recordset(u"Select * from tags order by description"_s);
        ui_->fg1->set_rows(1);
        for (; !tags.eof(); tags.move_next()) {
            ui_->fg1->add_row(tags.text(u"Description"_s));
            ui_->fg1->set_text(ui_->fg1->rows() - 1, kLink, number_text(tags.text(u"link"_s)));
        }
        tags.close();
        if (ui_->fg1->rows() >= 2)
            ui_->fg1->set_row(1);
    });
}

void frmTags::fill_me(const QString& link) {
    trapped(kModule, "fill_me", [&] {
        clr_box();
        Recordset tag =
            database().open_recordset(u"Select * from tags where link = "_s + number_text(link));
        if (tag.record_count() > 0) {
            const QString description = tag.text(u"Description"_s);
            ui_->txtDescription->setText(description);
            cur_link = tag.text(u"link"_s);
            set_editing(true);
            ui_->txtDescription->setEnabled(true);
            ui_->txtDescription->setFocus();
            ui_->txtDescription->selectAll();
            ui_->Frame1->setTitle(u"Editing "_s + description);
        } else {
            message_box(u"Cannot find record: "_s + link, kCriticalIcon, u"Error"_s);
        }
        tag.close();
    });
}

bool frmTags::is_duplicate(const QString& description) const {
    Recordset same = database().open_recordset(u"Select * from tags where description = '"_s +
                                               quoted(description) + u"'"_s);
    return same.record_count() >= 1;
}

bool frmTags::save_me() {
    return trapped(kModule, "save_me", [this] {
        const QString description = ui_->txtDescription->text();
        if (description.isEmpty()) {
            refuse(u"Please enter a valid description"_s);
            ui_->txtDescription->setFocus();
            return false;
        }
        // Only a new tag is held against the others: two tags may be merged by name on purpose.
        if (cur_link.isEmpty() && is_duplicate(description)) {
            refuse(u"Another record called "_s + description +
                   u" already on file. Cannot create."_s);
            return false;
        }
        if (!write_tag(description))
            return false;
        clr_box();
        cur_link.clear();
        return true;
    });
}

bool frmTags::write_tag(const QString& description) {
    Recordset tags = database().open_recordset(u"Select * from Tags"_s);
    qlonglong number = 0;
    if (!cur_link.isEmpty()) {
        tags.find_first(u"link = "_s + cur_link);
        if (tags.no_match()) {
            message_box(u"Cannot find record: "_s + cur_link, kCriticalIcon, u"Cannot Update"_s);
            return false;
        }
        tags.edit();
        number = static_cast<qlonglong>(numeric_value(cur_link));
    } else {
        tags.add_new();
        number = getNewLink({});
    }
    tags.set_field(u"link"_s, number);
    tags.set_field(u"Description"_s, description);
    tags.update();
    tags.close();
    return true;
}

void frmTags::clr_box() {
    trapped(kModule, "clr_box", [this] {
        ui_->txtDescription->clear();
        ui_->txtDescription->setEnabled(true);
        ui_->Frame1->setTitle(u"Add New"_s);
    });
}

void frmTags::cmdSave_Click() {
    trapped(kModule, "cmdSave_Click", [this] {
        if (!save_me())
            return;
        fill_grid();
        set_editing(false);
        ui_->fg1->setFocus();
    });
}

void frmTags::cmdSaveNew_Click() {
    trapped(kModule, "cmdSaveNew_Click", [this] {
        if (!save_me())
            return;
        fill_grid();
        clr_box();
        ui_->txtDescription->setFocus();
    });
}

void frmTags::cmdCancel_Click() {
    trapped(kModule, "cmdCancel_Click", [this] {
        set_editing(false);
        fill_grid();
        ui_->fg1->setFocus();
    });
}

void frmTags::fg1_DblClick() {
    trapped(kModule, "fg1_DblClick", [this] {
        if (ui_->fg1->row() >= 1)
            fill_me(ui_->fg1->text(ui_->fg1->row(), kLink));
    });
}

void frmTags::fg1_KeyDown(int key_code) {
    trapped(kModule, "fg1_KeyDown", [&] {
        if (key_code == kEnter && ui_->fg1->row() >= 1)
            fill_me(ui_->fg1->text(ui_->fg1->row(), kNeverFilled));
    });
}

void frmTags::TB1_ButtonClick(const QString& key) {
    trapped(kModule, "TB1_ButtonClick", [&] {
        if (key == u"Preferences"_s) {
            mnu_pref();
            return;
        }
        if (key == u"New"_s)
            begin_new();
        if (key == u"Edit"_s)
            edit_current();
        if (key == u"Delete"_s)
            delete_current();
    });
}

void frmTags::begin_new() {
    set_editing(true);
    ui_->Frame1->setTitle(u"Add New"_s);
    cur_link.clear();
    clr_box();
    ui_->txtDescription->setFocus();
}

void frmTags::edit_current() {
    const int row = ui_->fg1->row();
    if (row < 1)
        refuse(u"Please select valid record from the list below."_s);
    else
        fill_me(ui_->fg1->text(row, kLink));
}

void frmTags::delete_current() {
    const int row = ui_->fg1->row();
    if (row < 1) {
        refuse(u"Please select valid record from the list below."_s);
        return;
    }
    // The question ends with the name, as users know it.
    if (message_box(u"Are you sure you want to delete "_s + ui_->fg1->text(row, kDescription),
                    kYesNo + kQuestionIcon, u"Confirm"_s) != kAnswerYes)
        return;
    const QString number = number_text(ui_->fg1->text(row, kLink));
    Recordset used = database().open_recordset(u"Select * from tagged where tag = "_s + number);
    if (used.record_count() >= 1) {
        refuse(u"There are documents linked to this tag. Cannot delete."_s);
        used.close();
        return;
    }
    used.close();
    Recordset tag = database().open_recordset(u"Select * from tags where link = "_s + number);
    if (tag.record_count() >= 1)
        tag.delete_current();
    tag.close();
    fill_grid();
}

void frmTags::Dmnu_ItemClick(int index) {
    trapped(kModule, "Dmnu_ItemClick", [&] {
        if (pop_keys.value(index) != u"mnuShowInactive"_s)
            return;
        const QString name = objectName();
        const bool shown = numeric_value(get_FormSettings(name, u"ShowInActive"_s)) == 1;
        set_FormSettings(name, u"ShowInActive"_s, shown ? u"0"_s : u"1"_s);
        fill_grid();
    });
}

void frmTags::mnu_pref() {
    trapped(kModule, "mnu_pref", [] {});
}

} // namespace folidex
