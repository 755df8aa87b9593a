// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QStringView>
#include <vector>

namespace folidex {

/// One token of a statement; its text is a view into the statement.
struct SqlToken {
    enum class Kind { Name, QuotedName, Text, Number, Symbol };

    Kind kind;
    qsizetype start;
    QStringView text;

    bool is_name() const { return kind == Kind::Name || kind == Kind::QuotedName; }
    bool is_keyword(QStringView keyword) const {
        return kind == Kind::Name && text.compare(keyword, Qt::CaseInsensitive) == 0;
    }
    bool is_symbol(QStringView symbol) const { return kind == Kind::Symbol && text == symbol; }
    qsizetype end() const { return start + text.size(); }
};

/// Splits a statement into tokens: 'texts' with doubled quotes, [names] and "names", numbers,
/// bare names, and symbols (<>, <=, >= are one each). A quote that never ends takes the rest.
std::vector<SqlToken> sql_tokens(QStringView statement);

/// The name behind a token of kind Name or QuotedName, without brackets or quotes.
QString bare_name(const SqlToken& token);
/// The text behind a token of kind Text, quotes undoubled.
QString bare_text(const SqlToken& token);
/// A name as SQLite always takes it for one: in double quotes.
QString quoted_name(QString name);

} // namespace folidex
