// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <chrono>
#include <memory>

class QProcess;

namespace folidex {

/// What a helper writes, taken in no faster than it is asked for: a driver that is quicker than
/// the encoder must wait, else memory would grow with the number of pages. One source per system.
class TwainPipe {
public:
    explicit TwainPipe(QProcess& process);
    ~TwainPipe();
    TwainPipe(const TwainPipe&) = delete;
    TwainPipe& operator=(const TwainPipe&) = delete;

    /// To be called before the process is started, and after that.
    void prepare();
    void started();
    /// What has come, waited for no longer than this; all that is left once the process has ended.
    QByteArray read(std::chrono::milliseconds patience);

private:
    struct Ends;

    QProcess& process_;
    std::unique_ptr<Ends> ends_;
};

} // namespace folidex
