// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "data/recordset.h"
#include "data/results_query.h"
#include "data/row_store.h"

#include <QStringList>
#include <map>
#include <optional>

namespace folidex {

class Statement;

/// Where the rows of a record set can be changed: the one table that its SELECT reads.
struct EditableSelect {
    QString table;   ///< as it stands in SQL
    QString columns; ///< what stands between SELECT and FROM
    /// The whole statement with the row's number as one more column at the end.
    QString with_row_number;
};

/// A SELECT on one table, without grouping, is one whose rows can be changed.
std::optional<EditableSelect> editable_select(const QString& statement);

/// What a record set holds: its rows of one moment, the position in them, and a change that was
/// begun. Destroying it gives up the change and with it the file's lock.
struct Recordset::State {
    enum class Mode { Reading, Editing, Adding };

    static std::unique_ptr<State> of_select(std::shared_ptr<Database> database,
                                            const QString& statement);
    static std::unique_ptr<State> of_results(std::shared_ptr<Database> database,
                                             const ResultsQuery& query);

    State(std::shared_ptr<Database> connection, QStringList field_names, RowStore read_rows);
    ~State();
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    void go_to(std::size_t new_row);
    void require_row() const;
    void require_source() const;
    QString where_current() const;
    qint64 row_number() const;
    QVariant value(int index) const;
    void give_up_change() noexcept;

    void begin_edit();
    void write_edit();
    void write_new();
    void delete_row();

    std::shared_ptr<Database> database;
    QStringList names;
    RowStore rows;
    std::optional<EditableSelect> source;
    std::size_t row = 0;
    bool read_to_end = false;
    bool no_match = false;
    /// The current row was deleted; row already denotes the one behind it.
    bool on_deleted = false;
    Mode mode = Mode::Reading;
    std::map<int, QVariant> changes;
};

} // namespace folidex
