// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <QWidget>
#include <functional>

namespace folidex::test {

/// Hands for the window that is up while a scanner works; a scan returns only when it is over,
/// so they are told beforehand what to do.

/// The progress window, or null while it is not on the screen.
QWidget* progress_window();
/// A control of it that is visible and enabled, or null.
QWidget* progress_control(const char* name);
/// Waits; fails the test when the condition does not come true.
bool wait_until(const std::function<bool()>& condition);
/// Does something once the window shows a control that can be used; if it never does, gives up.
void when_shown(QObject* context, const char* control, const std::function<void(QWidget&)>& action,
                const std::function<void()>& give_up);
/// The words that an action fails with, or nothing.
QString failure(const std::function<void()>& action);

} // namespace folidex::test
