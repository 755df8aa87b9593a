// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

namespace folidex {

/// Draws the next number. With an empty key from the one counter that documents, tags and
/// profiles share, unique among all stations on the file; otherwise from a counter of that key
/// in the settings table, which starts at 5000.
int getNewLink(const QString& key);

} // namespace folidex
