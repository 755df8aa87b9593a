// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "common/error.h"

#include <QString>

namespace folidex {

/// Start-up: fills the process-wide values and shows the main window or, while there is no
/// usable data folder, the data location form, which calls Main again. Returns at once; the
/// program lives in the event loop.
void Main();

/// Opens the data folder's database into the process-wide connection. False when it could not:
/// DbOpenError then says why, or is empty when no data folder is known yet.
bool open_database();

/// Whether the name that a directory lookup of the database file gave counts as a file.
bool counts_as_present(const QString& looked_up_name);

/// What the user is told of a database that could not be opened, beside the data location form.
QString database_open_message(const Error& error);

/// Shows the data location form; there is one at a time.
void show_data_location();

} // namespace folidex
