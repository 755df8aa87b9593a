// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QFont>
#include <QString>

namespace folidex {

/// Texts are wrapped after a colon too, which would leave "C:" at the end of a line and its path on
/// the next one. The narrowest width from least to most at which a plain text has no such line;
/// when there is none, least.
int width_that_keeps_drives(const QString& text, const QFont& font, int least, int most);

} // namespace folidex
