// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "data/link_set.h"

#include "data/database.h"

#include <algorithm>
#include <bit>
#include <sqlite3.h>

namespace folidex {

namespace {

// Links are drawn one after the other from 1 on; sixteen megabytes of bits hold any real file's.
constexpr qint64 kBound = qint64(1) << 27;
constexpr unsigned kBitsAWord = 64;

void in_link_set(sqlite3_context* context, int, sqlite3_value** arguments) noexcept {
    const auto* links =
        static_cast<const LinkSet*>(sqlite3_value_pointer(arguments[1], LinkSet::kPointerType));
    const bool found = links != nullptr && links->contains(sqlite3_value_int64(arguments[0]));
    sqlite3_result_int(context, found ? 1 : 0);
}

bool is_small(qint64 link) noexcept {
    return link >= 0 && link < kBound;
}

} // namespace

void LinkSet::add(qint64 link) {
    if (!is_small(link)) {
        others_.push_back(link);
        return;
    }
    const auto number = static_cast<std::size_t>(link);
    const std::size_t word = number / kBitsAWord;
    if (word >= bits_.size())
        bits_.resize(std::max(word + 1, bits_.size() * 2));
    const quint64 bit = quint64(1) << (number % kBitsAWord);
    size_ += (bits_[word] & bit) == 0 ? 1 : 0;
    bits_[word] |= bit;
}

void LinkSet::finish() {
    std::sort(others_.begin(), others_.end());
    others_.erase(std::unique(others_.begin(), others_.end()), others_.end());
    size_ += others_.size();
}

bool LinkSet::contains(qint64 link) const noexcept {
    if (!is_small(link))
        return std::binary_search(others_.begin(), others_.end(), link);
    const auto number = static_cast<std::size_t>(link);
    const std::size_t word = number / kBitsAWord;
    return word < bits_.size() && (bits_[word] >> (number % kBitsAWord) & 1) != 0;
}

std::vector<qint64> LinkSet::links() const {
    const auto positive = std::lower_bound(others_.begin(), others_.end(), 0);
    std::vector<qint64> all(others_.begin(), positive);
    all.reserve(size_);
    for (std::size_t word = 0; word < bits_.size(); ++word)
        for (quint64 rest = bits_[word]; rest != 0; rest &= rest - 1)
            all.push_back(static_cast<qint64>(word * kBitsAWord) + std::countr_zero(rest));
    all.insert(all.end(), positive, others_.end());
    return all;
}

void offer_link_sets(const Database& database) {
    const int code = sqlite3_create_function_v2(
        database.handle(), "in_link_set", 2, SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY,
        nullptr, in_link_set, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        database.fail(code);
}

} // namespace folidex
