// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "data/criterion.h"

#include "common/error.h"
#include "data/sql_tokens.h"
#include "data/text_order.h"

#include <optional>

namespace folidex {

namespace {

constexpr int kSyntaxErrorInExpression = 3077;

using Operator = Criterion::Operator;

std::optional<Operator> operator_of(const SqlToken& token) {
    static constexpr std::pair<QStringView, Operator> kOperators[] = {
        {u"=", Operator::Equal},   {u"<>", Operator::Unequal},
        {u"<", Operator::Less},    {u"<=", Operator::LessOrEqual},
        {u">", Operator::Greater}, {u">=", Operator::GreaterOrEqual},
    };
    for (const auto& [symbol, meaning] : kOperators)
        if (token.is_symbol(symbol))
            return meaning;
    return std::nullopt;
}

bool holds(int order, Operator comparison) {
    switch (comparison) {
    case Operator::Equal:
        return order == 0;
    case Operator::Unequal:
        return order != 0;
    case Operator::Less:
        return order < 0;
    case Operator::LessOrEqual:
        return order <= 0;
    case Operator::Greater:
        return order > 0;
    case Operator::GreaterOrEqual:
        return order >= 0;
    }
    return false;
}

std::optional<Criterion> parse(const QString& text) {
    const std::vector<SqlToken> tokens = sql_tokens(text);
    std::size_t at = 0;
    if (tokens.size() > 2 && tokens[0].is_name() && tokens[1].is_symbol(u"."))
        at = 2;
    if (tokens.size() < at + 3 || !tokens[at].is_name())
        return std::nullopt;
    Criterion result;
    result.field = bare_name(tokens[at]);
    const auto comparison = operator_of(tokens[at + 1]);
    if (!comparison)
        return std::nullopt;
    result.comparison = *comparison;
    at += 2;
    const bool negative = tokens[at].is_symbol(u"-");
    if (negative)
        ++at;
    if (tokens.size() != at + 1)
        return std::nullopt;
    if (tokens[at].kind == SqlToken::Kind::Number) {
        result.number = tokens[at].text.toDouble() * (negative ? -1 : 1);
        return result;
    }
    if (negative || tokens[at].kind != SqlToken::Kind::Text)
        return std::nullopt;
    result.is_text = true;
    result.text = bare_text(tokens[at]).toUtf8();
    return result;
}

} // namespace

bool Criterion::meets(const Cell& cell) const {
    if (cell.kind == Cell::Kind::Null)
        return false;
    if (is_text != (cell.kind == Cell::Kind::Text))
        return false;
    if (is_text)
        return holds(
            compare_texts(cell.text, {text.constData(), static_cast<std::size_t>(text.size())}),
            comparison);
    const double value =
        cell.kind == Cell::Kind::Integer ? static_cast<double>(cell.integer) : cell.real;
    return holds(value < number ? -1 : (value > number ? 1 : 0), comparison);
}

Criterion parsed_criterion(const QString& text) {
    const std::optional<Criterion> result = parse(text);
    if (!result)
        throw Error{kSyntaxErrorInExpression,
                    QStringLiteral("Syntax error in expression: ") + text};
    return *result;
}

QString text_of(const QVariant& value) {
    Cell cell;
    if (value.isNull())
        return {};
    if (value.typeId() == QMetaType::QString)
        return value.toString();
    if (value.typeId() == QMetaType::Double) {
        cell.kind = Cell::Kind::Real;
        cell.real = value.toDouble();
    } else {
        cell.kind = Cell::Kind::Integer;
        cell.integer = value.toLongLong();
    }
    return cell.to_text();
}

} // namespace folidex
