// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/page.h"

#include <QIODevice>
#include <vector>

namespace folidex {

/// Writes a PDF of scanned pages onto a sequential device, page by page; only offsets stay in
/// memory. The page's size is pixels by resolution. Throws Error when the device refuses.
class PdfWriter {
public:
    explicit PdfWriter(QIODevice& out);
    void add_page(const EncodedPage& page);
    /// Writes the page tree, the cross-reference table and the trailer.
    void finish();

private:
    void write(const QByteArray& bytes);
    int begin_object();

    QIODevice& out_;
    qint64 position_ = 0;
    std::vector<qint64> offsets_;
    std::vector<int> page_objects_;
};

} // namespace folidex
