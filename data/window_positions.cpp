// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "data/window_positions.h"

#include "common/day_number.h"
#include "common/error_trap.h"
#include "data/settings_store.h"

namespace folidex {

namespace {

// Where a window without a stored place stands when it belongs to the main window.
constexpr double kLeftOfMiddle = 700;
constexpr double kBelowTop = 10;

const QString& top_key() {
    static const QString key = QStringLiteral("Top");
    return key;
}

const QString& left_key() {
    static const QString key = QStringLiteral("Left");
    return key;
}

// Relative to the main window the missing top places the window sideways and the missing left
// places it in height: users know their windows there.
void place_for_missing_top(PositionedWindow& window, bool relative_to_main) {
    if (relative_to_main)
        window.set_left((window.main_width() - window.width()) / 2 - kLeftOfMiddle);
    else
        window.set_top((window.screen_height() - window.height()) / 2);
}

void place_for_missing_left(PositionedWindow& window, bool relative_to_main) {
    if (relative_to_main)
        window.set_top(kBelowTop);
    else
        window.set_left((window.screen_width() - window.width()) / 2);
}

void store_top(const PositionedWindow& window) {
    set_FormSettings(window.name(), top_key(), day_number_text(window.top()));
}

void store_left(const PositionedWindow& window) {
    set_FormSettings(window.name(), left_key(), day_number_text(window.left()));
}

} // namespace

void GetScreenPosition(PositionedWindow& window, bool relativeToMain) {
    trapped("Utilities", "GetScreenPosition", [&] {
        const QString top = get_FormSettings(window.name(), top_key());
        if (top.isEmpty()) {
            place_for_missing_top(window, relativeToMain);
            store_top(window);
        } else {
            window.set_top(numeric_value(top));
        }
        const QString left = get_FormSettings(window.name(), left_key());
        if (left.isEmpty()) {
            place_for_missing_left(window, relativeToMain);
            store_left(window);
        } else {
            window.set_left(numeric_value(left));
        }
    });
}

void SetScreenPosition(const PositionedWindow& window) {
    trapped("Utilities", "SetScreenPosition", [&] {
        store_top(window);
        store_left(window);
    });
}

} // namespace folidex
