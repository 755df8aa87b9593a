// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/group4.h"

#include "common/error.h"

#include <QtEndian>
#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string_view>
#include <utility>

namespace folidex {
namespace {

struct Code {
    std::uint16_t bits = 0;
    std::uint8_t length = 0;
};

/// Codes written as the standard prints them, so that they can be compared with it by eye.
template <std::size_t kCount> consteval std::array<Code, kCount> codes(std::string_view text) {
    std::array<Code, kCount> table{};
    std::size_t at = 0;
    for (const char c : text) {
        if (c == ' ') {
            ++at;
            continue;
        }
        table.at(at).bits = static_cast<std::uint16_t>(table.at(at).bits << 1 | (c == '1' ? 1 : 0));
        ++table.at(at).length;
    }
    if (at + 1 != kCount)
        throw "a code is missing";
    return table;
}

/// Runs of 0 to 63.
constexpr auto kWhiteRuns = codes<64>(
    "00110101 000111 0111 1000 1011 1100 1110 1111 10011 10100 00111 01000 001000 000011 110100 "
    "110101 101010 101011 0100111 0001100 0001000 0010111 0000011 0000100 0101000 0101011 0010011 "
    "0100100 0011000 00000010 00000011 00011010 00011011 00010010 00010011 00010100 00010101 "
    "00010110 00010111 00101000 00101001 00101010 00101011 00101100 00101101 00000100 00000101 "
    "00001010 00001011 01010010 01010011 01010100 01010101 00100100 00100101 01011000 01011001 "
    "01011010 01011011 01001010 01001011 00110010 00110011 00110100");
constexpr auto kBlackRuns = codes<64>(
    "0000110111 010 11 10 011 0011 0010 00011 000101 000100 0000100 0000101 0000111 00000100 "
    "00000111 000011000 0000010111 0000011000 0000001000 00001100111 00001101000 00001101100 "
    "00000110111 00000101000 00000010111 00000011000 000011001010 000011001011 000011001100 "
    "000011001101 000001101000 000001101001 000001101010 000001101011 000011010010 000011010011 "
    "000011010100 000011010101 000011010110 000011010111 000001101100 000001101101 000011011010 "
    "000011011011 000001010100 000001010101 000001010110 000001010111 000001100100 000001100101 "
    "000001010010 000001010011 000000100100 000000110111 000000111000 000000100111 000000101000 "
    "000001011000 000001011001 000000101011 000000101100 000001011010 000001100110 000001100111");
/// Runs of 64, 128 ... 1728.
constexpr auto kWhiteMakeUp = codes<27>(
    "11011 10010 010111 0110111 00110110 00110111 01100100 01100101 01101000 01100111 011001100 "
    "011001101 011010010 011010011 011010100 011010101 011010110 011010111 011011000 011011001 "
    "011011010 011011011 010011000 010011001 010011010 011000 010011011");
constexpr auto kBlackMakeUp = codes<27>(
    "0000001111 000011001000 000011001001 000001011011 000000110011 000000110100 000000110101 "
    "0000001101100 0000001101101 0000001001010 0000001001011 0000001001100 0000001001101 "
    "0000001110010 0000001110011 0000001110100 0000001110101 0000001110110 0000001110111 "
    "0000001010010 0000001010011 0000001010100 0000001010101 0000001011010 0000001011011 "
    "0000001100100 0000001100101");
/// Runs of 1792, 1856 ... 2560 of either colour.
constexpr auto kLongMakeUp = codes<13>(
    "00000001000 00000001100 00000001101 000000010010 000000010011 000000010100 000000010101 "
    "000000010110 000000010111 000000011100 000000011101 000000011110 000000011111");
/// The change lies 3 left to 3 right of the one above.
constexpr auto kVertical = codes<7>("0000010 000010 010 1 011 000011 0000011");
constexpr auto kPass = codes<1>("0001")[0];
constexpr auto kHorizontal = codes<1>("001")[0];
constexpr auto kEndOfLine = codes<1>("000000000001")[0];

constexpr int kMakeUpStep = 64;
constexpr int kFirstLongRun = 1792;
constexpr int kLongestRun = 2560;
constexpr std::size_t kWordBits = 64;
/// How many times the width stands behind the last change.
constexpr std::size_t kSentinels = 4;

std::uint64_t word_at(std::span<const std::uint8_t> row, std::size_t offset) {
    std::array<std::uint8_t, sizeof(std::uint64_t)> bytes{};
    std::memcpy(bytes.data(), row.data() + offset, std::min(bytes.size(), row.size() - offset));
    return qFromBigEndian<std::uint64_t>(bytes.data());
}

} // namespace

Group4Encoder::Group4Encoder(int width) : width_(width) {
    if (width < 1)
        throw Error(kInternalError, QStringLiteral("A page without width cannot be encoded."));
    const std::size_t capacity = static_cast<std::size_t>(width) + kSentinels;
    current_.resize(capacity);
    reference_.assign(capacity, width);
}

void Group4Encoder::find_changes(std::span<const std::uint8_t> row) {
    int* next = current_.data();
    std::uint64_t last_pixel = 0;
    for (std::size_t offset = 0; offset < row.size(); offset += sizeof(std::uint64_t)) {
        const std::uint64_t word = word_at(row, offset);
        std::uint64_t changes = word ^ (word >> 1 | last_pixel << (kWordBits - 1));
        last_pixel = word & 1;
        const int base = static_cast<int>(offset * 8);
        while (changes != 0) {
            const int bit = std::countl_zero(changes);
            if (base + bit >= width_)
                break;
            *next++ = base + bit;
            changes &= ~(std::uint64_t{1} << (kWordBits - 1) >> bit);
        }
    }
    std::fill_n(next, kSentinels, width_);
}

void Group4Encoder::code_row() {
    const int* change = current_.data();
    const int* above = reference_.data();
    int start = -1;
    bool black = false;
    while (start < width_) {
        while (*above <= start)
            above += 2;
        const int distance = *change - above[0];
        if (above[1] < *change) {
            put(kPass.bits, kPass.length);
            start = above[1];
        } else if (distance >= -3 && distance <= 3) {
            const Code code = kVertical[static_cast<std::size_t>(distance + 3)];
            put(code.bits, code.length);
            start = *change++;
            black = !black;
            // The other colour's changes lie between these; the one before may count again.
            above += above == reference_.data() ? 1 : -1;
        } else {
            put(kHorizontal.bits, kHorizontal.length);
            put_run(change[0] - std::max(start, 0), black);
            put_run(change[1] - change[0], !black);
            start = change[1];
            change += 2;
        }
    }
}

void Group4Encoder::add_row(std::span<const std::uint8_t> row) {
    if (row.size() != (static_cast<std::size_t>(width_) + 7) / 8)
        throw Error(kInternalError, QStringLiteral("A row of %1 bytes does not fit a page of %2 "
                                                   "pixels a row.")
                                        .arg(row.size())
                                        .arg(width_));
    reserve_row();
    find_changes(row);
    code_row();
    std::swap(reference_, current_);
}

void Group4Encoder::reserve_row() {
    // No row takes more than two bytes a pixel; the rest is for the end-of-block code.
    const qsizetype most = used_ + 2 * qsizetype{width_} + 64;
    if (out_.size() < most)
        out_.resize(std::max(most, out_.size() * 3 / 2));
}

void Group4Encoder::put(std::uint32_t code, int bits) {
    pending_ = pending_ << bits | code;
    pending_bits_ += bits;
    if (pending_bits_ < 32)
        return;
    pending_bits_ -= 32;
    qToBigEndian(static_cast<std::uint32_t>(pending_ >> pending_bits_), out_.data() + used_);
    used_ += 4;
}

void Group4Encoder::put_run(int length, bool black) {
    for (; length >= kLongestRun + kMakeUpStep; length -= kLongestRun)
        put(kLongMakeUp.back().bits, kLongMakeUp.back().length);
    if (length >= kMakeUpStep) {
        const bool is_long = length >= kFirstLongRun;
        const auto index = static_cast<std::size_t>(is_long ? (length - kFirstLongRun) / kMakeUpStep
                                                            : length / kMakeUpStep - 1);
        const Code code =
            is_long ? kLongMakeUp.at(index) : (black ? kBlackMakeUp : kWhiteMakeUp).at(index);
        put(code.bits, code.length);
        length %= kMakeUpStep;
    }
    const Code code = (black ? kBlackRuns : kWhiteRuns)[static_cast<std::size_t>(length)];
    put(code.bits, code.length);
}

QByteArray Group4Encoder::finish() {
    reserve_row();
    put(kEndOfLine.bits, kEndOfLine.length);
    put(kEndOfLine.bits, kEndOfLine.length);
    const int padding = (8 - pending_bits_ % 8) % 8;
    put(0, padding);
    for (; pending_bits_ > 0; pending_bits_ -= 8)
        out_[used_++] = static_cast<char>(pending_ >> (pending_bits_ - 8));
    out_.resize(used_);
    return std::exchange(out_, {});
}

} // namespace folidex
