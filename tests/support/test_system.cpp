// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/test_system.h"

#include <QProcess>

namespace folidex::test {

namespace {

constexpr int kPatience = 100'000;

} // namespace

Said run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(kPatience) || process.exitStatus() != QProcess::NormalExit)
        return {-1, program + QStringLiteral(": ") + process.errorString()};
    return {process.exitCode(), QString::fromUtf8(process.readAll())};
}

} // namespace folidex::test
