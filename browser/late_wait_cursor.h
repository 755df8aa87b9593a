// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QElapsedTimer>
#include <QGuiApplication>

namespace folidex {

/// The wait cursor for work that turns out to be long: shown by the first call of passing()
/// after 200 ms, or from the start when the same work was long before; gone with this object.
class LateWaitCursor {
public:
    static constexpr int kPatienceMs = 200;

    explicit LateWaitCursor(bool long_before = false) {
        clock_.start();
        if (long_before)
            show();
    }
    ~LateWaitCursor() {
        if (shown_)
            QGuiApplication::restoreOverrideCursor();
    }
    LateWaitCursor(const LateWaitCursor&) = delete;
    LateWaitCursor& operator=(const LateWaitCursor&) = delete;

    void passing() {
        if (!shown_ && is_long())
            show();
    }
    bool is_long() const { return clock_.elapsed() > kPatienceMs; }

private:
    void show() {
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        shown_ = true;
    }

    QElapsedTimer clock_;
    bool shown_ = false;
};

} // namespace folidex
