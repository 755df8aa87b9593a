// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <cstdint>
#include <span>
#include <vector>

namespace folidex {

/// ITU-T T.6 (Group 4) encoder, row by row; 1 is black, most significant bit first.
class Group4Encoder {
public:
    explicit Group4Encoder(int width);
    void add_row(std::span<const std::uint8_t> row);
    /// Appends the end-of-block code and returns all bytes.
    QByteArray finish();

private:
    void put(std::uint32_t code, int bits);

    int width_;
    std::vector<std::uint8_t> reference_;
    QByteArray out_;
    std::uint64_t pending_ = 0;
    int pending_bits_ = 0;
};

} // namespace folidex
