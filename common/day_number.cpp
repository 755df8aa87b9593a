// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/day_number.h"
#include "common/error.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace folidex {

namespace {

constexpr double kMillisecondsPerDay = 86'400'000.0;
constexpr int kSignificantDigits = 15;
constexpr int kFirstYear = 100;
constexpr int kLastYear = 9999;

QDate first_day() {
    return {1899, 12, 30};
}

// A number with this many digits before the point has none left behind it.
const double kTooLongToWriteOut = std::pow(10.0, kSignificantDigits);
const double kTooSmallToWriteOut = std::pow(10.0, -kSignificantDigits);

QString without_trailing_zeros(QString text) {
    if (!text.contains(u'.'))
        return text;
    while (text.endsWith(u'0'))
        text.chop(1);
    if (text.endsWith(u'.'))
        text.chop(1);
    return text;
}

bool is_digit(const QString& text, qsizetype at) {
    return at < text.size() && text[at] >= u'0' && text[at] <= u'9';
}

bool is_sign(const QString& text, qsizetype at) {
    return at < text.size() && (text[at] == u'+' || text[at] == u'-');
}

bool is_blank(QChar character) {
    return character == u' ' || character == u'\t' || character == u'\r' || character == u'\n';
}

qsizetype after_digits(const QString& text, qsizetype at) {
    while (is_digit(text, at))
        ++at;
    return at;
}

qsizetype after_exponent(const QString& text, qsizetype at) {
    if (at >= text.size() || text[at].toLower() != u'e')
        return at;
    const qsizetype digits = at + (is_sign(text, at + 1) ? 2 : 1);
    return is_digit(text, digits) ? after_digits(text, digits) : at;
}

} // namespace

double day_number(const QDate& date, const QTime& time) {
    if (!date.isValid() || !time.isValid())
        return std::numeric_limits<double>::quiet_NaN();
    return static_cast<double>(first_day().daysTo(date)) +
           time.msecsSinceStartOfDay() / kMillisecondsPerDay;
}

std::optional<QDateTime> from_day_number(double number) {
    static const double lowest = day_number({kFirstYear, 1, 1});
    static const double beyond = day_number({kLastYear, 12, 31}) + 1;
    if (!(number >= lowest && number < beyond)) // also keeps NaN out
        return std::nullopt;
    const QDateTime start(first_day(), QTime(0, 0), Qt::UTC);
    const QDateTime result = start.addMSecs(std::llround(number * kMillisecondsPerDay));
    if (result.date().year() > kLastYear) // rounded up past the last midnight
        return std::nullopt;
    return result;
}

QString day_number_text(double number) {
    if (!std::isfinite(number))
        throw Error{kInvalidArgument, QStringLiteral("The date is not a valid date.")};
    if (number == 0)
        return QStringLiteral("0"); // never "-0"
    const double size = std::abs(number);
    if (size >= kTooLongToWriteOut || size < kTooSmallToWriteOut)
        return QString::number(number, 'g', kSignificantDigits);
    // In this order, because rounding can carry into one more digit before the point.
    const QString rounded = QString::number(number, 'e', kSignificantDigits - 1);
    const int exponent = QStringView(rounded).mid(rounded.indexOf(u'e') + 1).toInt();
    const int decimals = std::max(0, kSignificantDigits - 1 - exponent);
    return without_trailing_zeros(QString::number(number, 'f', decimals));
}

double numeric_value(const QString& text) {
    qsizetype start = 0;
    while (start < text.size() && is_blank(text[start]))
        ++start;
    const qsizetype whole = is_sign(text, start) ? start + 1 : start;
    qsizetype end = after_digits(text, whole);
    qsizetype digits = end - whole;
    if (end < text.size() && text[end] == u'.') {
        const qsizetype fraction = end + 1;
        end = after_digits(text, fraction);
        digits += end - fraction;
    }
    if (digits == 0)
        return 0;
    end = after_exponent(text, end);
    bool ok = false;
    const double value = QStringView(text).mid(start, end - start).toDouble(&ok);
    return ok ? value : 0;
}

} // namespace folidex
