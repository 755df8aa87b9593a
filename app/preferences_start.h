// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

namespace folidex {

/// Loads the preferences file into the process-wide document, replacing it; makes a new file
/// when there is none. A file that cannot be read or is no preferences file is kept beside
/// itself under a .bad name, the user is told, and the program starts as on a first start.
void load_or_create_preferences();

/// A name for a bad file that no other file has: path.bad, path.2.bad, ...
QString bad_file_name(const QString& path);

} // namespace folidex
