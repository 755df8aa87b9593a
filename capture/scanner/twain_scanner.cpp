// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain_scanner.h"

#include "capture/scanner/twain_run.h"
#include "common/error.h"

#include <QApplication>

namespace folidex {

namespace {

/// The window that the driver's own is to stand before, as the system knows it.
quintptr owner_window() {
    const QWidget* modal = QApplication::activeModalWidget();
    const QWidget* owner = modal ? modal : QApplication::activeWindow();
    return owner ? static_cast<quintptr>(owner->window()->effectiveWinId()) : 0;
}

} // namespace

TwainScanner::TwainScanner(std::shared_ptr<TwainSession> session)
    : BackgroundScanner(session->thread()), session_(std::move(session)) {}

TwainScanner::~TwainScanner() {
    close_source();
}

void TwainScanner::begin_search() {
    session_->sources().search();
    session_->sources().wait(patience().first_answer);
}

bool TwainScanner::search_goes_on() const {
    return session_->sources().searching();
}

void TwainScanner::add_found_sources() {
    sources_ = merged(sources_, session_->sources().list());
}

QString TwainScanner::source_name(int k) {
    return is_known(k) ? sources_.at(k).name : QString();
}

bool TwainScanner::open_source() {
    close_source();
    const auto chosen = current_source();
    if (!chosen)
        return false;
    refuse_while_hanging();
    const TwainSource& source = sources_.at(*chosen);
    set_name(source.name);
    const auto run =
        std::make_shared<TwainRun>(session_->settings(), source, wishes(), owner_window());
    const auto usable = std::make_shared<bool>(false);
    const auto hurry = session_->hurry();
    const auto start = [&](const std::shared_ptr<ScanControl>& operation) {
        session_->thread()->post([run, usable, hurry, operation] {
            hurry->store(false);
            carry_out(*operation, [&] { *usable = run->open(*operation); });
            if (!*usable)
                run->release([&] { return hurry->load(); });
        });
    };
    // What is in the way of a new scan is the release of an earlier one, at most.
    const auto nudge = [hurry] { hurry->store(true); };
    const bool opened = follow(ScanControl::Phase::kOpening, QApplication::activeWindow(),
                               kShowAfter, start, nudge) &&
                        *usable;
    run_ = run;
    if (!opened)
        close_source();
    return opened;
}

void TwainScanner::close_source() {
    if (!run_)
        return;
    session_->thread()->post(
        [run = run_, hurry = session_->hurry()] { run->release([&] { return hurry->load(); }); });
    run_.reset();
}

void TwainScanner::left_behind() {
    run_.reset();
}

void TwainScanner::acquire(QWidget* parent) {
    discard_pages();
    if (!run_)
        throw Error{kInternalError, QStringLiteral("No scanner is open.")};
    // A scan that is left behind may still fill its own spool, never a later one's.
    const auto pages = std::make_shared<PageSpool>();
    const auto run = std::exchange(run_, nullptr);
    const auto start = [&](const std::shared_ptr<ScanControl>& operation) {
        session_->thread()->post(
            [run, pages, operation, hurry = session_->hurry(), until_empty = wishes().until_empty] {
                carry_out(*operation, [&] { run->acquire(*operation, until_empty, *pages); });
                run->release([&] { return hurry->load(); });
            });
    };
    if (follow(ScanControl::Phase::kChoosing, parent, kAtOnce, start))
        keep(pages);
}

} // namespace folidex
