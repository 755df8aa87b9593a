// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain/twain_types.h"

#include <optional>

namespace folidex::twain {

/// A capability's container as a driver filled it: TWON_... and `bytes` bytes at `data`. Nothing is
/// read beyond them.
struct Container {
    TW_UINT16 type = 0;
    const std::uint8_t* data = nullptr;
    std::size_t bytes = 0;
};

/// The current value, as wide as its type says (a TW_FIX32 as its four bytes); nothing when the
/// container has none.
std::optional<TW_UINT32> current_value(const Container& container);
/// Whether the container lists the value.
bool offers(const Container& container, TW_UINT32 value);

} // namespace folidex::twain
