// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QList>
#include <QStringList>
#include <utility>

namespace folidex::test {

/// How the system ends a program whose failure is no procedure's: by a code, or by a signal or an
/// exception code when it calls that a crash.
struct SystemEnding {
    const char* name;
    QStringList said;
    int exit_code;
    int signal;
};
QList<SystemEnding> endings_of_this_system();

/// The reports of the faults that only this system has: case and description.
QList<std::pair<const char*, const char*>> faults_of_this_system();

} // namespace folidex::test
