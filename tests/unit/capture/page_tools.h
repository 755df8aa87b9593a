// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/page.h"
#include "tests/support/test_system.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

namespace folidex::testing {

/// A picture of a kind, filled by a function of column and row (and colour component, of RGB):
/// 1 or 0 for 1-bit pixels, else a brightness.
QByteArray draw(const PageFormat& format, const std::function<int(int, int, int)>& pixel);
/// The page that the encoder makes of a picture.
EncodedPage encode(const PageFormat& format, const QByteArray& picture);
/// Writes pages as a PDF file.
void write_pdf(const QString& path, const std::vector<EncodedPage>& pages);

/// A portable pixel map as the PDF tools write it: P4 (1 is black, bits beyond the width
/// cleared), P5 or P6.
struct PixelMap {
    int width = 0;
    int height = 0;
    QByteArray pixels;
};
PixelMap read_pixel_map(const QString& path);

/// What qpdf found wrong with a file; empty when it is in order.
QString complaints(const QString& pdf);
/// The pictures in a PDF, in the order of its pages, as files of a folder;
/// none when the tool had anything to complain of.
QStringList extract_pictures(const QString& pdf, const QString& folder,
                             const QStringList& options = {});

} // namespace folidex::testing
