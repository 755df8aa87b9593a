// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain/containers.h"
#include "capture/scanner/twain/manager.h"

#include <atomic>
#include <functional>
#include <optional>

namespace folidex::twain {

/// The states of TWAIN 2.5, chapter 2, from the manager on.
enum class State {
    kManagerOpen = 3,
    kSourceOpen = 4,
    kEnabled = 5,
    kTransferReady = 6,
    kTransferring = 7,
};

/// One source from open to close, and the state it is in. Operations that change the state know it;
/// close() walks down from wherever it stands, each rung once, whatever the rungs answer. One
/// session at a time lives in the process. Throws Failure where it says so.
class Session {
public:
    explicit Session(Manager& manager);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    State state() const { return state_; }
    /// The source at `index`, or the first of that name when the list has changed since; throws
    /// (kNotOpened) when there is none or the manager would not open it.
    void open(TW_UINT32 index, const std::string& name);
    void close();

    /// False when the source refused.
    bool set(TW_UINT16 capability, TW_UINT16 type, TW_UINT32 value);
    std::optional<TW_UINT32> get(TW_UINT16 capability);
    bool offers(TW_UINT16 capability, TW_UINT32 value);

    /// Shows the source's own window, modal over `window`. False when the user cancelled at once.
    bool enable(HWND window);
    /// A message of the loop, offered to the enabled source. True when it was the source's.
    bool offer(MSG& message);
    /// What the source has said meanwhile, once each.
    bool take_ready() { return ready_.exchange(false); }
    bool is_close_requested() const { return close_requested_; }

    /// State 5 to 6: the source said that a page is ready.
    void ready() { state_ = State::kTransferReady; }
    TW_UINT16 image(TW_UINT16 data_type, TW_MEMREF data);
    TW_UINT16 control(TW_UINT16 data_type, TW_UINT16 message, TW_MEMREF data);
    void transferring() { state_ = State::kTransferring; }
    /// Ends or drops the page at hand; true when another one waits. Throws when it cannot.
    bool end_page();

    TW_UINT16 condition() { return manager_.condition(&source_); }
    Manager& manager() { return manager_; }

private:
    static TW_UINT16 WINAPI called_back(TW_IDENTITY*, TW_IDENTITY*, TW_UINT32, TW_UINT16,
                                        TW_UINT16 message, TW_MEMREF);
    void ask_for_calls();
    void heard(TW_UINT16 message);
    template <typename Look>
    auto look_at(TW_UINT16 capability, TW_UINT16 message, const Look& look)
        -> decltype(look(Container{}));

    Manager& manager_;
    TW_IDENTITY source_{};
    HWND window_ = nullptr;
    State state_ = State::kManagerOpen;
    std::atomic<bool> ready_ = false;
    std::atomic<bool> close_requested_ = false;
};

} // namespace folidex::twain
