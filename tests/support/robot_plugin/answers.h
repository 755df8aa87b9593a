// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QJsonObject>

/// The answer to one question about the program's widgets, as assistive programs see them. Every
/// question names an operation ("op") and mostly a widget ("id"): children, facts of one widget
/// or of a whole tree, cells of tables, pop-up menus that are open. The key "gone" stands in
/// answers about widgets that are no longer there, or that have no such side.
QJsonObject answer(const QJsonObject& question);
