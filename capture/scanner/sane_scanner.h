// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/background_scanner.h"
#include "capture/scanner/sane_acquisition.h"
#include "capture/scanner/sane_device_list.h"

#include <QTimer>

namespace folidex {

class SaneDevice;

/// The scanner component over SANE. Holds no device longer than one scan takes: open_source()
/// opens it, acquire() closes it again. UI thread.
class SaneScanner : public BackgroundScanner {
public:
    explicit SaneScanner(std::shared_ptr<SaneSession> session);
    ~SaneScanner() override;

    int source_count() override;
    QString source_name(int k) override;
    void on_sources_changed(std::function<void()> handler) override;
    void set_current_source(int index) override;
    bool open_source() override;
    void acquire(QWidget* parent) override;

private:
    using SaneWork = std::function<void(const SaneApi& api, ScanControl& operation)>;

    void look_for_late_sources();
    bool is_known(int index) const;
    /// Work for the session's thread, which has the API.
    Start with_sane(SaneWork work) const;
    void close_device();
    void left_behind() override;

    std::shared_ptr<SaneSession> session_;
    std::shared_ptr<SaneDeviceList> search_;
    QList<SaneSource> sources_;
    QTimer late_;
    std::function<void()> sources_changed_;

    int current_ = 0;
    SaneWho who_; ///< the source opened last
    std::shared_ptr<SaneDevice> device_;
};

} // namespace folidex
