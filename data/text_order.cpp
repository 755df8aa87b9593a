// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "data/text_order.h"

#include <QChar>

namespace folidex {

namespace {

// Bytes that are no UTF-8 sort behind all characters and equal only themselves.
constexpr char32_t kBrokenByte = 0x110000;

unsigned char byte_at(std::string_view text, std::size_t at) noexcept {
    return static_cast<unsigned char>(text[at]);
}

int sequence_length(unsigned char lead) noexcept {
    if (lead >= 0xC2 && lead <= 0xDF)
        return 2;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 3;
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

char32_t next_code_point(std::string_view text, std::size_t& at) noexcept {
    const unsigned char lead = byte_at(text, at++);
    if (lead < 0x80)
        return lead;
    const int length = sequence_length(lead);
    const auto rest = static_cast<std::size_t>(length > 0 ? length - 1 : 0);
    if (length == 0 || text.size() - at < rest)
        return kBrokenByte + lead;
    char32_t point = lead & (0x7FU >> length);
    for (std::size_t i = 0; i < rest; ++i) {
        const unsigned char byte = byte_at(text, at + i);
        if ((byte & 0xC0) != 0x80)
            return kBrokenByte + lead;
        point = (point << 6) | (byte & 0x3FU);
    }
    at += rest;
    return point;
}

char32_t folded(char32_t point) noexcept {
    if (point < 0x80)
        return point >= U'A' && point <= U'Z' ? point + 32 : point;
    return point < kBrokenByte ? QChar::toCaseFolded(point) : point;
}

} // namespace

int compare_texts(std::string_view left, std::string_view right) noexcept {
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < left.size() && j < right.size()) {
        const char32_t a = folded(next_code_point(left, i));
        const char32_t b = folded(next_code_point(right, j));
        if (a != b)
            return a < b ? -1 : 1;
    }
    if (i < left.size())
        return 1;
    return j < right.size() ? -1 : 0;
}

} // namespace folidex
