// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/sane_scanner.h"

#include "capture/scanner/pdf_writer.h"
#include "capture/scanner/sane_device.h"
#include "capture/scanner/system_scanner.h"
#include "common/error_trap.h"
#include "platform/safe_file.h"

#include <QApplication>
#include <thread>

namespace folidex {

namespace {

constexpr std::chrono::milliseconds kWaitForLocal{900};
constexpr int kLookEvery = 100;
constexpr int kShowAfter = 200;
constexpr int kAtOnce = 0;

} // namespace

std::unique_ptr<Scanner> make_system_scanner() {
    return std::make_unique<SaneScanner>(SaneSession::system());
}

SaneScanner::SaneScanner(std::shared_ptr<SaneSession> session)
    : session_(std::move(session)), pages_(std::make_shared<PageSpool>()) {
    on(&late_, &QTimer::timeout, &late_, [this] { look_for_late_sources(); });
}

SaneScanner::~SaneScanner() {
    close_device();
    delete progress_;
}

int SaneScanner::source_count() {
    if (!search_) {
        search_ = SaneDeviceList::search(*session_);
        search_->wait_for_local(kWaitForLocal);
        sources_ = search_->sources();
        late_.start(kLookEvery);
    }
    return static_cast<int>(sources_.size());
}

void SaneScanner::look_for_late_sources() {
    if (search_->complete())
        late_.stop();
    const QList<SaneSource> now = search_->sources();
    if (now.size() == sources_.size())
        return;
    sources_ = now;
    if (sources_changed_)
        sources_changed_();
}

bool SaneScanner::is_known(int index) const {
    return index >= 0 && index < sources_.size();
}

QString SaneScanner::source_name(int k) {
    return is_known(k) ? source_names(sources_).at(k) : QString();
}

void SaneScanner::on_sources_changed(std::function<void()> handler) {
    sources_changed_ = std::move(handler);
}

void SaneScanner::set_current_source(int index) {
    current_ = index;
}

void SaneScanner::set_use_feeder(bool on) {
    wishes_.use_feeder = on;
}

void SaneScanner::set_auto_feed(bool on) {
    wishes_.auto_feed = on;
}

void SaneScanner::set_show_progress(bool on) {
    show_progress_ = on;
}

bool SaneScanner::supports_duplex() {
    // Asked before a source is chosen: whether this one has it shows when it is open.
    return true;
}

void SaneScanner::set_duplex(bool on) {
    wishes_.both_sides = on;
}

void SaneScanner::set_scan_until_empty(bool on) {
    wishes_.until_empty = on;
}

ScanProgress& SaneScanner::progress(QWidget* parent) {
    if (!progress_ || !progress_->isVisible()) {
        delete progress_;
        progress_ = new ScanProgress(who_.name, parent);
    }
    return *progress_;
}

bool SaneScanner::run(ScanControl::Phase phase, QWidget* parent, int show_after, Work work,
                      std::function<void()> nudge) {
    auto operation = std::make_shared<ScanControl>(phase);
    session_->post([operation, work = std::move(work)](const SaneApi* api) {
        std::exception_ptr failure;
        try {
            if (!api)
                throw Error{kInternalError, QStringLiteral("SANE could not be started.")};
            work(*api, *operation);
        } catch (...) {
            failure = std::current_exception();
        }
        operation->finish(failure);
    });
    ScanProgress& window = progress(parent);
    const auto outcome =
        window.run(operation, show_progress_ ? show_after : ScanProgress::kNever, std::move(nudge));
    if (outcome == ScanProgress::Outcome::kNoAnswer) {
        window.hide();
        session_->abandon(operation);
        device_.reset();
        throw no_answer_error(who_.name);
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

bool SaneScanner::open_source() {
    close_device();
    if (!is_known(current_))
        return false;
    if (session_->hangs())
        throw still_hangs_error();
    const SaneSource& source = sources_.at(current_);
    who_ = {source_name(current_), source.device, source.type};
    auto device = std::make_shared<SaneDevice>(source.device);
    const auto usable = std::make_shared<bool>(false);
    const auto work = [device, usable, who = who_](const SaneApi& api, ScanControl& operation) {
        if (operation.cancelled())
            return;
        const SANE_Status status = device->open(api);
        // No such source any more: nothing to say, as with one that was never there.
        if (status == SANE_STATUS_INVAL || status == SANE_STATUS_UNSUPPORTED)
            return;
        if (status != SANE_STATUS_GOOD)
            throw sane_error(api, status, who);
        *usable = true;
        if (operation.cancelled())
            device->close();
    };
    device_ = device;
    const bool opened =
        run(ScanControl::Phase::kOpening, QApplication::activeWindow(), kShowAfter, work) &&
        *usable;
    if (!opened)
        close_device();
    return opened;
}

void SaneScanner::close_device() {
    if (!device_)
        return;
    session_->post([device = std::move(device_)](const SaneApi*) { device->close(); });
    device_.reset();
}

void SaneScanner::discard_pages() {
    chosen_.clear();
    pages_ = std::make_shared<PageSpool>();
}

void SaneScanner::acquire(QWidget* parent) {
    discard_pages();
    if (!device_)
        throw Error{kInternalError, QStringLiteral("No scanner is open.")};
    // A scan that is left behind may still fill its own spool, never a later one's.
    const auto pages = std::make_shared<PageSpool>();
    const auto device = device_;
    const auto work = [device, pages, who = who_, wishes = wishes_](const SaneApi& api,
                                                                    ScanControl& operation) {
        struct Closing {
            SaneDevice& device;
            ~Closing() { device.close(); }
        } const closing{*device};
        SaneAcquisition(api, device->handle(), who, wishes, operation, *pages).run();
    };
    // Asked from elsewhere: the scanner's own thread is the one that does not come back.
    const auto nudge = [device] { std::thread([device] { device->stop(); }).detach(); };
    device_.reset();
    if (run(ScanControl::Phase::kScanning, parent, kAtOnce, work, nudge))
        pages_ = pages;
}

int SaneScanner::page_count() {
    return pages_->count();
}

void SaneScanner::select_page(int page) {
    if (page < 1 || page > page_count())
        throw Error{kSubscriptOutOfRange, QStringLiteral("There is no scanned page %1.").arg(page)};
}

void SaneScanner::append_page(int page) {
    select_page(page);
    chosen_.push_back(page);
}

void SaneScanner::write_pdf(const QString& path) {
    const auto work = [path, pages = pages_, chosen = chosen_](const SaneApi&,
                                                               ScanControl& operation) {
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
    run(ScanControl::Phase::kWriting, QApplication::activeWindow(), kShowAfter, work);
}

} // namespace folidex
