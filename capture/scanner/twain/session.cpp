// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/session.h"

#include "capture/scanner/twain/crash_report.h"
#include "capture/scanner/twain/failure.h"
#include "capture/scanner/twain/message_loop.h"
#include "capture/scanner/twain/twain_codes.h"

#include <algorithm>

namespace folidex::twain {

namespace {

/// Where a manager's calls go; drivers make them from threads of their own.
std::atomic<Session*> the_session = nullptr;

bool went_well(TW_UINT16 answer) {
    return answer == TWRC_SUCCESS || answer == TWRC_CHECKSTATUS;
}

} // namespace

Session::Session(Manager& manager) : manager_(manager) {
    the_session = this;
}

Session::~Session() {
    close();
    the_session = nullptr;
}

void Session::open(TW_UINT32 index, const std::string& name) {
    const auto sources = manager_.sources();
    auto found = sources.end();
    if (index < sources.size() && source_name(sources[index]) == name)
        found = sources.begin() + index;
    else
        found = std::find_if(sources.begin(), sources.end(), [&](const TW_IDENTITY& source) {
            return source_name(source) == name;
        });
    if (found == sources.end())
        throw Failure{Outcome::kNotOpened, Step::kFindSource, TWRC_FAILURE, TWCC_NODS};
    source_ = *found;
    const TW_UINT16 answer = manager_.call(nullptr, DG_CONTROL, DAT_IDENTITY, MSG_OPENDS, &source_);
    if (answer != TWRC_SUCCESS)
        throw Failure{Outcome::kNotOpened, Step::kOpenSource, answer, manager_.condition(nullptr)};
    state_ = State::kSourceOpen;
    report_crashes_still();
    ask_for_calls();
}

void Session::ask_for_calls() {
    // Messages are offered to the source all the same: its dialogs live on them, and what it says
    // there counts as much.
    if (!manager_.calls_back() || (source_.SupportedGroups & DF_DS2) == 0)
        return;
    const auto function = reinterpret_cast<TW_MEMREF>(&Session::called_back);
    TW_CALLBACK callback{function, 0, 0};
    if (went_well(control(DAT_CALLBACK, MSG_REGISTER_CALLBACK, &callback)))
        return;
    TW_CALLBACK2 callback2{function, 0, 0};
    control(DAT_CALLBACK2, MSG_REGISTER_CALLBACK, &callback2);
}

TW_UINT16 WINAPI Session::called_back(TW_IDENTITY*, TW_IDENTITY*, TW_UINT32, TW_UINT16,
                                      TW_UINT16 message, TW_MEMREF) {
    if (Session* session = the_session) {
        session->heard(message);
        MessageLoop::wake(session->window_);
    }
    return TWRC_SUCCESS;
}

void Session::heard(TW_UINT16 message) {
    if (message == MSG_XFERREADY)
        ready_ = true;
    else if (message == MSG_CLOSEDSREQ || message == MSG_CLOSEDSOK)
        close_requested_ = true;
}

TW_UINT16 Session::control(TW_UINT16 data_type, TW_UINT16 message, TW_MEMREF data) {
    return manager_.call(&source_, DG_CONTROL, data_type, message, data);
}

TW_UINT16 Session::image(TW_UINT16 data_type, TW_MEMREF data) {
    return manager_.call(&source_, DG_IMAGE, data_type, MSG_GET, data);
}

bool Session::set(TW_UINT16 capability, TW_UINT16 type, TW_UINT32 value) {
    TW_CAPABILITY wish{capability, TWON_ONEVALUE, manager_.allocate(sizeof(TW_ONEVALUE))};
    auto* one = static_cast<TW_ONEVALUE*>(manager_.lock(wish.hContainer));
    if (one == nullptr)
        return false;
    *one = {type, value};
    manager_.unlock(wish.hContainer);
    const TW_UINT16 answer = control(DAT_CAPABILITY, MSG_SET, &wish);
    manager_.free(wish.hContainer);
    return went_well(answer);
}

template <typename Look>
auto Session::look_at(TW_UINT16 capability, TW_UINT16 message, const Look& look)
    -> decltype(look(Container{})) {
    TW_CAPABILITY asked{capability, TWON_DONTCARE16, nullptr};
    if (!went_well(control(DAT_CAPABILITY, message, &asked)) || asked.hContainer == nullptr)
        return {};
    const void* data = manager_.lock(asked.hContainer);
    const auto found = look(Container{asked.ConType, static_cast<const std::uint8_t*>(data),
                                      Manager::readable_bytes(asked.hContainer, data)});
    manager_.unlock(asked.hContainer);
    manager_.free(asked.hContainer);
    return found;
}

std::optional<TW_UINT32> Session::get(TW_UINT16 capability) {
    return look_at(capability, MSG_GETCURRENT, current_value);
}

bool Session::offers(TW_UINT16 capability, TW_UINT32 value) {
    return look_at(capability, MSG_GET,
                   [value](const Container& container) { return twain::offers(container, value); });
}

bool Session::enable(HWND window) {
    window_ = window;
    TW_USERINTERFACE interface { 1, 1, window };
    const TW_UINT16 answer = control(DAT_USERINTERFACE, MSG_ENABLEDS, &interface);
    if (answer == TWRC_CANCEL)
        return false;
    if (!went_well(answer))
        throw Failure{Outcome::kFailed, Step::kEnable, answer, condition()};
    state_ = State::kEnabled;
    return true;
}

bool Session::offer(MSG& message) {
    if (state_ < State::kEnabled)
        return false;
    TW_EVENT event{&message, MSG_NULL};
    const TW_UINT16 answer = control(DAT_EVENT, MSG_PROCESSEVENT, &event);
    heard(event.TWMessage);
    return answer == TWRC_DSEVENT;
}

bool Session::end_page() {
    TW_PENDINGXFERS pending{};
    const TW_UINT16 answer = control(DAT_PENDINGXFERS, MSG_ENDXFER, &pending);
    if (answer != TWRC_SUCCESS)
        throw Failure{Outcome::kFailed, Step::kEndPage, answer, condition()};
    state_ = pending.Count != 0 ? State::kTransferReady : State::kEnabled;
    return pending.Count != 0;
}

void Session::close() {
    TW_PENDINGXFERS pending{};
    if (state_ == State::kTransferring) {
        const bool ended = control(DAT_PENDINGXFERS, MSG_ENDXFER, &pending) == TWRC_SUCCESS;
        state_ = ended && pending.Count == 0 ? State::kEnabled : State::kTransferReady;
    }
    if (state_ == State::kTransferReady) {
        // Sources that scan ahead may know only how to stop the paper.
        if (control(DAT_PENDINGXFERS, MSG_RESET, &pending) != TWRC_SUCCESS)
            control(DAT_PENDINGXFERS, MSG_STOPFEEDER, &pending);
        state_ = State::kEnabled;
    }
    if (state_ == State::kEnabled) {
        TW_USERINTERFACE interface { 0, 0, window_ };
        control(DAT_USERINTERFACE, MSG_DISABLEDS, &interface);
        state_ = State::kSourceOpen;
    }
    if (state_ == State::kSourceOpen) {
        manager_.call(nullptr, DG_CONTROL, DAT_IDENTITY, MSG_CLOSEDS, &source_);
        state_ = State::kManagerOpen;
    }
}

} // namespace folidex::twain
