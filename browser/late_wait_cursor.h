// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QElapsedTimer>
#include <QGuiApplication>

namespace folidex {

/// The wait cursor for work that turns out to be long: shown by the first call of passing()
/// after 200 ms, gone with this object.
class LateWaitCursor {
public:
    static constexpr int kPatienceMs = 200;

    LateWaitCursor() { clock_.start(); }
    ~LateWaitCursor() {
        if (shown_)
            QGuiApplication::restoreOverrideCursor();
    }
    LateWaitCursor(const LateWaitCursor&) = delete;
    LateWaitCursor& operator=(const LateWaitCursor&) = delete;

    void passing() {
        if (shown_ || clock_.elapsed() <= kPatienceMs)
            return;
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        shown_ = true;
    }

private:
    QElapsedTimer clock_;
    bool shown_ = false;
};

} // namespace folidex
