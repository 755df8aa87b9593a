// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

namespace folidex {

/// A window as the position procedures see it. All measures in twips. controls/form_window.h
/// makes one of a widget.
class PositionedWindow {
public:
    virtual ~PositionedWindow() = default;
    virtual QString name() const = 0;
    virtual double top() const = 0;
    virtual double left() const = 0;
    virtual double width() const = 0;
    virtual double height() const = 0;
    virtual void set_top(double top) = 0;
    virtual void set_left(double left) = 0;
    virtual double screen_width() const = 0;
    virtual double screen_height() const = 0;
    /// Width of the main window, for windows placed relative to it.
    virtual double main_width() const = 0;
};

/// Restores a window's stored position, "Top" first, then "Left"; places a window that has
/// none and stores that place at once.
void GetScreenPosition(PositionedWindow& window, bool relativeToMain);
/// Stores a window's current position.
void SetScreenPosition(const PositionedWindow& window);

} // namespace folidex
