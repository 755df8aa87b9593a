// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

using NativeSocket = int;
inline constexpr NativeSocket kNoSocket = -1;

inline void set_up_network() {}

inline void let_go(NativeSocket socket) {
    ::close(socket);
}

/// The number of bytes sent, -1 when the other side has gone.
inline qsizetype send_bytes(NativeSocket socket, const char* bytes, qsizetype count) {
    return ::send(socket, bytes, static_cast<std::size_t>(count), MSG_NOSIGNAL);
}
