// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/page_spool.h"
#include "capture/scanner/scan_patience.h"
#include "capture/scanner/scan_progress.h"
#include "capture/scanner/scan_wishes.h"
#include "capture/scanner/scanner.h"
#include "capture/scanner/scanner_thread.h"

#include <QPointer>
#include <QTimer>
#include <optional>
#include <vector>

namespace folidex {

/// What the back ends have in common: sources that answer late, the form's wishes, the pages of
/// one acquisition and the PDF of them, and operations that run on the scanner's thread while a
/// ScanProgress keeps the form alive and out of reach. A back end finds sources, opens one and
/// fills a spool.
class BackgroundScanner : public Scanner {
public:
    ~BackgroundScanner() override;

    /// Before sources are asked for; a seam for tests.
    void set_patience(const ScanPatience& patience) { patience_ = patience; }

    int source_count() override;
    bool searching() const override { return late_.isActive(); }
    void on_sources_changed(std::function<void()> handler) override;
    void set_current_source(int index) override;
    void set_use_feeder(bool on) override;
    void set_auto_feed(bool on) override;
    void set_show_progress(bool on) override;
    bool supports_duplex() override;
    void set_duplex(bool on) override;
    void set_scan_until_empty(bool on) override;
    void discard_pages() override;
    int page_count() override;
    void select_page(int page) override;
    void append_page(int page) override;
    void write_pdf(const QString& path) override;

protected:
    /// When the progress window comes up, in milliseconds.
    static constexpr int kShowAfter = 200;
    static constexpr int kAtOnce = 0;

    using Start = std::function<void(std::shared_ptr<ScanControl> operation)>;

    explicit BackgroundScanner(std::shared_ptr<ScannerThread> thread);

    /// Starts an operation and follows it under the progress window. Returns false when it was
    /// cancelled; throws what it failed with, or that the scanner does not answer. What start
    /// sets going must end in carry_out.
    bool follow(ScanControl::Phase phase, QWidget* parent, int show_after, const Start& start,
                std::function<void()> nudge = {});
    /// Does the work and ends the operation, failed when the work throws.
    static void carry_out(ScanControl& operation, const std::function<void()>& work);
    /// Throws when an operation that the user left behind still hangs.
    void refuse_while_hanging() const;

    /// The source to be opened, if it is one that is known.
    std::optional<int> current_source() const;
    bool is_known(int source) const { return source >= 0 && source < known_sources(); }
    const ScanWishes& wishes() const { return wishes_; }
    const ScanPatience& patience() const { return patience_; }
    /// The name that progress and failures show.
    void set_name(const QString& name) { name_ = name; }
    const QString& name() const { return name_; }
    void keep(std::shared_ptr<PageSpool> pages) { pages_ = std::move(pages); }

private:
    /// Begins to search for sources and waits for the quick ones.
    virtual void begin_search() = 0;
    virtual bool search_goes_on() const = 0;
    /// Adds the sources found since; they come at the end of those already known.
    virtual void add_found_sources() = 0;
    virtual int known_sources() const = 0;
    /// The operation was left while the scanner did not answer.
    virtual void left_behind() = 0;
    ScanProgress& progress(QWidget* parent);
    void look_for_late_sources();

    std::shared_ptr<ScannerThread> thread_;
    ScanPatience patience_;
    bool searched_ = false;
    QTimer late_;
    std::function<void()> sources_changed_;
    int current_ = 0;
    QString name_;
    ScanWishes wishes_;
    QPointer<ScanProgress> progress_;
    std::shared_ptr<PageSpool> pages_;
    std::vector<int> chosen_;
    /// The PDF is written while the scanner's thread is still busy with the device.
    ScannerThread writer_;
};

} // namespace folidex
