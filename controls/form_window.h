// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "data/window_positions.h"

#include <QWidget>
#include <optional>

namespace folidex {

/// Twips in a device-independent pixel (1440 an inch, 96 pixels an inch).
inline constexpr double kTwipsPerPixel = 15.0;

inline double to_twips(int pixels) {
    return pixels * kTwipsPerPixel;
}
int to_pixels(double twips);

/// A form's window for GetScreenPosition and SetScreenPosition; its name is the form's
/// objectName. A restored position that no screen shows any more is moved into view.
class FormWindow : public PositionedWindow {
public:
    explicit FormWindow(QWidget* form) : form_(form) {}
    QString name() const override;
    double top() const override;
    double left() const override;
    double width() const override;
    double height() const override;
    void set_top(double top) override;
    void set_left(double left) override;
    double screen_width() const override;
    double screen_height() const override;
    double main_width() const override;

private:
    void place();

    QWidget* form_;
    std::optional<int> wanted_top_;
    std::optional<int> wanted_left_;
};

} // namespace folidex
