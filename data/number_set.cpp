// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "data/number_set.h"

#include "data/database.h"

#include <algorithm>
#include <bit>
#include <sqlite3.h>

namespace folidex {

namespace {

// Links are drawn one after the other from 1 on; sixteen megabytes of bits hold any real file's.
constexpr qint64 kBound = qint64(1) << 27;
constexpr unsigned kBitsAWord = 64;

void in_number_set(sqlite3_context* context, int, sqlite3_value** arguments) noexcept {
    const auto* set =
        static_cast<const NumberSet*>(sqlite3_value_pointer(arguments[1], NumberSet::kPointerType));
    const bool found = set != nullptr && sqlite3_value_type(arguments[0]) == SQLITE_INTEGER &&
                       set->contains(sqlite3_value_int64(arguments[0]));
    sqlite3_result_int(context, found ? 1 : 0);
}

bool is_small(qint64 number) noexcept {
    return number >= 0 && number < kBound;
}

} // namespace

void NumberSet::add(qint64 number) {
    if (!is_small(number)) {
        others_.push_back(number);
        return;
    }
    const auto place = static_cast<std::size_t>(number);
    const std::size_t word = place / kBitsAWord;
    if (word >= bits_.size())
        bits_.resize(std::max(word + 1, bits_.size() * 2));
    const quint64 bit = quint64(1) << (place % kBitsAWord);
    size_ += (bits_[word] & bit) == 0 ? 1 : 0;
    bits_[word] |= bit;
}

void NumberSet::finish() {
    std::sort(others_.begin(), others_.end());
    others_.erase(std::unique(others_.begin(), others_.end()), others_.end());
    size_ += others_.size();
}

bool NumberSet::contains(qint64 number) const noexcept {
    if (!is_small(number))
        return std::binary_search(others_.begin(), others_.end(), number);
    const auto place = static_cast<std::size_t>(number);
    const std::size_t word = place / kBitsAWord;
    return word < bits_.size() && (bits_[word] >> (place % kBitsAWord) & 1) != 0;
}

std::vector<qint64> NumberSet::numbers() const {
    const auto positive = std::lower_bound(others_.begin(), others_.end(), 0);
    std::vector<qint64> all(others_.begin(), positive);
    all.reserve(size_);
    for (std::size_t word = 0; word < bits_.size(); ++word)
        for (quint64 rest = bits_[word]; rest != 0; rest &= rest - 1)
            all.push_back(static_cast<qint64>(word * kBitsAWord) + std::countr_zero(rest));
    all.insert(all.end(), positive, others_.end());
    return all;
}

void offer_number_sets(const Database& database) {
    const int code =
        sqlite3_create_function_v2(database.handle(), "in_number_set", 2,
                                   SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY, nullptr,
                                   in_number_set, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        database.fail(code);
}

} // namespace folidex
