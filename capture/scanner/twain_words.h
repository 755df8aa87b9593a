// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain/frames.h"
#include "common/error.h"

namespace folidex {

/// What a return code and a condition code of TWAIN (2.5, chapter 11) say, as a sentence without
/// its full stop.
QString twain_words(std::uint16_t return_code, std::uint16_t condition_code);

/// How a scan that did not come to its end reads: the scanner, what happened, what became of
/// the pages before, what the user can do, and the codes in brackets.
Error twain_error(const QString& scanner, const twain::Ending& ending);
/// The helper went without a word; code is what its process ended with.
Error twain_gone_error(const QString& scanner, int pages, std::uint32_t code);
/// The helper sent what cannot be; details are for whoever looks into it.
Error twain_out_of_step_error(const QString& scanner, const QString& details);
/// A page that cannot be used, and why.
Error twain_page_error(const QString& scanner, int page, const Error& why);
/// The helper program could not be started.
Error twain_program_error(const QString& scanner, const QString& program, const QString& reason);

} // namespace folidex
