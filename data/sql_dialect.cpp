// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "data/sql_dialect.h"

#include "data/sql_tokens.h"

namespace folidex {

namespace {

using Tokens = std::vector<SqlToken>;

void drop_star_of_delete(const Tokens& tokens, std::vector<bool>& dropped) {
    if (tokens.size() > 2 && tokens[0].is_keyword(u"DELETE") && tokens[1].is_symbol(u"*") &&
        tokens[2].is_keyword(u"FROM"))
        dropped[1] = true;
}

bool is_qualified(const Tokens& tokens, std::size_t at) {
    return at + 2 < tokens.size() && tokens[at].is_name() && tokens[at + 1].is_symbol(u".") &&
           tokens[at + 2].is_name();
}

void drop_tables_of_update(const Tokens& tokens, std::vector<bool>& dropped) {
    if (tokens.empty() || !tokens[0].is_keyword(u"UPDATE"))
        return;
    bool in_set = false;
    bool at_target = false;
    int depth = 0;
    for (std::size_t i = 1; i < tokens.size(); ++i) {
        if (at_target && is_qualified(tokens, i))
            dropped[i] = dropped[i + 1] = true;
        at_target = false;
        if (tokens[i].is_symbol(u"(")) {
            ++depth;
        } else if (tokens[i].is_symbol(u")")) {
            --depth;
        } else if (depth == 0 && tokens[i].is_keyword(u"WHERE")) {
            return;
        } else if (depth == 0 && !in_set && tokens[i].is_keyword(u"SET")) {
            in_set = at_target = true;
        } else if (depth == 0 && in_set && tokens[i].is_symbol(u",")) {
            at_target = true;
        }
    }
}

} // namespace

QString to_sqlite(QStringView statement) {
    const Tokens tokens = sql_tokens(statement);
    std::vector<bool> dropped(tokens.size(), false);
    drop_star_of_delete(tokens, dropped);
    drop_tables_of_update(tokens, dropped);

    QString result;
    result.reserve(statement.size());
    qsizetype copied = 0;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const SqlToken& token = tokens[i];
        result += statement.mid(copied, token.start - copied);
        copied = token.end();
        if (dropped[i])
            continue;
        if (token.text.startsWith(u'[') && token.text.endsWith(u']'))
            result += quoted_name(bare_name(token));
        else
            result += token.text;
    }
    result += statement.mid(copied);
    return result;
}

QString quoted(const QString& text) {
    return QString(text).replace(u'\'', QStringLiteral("''"));
}

} // namespace folidex
