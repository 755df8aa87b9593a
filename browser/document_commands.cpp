// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/preferences.h"
#include "app/process_values.h"
#include "browser/frmAbout.h"
#include "browser/frmMain.h"
#include "browser/late_wait_cursor.h"
#include "browser/results_model.h"
#include "common/day_number.h"
#include "common/drop_menu.h"
#include "common/error_trap.h"
#include "common/message_box.h"
#include "common/pop_up_menu.h"
#include "controls/active_link.h"
#include "controls/grid.h"
#include "controls/tag_combo.h"
#include "data/database.h"
#include "platform/safe_file.h"

#include <QPushButton>
#include <QToolBar>

namespace folidex {

namespace {

const QString kDoubleClick = QStringLiteral("DoubleClick");
const QString kEdit = QStringLiteral("Edit");
const QString kOpen = QStringLiteral("Open");
const QString kLocate = QStringLiteral("Locate");

// A preference never set means Edit.
QString double_click_action() {
    Preferences().move_to_root();
    const QString stored = Preferences().child_text(kDoubleClick);
    return stored.isEmpty() ? kEdit : stored;
}

} // namespace

QString frmMain::selected_link() const {
    const double link = numeric_value(fgR->text(fgR->row(), ResultsModel::kLink));
    return QString::number(static_cast<int>(link));
}

QString frmMain::selected_path() const {
    return document_path(fgR->text(fgR->row(), ResultsModel::kLocation),
                         fgR->text(fgR->row(), ResultsModel::kFileName));
}

void frmMain::edit_scan() {
    trapped("frmMain", "edit_scan", [&] {
        if (fgR->row() < 1)
            return;
        const QString link = selected_link();
        sel_link = link.toInt();
        roads_.show_capture(this);
        pop_me();
        let_pending_events_run();
        fill_me();
        const int row = results_->find_link(link);
        if (row >= 0)
            fgR->set_row(row + fgR->fixed_rows());
    });
}

void frmMain::open_scan() {
    trapped("frmMain", "open_scan", [&] {
        if (fgR->row() < 1)
            return;
        AL1->set_mode(ActiveLink::kFile);
        AL1->set_target(selected_path());
        AL1->start();
    });
}

void frmMain::locate_scan() {
    trapped("frmMain", "locate_scan", [&] {
        if (fgR->row() < 1)
            return;
        const QString path = selected_path();
        if (lookup(path).isEmpty()) {
            message_box(QStringLiteral("Cannot find file: ") + path, kInformationIcon,
                        QStringLiteral("Error"));
            return;
        }
        roads_.show_file(path);
    });
}

void frmMain::delete_scan() {
    trapped("frmMain", "delete_scan", [&] {
        if (fgR->row() < 1)
            return;
        const QString link = selected_link();
        sel_link = link.toInt();
        const int answer =
            message_box(QStringLiteral("Are you sure you want to continue? There is NO UNDO !"),
                        kYesNo + kQuestionIcon, QStringLiteral("IMPORTANT !"));
        if (answer != kAnswerYes)
            return;
        // Only the records go: the PDF stays in its folder, whatever became of its document.
        database().execute(QStringLiteral("DELETE * FROM scans where link = ") + link);
        database().execute(QStringLiteral("DELETE * FROM tagged where scan = ") + link);
        let_pending_events_run();
        fill_me();
    });
}

void frmMain::fgR_DblClick() {
    trapped("frmMain", "fgR_DblClick", [&] {
        if (fgR->row() < 1)
            return;
        const QString action = double_click_action();
        if (action == kEdit)
            edit_scan();
        else if (action == kOpen)
            open_scan();
        else if (action == kLocate)
            locate_scan();
    });
}

void frmMain::TB1_ButtonClick(const QString& key) {
    trapped("frmMain", "TB1_ButtonClick", [&] {
        if (key == QLatin1String("New")) {
            sel_link = -1;
            roads_.show_capture(this);
            pop_me();
            let_pending_events_run();
            fill_me();
        } else if (key == QLatin1String("Edit")) {
            edit_scan();
        } else if (key == QLatin1String("Delete")) {
            delete_scan();
        } else if (key == QLatin1String("Locate File")) {
            locate_scan();
        } else if (key == QLatin1String("Open File")) {
            open_scan();
        } else if (key == QLatin1String("Maintenance")) {
            mnu_maintenance();
        } else if (key == QLatin1String("Help")) {
            mnu_Help();
        } else if (key == QLatin1String("Exit")) {
            close();
        }
    });
}

void frmMain::OsenXPToolBar1_Highlight() {
    trapped("frmMain", "OsenXPToolBar1_Highlight", [] {});
}

QWidget* frmMain::toolbar_button(const QString& key) const {
    for (QAction* action : TB1->actions())
        if (action->objectName() == key)
            return TB1->widgetForAction(action);
    return TB1;
}

void frmMain::mnu_maintenance() {
    trapped("frmMain", "mnu_maintenance", [&] {
        const QString action = double_click_action();
        pop_count = 20;
        p_popMenu(*Dmnu);
        add_grey_item(*Dmnu, QStringLiteral("When double clicking on a file..."),
                      QStringLiteral("mnuAddFile"));
        add_grey_item(*Dmnu, QStringLiteral(" -> Edit Scan"), QStringLiteral("mnuDoubleClickEdit"));
        Dmnu->ItemChecked(Dmnu->ItemCount(), action == kEdit);
        add_grey_item(*Dmnu, QStringLiteral(" -> Open PDF"), QStringLiteral("mnuDoubleClickOpen"));
        Dmnu->ItemChecked(Dmnu->ItemCount(), action == kOpen);
        add_grey_item(*Dmnu, QStringLiteral(" -> Locate PDF"),
                      QStringLiteral("mnuDoubleClickLocate"));
        Dmnu->ItemChecked(Dmnu->ItemCount(), action == kLocate);
        add_grey_item(*Dmnu, QStringLiteral("Tag Maintenance"), QStringLiteral("mnuTags"));
        add_grey_item(*Dmnu, QStringLiteral("Data Location"), QStringLiteral("mnuData"));
        Dmnu->show_under(toolbar_button(QStringLiteral("Maintenance")));
    });
}

void frmMain::mnu_Help() {
    trapped("frmMain", "mnu_Help", [&] {
        pop_count = 10;
        p_popMenu(*Dmnu);
        add_grey_item(*Dmnu, QStringLiteral("Online Help"), QStringLiteral("mnuHelp"));
        add_grey_item(*Dmnu, QStringLiteral("Get Support"), QStringLiteral("mnuSupport"));
        add_grey_item(*Dmnu, QStringLiteral("About Folidex"), QStringLiteral("mnuAbout"));
        Dmnu->show_under(toolbar_button(QStringLiteral("Help")));
    });
}

void frmMain::Dmnu_ItemClick(int index) {
    trapped("frmMain", "Dmnu_ItemClick", [&] {
        const QString key = pop_keys.value(index);
        if (key == QLatin1String("mnuDoubleClickEdit"))
            set_double_click(kEdit);
        else if (key == QLatin1String("mnuDoubleClickOpen"))
            set_double_click(kOpen);
        else if (key == QLatin1String("mnuDoubleClickLocate"))
            set_double_click(kLocate);
        else if (key == QLatin1String("mnuTags"))
            tag_maintenance();
        else if (key == QLatin1String("mnuData"))
            data_location();
        else if (key == QLatin1String("mnuHelp"))
            open_page(QStringLiteral("/help/index.html"));
        else if (key == QLatin1String("mnuSupport"))
            open_page(QStringLiteral("/support/index.html"));
        else if (key == QLatin1String("mnuAbout"))
            frmAbout(this).exec();
        else if (key == QLatin1String("mnuProfileSave"))
            profile_save();
    });
}

void frmMain::set_double_click(const QString& action) {
    Preferences().move_to_root();
    Preferences().set_child_text(kDoubleClick, action);
    show_status();
}

QString frmMain::double_click_hint() const {
    const QString action = double_click_action();
    if (action == kEdit)
        return QStringLiteral("Double-click a document to edit it.");
    if (action == kOpen)
        return QStringLiteral("Double-click a document to open its PDF.");
    if (action == kLocate)
        return QStringLiteral("Double-click a document to show its PDF in the file manager.");
    return {};
}

void frmMain::tag_maintenance() {
    roads_.show_tags(this);
    pop_me();
    drop_deleted_tags();
    show_status();
}

void frmMain::drop_deleted_tags() {
    Recordset tags = database().open_recordset(QStringLiteral("Select * from tags"));
    if (tags.record_count() == 0) {
        fgL->set_rows(0);
        return;
    }
    bool all_found = false;
    while (!all_found) {
        all_found = true;
        for (int row = 0; row < fgL->rows() && all_found; ++row) {
            const int link = static_cast<int>(numeric_value(fgL->text(row, 2)));
            tags.find_first(QStringLiteral("link = ") + QString::number(link));
            if (tags.no_match()) {
                fgL->remove_row(row);
                all_found = false;
            }
        }
    }
    tags.close();
}

void frmMain::data_location() {
    // The window may be gone once it is closed.
    const auto show_data_location = roads_.show_data_location;
    close();
    show_data_location();
}

void frmMain::open_page(const QString& path) {
    AL1->set_mode(ActiveLink::kWebAddress);
    AL1->set_target(site_page(path));
    AL1->start();
}

void frmMain::Label1_Click() {
    trapped("frmMain", "Label1_Click", [&] {
        LateWaitCursor wait;
        const bool add_all = Label1->text() == QLatin1String("Add All");
        if (add_all) {
            for (int i = 0; i < cmbTags->item_count(); ++i) {
                cmbTags->set_list_index(i);
                cmdAdd_Click();
                wait.passing();
            }
        } else {
            fgL->set_rows(0);
        }
        cmbTags->set_entered_text({});
        cmbTags->setFocus();
        Label1->setText(add_all ? QStringLiteral("Delete All") : QStringLiteral("Add All"));
        Label1->setAccessibleName(Label1->text());
        place_bars();
        let_pending_events_run();
        fill_me();
    });
}

} // namespace folidex
