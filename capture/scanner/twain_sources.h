// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/scanner_thread.h"
#include "capture/scanner/twain_settings.h"

#include <QList>

namespace folidex {

/// A source as the manager of its word size lists it.
struct TwainSource {
    int bits = 64;
    std::uint32_t index = 0;
    QString name;
};

/// The list with what another one knows of its sources, and the other's own ones at its end.
QList<TwainSource> merged(QList<TwainSource> list, const QList<TwainSource>& other);

/// The sources of both word sizes, listed by helpers, 64-bit ones first: the others are held
/// back until the first 64-bit list has ended or was given up. What an earlier search found
/// is there at once in a later one. A word size without a helper, or whose manager is missing,
/// has no sources, silently. Any thread.
class TwainSources {
public:
    explicit TwainSources(TwainSettings settings);
    ~TwainSources();

    /// Begins to list the sources, unless that is under way.
    void search();
    bool searching() const;
    /// Waits until there is something to show or nothing more can come.
    void wait(std::chrono::milliseconds time);
    QList<TwainSource> list() const;

private:
    struct Core;

    TwainSettings settings_;
    std::shared_ptr<Core> core_;
    ScannerThread lister64_;
    ScannerThread lister32_;
};

} // namespace folidex
