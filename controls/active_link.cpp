// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "controls/active_link.h"

#include "common/error_trap.h"
#include "common/message_box.h"
#include "platform/shell.h"

namespace folidex {

std::function<void(const QString& target)> ActiveLink::opener = open_with_desktop;

ActiveLink::ActiveLink(QObject* parent) : QObject(parent) {}

void ActiveLink::start() {
    auto hand_over = [this] { opener(target_); };
    try {
        called(hand_over);
    } catch (const Error& error) {
        // What cannot be opened is the desktop's trouble and its to tell; where it is silent, the
        // user hears it here, and whatever is being worked on stays open.
        message_box(error.description);
    }
}

} // namespace folidex
