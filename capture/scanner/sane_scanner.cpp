// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/sane_scanner.h"

#include "capture/scanner/sane_device.h"
#include "capture/scanner/system_scanner.h"

#include <QApplication>
#include <thread>

namespace folidex {

std::unique_ptr<Scanner> make_system_scanner() {
    return std::make_unique<SaneScanner>(SaneSession::system());
}

SaneScanner::SaneScanner(std::shared_ptr<SaneSession> session)
    : BackgroundScanner(session->thread()), session_(std::move(session)) {}

SaneScanner::~SaneScanner() {
    close_device();
}

void SaneScanner::begin_search() {
    search_ = SaneDeviceList::search(*session_);
    search_->wait_for_local(patience().first_answer);
}

QString SaneScanner::source_name(int k) {
    return is_known(k) ? source_names(sources_).at(k) : QString();
}

SaneScanner::Start SaneScanner::with_sane(SaneWork work) const {
    return [session = session_,
            work = std::move(work)](const std::shared_ptr<ScanControl>& operation) {
        session->post([operation, work](const SaneApi* api) {
            carry_out(*operation, [&] {
                if (!api)
                    throw Error{kInternalError, QStringLiteral("SANE could not be started.")};
                work(*api, *operation);
            });
        });
    };
}

void SaneScanner::left_behind() {
    device_.reset();
}

bool SaneScanner::open_source() {
    close_device();
    const auto chosen = current_source();
    if (!chosen)
        return false;
    refuse_while_hanging();
    const SaneSource& source = sources_.at(*chosen);
    who_ = {source_name(*chosen), source.device, source.type};
    set_name(who_.name);
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
    const bool opened = follow(ScanControl::Phase::kOpening, QApplication::activeWindow(),
                               kShowAfter, with_sane(work)) &&
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

void SaneScanner::acquire(QWidget* parent) {
    discard_pages();
    if (!device_)
        throw Error{kInternalError, QStringLiteral("No scanner is open.")};
    // A scan that is left behind may still fill its own spool, never a later one's.
    const auto pages = std::make_shared<PageSpool>();
    const auto device = device_;
    const auto work = [device, pages, who = who_, wishes = wishes()](const SaneApi& api,
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
    if (follow(ScanControl::Phase::kScanning, parent, kAtOnce, with_sane(work), nudge))
        keep(pages);
}

} // namespace folidex
