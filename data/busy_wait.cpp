// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "data/busy_wait.h"

#include <QRandomGenerator>
#include <chrono>
#include <thread>

namespace folidex {

namespace {

using std::chrono::microseconds;
using Clock = std::chrono::steady_clock;

constexpr auto kPatience = std::chrono::seconds(30);
constexpr int kLeastWait = 1000;
constexpr int kShortWait = 5000;
constexpr int kLongWait = 40000;
// After about a second of short waits each further one may take longer.
constexpr int kShortTries = 300;
constexpr int kGrowth = 200;

} // namespace

int wait_while_busy(int tries) noexcept {
    thread_local Clock::time_point start;
    if (tries == 0)
        start = Clock::now();
    if (Clock::now() - start > kPatience)
        return 0;
    const int longer = tries > kShortTries ? (tries - kShortTries) * kGrowth : 0;
    const int most = std::min(kShortWait + longer, kLongWait);
    std::this_thread::sleep_for(
        microseconds(QRandomGenerator::global()->bounded(kLeastWait, most)));
    return 1;
}

} // namespace folidex
