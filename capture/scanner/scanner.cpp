// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/scanner.h"

#include "capture/scanner/system_scanner.h"

namespace folidex {

namespace {

std::function<std::unique_ptr<Scanner>()>& planted_factory() {
    static std::function<std::unique_ptr<Scanner>()> factory;
    return factory;
}

} // namespace

std::unique_ptr<Scanner> make_scanner() {
    return planted_factory() ? planted_factory()() : make_system_scanner();
}

void set_scanner_factory(std::function<std::unique_ptr<Scanner>()> factory) {
    planted_factory() = std::move(factory);
}

} // namespace folidex
