// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/system_scanner.h"
#include "common/error.h"

namespace folidex {

namespace {

/// A system without a scanner back end: it has no sources, so that the form's scan button
/// stays disabled and nothing else is ever asked.
class NoScanner : public Scanner {
public:
    int source_count() override { return 0; }
    QString source_name(int) override { return {}; }
    void on_sources_changed(std::function<void()>) override {}
    void set_current_source(int) override {}
    bool open_source() override { return false; }
    void set_use_feeder(bool) override {}
    void set_auto_feed(bool) override {}
    void set_show_progress(bool) override {}
    bool supports_duplex() override { return false; }
    void set_duplex(bool) override {}
    void set_scan_until_empty(bool) override {}
    void discard_pages() override {}
    void acquire(QWidget*) override { refuse(); }
    int page_count() override { return 0; }
    void select_page(int) override { refuse(); }
    void append_page(int) override { refuse(); }
    void write_pdf(const QString&) override { refuse(); }

private:
    [[noreturn]] static void refuse() {
        throw Error{kInternalError, QStringLiteral("There is no scanner on this system.")};
    }
};

} // namespace

std::unique_ptr<Scanner> make_system_scanner() {
    return std::make_unique<NoScanner>();
}

} // namespace folidex
