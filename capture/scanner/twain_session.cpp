// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain_session.h"

#include "platform/shell.h"

namespace folidex {

namespace {

TwainProgram beside_the_program(const QString& name) {
    return {program_folder() + QLatin1Char('/') + name, {}};
}

} // namespace

TwainSession::TwainSession(TwainSettings settings)
    : settings_(std::move(settings)), sources_(settings_),
      hurry_(std::make_shared<std::atomic<bool>>(false)),
      thread_(std::make_shared<ScannerThread>()) {}

std::shared_ptr<TwainSession> TwainSession::system() {
    static const auto session = [] {
        TwainSettings settings;
        settings.program64 = beside_the_program(QStringLiteral("folidex-twain64.exe"));
        settings.program32 = beside_the_program(QStringLiteral("folidex-twain32.exe"));
        return std::make_shared<TwainSession>(settings);
    }();
    return session;
}

} // namespace folidex
