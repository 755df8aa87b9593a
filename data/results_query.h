// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "data/row_store.h"

#include <QString>
#include <QStringList>
#include <optional>

namespace folidex {

class Database;

/// The browser's results statement, taken apart; its numbers as they stand in the text.
struct ResultsQuery {
    QString tags; ///< "3,17,40"
    QString from; ///< both empty without a date range
    QString to;

    bool has_range() const { return !from.isEmpty(); }
};

/// Recognises exactly the browser's statement; anything else, a malformed tag list included, is
/// left to SQLite as it stands.
std::optional<ResultsQuery> recognised_results_query(const QString& sql);
/// Whether the file's tables have the form on which results_rows relies.
bool fits_results_query(const Database& database);

/// The rows of the statement, the same and in the same order as SQLite returns them for its
/// text, found on a shorter way: the tags' documents are collected first, so that no document
/// is looked up twice and none needs comparing with all the others.
RowStore results_rows(const Database& database, const ResultsQuery& query);
/// The names of the statement's columns.
QStringList results_names();

} // namespace folidex
