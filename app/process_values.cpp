// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"

#include "common/error.h"
#include "common/paths.h"

namespace folidex {

QString ProductTitle;
QString AppDataFolder;
QString DataFolder;
QString DbOpenError;
int sel_link = -1;

namespace {

constexpr int kObjectNotSet = 91;

std::shared_ptr<Database>& connection() {
    static std::shared_ptr<Database> held;
    return held;
}

} // namespace

Database& database() {
    if (!connection())
        throw Error{kObjectNotSet, QStringLiteral("The database is not open")};
    return *connection();
}

void set_database(std::shared_ptr<Database> new_connection) {
    connection() = std::move(new_connection);
}

PreferencesDocument& Preferences() {
    static PreferencesDocument document;
    return document;
}

QString document_path(const QString& location, const QString& file_name) {
    return join_path(DataFolder, QStringLiteral("scanned_files"), location, file_name);
}

} // namespace folidex
