// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain_helper.h"

#include "capture/scanner/twain_words.h"

#include <QElapsedTimer>
#include <mutex>

namespace folidex {

namespace {

constexpr int kLook = 20;
constexpr int kByteWritten = 200;

/// A process that starts inherits what another one, starting at the same time, is to inherit; it
/// would hold the other's pipes open.
std::mutex& one_start_at_a_time() {
    static std::mutex mutex;
    return mutex;
}

} // namespace

TwainHelper::TwainHelper(QString scanner)
    : scanner_(std::move(scanner)), pipe_(process_), reader_(scanner_) {
    // Drivers print; only what the helper itself sends is listened to.
    process_.setStandardErrorFile(QProcess::nullDevice());
}

void TwainHelper::start(const TwainProgram& program, const QStringList& task) {
    const std::lock_guard lock(one_start_at_a_time());
    pipe_.prepare();
    process_.start(program.path, program.arguments + task, QIODevice::ReadWrite);
    const bool started = process_.waitForStarted();
    pipe_.started();
    if (!started)
        throw twain_program_error(scanner_, program.path, process_.errorString());
    leash_.put_on(process_.processId());
}

std::optional<TwainFrame> TwainHelper::next(Time patience) {
    if (auto frame = reader_.next())
        return frame;
    reader_.add(pipe_.read(patience));
    return reader_.next();
}

void TwainHelper::send(twain::Command command) {
    if (!running())
        return;
    process_.putChar(static_cast<char>(command));
    process_.waitForBytesWritten(kByteWritten);
}

void TwainHelper::release(Time patience, const GiveUp& give_up) {
    leash_.let_go();
    if (running())
        process_.closeWriteChannel();
    QElapsedTimer clock;
    clock.start();
    while (running() && !clock.hasExpired(patience.count())) {
        const auto frame = left_over();
        if (!frame)
            process_.waitForFinished(kLook);
        if (give_up(frame))
            break;
    }
    kill();
}

std::optional<TwainFrame> TwainHelper::left_over() {
    try {
        return next(Time(0));
    } catch (const Error&) {
        // Whoever listened has been told already. The pipe is emptied all the same, because a
        // helper that cannot write cannot end either.
        pipe_.read(Time(0));
        return std::nullopt;
    }
}

void TwainHelper::kill() {
    if (!running())
        return;
    process_.kill();
    process_.waitForFinished();
}

} // namespace folidex
