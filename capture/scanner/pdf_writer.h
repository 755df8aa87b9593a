// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/page.h"

#include <QIODevice>
#include <vector>

namespace folidex {

/// Writes a PDF of scanned pages onto a sequential device, page by page; only offsets stay in
/// memory. The page's size is pixels by resolution. Throws Error when the device refuses, for a
/// page that has no pixels, data or resolution, and for a PDF without pages.
class PdfWriter {
public:
    explicit PdfWriter(QIODevice& out);
    void add_page(const EncodedPage& page);
    /// Writes the page tree, the cross-reference table and the trailer.
    void finish();

private:
    void write(const QByteArray& bytes);
    int begin_object();
    void begin_object(int number);
    void write_stream(const QByteArray& entries, const QByteArray& data);
    void write_page_tree();
    void write_info();
    void write_trailer();

    QIODevice& out_;
    qint64 position_ = 0;
    std::vector<qint64> offsets_; ///< of objects 1, 2 ...
    std::vector<int> page_objects_;
};

} // namespace folidex
