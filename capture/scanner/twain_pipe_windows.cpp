// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain_pipe.h"

#include <QElapsedTimer>
#include <QProcess>
#include <windows.h>

namespace folidex {

namespace {

constexpr DWORD kSize = 1 << 20;
constexpr std::chrono::milliseconds kLook{2};

} // namespace

/// A process of Qt's reads ahead without a limit here, so the helper gets a pipe of ours.
struct TwainPipe::Ends {
    HANDLE reading = nullptr;
    HANDLE writing = nullptr;

    ~Ends() {
        close(reading);
        close(writing);
    }
    static void close(HANDLE& end) {
        if (end)
            CloseHandle(std::exchange(end, nullptr));
    }
    DWORD available() const {
        DWORD bytes = 0;
        return PeekNamedPipe(reading, nullptr, 0, nullptr, &bytes, nullptr) ? bytes : 0;
    }
};

TwainPipe::TwainPipe(QProcess& process) : process_(process), ends_(std::make_unique<Ends>()) {}

TwainPipe::~TwainPipe() = default;

void TwainPipe::prepare() {
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    if (!CreatePipe(&ends_->reading, &ends_->writing, &inherited, kSize)) {
        qWarning("A pipe to a scanning helper could not be made: error %lu", GetLastError());
        return;
    }
    SetHandleInformation(ends_->reading, HANDLE_FLAG_INHERIT, 0);
    process_.setStandardOutputFile(QProcess::nullDevice());
    process_.setCreateProcessArgumentsModifier(
        [writing = ends_->writing](QProcess::CreateProcessArguments* arguments) {
            arguments->startupInfo->hStdOutput = writing;
        });
}

void TwainPipe::started() {
    Ends::close(ends_->writing);
}

QByteArray TwainPipe::read(std::chrono::milliseconds patience) {
    QElapsedTimer clock;
    clock.start();
    DWORD bytes = ends_->available();
    for (bool last = false; bytes == 0 && !last;) {
        // Asked before the pipe is looked into again: what the process wrote is then in it.
        last = process_.waitForFinished(static_cast<int>(qMin(kLook, patience).count())) ||
               process_.state() == QProcess::NotRunning || clock.hasExpired(patience.count());
        bytes = ends_->available();
    }
    QByteArray taken(static_cast<qsizetype>(bytes), Qt::Uninitialized);
    DWORD got = 0;
    if (bytes > 0 && !ReadFile(ends_->reading, taken.data(), bytes, &got, nullptr))
        got = 0;
    taken.truncate(static_cast<qsizetype>(got));
    return taken;
}

} // namespace folidex
