// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

namespace folidex {

/// A text as lists and menus show it: line breaks and other control characters as blanks, and
/// no longer than any screen is wide, as laying out more would only cost time.
inline QString one_line(const QString& text) {
    constexpr qsizetype kMostLetters = 1024;
    QString line = text.left(kMostLetters);
    line.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    for (QChar& c : line)
        if (c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
            c == QChar::ParagraphSeparator)
            c = u' ';
    return line;
}

} // namespace folidex
