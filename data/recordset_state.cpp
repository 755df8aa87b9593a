// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "data/recordset_state.h"

#include "common/error.h"
#include "data/database.h"
#include "data/sql_tokens.h"
#include "data/statement.h"

#include <QDir>
#include <sqlite3.h>

namespace folidex {

namespace {

constexpr int kNoCurrentRecord = 3021;
constexpr int kCannotUpdate = 3027;
constexpr int kRecordIsDeleted = 3167;

[[noreturn]] void record_is_deleted() {
    throw Error{kRecordIsDeleted, QStringLiteral("Record is deleted.")};
}

bool ends_table_part(const SqlToken& token) {
    return token.is_keyword(u"WHERE") || token.is_keyword(u"ORDER") || token.is_symbol(u";");
}

bool is_simple(const std::vector<SqlToken>& tokens) {
    for (const SqlToken& token : tokens)
        if (token.is_symbol(u"(") || token.is_keyword(u"DISTINCT") || token.is_keyword(u"GROUP") ||
            token.is_keyword(u"UNION"))
            return false;
    return tokens.size() > 3 && tokens.front().is_keyword(u"SELECT");
}

RowStore read_rows(Statement& statement) {
    RowStore rows(statement.column_count());
    while (statement.step())
        rows.append(statement.handle());
    return rows;
}

QStringList column_names(const Statement& statement, int count) {
    QStringList names;
    for (int column = 0; column < count; ++column)
        names.append(statement.column_name(column));
    return names;
}

// Nothing when the statement is wrong or its table has no row numbers.
std::unique_ptr<Statement> with_row_numbers(const Database& database,
                                            const std::optional<EditableSelect>& source) {
    if (!source)
        return nullptr;
    try {
        return std::make_unique<Statement>(database, source->with_row_number);
    } catch (const Error& error) {
        if (error.number != SQLITE_ERROR)
            throw;
        return nullptr;
    }
}

QString list_of(const QStringList& names, const std::map<int, QVariant>& changes,
                const QString& after_each) {
    QStringList parts;
    for (const auto& [index, value] : changes)
        parts.append(quoted_name(names[index]) + after_each);
    return parts.join(QStringLiteral(", "));
}

int bind_all(Statement& statement, const std::map<int, QVariant>& changes) {
    int parameter = 0;
    for (const auto& [index, value] : changes)
        statement.bind(++parameter, value);
    return parameter;
}

} // namespace

std::optional<EditableSelect> editable_select(const QString& statement) {
    const std::vector<SqlToken> tokens = sql_tokens(statement);
    if (!is_simple(tokens))
        return std::nullopt;
    std::size_t from = 1;
    while (from < tokens.size() && !tokens[from].is_keyword(u"FROM"))
        ++from;
    if (from < 2 || from + 1 >= tokens.size() || !tokens[from + 1].is_name())
        return std::nullopt;
    if (from + 2 < tokens.size() && !ends_table_part(tokens[from + 2]))
        return std::nullopt;
    const qsizetype list_start = tokens[1].start;
    const qsizetype list_end = tokens[from - 1].end();
    EditableSelect result;
    result.table = tokens[from + 1].text.toString();
    result.columns = statement.mid(list_start, list_end - list_start);
    result.with_row_number =
        statement.left(list_end) + QStringLiteral(", rowid") + statement.mid(list_end);
    return result;
}

std::unique_ptr<Recordset::State> Recordset::State::of_select(std::shared_ptr<Database> database,
                                                              const QString& statement) {
    std::optional<EditableSelect> source = editable_select(statement);
    std::unique_ptr<Statement> select = with_row_numbers(*database, source);
    const int hidden = select ? 1 : 0;
    if (!select) {
        source.reset();
        select = std::make_unique<Statement>(*database, statement);
    }
    const QStringList names = column_names(*select, select->column_count() - hidden);
    auto state = std::make_unique<State>(std::move(database), names, read_rows(*select));
    state->source = std::move(source);
    return state;
}

std::unique_ptr<Recordset::State> Recordset::State::of_results(std::shared_ptr<Database> database,
                                                               const ResultsQuery& query) {
    RowStore rows = results_rows(*database, query);
    return std::make_unique<State>(std::move(database), results_names(), std::move(rows));
}

Recordset::State::State(std::shared_ptr<Database> connection, QStringList field_names,
                        RowStore stored)
    : database(std::move(connection)), names(std::move(field_names)), rows(std::move(stored)) {}

Recordset::State::~State() {
    give_up_change();
}

void Recordset::State::go_to(std::size_t new_row) {
    give_up_change();
    on_deleted = false;
    row = new_row;
    if (row >= rows.size())
        read_to_end = true;
}

void Recordset::State::require_row() const {
    if (on_deleted)
        record_is_deleted();
    if (row >= rows.size())
        throw Error{kNoCurrentRecord, QStringLiteral("No current record.")};
}

void Recordset::State::require_source() const {
    if (!source)
        throw Error{kCannotUpdate,
                    QStringLiteral("Cannot update. Database or object is read-only: ") +
                        QDir::toNativeSeparators(database->path())};
}

QString Recordset::State::where_current() const {
    return QStringLiteral(" WHERE rowid = %1").arg(row_number());
}

qint64 Recordset::State::row_number() const {
    return rows.cell(row, static_cast<int>(names.size())).integer;
}

QVariant Recordset::State::value(int index) const {
    if (const auto changed = changes.find(index); changed != changes.end())
        return changed->second;
    if (mode == Mode::Adding)
        return {};
    require_row();
    return rows.cell(row, index).value();
}

void Recordset::State::give_up_change() noexcept {
    if (mode == Mode::Editing && sqlite3_get_autocommit(database->handle()) == 0)
        sqlite3_exec(database->handle(), "ROLLBACK", nullptr, nullptr, nullptr);
    mode = Mode::Reading;
    changes.clear();
}

void Recordset::State::begin_edit() {
    give_up_change();
    require_source();
    require_row();
    // SQLite would begin on such a file too and fail only when it writes.
    if (sqlite3_db_readonly(database->handle(), "main") != 0)
        database->fail(SQLITE_READONLY);
    Statement(*database, QStringLiteral("BEGIN IMMEDIATE")).run();
    mode = Mode::Editing;
    try {
        Statement current(
            *database,
            QStringLiteral("SELECT %1, rowid FROM %2").arg(source->columns, source->table) +
                where_current());
        if (!current.step())
            record_is_deleted();
        rows.replace(row, current.handle());
    } catch (...) {
        give_up_change();
        throw;
    }
}

void Recordset::State::write_edit() {
    try {
        if (!changes.empty()) {
            Statement update(*database,
                             QStringLiteral("UPDATE ") + source->table + QStringLiteral(" SET ") +
                                 list_of(names, changes, QStringLiteral(" = ?")) + where_current());
            bind_all(update, changes);
            update.run();
            Statement written(
                *database,
                QStringLiteral("SELECT %1, rowid FROM %2").arg(source->columns, source->table) +
                    where_current());
            if (written.step())
                rows.replace(row, written.handle());
        }
        Statement(*database, QStringLiteral("COMMIT")).run();
    } catch (...) {
        give_up_change();
        throw;
    }
    mode = Mode::Reading;
    changes.clear();
}

void Recordset::State::write_new() {
    const std::map<int, QVariant> values = changes;
    give_up_change();
    QStringList marks;
    for (std::size_t i = 0; i < values.size(); ++i)
        marks.append(QStringLiteral("?"));
    const QString what = values.empty()
                             ? QStringLiteral("DEFAULT VALUES")
                             : QStringLiteral("(%1) VALUES (%2)")
                                   .arg(list_of(names, values, QString()), marks.join(u','));
    Statement insert(*database, QStringLiteral("INSERT INTO %1 %2 RETURNING %3, rowid")
                                    .arg(source->table, what, source->columns));
    bind_all(insert, values);
    const bool at_end = row >= rows.size();
    while (insert.step())
        rows.append(insert.handle());
    if (at_end)
        row = rows.size();
}

void Recordset::State::delete_row() {
    give_up_change();
    require_source();
    require_row();
    Statement(*database, QStringLiteral("DELETE FROM ") + source->table + where_current()).run();
    if (sqlite3_changes(database->handle()) == 0)
        record_is_deleted();
    rows.remove(row);
    on_deleted = true;
}

} // namespace folidex
