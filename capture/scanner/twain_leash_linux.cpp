// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain_leash.h"

namespace folidex {

// Here there are helpers only in tests, and those end with their input.
TwainLeash::~TwainLeash() = default;

void TwainLeash::put_on(qint64) {}

void TwainLeash::let_go() {}

} // namespace folidex
