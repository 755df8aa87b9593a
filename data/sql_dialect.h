// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <QStringView>

namespace folidex {

/// The program's SQL, translated by tokens to SQLite's: DELETE * FROM, table-qualified columns
/// in UPDATE ... SET, bracketed names. Texts between quotes pass untouched.
QString to_sqlite(QStringView statement);

/// A text as it stands between single quotes in a statement: every single quote doubled.
QString quoted(const QString& text);

} // namespace folidex
