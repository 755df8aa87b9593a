// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "controls/active_link.h"

#include "platform/shell.h"

namespace folidex {

std::function<void(const QString& target)> ActiveLink::opener = open_with_desktop;

ActiveLink::ActiveLink(QObject* parent) : QObject(parent) {}

void ActiveLink::start() {
    opener(target_);
}

} // namespace folidex
