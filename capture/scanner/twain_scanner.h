// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/background_scanner.h"
#include "capture/scanner/twain_session.h"

namespace folidex {

class TwainRun;

/// The scanner component over TWAIN, whose drivers run in helper programs. From open_source() to
/// the end of acquire() one of them holds the source; it is released while the form goes on, and
/// the next source is opened after that. UI thread.
class TwainScanner : public BackgroundScanner {
public:
    explicit TwainScanner(std::shared_ptr<TwainSession> session);
    ~TwainScanner() override;

    QString source_name(int k) override;
    bool open_source() override;
    void acquire(QWidget* parent) override;

private:
    void begin_search() override;
    bool search_goes_on() const override;
    void add_found_sources() override;
    int known_sources() const override { return static_cast<int>(sources_.size()); }
    void close_source();
    void left_behind() override;

    std::shared_ptr<TwainSession> session_;
    QList<TwainSource> sources_;
    std::shared_ptr<TwainRun> run_; ///< of the source that is open
};

} // namespace folidex
