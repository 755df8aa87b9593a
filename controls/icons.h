// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QIcon>
#include <QPixmap>
#include <QString>

namespace folidex {

/// An icon of resources/icons by its name, e.g. "add". One-coloured icons follow the palette's
/// text colour (light, dark, high contrast) and are sharp at 100 to 300 %.
QIcon icon(const QString& name);
/// The program's own icon, in its colours.
QIcon application_icon();

} // namespace folidex
