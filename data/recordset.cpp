// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "data/recordset.h"

#include "common/error.h"
#include "data/criterion.h"
#include "data/recordset_state.h"

namespace folidex {

namespace {

constexpr int kUpdateWithoutEdit = 3020;
constexpr int kNoCurrentRecord = 3021;
constexpr int kItemNotFound = 3265;
constexpr int kObjectInvalid = 3420;

template <class State> State& opened(const std::unique_ptr<State>& state) {
    if (!state)
        throw Error{kObjectInvalid, QStringLiteral("Object invalid or no longer set.")};
    return *state;
}

} // namespace

Recordset::Recordset(std::unique_ptr<State> state) : state_(std::move(state)) {}
Recordset::Recordset(Recordset&&) noexcept = default;
Recordset& Recordset::operator=(Recordset&&) noexcept = default;
Recordset::~Recordset() = default;

int Recordset::record_count() const {
    const State& state = opened(state_);
    const auto count = static_cast<int>(state.rows.size());
    return state.read_to_end ? count : std::min(count, 1);
}

bool Recordset::eof() const {
    const State& state = opened(state_);
    return !state.on_deleted && state.row >= state.rows.size();
}

void Recordset::move_first() {
    opened(state_).go_to(0);
}

void Recordset::move_last() {
    State& state = opened(state_);
    state.go_to(state.rows.size() > 0 ? state.rows.size() - 1 : 0);
    state.read_to_end = true;
}

void Recordset::move_next() {
    State& state = opened(state_);
    if (eof())
        throw Error{kNoCurrentRecord, QStringLiteral("No current record.")};
    state.go_to(state.on_deleted ? state.row : state.row + 1);
}

void Recordset::find_first(const QString& criterion) {
    State& state = opened(state_);
    const Criterion wanted = parsed_criterion(criterion);
    const int field = field_index(wanted.field);
    for (std::size_t row = 0; row < state.rows.size(); ++row) {
        if (wanted.meets(state.rows.cell(row, field))) {
            state.go_to(row);
            state.no_match = false;
            return;
        }
    }
    state.read_to_end = true;
    state.no_match = true;
}

bool Recordset::no_match() const {
    return opened(state_).no_match;
}

QVariant Recordset::field(const QString& name) const {
    return value_at(field_index(name));
}

QString Recordset::text(const QString& name) const {
    return text_at(field_index(name));
}

int Recordset::field_index(const QString& name) const {
    const QStringList& names = opened(state_).names;
    for (qsizetype i = 0; i < names.size(); ++i)
        if (names[i].compare(name, Qt::CaseInsensitive) == 0)
            return static_cast<int>(i);
    throw Error{kItemNotFound, QStringLiteral("Item not found in this collection: ") + name};
}

int Recordset::field_count() const {
    return static_cast<int>(opened(state_).names.size());
}

QString Recordset::text_at(int field_index) const {
    const State& state = opened(state_);
    if (state.mode != State::Mode::Reading)
        return text_of(state.value(field_index));
    state.require_row();
    return state.rows.cell(state.row, field_index).to_text();
}

QVariant Recordset::value_at(int field_index) const {
    return opened(state_).value(field_index);
}

void Recordset::edit() {
    opened(state_).begin_edit();
}

void Recordset::add_new() {
    State& state = opened(state_);
    state.give_up_change();
    state.require_source();
    state.mode = State::Mode::Adding;
}

void Recordset::set_field(const QString& name, const QVariant& value) {
    State& state = opened(state_);
    if (state.mode == State::Mode::Reading)
        throw Error{kUpdateWithoutEdit, QStringLiteral("Update without AddNew or Edit.")};
    state.changes[field_index(name)] = value;
}

void Recordset::update() {
    State& state = opened(state_);
    if (state.mode == State::Mode::Reading)
        throw Error{kUpdateWithoutEdit, QStringLiteral("Update without AddNew or Edit.")};
    if (state.mode == State::Mode::Editing)
        state.write_edit();
    else
        state.write_new();
}

void Recordset::delete_current() {
    opened(state_).delete_row();
}

std::vector<std::vector<QVariant>> Recordset::get_rows() {
    State& state = opened(state_);
    std::vector<std::vector<QVariant>> all;
    if (state.on_deleted)
        state.go_to(state.row);
    state.give_up_change();
    for (std::size_t row = state.row; row < state.rows.size(); ++row) {
        std::vector<QVariant>& fields = all.emplace_back();
        for (int field = 0; field < state.names.size(); ++field)
            fields.push_back(state.rows.cell(row, field).value());
    }
    state.go_to(state.rows.size());
    return all;
}

void Recordset::close() {
    state_.reset();
}

} // namespace folidex
