// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/page_spool.h"
#include "capture/scanner/sane_acquisition.h"
#include "capture/scanner/sane_device_list.h"
#include "capture/scanner/scan_progress.h"
#include "capture/scanner/scanner.h"

#include <QPointer>
#include <QTimer>
#include <vector>

namespace folidex {

class SaneDevice;

/// The scanner component over SANE. Holds no device longer than one scan takes: open_source()
/// opens it, acquire() closes it again. Everything that can take long runs on the session's
/// thread while a ScanProgress keeps the form alive and out of reach. UI thread.
class SaneScanner : public Scanner {
public:
    explicit SaneScanner(std::shared_ptr<SaneSession> session);
    ~SaneScanner() override;

    int source_count() override;
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
    using Work = std::function<void(const SaneApi& api, ScanControl& operation)>;

    void look_for_late_sources();
    bool is_known(int index) const;
    ScanProgress& progress(QWidget* parent);
    /// Runs work on the session's thread under the progress window. Returns false when it was
    /// cancelled; throws what it failed with, or that the scanner does not answer.
    bool run(ScanControl::Phase phase, QWidget* parent, int show_after, Work work,
             std::function<void()> nudge = {});
    void close_device();

    std::shared_ptr<SaneSession> session_;
    std::shared_ptr<SaneDeviceList> search_;
    QList<SaneSource> sources_;
    QTimer late_;
    std::function<void()> sources_changed_;

    int current_ = 0;
    SaneWho who_; ///< the source opened last
    ScanWishes wishes_;
    bool show_progress_ = true;
    QPointer<ScanProgress> progress_;

    std::shared_ptr<SaneDevice> device_;
    std::shared_ptr<PageSpool> pages_;
    std::vector<int> chosen_;
};

} // namespace folidex
