// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "data/row_store.h"

#include <QString>
#include <QVariant>

namespace folidex {

/// One comparison of a field with a number or a text, such as "tag = 17" or
/// "description = 'x'". Texts compare without regard to case; Null meets nothing.
struct Criterion {
    enum class Operator { Equal, Unequal, Less, LessOrEqual, Greater, GreaterOrEqual };

    QString field;
    Operator comparison = Operator::Equal;
    bool is_text = false;
    QByteArray text;
    double number = 0;

    bool meets(const Cell& cell) const;
};

/// Throws Error 3077 when the text is not such a comparison.
Criterion parsed_criterion(const QString& text);

/// "" & value of what a record set hands out.
QString text_of(const QVariant& value);

} // namespace folidex
