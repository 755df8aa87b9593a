// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/background_scanner.h"

#include "capture/scanner/pdf_writer.h"
#include "capture/scanner/scanner_error.h"
#include "common/error_trap.h"
#include "platform/safe_file.h"

#include <QApplication>

namespace folidex {

namespace {

constexpr int kLookEvery = 100;

} // namespace

BackgroundScanner::BackgroundScanner(std::shared_ptr<ScannerThread> thread)
    : thread_(std::move(thread)), pages_(std::make_shared<PageSpool>()) {
    on(&late_, &QTimer::timeout, &late_, [this] { look_for_late_sources(); });
}

BackgroundScanner::~BackgroundScanner() {
    delete progress_;
}

int BackgroundScanner::source_count() {
    if (!std::exchange(searched_, true)) {
        begin_search();
        const bool more = search_goes_on();
        add_found_sources();
        if (more)
            late_.start(kLookEvery);
    }
    return known_sources();
}

void BackgroundScanner::look_for_late_sources() {
    const bool more = search_goes_on();
    const int before = known_sources();
    add_found_sources();
    if (!more)
        late_.stop();
    const bool found_nothing = !more && known_sources() == 0;
    if ((found_nothing || known_sources() > before) && sources_changed_)
        sources_changed_();
}

void BackgroundScanner::on_sources_changed(std::function<void()> handler) {
    sources_changed_ = std::move(handler);
}

void BackgroundScanner::set_current_source(int index) {
    current_ = index;
}

std::optional<int> BackgroundScanner::current_source() const {
    return is_known(current_) ? std::optional(current_) : std::nullopt;
}

void BackgroundScanner::set_use_feeder(bool on) {
    wishes_.use_feeder = on;
}

void BackgroundScanner::set_auto_feed(bool on) {
    wishes_.auto_feed = on;
}

void BackgroundScanner::set_show_progress(bool on) {
    wishes_.show_progress = on;
}

bool BackgroundScanner::supports_duplex() {
    // Asked before a source is chosen: whether this one has it shows when it is open.
    return true;
}

void BackgroundScanner::set_duplex(bool on) {
    wishes_.both_sides = on;
}

void BackgroundScanner::set_scan_until_empty(bool on) {
    wishes_.until_empty = on;
}

ScanProgress& BackgroundScanner::progress(QWidget* parent) {
    if (!progress_ || !progress_->isVisible()) {
        delete progress_;
        progress_ = new ScanProgress(name_, parent, patience_);
    }
    return *progress_;
}

bool BackgroundScanner::follow(ScanControl::Phase phase, QWidget* parent, int show_after,
                               const Start& start, std::function<void()> nudge) {
    const auto operation = std::make_shared<ScanControl>(phase);
    start(operation);
    ScanProgress& window = progress(parent);
    const auto outcome = window.run(
        operation, wishes_.show_progress ? show_after : ScanProgress::kNever, std::move(nudge));
    if (outcome == ScanProgress::Outcome::kNoAnswer) {
        window.hide();
        thread_->abandon(operation);
        left_behind();
        throw no_answer_error(name_);
    }
    try {
        operation->rethrow();
    } catch (...) {
        window.hide();
        throw;
    }
    window.release();
    return !operation->cancelled();
}

void BackgroundScanner::carry_out(ScanControl& operation, const std::function<void()>& work) {
    std::exception_ptr failure;
    try {
        work();
    } catch (...) {
        failure = std::current_exception();
    }
    operation.finish(failure);
}

void BackgroundScanner::refuse_while_hanging() const {
    if (thread_->hangs())
        throw still_hangs_error();
}

void BackgroundScanner::discard_pages() {
    chosen_.clear();
    pages_ = std::make_shared<PageSpool>();
}

int BackgroundScanner::page_count() {
    return pages_->count();
}

void BackgroundScanner::select_page(int page) {
    if (page < 1 || page > page_count())
        throw Error{kSubscriptOutOfRange, QStringLiteral("There is no scanned page %1.").arg(page)};
}

void BackgroundScanner::append_page(int page) {
    select_page(page);
    chosen_.push_back(page);
}

void BackgroundScanner::write_pdf(const QString& path) {
    const auto write = [path, pages = pages_, chosen = chosen_](ScanControl& operation) {
        write_file(path, [&](QIODevice& file) {
            PdfWriter pdf(file);
            int written = 0;
            for (const int page : chosen) {
                pdf.add_page(pages->page(page));
                operation.set_fraction(++written / static_cast<double>(chosen.size()));
            }
            pdf.finish();
        });
    };
    const auto start = [this, &write](const std::shared_ptr<ScanControl>& operation) {
        writer_.post([operation, write] { carry_out(*operation, [&] { write(*operation); }); });
    };
    follow(ScanControl::Phase::kWriting, QApplication::activeWindow(), kShowAfter, start);
}

} // namespace folidex
