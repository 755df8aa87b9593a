// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QtGlobal>
#include <vector>

namespace folidex {

class Database;

/// A set of link numbers, made for many: a bit a number up to a bound, a sorted list of the
/// rest. Call finish() between the last add() and the first question.
class LinkSet {
public:
    void add(qint64 link);
    void finish();

    bool contains(qint64 link) const noexcept;
    std::size_t size() const { return size_; }
    /// All links in ascending order.
    std::vector<qint64> links() const;

    /// The name under which it is bound to a statement's parameter.
    static constexpr const char* kPointerType = "folidex::LinkSet";

private:
    std::vector<quint64> bits_;
    std::vector<qint64> others_;
    std::size_t size_ = 0;
};

/// Makes the SQL function in_link_set(link, set) known to a connection.
void offer_link_sets(const Database& database);

} // namespace folidex
