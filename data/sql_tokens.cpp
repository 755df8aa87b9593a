// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "data/sql_tokens.h"

#include <QString>
#include <algorithm>

namespace folidex {

namespace {

bool starts_name(QChar c) {
    return c.isLetter() || c == u'_' || c.unicode() >= 0x80;
}

bool is_digit(QChar c) {
    return c >= u'0' && c <= u'9';
}

bool continues_name(QChar c) {
    return starts_name(c) || is_digit(c) || c == u'$';
}

// The position behind a quote that opened at start; a doubled quote stands for itself.
qsizetype after_quoted(QStringView text, qsizetype start, QChar closing) {
    qsizetype at = start + 1;
    while (at < text.size()) {
        if (text[at] != closing) {
            ++at;
        } else if (closing != u']' && at + 1 < text.size() && text[at + 1] == closing) {
            at += 2;
        } else {
            return at + 1;
        }
    }
    return text.size();
}

template <class Test> qsizetype after_while(QStringView text, qsizetype at, Test test) {
    while (at < text.size() && test(text[at]))
        ++at;
    return at;
}

qsizetype after_number(QStringView text, qsizetype start) {
    qsizetype at = after_while(text, start, is_digit);
    if (at < text.size() && text[at] == u'.')
        at = after_while(text, at + 1, is_digit);
    if (at < text.size() && text[at].toLower() == u'e') {
        qsizetype digits = at + 1;
        if (digits < text.size() && (text[digits] == u'+' || text[digits] == u'-'))
            ++digits;
        if (digits < text.size() && is_digit(text[digits]))
            at = after_while(text, digits, is_digit);
    }
    return at;
}

qsizetype after_symbol(QStringView text, qsizetype start) {
    const QStringView pair = text.mid(start, 2);
    return pair == u"<>" || pair == u"<=" || pair == u">=" ? start + 2 : start + 1;
}

SqlToken token_at(QStringView text, qsizetype start) {
    const QChar first = text[start];
    auto token = [&](SqlToken::Kind kind, qsizetype end) {
        return SqlToken{kind, start, text.mid(start, end - start)};
    };
    if (first == u'\'')
        return token(SqlToken::Kind::Text, after_quoted(text, start, u'\''));
    if (first == u'"')
        return token(SqlToken::Kind::QuotedName, after_quoted(text, start, u'"'));
    if (first == u'[')
        return token(SqlToken::Kind::QuotedName, after_quoted(text, start, u']'));
    if (starts_name(first))
        return token(SqlToken::Kind::Name, after_while(text, start, continues_name));
    const bool fraction = first == u'.' && start + 1 < text.size() && is_digit(text[start + 1]);
    if (is_digit(first) || fraction)
        return token(SqlToken::Kind::Number, after_number(text, start));
    return token(SqlToken::Kind::Symbol, after_symbol(text, start));
}

QString without_quotes(QStringView text, QChar quote) {
    QStringView inside = text.mid(1);
    if (inside.endsWith(quote))
        inside.chop(1);
    return inside.toString().replace(QString(2, quote), QString(quote));
}

} // namespace

std::vector<SqlToken> sql_tokens(QStringView statement) {
    std::vector<SqlToken> tokens;
    qsizetype at = 0;
    while (at < statement.size()) {
        if (statement[at].isSpace()) {
            ++at;
            continue;
        }
        tokens.push_back(token_at(statement, at));
        at = tokens.back().end();
    }
    return tokens;
}

QString bare_name(const SqlToken& token) {
    if (token.kind != SqlToken::Kind::QuotedName)
        return token.text.toString();
    if (token.text.startsWith(u'"'))
        return without_quotes(token.text, u'"');
    QStringView inside = token.text.mid(1);
    if (inside.endsWith(u']'))
        inside.chop(1);
    return inside.toString();
}

QString bare_text(const SqlToken& token) {
    return without_quotes(token.text, u'\'');
}

QString quoted_name(QString name) {
    return u'"' + name.replace(u'"', QStringLiteral("\"\"")) + u'"';
}

} // namespace folidex
