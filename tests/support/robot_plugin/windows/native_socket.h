// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <winsock2.h>

#include <ws2tcpip.h>

using NativeSocket = SOCKET;
inline constexpr NativeSocket kNoSocket = INVALID_SOCKET;

inline void set_up_network() {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
}

inline void let_go(NativeSocket socket) {
    closesocket(socket);
}

/// The number of bytes sent, -1 when the other side has gone. A notifier makes its socket one that
/// does not block: while it is full it is waited for.
inline qsizetype send_bytes(NativeSocket socket, const char* bytes, qsizetype count) {
    const int sent = ::send(socket, bytes, static_cast<int>(count), 0);
    if (sent != SOCKET_ERROR) {
        return sent;
    }
    if (WSAGetLastError() != WSAEWOULDBLOCK) {
        return -1;
    }
    fd_set writable;
    FD_ZERO(&writable);
    FD_SET(socket, &writable);
    return ::select(0, nullptr, &writable, nullptr, nullptr) == SOCKET_ERROR ? -1 : 0;
}
