// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "common/error.h"

#include <QString>
#include <functional>

namespace folidex {

/// What the systems do differently with files; one source per system.

/// Why the system refused this thread's last file operation.
struct SystemFailure {
    int number = kInternalError; ///< of error.h
    QString words;               ///< for the user; empty where the system's own words do
};
/// Before an operation: what went wrong earlier is not what system_failure() tells.
void forget_system_failure();
/// Directly after an operation that failed.
SystemFailure system_failure();
/// The same after a file could not be made in a folder: where the toolkit asks the system more on
/// the way back, this tries once more itself.
SystemFailure failure_to_create_in(const QString& folder);

/// Waits, two seconds at most, while another program has an existing file open in a way that
/// keeps it from being replaced or deleted: a virus scanner does for moments, a viewer for as
/// long as it shows the file. False when it is still so; system_failure() then tells.
bool wait_until_replaceable(const QString& path);
/// Called each time that a file was found held, before it is waited for; a seam for tests.
extern std::function<void()> on_held_file;

/// The path in the form in which the system's own calls take it at any length.
QString path_of_any_length(const QString& path);

} // namespace folidex
