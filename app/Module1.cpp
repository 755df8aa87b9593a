// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/Module1.h"

#include "app/preferences_start.h"
#include "app/process_values.h"
#include "browser/frmMain.h"
#include "capture/frmScanNew.h"
#include "common/crash_filter.h"
#include "common/error_trap.h"
#include "common/message_box.h"
#include "common/paths.h"
#include "data/database.h"
#include "location/frmLocateDatabase.h"
#include "platform/safe_file.h"
#include "platform/shell.h"
#include "tags/frmTags.h"

#include <QPointer>

namespace folidex {

using namespace Qt::StringLiterals;

namespace {

QString cannot_find_database() {
    return ProductTitle +
           u" cannot find or open your database file. If the file resides on a network drive "
           u"please ensure that you are connected to that network drive."_s;
}

void show_main_window() {
    MainRoads roads;
    roads.show_capture = [](QWidget* parent) {
        frmScanNew form(parent);
        form.exec();
    };
    roads.show_tags = [](QWidget* parent) {
        frmTags form(parent);
        form.exec();
    };
    roads.show_data_location = show_data_location;
    auto* window = new frmMain(std::move(roads));
    window->show();
}

} // namespace

bool counts_as_present(const QString& looked_up_name) {
    return looked_up_name.size() > 1;
}

QString database_open_message(const Error& error) {
    if (error.number == kBadFileName)
        return cannot_find_database();
    return u"Error "_s + QString::number(error.number) + u": "_s + error.description;
}

void show_data_location() {
    // Start-up asks for the form twice when no folder is known; a form that was closed but not
    // yet deleted is not the one to show.
    static QPointer<frmLocateDatabase> form;
    if (!form || !form->isVisible())
        form = new frmLocateDatabase(Main);
    form->show();
    form->raise();
    form->activateWindow();
}

void Main() {
    trapped("Module1", "Main", [] {
        vbcsInstallFilter();
        ProductTitle = u"Folidex"_s;
        AppDataFolder = join_path(SpecialFolder(kCommonAppData), u"Brightmoor"_s);
        if (!folder_exists(AppDataFolder))
            create_folder_at(AppDataFolder);
        Preferences();
        load_or_create_preferences();
        if (open_database()) {
            show_main_window();
            return;
        }
        if (!DbOpenError.isEmpty())
            message_box(DbOpenError);
        show_data_location();
    });
}

bool open_database() {
    return trapped("Module1", "open_database", [] {
        DbOpenError.clear();
        Preferences().move_to_root();
        DataFolder = Preferences().child_text(u"dblocation"_s);
        if (DataFolder.isEmpty()) {
            show_data_location();
            return false;
        }
        auto attempt = [] {
            const QString path = join_path(DataFolder, u"db.mdb"_s);
            if (!counts_as_present(lookup(path))) {
                DbOpenError = cannot_find_database();
                return false;
            }
            set_database(Database::open(path));
            return true;
        };
        try {
            return called(attempt);
        } catch (...) {
            DbOpenError = database_open_message(current_error());
            return false;
        }
    });
}

} // namespace folidex
