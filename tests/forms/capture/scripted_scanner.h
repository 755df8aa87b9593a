// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/scanner.h"
#include "common/error.h"

#include <QStringList>
#include <optional>

namespace folidex::test {

/// What a scripted scanner is to do, and what it was told, in order.
struct ScannerScript {
    QStringList sources{QStringLiteral("Front desk"), QStringLiteral("Archive")};
    int pages = 1; ///< of the next acquisition
    bool duplex = false;
    bool opens = true;
    bool searching = false;
    std::optional<Error> jam;        ///< fails the next acquisition
    std::optional<Error> full_disk;  ///< fails the writing of the PDF
    std::function<void()> acquiring; ///< runs while the pages come in

    QStringList calls;
    std::function<void()> sources_changed;
    int acquisitions = 0;
};

/// A scanner that follows a script. Its "PDF" is a line of text: which acquisition, and the
/// pages in the order in which they were appended.
class ScriptedScanner : public Scanner {
public:
    explicit ScriptedScanner(std::shared_ptr<ScannerScript> script) : script_(std::move(script)) {}

    int source_count() override;
    bool searching() const override { return script_->searching; }
    QString source_name(int k) override;
    void on_sources_changed(std::function<void()> handler) override;
    void set_current_source(int index) override;
    bool open_source() override;
    void set_use_feeder(bool on) override;
    void set_auto_feed(bool on) override;
    void set_show_progress(bool on) override;
    bool supports_duplex() override;
    void set_duplex(bool on) override;
    void set_scan_until_empty(bool on) override;
    void discard_pages() override;
    void acquire(QWidget* parent) override;
    int page_count() override;
    void select_page(int page) override;
    void append_page(int page) override;
    void write_pdf(const QString& path) override;

private:
    void note(const QString& call) { script_->calls.append(call); }

    std::shared_ptr<ScannerScript> script_;
    int pages_ = 0;
    QStringList appended_;
};

} // namespace folidex::test
