// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

namespace folidex {

/// Named values of the settings table. get_pref answers only when the record set counts more
/// than one row, set_pref updates when it counts any: other stations rely on both.
QString get_pref(const QString& form, const QString& description, int user);
bool set_pref(const QString& form, const QString& description, int user, const QString& value);

/// Per-form values of the preferences document, under the element <form name><key>.
QString get_FormSettings(const QString& form_name, const QString& key);
void set_FormSettings(const QString& form_name, const QString& key, const QString& value);

} // namespace folidex
