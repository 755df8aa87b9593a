// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/dark_colors.h"

#include <algorithm>

namespace folidex {

namespace {

// White becomes this, not black, as dark desktops have it.
constexpr int kDarkestGround = 42;
constexpr int kDarkestText = 200;

QColor with_lightness(const QColor& color, int lightness, int most_saturation) {
    return QColor::fromHsl(color.hslHue(), std::min(color.hslSaturation(), most_saturation),
                           std::clamp(lightness, 0, 255));
}

} // namespace

bool is_dark(const QPalette& palette) {
    return palette.color(QPalette::WindowText).lightness() >
           palette.color(QPalette::Window).lightness();
}

QColor ground_color(const QColor& given, const QPalette& palette) {
    if (!given.isValid() || !is_dark(palette))
        return given;
    const int turned = kDarkestGround + (255 - given.lightness()) * (255 - kDarkestGround) / 255;
    return with_lightness(given, turned, 140);
}

QColor text_color(const QColor& given, const QPalette& palette) {
    if (!given.isValid() || !is_dark(palette))
        return given;
    return with_lightness(given, std::max(255 - given.lightness(), kDarkestText), 255);
}

} // namespace folidex
