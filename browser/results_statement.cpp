// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/results_statement.h"

#include "common/day_number.h"

namespace folidex {

QString results_statement(const QStringList& tag_links, const std::optional<DateRange>& range) {
    QString dates;
    if (range)
        dates = QStringLiteral(" and scans.date >= ") + day_number_text(range->from) +
                QStringLiteral(" and scans.date <= ") + day_number_text(range->to);
    return QStringLiteral("SELECT DISTINCT scans.date, scans.description, scans.fname, "
                          "scans.location, scans.link FROM scans INNER JOIN tagged ON "
                          "scans.link = tagged.scan WHERE tagged.tag In ") +
           QLatin1Char('(') + tag_links.join(QLatin1Char(',')) + QLatin1Char(')') + dates +
           QLatin1Char(' ') + QStringLiteral("ORDER BY scans.date, scans.link");
}

} // namespace folidex
