// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/background_scanner.h"
#include "capture/scanner/twain_session.h"

#include <QTimer>

namespace folidex {

class TwainRun;

/// The scanner component over TWAIN, whose drivers run in helper programs. From open_source() to
/// the end of acquire() one of them holds the source; it is released while the form goes on, and
/// the next source is opened after that. UI thread.
class TwainScanner : public BackgroundScanner {
public:
    explicit TwainScanner(std::shared_ptr<TwainSession> session);
    ~TwainScanner() override;

    int source_count() override;
    QString source_name(int k) override;
    void on_sources_changed(std::function<void()> handler) override;
    void set_current_source(int index) override;
    bool open_source() override;
    void acquire(QWidget* parent) override;

private:
    void look_for_late_sources();
    bool is_known(int index) const;
    void close_source();
    void left_behind() override;

    std::shared_ptr<TwainSession> session_;
    QList<TwainSource> sources_;
    bool searched_ = false;
    QTimer late_;
    std::function<void()> sources_changed_;

    int current_ = 0;
    std::shared_ptr<TwainRun> run_; ///< of the source that is open
};

} // namespace folidex
