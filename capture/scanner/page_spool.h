// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/page.h"
#include "platform/scratch_file.h"

#include <memory>
#include <vector>

namespace folidex {

/// The encoded pages of one acquisition, kept in a temporary file so that memory does not grow
/// with their number. Pages count from 1. The file is made when the first page comes and goes
/// with the object, and with the program even when that is killed. Failures to write or read throw
/// Error with the folder's path; the pages already kept stay.
class PageSpool {
public:
    PageSpool();
    void clear();
    void add(const EncodedPage& page);
    int count() const;
    EncodedPage page(int number);

private:
    struct Entry {
        EncodedPage page; ///< without data
        qint64 offset = 0;
        qint64 size = 0;
    };
    qint64 end() const;

    std::unique_ptr<ScratchFile> file_;
    std::vector<Entry> entries_;
};

} // namespace folidex
