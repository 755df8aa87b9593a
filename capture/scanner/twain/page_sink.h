// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain/frames.h"

#include <cstddef>

namespace folidex::twain {

/// The longest side of a page in pixels.
inline constexpr std::int32_t kLongestPageSide = 65535;

/// Thrown for a page that cannot be: a driver's sizes do not agree (kBadPage), or it is in a form
/// that nobody asked for (kForeignPage, with the form's number).
struct PageRefused {
    Step step = Step::kBadPage;
    std::uint32_t detail = 0;
};

/// Takes a page as it is read: begin() once, then rows() with whole packed rows, or with the next
/// bytes of a JPEG, as many times as it needs.
class PageSink {
public:
    virtual ~PageSink() = default;
    virtual void begin(const PageHeader& page) = 0;
    virtual void rows(const std::uint8_t* data, std::size_t bytes) = 0;
};

} // namespace folidex::twain
