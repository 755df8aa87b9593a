// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "common/error.h"

#include <optional>

namespace folidex::test {

/// The Error that an action throws; nothing when it throws none.
template <class Action> std::optional<Error> thrown(Action&& action) {
    try {
        action();
    } catch (const Error& error) {
        return error;
    }
    return std::nullopt;
}

/// Its number, 0 when nothing was thrown.
template <class Action> int thrown_number(Action&& action) {
    const std::optional<Error> error = thrown(action);
    return error ? error->number : 0;
}

} // namespace folidex::test
