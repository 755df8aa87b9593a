// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <functional>
#include <memory>

class QWidget;

namespace folidex {

/// The scanner component: sources, one acquisition at a time, the pages of it, and the PDF made
/// of them. One back end per system behind it. Failures throw Error whose description is the
/// text for the user. All calls on the UI thread; none blocks the window.
class Scanner {
public:
    virtual ~Scanner() = default;

    /// Sources known so far. The first call waits for the quick ones, at most a second.
    virtual int source_count() = 0;
    /// Name of source k, counted from 0.
    virtual QString source_name(int k) = 0;
    /// Whether sources may still be added.
    virtual bool searching() const = 0;
    /// Called on the UI thread when a source that answered late was added, and when a search that
    /// went on after the first call has ended with nothing.
    virtual void on_sources_changed(std::function<void()> handler) = 0;

    virtual void set_current_source(int index) = 0;
    /// False when the source cannot be used and that needs no words (the user was told).
    virtual bool open_source() = 0;

    /// The three acquisition options.
    virtual void set_use_feeder(bool on) = 0;
    virtual void set_auto_feed(bool on) = 0;
    virtual void set_show_progress(bool on) = 0;
    /// The optional feature: both sides of the paper.
    virtual bool supports_duplex() = 0;
    virtual void set_duplex(bool on) = 0;
    /// The option set once the source is open: scan until the feeder is empty.
    virtual void set_scan_until_empty(bool on) = 0;

    /// Drops the pages collected for the PDF.
    virtual void discard_pages() = 0;
    /// Scans under a modal progress window over a parent; returns when all pages are in, the
    /// user cancelled (no pages) or chose to keep what there is.
    virtual void acquire(QWidget* parent) = 0;
    virtual int page_count() = 0;
    /// Pages count from 1.
    virtual void select_page(int page) = 0;
    virtual void append_page(int page) = 0;
    /// Writes the appended pages as one PDF: beside the path, then renamed onto it.
    virtual void write_pdf(const QString& path) = 0;
};

/// The system's scanners. Tests plant another component with set_scanner_factory; an empty
/// function restores the system's.
std::unique_ptr<Scanner> make_scanner();
void set_scanner_factory(std::function<std::unique_ptr<Scanner>()> factory);

} // namespace folidex
