// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/forms/capture/scan_hands.h"

#include "common/error_trap.h"

#include <QApplication>
#include <QTest>

namespace folidex::test {

namespace {

constexpr int kLongestWait = 60'000;

} // namespace

QWidget* progress_window() {
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->objectName() == QStringLiteral("ScanProgress") && widget->isVisible())
            return widget;
    return nullptr;
}

QWidget* progress_control(const char* name) {
    QWidget* window = progress_window();
    QWidget* found = window ? window->findChild<QWidget*>(QString::fromLatin1(name)) : nullptr;
    return found && found->isVisible() && found->isEnabled() ? found : nullptr;
}

bool wait_until(const std::function<bool()>& condition) {
    const bool met = QTest::qWaitFor(condition, kLongestWait);
    if (!met)
        QTest::qFail("a condition did not come true", __FILE__, __LINE__);
    return met;
}

void when_shown(QObject* context, const char* control, const std::function<void(QWidget&)>& action,
                const std::function<void()>& give_up) {
    later(context, 0, [control, action, give_up] {
        if (wait_until([&] { return progress_control(control) != nullptr; }))
            action(*progress_control(control));
        else
            give_up();
    });
}

QString failure(const std::function<void()>& action) {
    try {
        action();
    } catch (const Error& error) {
        return error.description;
    }
    return {};
}

} // namespace folidex::test
