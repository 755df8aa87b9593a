// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QtGlobal>

namespace folidex {

/// Makes sure that a helper at work goes with a program that is killed or crashes. Once let go, a
/// helper outlives the program for as long as it needs for its way down, within its own limit.
/// One source per system.
class TwainLeash {
public:
    TwainLeash() = default;
    ~TwainLeash();
    TwainLeash(const TwainLeash&) = delete;
    TwainLeash& operator=(const TwainLeash&) = delete;

    void put_on(qint64 process);
    void let_go();

private:
    void* job_ = nullptr;
};

} // namespace folidex
