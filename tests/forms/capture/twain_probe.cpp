// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// A program that lets go of a source, and ends with its input:
//     twain_probe HELPER FOLDER

#include "capture/scanner/twain_run.h"
#include "capture/scanner/twain_session.h"

#include <QCoreApplication>
#include <cstdio>

using namespace folidex;

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    TwainSettings settings;
    settings.program64 = {arguments.value(1), {arguments.value(2), QStringLiteral("64")}};
    settings.release = std::chrono::minutes(10);
    const TwainSession session(settings);
    const auto run = std::make_shared<TwainRun>(
        settings, TwainSource{64, 0, QStringLiteral("Front desk")}, ScanWishes{}, 0);
    session.thread()->post([run] {
        ScanControl control(ScanControl::Phase::kOpening);
        run->open(control);
        run->release([] { return false; });
    });
    while (std::getchar() != EOF)
        continue;
    return 0;
}
