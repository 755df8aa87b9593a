// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "app/preferences.h"

#include <QString>
#include <memory>

namespace folidex {

class Database;

/// The process-wide values that every window relies on, filled by Main.
extern QString ProductTitle;
/// The program's folder under the all-users application data: preferences, temporary scan.
extern QString AppDataFolder;
/// The data folder that the stations share: db.mdb and scanned_files.
extern QString DataFolder;
/// Why the database could not be opened; empty otherwise.
extern QString DbOpenError;
/// The document that the capture form is to edit, -1 for a new one.
extern int sel_link;

/// The open connection; throws Error 91 when there is none.
Database& database();
/// Puts a connection in place, or none.
void set_database(std::shared_ptr<Database> connection);

/// The preferences document, created the first time any procedure touches it.
PreferencesDocument& Preferences();

/// A file of the data folder's scanned_files: <DataFolder>/scanned_files/<location>/<name>.
QString document_path(const QString& location, const QString& file_name);

} // namespace folidex
