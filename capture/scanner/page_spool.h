// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/page.h"

#include <QTemporaryFile>
#include <vector>

namespace folidex {

/// The encoded pages of one acquisition, kept in a temporary file so that memory does not grow
/// with their number. Pages count from 1. Failures to write throw Error with the path.
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
    QTemporaryFile file_;
    std::vector<Entry> entries_;
};

} // namespace folidex
