// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain/frames.h"

#include <QByteArray>
#include <QString>
#include <cstring>
#include <optional>
#include <type_traits>

namespace folidex {

/// One frame of a scanning helper, whose payload has the size that its kind asks for.
struct TwainFrame {
    twain::Kind kind = twain::Kind::kAlive;
    QByteArray payload;

    /// The structure that the payload begins with.
    template <class T> T as() const {
        static_assert(std::is_trivially_copyable_v<T>);
        T value{};
        std::memcpy(&value, payload.constData(),
                    qMin(sizeof value, static_cast<std::size_t>(payload.size())));
        return value;
    }
};

/// Makes frames of the bytes of a pipe, in whatever portions they arrive. A helper is not to be
/// trusted with a driver in it: bytes that begin no frame, or a payload that its kind cannot
/// have, throw Error naming the scanner, and go on doing so.
class TwainFrameReader {
public:
    explicit TwainFrameReader(QString scanner);

    void add(const QByteArray& bytes);
    /// The next whole frame, if it is there.
    std::optional<TwainFrame> next();

private:
    QString scanner_;
    QByteArray bytes_;
    qsizetype at_ = 0; ///< of the next frame in bytes_
};

} // namespace folidex
