// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QColor>
#include <QPalette>

namespace folidex {

/// Colours that the program gives itself are meant for light windows. These turn one into its
/// counterpart for a dark palette, of the same hue: a light ground becomes a dark one, and a
/// text keeps enough contrast to be read on it. Under a light palette a colour stays as given.
bool is_dark(const QPalette& palette);
QColor ground_color(const QColor& given, const QPalette& palette);
QColor text_color(const QColor& given, const QPalette& palette);

} // namespace folidex
