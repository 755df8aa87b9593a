// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/page_encoder.h"
#include "capture/scanner/sane_options.h"
#include "capture/scanner/sane_rows.h"

#include <QTemporaryFile>
#include <array>
#include <memory>
#include <optional>

namespace folidex {

/// One page made of one frame, or of three that carry one colour each, in any order. A frame
/// of the whole page is encoded as it comes; the colours of a three-pass page wait in
/// temporary files. Scanner's thread.
class SanePage {
public:
    /// Begins a frame; a page has one resolution. Throws Error for a frame that does not fit.
    void begin_frame(const SANE_Parameters& parameters, SaneResolution resolution);
    void add(const SANE_Byte* bytes, qsizetype size);

    /// Whether any row came.
    bool empty() const;
    /// How much of the page is in, 0 to 1; below 0 when its height is unknown.
    double fraction() const;
    /// Ends the page. Throws Error when a colour is missing.
    EncodedPage finish();

private:
    using Plane = std::unique_ptr<QTemporaryFile>;
    QTemporaryFile* plane_of(SANE_Frame format);
    void merge_planes();

    PageFormat format_;
    std::optional<SaneRows> rows_;
    std::unique_ptr<PageEncoder> encoder_;
    std::array<Plane, 3> planes_;
    QTemporaryFile* plane_ = nullptr;
    int frames_ = 0;
};

} // namespace folidex
