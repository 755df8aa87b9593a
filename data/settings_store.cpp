// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "data/settings_store.h"

#include "app/process_values.h"
#include "common/error_trap.h"
#include "data/database.h"
#include "data/sql_dialect.h"

namespace folidex {

namespace {

Recordset stored_values(const QString& form, const QString& description, int user) {
    return database().open_recordset(QStringLiteral("Select * from settings where form = '") +
                                     quoted(form) + QStringLiteral("' and description = '") +
                                     quoted(description) + QStringLiteral("' and user = ") +
                                     QString::number(user));
}

qlonglong stored_id(const QString& form, const QString& description, int user) {
    Recordset rows = stored_values(form, description, user);
    return rows.record_count() > 0 ? rows.field(QStringLiteral("id")).toLongLong() : 0;
}

} // namespace

QString get_pref(const QString& form, const QString& description, int user) {
    return trapped("Utilities", "get_pref", [&] {
        Recordset rows = stored_values(form, description, user);
        // More than one, not any: a single value reads back as empty on every station.
        QString value;
        if (rows.record_count() > 1)
            value = rows.text(QStringLiteral("Value"));
        rows.close();
        return value;
    });
}

bool set_pref(const QString& form, const QString& description, int user, const QString& value) {
    return trapped("Utilities", "set_pref", [&] {
        const qlonglong id = stored_id(form, description, user);
        if (id >= 1)
            database().execute(QStringLiteral("UPDATE settings SET form = '") + quoted(form) +
                               QStringLiteral("', description = '") + quoted(description) +
                               QStringLiteral("', settings.user = ") + QString::number(user) +
                               QStringLiteral(", settings.value = '") + quoted(value) +
                               QStringLiteral("' where id = ") + QString::number(id));
        else
            database().execute(
                QStringLiteral(
                    "INSERT INTO settings ([form], [description], [user], [value]) VALUES ('") +
                quoted(form) + QStringLiteral("', '") + quoted(description) +
                QStringLiteral("', ") + QString::number(user) + QStringLiteral(", '") +
                quoted(value) + QStringLiteral("')"));
        return true;
    });
}

QString get_FormSettings(const QString& form_name, const QString& key) {
    return trapped("Utilities", "get_FormSettings", [&] {
        Preferences().move_to_root();
        return Preferences().child_text(form_name + key);
    });
}

void set_FormSettings(const QString& form_name, const QString& key, const QString& value) {
    trapped("Utilities", "set_FormSettings", [&] {
        Preferences().move_to_root();
        Preferences().set_child_text(form_name + key, value);
    });
}

} // namespace folidex
