// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain_pipe.h"

#include <QProcess>

namespace folidex {

// Here the process itself reads only while it is waited for.
struct TwainPipe::Ends {};

TwainPipe::TwainPipe(QProcess& process) : process_(process) {}

TwainPipe::~TwainPipe() = default;

void TwainPipe::prepare() {}

void TwainPipe::started() {}

QByteArray TwainPipe::read(std::chrono::milliseconds patience) {
    process_.waitForReadyRead(static_cast<int>(patience.count()));
    return process_.readAllStandardOutput();
}

} // namespace folidex
