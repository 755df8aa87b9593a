// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "line_socket.h"

#include "native_socket.h"

#include <array>

LineSocket::LineSocket(quint16 port) {
    set_up_network();
    const auto native = ::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    if (native == kNoSocket) {
        return;
    }
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    // Questions and answers are short and must not wait for more to send.
    const int at_once = 1;
    setsockopt(native, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&at_once),
               sizeof at_once);
    if (::connect(native, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        let_go(native);
        return;
    }
    descriptor_ = static_cast<qintptr>(native);
}

LineSocket::~LineSocket() {
    if (open()) {
        let_go(static_cast<NativeSocket>(descriptor_));
    }
}

bool LineSocket::open() const {
    return descriptor_ != -1;
}

QByteArray LineSocket::read() {
    std::array<char, 65536> buffer{};
    const auto count =
        ::recv(static_cast<NativeSocket>(descriptor_), buffer.data(), buffer.size(), 0);
    return count > 0 ? QByteArray(buffer.data(), static_cast<qsizetype>(count)) : QByteArray();
}

void LineSocket::write(const QByteArray& bytes) {
    qsizetype done = 0;
    while (done < bytes.size()) {
        const auto count = send_bytes(static_cast<NativeSocket>(descriptor_),
                                      bytes.constData() + done, bytes.size() - done);
        if (count < 0) {
            return;
        }
        done += count;
    }
}
