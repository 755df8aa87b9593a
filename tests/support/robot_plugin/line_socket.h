// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QtGlobal>

/// A connection to a port of this machine, without the toolkit's network module, which the
/// program does not ship. It blocks: the other side asks one question at a time and waits.
class LineSocket {
public:
    /// Connects; the socket is not open() when nobody listens.
    explicit LineSocket(quint16 port);
    ~LineSocket();
    LineSocket(const LineSocket&) = delete;
    LineSocket& operator=(const LineSocket&) = delete;

    bool open() const;
    /// For a QSocketNotifier.
    qintptr descriptor() const { return descriptor_; }
    /// The bytes that are there, at least one; empty when the other side has gone.
    QByteArray read();
    void write(const QByteArray& bytes);

private:
    qintptr descriptor_ = -1;
};
