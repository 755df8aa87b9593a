// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain/twain_codes.h"
#include "tests/support/twain/memory.h"
#include "tests/support/twain/scripted_page.h"

#include <functional>
#include <map>
#include <windows.h>

namespace folidex::scripted {

/// One source that plays its section of the script, whoever loads it: what its DS_Entry does. It
/// holds to the states, answers what comes out of order with TWCC_SEQERROR, and notes the steps.
class Source {
public:
    explicit Source(std::string section);

    const twain::TW_IDENTITY& identity() const { return identity_; }
    /// A manager of TWAIN 2 lends its own.
    Memory memory = system_memory();
    /// Tells the manager; sources without it wait to be asked with MSG_PROCESSEVENT.
    std::function<void(twain::TW_UINT16 message)> call_manager;

    twain::TW_UINT16 entry(twain::TW_UINT32 group, twain::TW_UINT16 data_type,
                           twain::TW_UINT16 message, twain::TW_MEMREF data);

private:
    using Answer = twain::TW_UINT16;

    Answer dispatch(twain::TW_UINT32 group, twain::TW_UINT16 data_type, twain::TW_UINT16 message,
                    twain::TW_MEMREF data);
    Answer control(twain::TW_UINT16 data_type, twain::TW_UINT16 message, twain::TW_MEMREF data);
    Answer open();
    Answer close();
    Answer capability(twain::TW_UINT16 message, twain::TW_CAPABILITY& asked);
    Answer set_capability(const twain::TW_CAPABILITY& wish);
    Answer give_list(twain::TW_CAPABILITY& asked) const;
    Answer enable(const twain::TW_USERINTERFACE& interface);
    Answer disable();
    Answer event(twain::TW_EVENT& event);
    Answer setup(twain::TW_SETUPMEMXFER& setup) const;
    Answer pending(twain::TW_UINT16 message, twain::TW_PENDINGXFERS& pending);
    Answer info(twain::TW_IMAGEINFO& info);
    Answer strip(twain::TW_IMAGEMEMXFER& strip);
    Answer jpeg_strip(twain::TW_IMAGEMEMXFER& strip);
    Answer bitmap(twain::TW_HANDLE& handle);

    Answer fail(twain::TW_UINT16 condition);
    Answer fail_if_told(const char* place);
    Answer trouble();
    void spoil(twain::TW_IMAGEMEMXFER& strip) const;
    void act(const std::string& what);
    void tell(twain::TW_UINT16 message);
    bool is(const char* key, const char* value) const;
    int say(const char* key, int fallback = 0) const;
    static LRESULT CALLBACK on_message(HWND window, UINT message, WPARAM first, LPARAM second);
    static DWORD WINAPI tell_from_thread(void* source);

    std::string section_;
    twain::TW_IDENTITY identity_{};
    int state_ = 3;
    twain::TW_UINT16 condition_ = twain::TWCC_SUCCESS;
    std::map<twain::TW_UINT16, twain::TW_UINT32> settings_;
    HWND window_ = nullptr;
    HWND parent_ = nullptr;
    twain::TW_UINT16 message_ = twain::MSG_NULL;
    std::vector<Page> pages_;
    std::size_t page_ = 0;
    int row_ = 0;
    std::size_t jpeg_at_ = 0;
    bool trouble_over_ = false;
    bool in_trouble_ = false;
};

} // namespace folidex::scripted
