// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace folidex {

/// Bounds of a document date as day numbers, both inclusive.
struct DateRange {
    double from = 0;
    double to = 0;
};

/// The statement that lists every document with at least one of the chosen tags, once, oldest
/// first. The data layer knows this statement by its exact text; without a range the dates are
/// not looked at.
QString results_statement(const QStringList& tag_links, const std::optional<DateRange>& range);

} // namespace folidex
