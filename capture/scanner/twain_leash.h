// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QtGlobal>

namespace folidex {

/// Makes sure that a helper does not outlive the program, however that ends: a driver that hangs
/// would not notice that its helper's input has ended. One source per system.
void put_on_leash(qint64 process);

} // namespace folidex
