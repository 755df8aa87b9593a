// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <cstdint>
#include <span>
#include <vector>

namespace folidex {

/// ITU-T T.6 (Group 4) encoder, row by row; 1 is black, most significant bit first. A row is
/// (width + 7) / 8 bytes; bits beyond the width are ignored. Throws Error for a row of another
/// length and for a width below 1.
class Group4Encoder {
public:
    explicit Group4Encoder(int width);
    void add_row(std::span<const std::uint8_t> row);
    /// Appends the end-of-block code and returns all bytes.
    QByteArray finish();

private:
    void find_changes(std::span<const std::uint8_t> row);
    void code_row();
    void reserve_row();
    void put(std::uint32_t code, int bits);
    void put_run(int length, bool black);

    int width_;
    /// Columns at which the colour changes, beginning from white, closed by the width several
    /// times over: of the row above and of the row being coded.
    std::vector<int> reference_;
    std::vector<int> current_;
    QByteArray out_;
    qsizetype used_ = 0;
    std::uint64_t pending_ = 0;
    int pending_bits_ = 0;
};

} // namespace folidex
