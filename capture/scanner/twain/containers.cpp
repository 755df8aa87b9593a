// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/containers.h"

#include "capture/scanner/twain/twain_codes.h"

#include <cstring>

namespace folidex::twain {

namespace {

/// Bytes of an item; 0 for types that hold no number.
std::size_t width_of(TW_UINT16 type) {
    switch (type) {
    case TWTY_INT8:
    case TWTY_UINT8:
        return 1;
    case TWTY_INT16:
    case TWTY_UINT16:
    case TWTY_BOOL:
        return 2;
    case TWTY_INT32:
    case TWTY_UINT32:
    case TWTY_FIX32:
        return 4;
    default:
        return 0;
    }
}

std::optional<TW_UINT32> number_at(const Container& container, TW_UINT16 type, std::uint64_t at) {
    const std::size_t width = width_of(type);
    if (width == 0 || at + width > container.bytes)
        return std::nullopt;
    TW_UINT32 value = 0;
    std::memcpy(&value, container.data + at, width);
    return value;
}

template <typename Head>
std::optional<Head> head_of(const Container& container, std::size_t bytes) {
    Head head{};
    if (container.bytes < bytes)
        return std::nullopt;
    std::memcpy(&head, container.data, bytes);
    return head;
}

/// A list's items: where they begin, how many are told.
struct Items {
    TW_UINT16 type = 0;
    TW_UINT32 count = 0;
    TW_UINT32 current = 0;
    std::size_t begin = 0;
};

std::optional<Items> items_of(const Container& container) {
    if (container.type == TWON_ENUMERATION) {
        constexpr std::size_t begin = offsetof(TW_ENUMERATION, ItemList);
        if (const auto head = head_of<TW_ENUMERATION>(container, begin))
            return Items{head->ItemType, head->NumItems, head->CurrentIndex, begin};
    } else if (container.type == TWON_ARRAY) {
        constexpr std::size_t begin = offsetof(TW_ARRAY, ItemList);
        if (const auto head = head_of<TW_ARRAY>(container, begin))
            return Items{head->ItemType, head->NumItems, head->NumItems, begin};
    }
    return std::nullopt;
}

std::optional<TW_UINT32> item(const Container& container, const Items& items, TW_UINT32 index) {
    if (index >= items.count)
        return std::nullopt;
    return number_at(container, items.type,
                     items.begin + std::uint64_t{index} * width_of(items.type));
}

} // namespace

std::optional<TW_UINT32> current_value(const Container& container) {
    if (const auto items = items_of(container))
        return item(container, *items, items->current);
    if (container.type == TWON_ONEVALUE) {
        if (const auto head = head_of<TW_ONEVALUE>(container, sizeof(TW_ONEVALUE)))
            return number_at(container, head->ItemType, offsetof(TW_ONEVALUE, Item));
    } else if (container.type == TWON_RANGE) {
        if (const auto head = head_of<TW_RANGE>(container, sizeof(TW_RANGE)))
            return number_at(container, head->ItemType, offsetof(TW_RANGE, CurrentValue));
    }
    return std::nullopt;
}

bool offers(const Container& container, TW_UINT32 value) {
    const auto items = items_of(container);
    if (!items)
        return current_value(container) == value;
    for (TW_UINT32 index = 0;; ++index) {
        const auto found = item(container, *items, index);
        if (!found || *found == value)
            return found.has_value();
    }
}

} // namespace folidex::twain
