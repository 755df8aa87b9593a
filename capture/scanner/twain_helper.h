// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain_frame_reader.h"
#include "capture/scanner/twain_leash.h"
#include "capture/scanner/twain_pipe.h"

#include <QProcess>
#include <QStringList>
#include <chrono>
#include <functional>

namespace folidex {

/// A helper program and what stands before its task on the command line.
struct TwainProgram {
    QString path;
    QStringList arguments;
};

/// The process of one helper: the frames that it sends, the commands that it is given, its end.
/// Made, used and destroyed on one thread, which needs no event loop; a helper that still runs
/// when this goes is killed.
class TwainHelper {
public:
    using Time = std::chrono::milliseconds;

    explicit TwainHelper(QString scanner);

    /// Throws Error when the program cannot be started.
    void start(const TwainProgram& program, const QStringList& task);
    /// The next frame; waits for it no longer than this.
    std::optional<TwainFrame> next(Time patience);
    /// Takes in what it sends, for next(); for a while in which nobody asks for frames.
    void take_in() { reader_.add(pipe_.read(Time(0))); }
    void send(twain::Command command);
    /// Whether the process runs; it may have left frames behind.
    bool running() const { return process_.state() != QProcess::NotRunning; }
    std::uint32_t exit_code() const { return static_cast<std::uint32_t>(process_.exitCode()); }

    /// Asked over and over during the release, with the frame that came meanwhile, if any.
    using GiveUp = std::function<bool(const std::optional<TwainFrame>& frame)>;
    /// Tells it that nobody listens any more and kills it when it has not ended in time, or as
    /// soon as it is given up. The end of the program no longer is its end.
    void release(Time patience, const GiveUp& give_up);
    void kill();

private:
    std::optional<TwainFrame> left_over();

    QString scanner_;
    QProcess process_;
    TwainLeash leash_;
    TwainPipe pipe_;
    TwainFrameReader reader_;
};

} // namespace folidex
