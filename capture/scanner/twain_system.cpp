// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/system_scanner.h"
#include "capture/scanner/twain_scanner.h"

namespace folidex {

std::unique_ptr<Scanner> make_system_scanner() {
    return std::make_unique<TwainScanner>(TwainSession::system());
}

} // namespace folidex
