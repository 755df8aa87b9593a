// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/background_scanner.h"
#include "capture/scanner/sane_acquisition.h"
#include "capture/scanner/sane_device_list.h"

namespace folidex {

class SaneDevice;

/// The scanner component over SANE. Holds no device longer than one scan takes: open_source()
/// opens it, acquire() closes it again. UI thread.
class SaneScanner : public BackgroundScanner {
public:
    explicit SaneScanner(std::shared_ptr<SaneSession> session);
    ~SaneScanner() override;

    QString source_name(int k) override;
    bool open_source() override;
    void acquire(QWidget* parent) override;

private:
    using SaneWork = std::function<void(const SaneApi& api, ScanControl& operation)>;

    void begin_search() override;
    bool search_goes_on() const override { return !search_->complete(); }
    void add_found_sources() override { sources_ = search_->sources(); }
    int known_sources() const override { return static_cast<int>(sources_.size()); }
    /// Work for the session's thread, which has the API.
    Start with_sane(SaneWork work) const;
    void close_device();
    void left_behind() override;

    std::shared_ptr<SaneSession> session_;
    std::shared_ptr<SaneDeviceList> search_;
    QList<SaneSource> sources_;
    SaneWho who_; ///< the source opened last
    std::shared_ptr<SaneDevice> device_;
};

} // namespace folidex
