// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QElapsedTimer>
#include <QGuiApplication>
#include <chrono>

namespace folidex {

/// The wait cursor for work that turns out to be long: shown by the first call of passing()
/// after some time, gone with this object.
class LateWaitCursor {
public:
    static constexpr std::chrono::milliseconds kPatience{200};

    explicit LateWaitCursor(std::chrono::milliseconds patience = kPatience) : patience_(patience) {
        clock_.start();
    }
    ~LateWaitCursor() {
        if (shown_)
            QGuiApplication::restoreOverrideCursor();
    }
    LateWaitCursor(const LateWaitCursor&) = delete;
    LateWaitCursor& operator=(const LateWaitCursor&) = delete;

    void passing() {
        if (shown_ || !clock_.hasExpired(patience_.count()))
            return;
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        shown_ = true;
    }

private:
    const std::chrono::milliseconds patience_;
    QElapsedTimer clock_;
    bool shown_ = false;
};

} // namespace folidex
