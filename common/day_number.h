// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QDateTime>
#include <QString>
#include <optional>

namespace folidex {

/// Dates as serial day numbers: days since 30 December 1899, the fraction being the time of
/// day. Wall-clock time without a zone: a document keeps its date wherever it is read.

/// Days before the first are plain negative numbers whose fraction still counts forward: -0.25 is
/// 18:00 on 29 December 1899. NaN for an invalid date or time.
double day_number(const QDate& date, const QTime& time = QTime(0, 0));
/// The date and time of a day number (time zone UTC, which only means "no zone"), to the
/// millisecond; nothing for NaN and for years outside 100 to 9999.
std::optional<QDateTime> from_day_number(double number);
/// Decimal text with up to 15 significant digits and a decimal point, never an exponent for
/// numbers that are dates: 40098, 40098.5. Throws Error for NaN and infinity.
QString day_number_text(double number);
/// The leading number of a text, 0 when there is none ("12a" is 12) and when no double can hold
/// it: how stored texts are read. Blanks before it are skipped; the point is always ".".
double numeric_value(const QString& text);

} // namespace folidex
