// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QtGlobal>
#include <vector>

namespace folidex {

class Database;

/// A set of link numbers, of documents or tags, made for many: a bit a number up to a bound, a
/// sorted list of the rest. Call finish() between the last add() and the first question.
class NumberSet {
public:
    void add(qint64 number);
    void finish();

    bool contains(qint64 number) const noexcept;
    std::size_t size() const { return size_; }
    /// All of them in ascending order.
    std::vector<qint64> numbers() const;

    /// The name under which it is bound to a statement's parameter.
    static constexpr const char* kPointerType = "folidex::NumberSet";

private:
    std::vector<quint64> bits_;
    std::vector<qint64> others_;
    std::size_t size_ = 0;
};

/// Makes the SQL function in_number_set(value, set) known to a connection. Whatever is no integer
/// is in no set, as it equals none of the integers in a list.
void offer_number_sets(const Database& database);

} // namespace folidex
