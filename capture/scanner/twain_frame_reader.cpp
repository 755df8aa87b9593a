// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain_frame_reader.h"

#include "capture/scanner/twain_words.h"

#include <QtEndian>

namespace folidex {

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "frames are little endian, and read as they are");

namespace {

using twain::Kind;

constexpr auto kHead = static_cast<qsizetype>(sizeof(twain::Frame));

/// Whether a frame of this kind can have a payload of this length.
bool fits(Kind kind, std::uint32_t length) {
    switch (kind) {
    case Kind::kSource:
        return length >= sizeof(twain::SourceEntry) && length <= twain::kLongestPayload;
    case Kind::kRows:
        return length > 0 && length <= twain::kLongestPayload;
    case Kind::kOpened:
    case Kind::kWindow:
    case Kind::kAlive:
    case Kind::kReady:
    case Kind::kPageDrop:
        return length == 0;
    case Kind::kPage:
        return length == sizeof(twain::PageHeader);
    case Kind::kPageEnd:
        return length == sizeof(twain::PageEnd);
    case Kind::kTrouble:
    case Kind::kDone:
        return length == sizeof(twain::Ending);
    }
    return false;
}

} // namespace

TwainFrameReader::TwainFrameReader(QString scanner) : scanner_(std::move(scanner)) {}

void TwainFrameReader::add(const QByteArray& bytes) {
    bytes_.remove(0, std::exchange(at_, 0));
    bytes_.append(bytes);
}

std::optional<TwainFrame> TwainFrameReader::next() {
    if (bytes_.size() - at_ < kHead)
        return std::nullopt;
    twain::Frame head{};
    std::memcpy(&head, bytes_.constData() + at_, sizeof head);
    const bool padded = head.zero[0] == 0 && head.zero[1] == 0 && head.zero[2] == 0;
    if (!padded || !fits(head.kind, head.length))
        throw twain_out_of_step_error(
            scanner_,
            QStringLiteral("frame %1, %2 bytes")
                .arg(QString::fromLatin1(bytes_.mid(at_, qsizetype{sizeof head.kind} + 3).toHex()))
                .arg(head.length));
    const auto length = static_cast<qsizetype>(head.length);
    if (bytes_.size() - at_ - kHead < length)
        return std::nullopt;
    TwainFrame frame{head.kind, bytes_.mid(at_ + kHead, length)};
    at_ += kHead + length;
    return frame;
}

} // namespace folidex
