// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "location/frmLocateDatabase.h"

#include "app/process_values.h"
#include "common/error_trap.h"
#include "common/message_box.h"
#include "common/paths.h"
#include "controls/active_link.h"
#include "controls/form_window.h"
#include "controls/icons.h"
#include "platform/safe_file.h"
#include "platform/shell.h"
#include "ui_frmLocateDatabase.h"

namespace folidex {

using namespace Qt::StringLiterals;

namespace {

constexpr const char* kModule = "frmLocateDatabase";
constexpr int kHeaderIconSize = 32;

void refuse(const QString& prompt, QWidget* focus = nullptr) {
    message_box(prompt, kInformationIcon, u"Error"_s);
    if (focus)
        focus->setFocus();
}

} // namespace

std::function<std::optional<QString>(QWidget*, const QString&)> frmLocateDatabase::folder_picker =
    pick_folder;

QString location_explanation(const QString& product, bool with_note) {
    QStringList sentences{
        u"The "_s + product +
            u" database file and all scanned documents are stored in a single folder."_s,
        u"In order to continue, you need to point "_s + product + u" to that folder. "_s,
        u"If this is the first time you are installing "_s + product +
            u" then you will need to select option 1 and create a new data folder. "_s,
        u"If this is NOT your first installation and you already have a database file, then you "
        u"need to select option 2 and point "_s +
            product + u" to the correct location. "_s};
    if (with_note)
        sentences << u"PLEASE NOTE! "_s + product +
                         u" will create sub folders to group all your scanned documents."_s;
    return sentences.join(u'\n');
}

QString without_trailing_separator(const QString& path) {
    return path.endsWith(QDir::separator()) ? path.chopped(1) : path;
}

frmLocateDatabase::frmLocateDatabase(std::function<void()> start_again, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::frmLocateDatabase>()),
      start_again_(std::move(start_again)), AL1(new ActiveLink(this)) {
    ui_->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    ui_->pic1->setBackgroundRole(QPalette::Base);
    connect_controls();
    // Loading is an event of its own: its failure ends the program, whoever opened the form.
    outermost([this] { Form_Load(); });
}

frmLocateDatabase::~frmLocateDatabase() = default;

void frmLocateDatabase::connect_controls() {
    on(ui_->cmdBrowse1, &QPushButton::clicked, this, [this] { cmdBrowse1_Click(); });
    on(ui_->cmdBrowse2, &QPushButton::clicked, this, [this] { cmdBrowse2_Click(); });
    on(ui_->cmdSave, &QPushButton::clicked, this, [this] { cmdSave_Click(); });
    on(ui_->cmdCancel, &QPushButton::clicked, this, [this] { cmdCancel_Click(); });
    on(ui_->cmdHelp, &QPushButton::clicked, this, [this] { cmdHelp_Click(); });
    on(ui_->opt1, &QRadioButton::toggled, this, [this] { follow_option(); });
}

// Only the fields of the chosen option can be filled in.
void frmLocateDatabase::follow_option() {
    const bool create = ui_->opt1->isChecked();
    for (QWidget* field :
         {static_cast<QWidget*>(ui_->lblLocation), static_cast<QWidget*>(ui_->txtLocation),
          static_cast<QWidget*>(ui_->cmdBrowse1), static_cast<QWidget*>(ui_->lblFolder),
          static_cast<QWidget*>(ui_->txtFolder)})
        field->setEnabled(create);
    ui_->txtLocation2->setEnabled(!create);
    ui_->cmdBrowse2->setEnabled(!create);
}

void frmLocateDatabase::Form_Load() {
    trapped(kModule, "Form_Load", [this] {
        const bool failed = !DbOpenError.isEmpty();
        ui_->txtLocation->clear();
        ui_->txtFolder->clear();
        ui_->txtLocation2->clear();
        ui_->lblExplanation->setText(location_explanation(ProductTitle, !failed));
        ui_->picIcon->setPixmap(
            icon(failed ? u"warning"_s : u"folder"_s).pixmap(kHeaderIconSize, kHeaderIconSize));
        ensurePolished();
        layout()->activate();
        adjustSize();
        FormWindow window(this);
        GetScreenPosition(window, false);
        ui_->opt1->setChecked(true);
        ui_->pic1_title->setText(u"Database Location"_s);
        Preferences().move_to_root();
        const QString recorded = Preferences().child_text(u"dblocation"_s);
        if (failed) {
            ui_->pic1_title->setText(u"ERROR opening database file"_s);
            ui_->opt2->setChecked(true);
            ui_->txtLocation2->setText(recorded);
        }
        if (ui_->txtLocation->text().isEmpty()) {
            ui_->txtLocation2->setText(recorded);
            if (!recorded.isEmpty())
                ui_->opt2->setChecked(true);
        }
        follow_option();
        (ui_->opt1->isChecked() ? ui_->txtLocation : ui_->txtLocation2)->setFocus();
    });
}

void frmLocateDatabase::cmdBrowse1_Click() {
    trapped(kModule, "cmdBrowse1_Click", [this] {
        const std::optional<QString> path = folder_picker(this, ui_->cmdBrowse1->text());
        if (path && !path->isEmpty()) {
            ui_->txtLocation->setText(*path);
            ui_->txtFolder->setFocus();
        }
    });
}

void frmLocateDatabase::cmdBrowse2_Click() {
    trapped(kModule, "cmdBrowse2_Click", [this] {
        const std::optional<QString> path = folder_picker(this, ui_->cmdBrowse2->text());
        if (path && !path->isEmpty())
            ui_->txtLocation2->setText(*path);
    });
}

void frmLocateDatabase::cmdSave_Click() {
    trapped(kModule, "cmdSave_Click", [this] {
        if (ui_->opt1->isChecked()) {
            if (!save_new_folder())
                return;
        } else {
            // Not checked here: start-up reports a folder without a database and comes back.
            DataFolder = ui_->txtLocation2->text();
        }
        record_and_start_again();
    });
}

bool frmLocateDatabase::save_new_folder() {
    if (ui_->txtLocation->text().isEmpty()) {
        refuse(u"Please enter or select a valid location"_s, ui_->txtLocation);
        return false;
    }
    if (ui_->txtFolder->text().isEmpty()) {
        refuse(u"Please enter a valid folder name"_s, ui_->txtFolder);
        return false;
    }
    ui_->txtLocation->setText(without_trailing_separator(ui_->txtLocation->text()));
    ui_->txtFolder->setText(without_trailing_separator(ui_->txtFolder->text()));
    if (!create_folder())
        return false;
    DataFolder = join_path(ui_->txtLocation->text(), ui_->txtFolder->text());
    copy_file(join_path(program_folder(), u"dbm.mdb"_s), join_path(DataFolder, u"db.mdb"_s));
    return true;
}

void frmLocateDatabase::record_and_start_again() {
    Preferences().move_to_root();
    Preferences().set_child_text(u"dblocation"_s, DataFolder);
    save_localXML();
    close();
    start_again_();
}

bool frmLocateDatabase::create_folder() {
    return trapped(kModule, "create_folder", [this] {
        const QString location = ui_->txtLocation->text();
        // With its separator, so that the root of a drive or of the file system is found too.
        if (!folder_exists(location + QDir::separator())) {
            refuse(u"Cannot find the following location: "_s + location);
            return false;
        }
        const QString folder = join_path(location, ui_->txtFolder->text());
        if (!folder_exists(folder)) {
            create_folder_at(folder);
            return true;
        }
        refuse(u"Folder already exists. Please choose another location or folder name."_s);
        return false;
    });
}

void frmLocateDatabase::cmdCancel_Click() {
    trapped(kModule, "cmdCancel_Click", [this] { close(); });
}

void frmLocateDatabase::cmdHelp_Click() {
    trapped(kModule, "cmdHelp_Click", [this] {
        AL1->set_mode(ActiveLink::kWebAddress);
        AL1->set_target(site_page(u"/help/index.html"_s));
        AL1->start();
    });
}

void frmLocateDatabase::open_db() {
    trapped(kModule, "open_db", [] {});
}

void frmLocateDatabase::OsenXPButton1_Click() {
    trapped(kModule, "OsenXPButton1_Click", [] {});
}

} // namespace folidex
