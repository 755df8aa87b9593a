// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/twain/scripted_source.h"

#include "tests/support/twain/script.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace folidex::scripted {

using namespace twain;

namespace {

/// A source without a way to call hides its news behind this message to its window.
constexpr UINT kNews = WM_APP + 7;
constexpr UINT_PTR kReadyTimer = 1;

} // namespace

Source::Source(std::string section) : section_(std::move(section)) {
    identity_.Version.MajorNum = 1;
    identity_.ProtocolMajor = static_cast<TW_UINT16>(say("protocol", 2));
    identity_.ProtocolMinor = 4;
    identity_.SupportedGroups = DG_CONTROL | DG_IMAGE;
    if (identity_.ProtocolMajor >= 2)
        identity_.SupportedGroups |= DF_DS2;
    std::strcpy(identity_.Manufacturer, "Folidex");
    std::strcpy(identity_.ProductFamily, "Virtual scanners");
    // A name that fills its place has no end.
    std::memcpy(identity_.ProductName, section_.data(),
                std::min(section_.size(), sizeof identity_.ProductName));
}

bool Source::is(const char* key, const char* value) const {
    return text(section_, key) == value;
}

int Source::say(const char* key, int fallback) const {
    return number(section_, key, fallback);
}

Source::Answer Source::fail(TW_UINT16 condition) {
    condition_ = condition;
    if (condition == TWCC_SEQERROR)
        note(section_ + " out of order in state " + std::to_string(state_));
    return TWRC_FAILURE;
}

Source::Answer Source::fail_if_told(const char* place) {
    const int condition = failure_at(section_, place);
    return condition == 0 ? Answer{TWRC_SUCCESS} : fail(static_cast<TW_UINT16>(condition));
}

Source::Answer Source::entry(TW_UINT32 group, TW_UINT16 data_type, TW_UINT16 message,
                             TW_MEMREF data) {
    if (data_type == DAT_STATUS) {
        *static_cast<TW_STATUS*>(data) = {condition_, 0};
        condition_ = TWCC_SUCCESS;
        return TWRC_SUCCESS;
    }
    return dispatch(group, data_type, message, data);
}

Source::Answer Source::dispatch(TW_UINT32 group, TW_UINT16 data_type, TW_UINT16 message,
                                TW_MEMREF data) {
    if (group == DG_CONTROL)
        return control(data_type, message, data);
    if (group != DG_IMAGE || state_ < 6)
        return fail(TWCC_SEQERROR);
    switch (data_type) {
    case DAT_IMAGEINFO:
        return info(*static_cast<TW_IMAGEINFO*>(data));
    case DAT_PALETTE8:
        *static_cast<TW_PALETTE8*>(data) = palette(pages_[page_]);
        return TWRC_SUCCESS;
    case DAT_IMAGEMEMXFER:
        if (settings_[ICAP_XFERMECH] != TWSX_MEMORY)
            return fail(TWCC_SEQERROR);
        return strip(*static_cast<TW_IMAGEMEMXFER*>(data));
    case DAT_IMAGENATIVEXFER:
        if (settings_[ICAP_XFERMECH] != TWSX_NATIVE || state_ != 6)
            return fail(TWCC_SEQERROR);
        return bitmap(*static_cast<TW_HANDLE*>(data));
    default:
        return fail(TWCC_BADPROTOCOL);
    }
}

Source::Answer Source::control(TW_UINT16 data_type, TW_UINT16 message, TW_MEMREF data) {
    switch (data_type) {
    case DAT_IDENTITY:
        return message == MSG_OPENDS    ? open()
               : message == MSG_CLOSEDS ? close()
                                        : fail(TWCC_BADPROTOCOL);
    case DAT_CAPABILITY:
        return capability(message, *static_cast<TW_CAPABILITY*>(data));
    case DAT_USERINTERFACE:
        if (message == MSG_ENABLEDS)
            return enable(*static_cast<TW_USERINTERFACE*>(data));
        return message == MSG_DISABLEDS ? disable() : fail(TWCC_BADPROTOCOL);
    case DAT_EVENT:
        return event(*static_cast<TW_EVENT*>(data));
    case DAT_SETUPMEMXFER:
        return state_ == 6 ? setup(*static_cast<TW_SETUPMEMXFER*>(data)) : fail(TWCC_SEQERROR);
    case DAT_PENDINGXFERS:
        return pending(message, *static_cast<TW_PENDINGXFERS*>(data));
    default:
        return fail(TWCC_BADPROTOCOL);
    }
}

Source::Answer Source::open() {
    note(section_ + " open");
    mishap_at(section_, "open");
    if (const Answer told = fail_if_told("open"))
        return told;
    if (state_ != 3)
        return fail(TWCC_MAXCONNECTIONS);
    state_ = 4;
    settings_ = {{CAP_DUPLEX, static_cast<TW_UINT32>(say("duplex"))},
                 {ICAP_PIXELTYPE, static_cast<TW_UINT32>(say("pixel_type", TWPT_RGB))},
                 {ICAP_UNITS, static_cast<TW_UINT32>(say("units", TWUN_INCHES))},
                 {ICAP_XRESOLUTION, static_cast<TW_UINT32>(say("resolution"))},
                 {ICAP_YRESOLUTION, static_cast<TW_UINT32>(say("resolution"))},
                 {ICAP_PIXELFLAVOR, TWPF_CHOCOLATE}};
    return TWRC_SUCCESS;
}

Source::Answer Source::close() {
    note(section_ + " close");
    mishap_at(section_, "close");
    if (state_ != 4)
        return fail(TWCC_SEQERROR);
    state_ = 3;
    return TWRC_SUCCESS;
}

Source::Answer Source::capability(TW_UINT16 message, TW_CAPABILITY& asked) {
    mishap_at(section_, "capability");
    for (const std::string& number : split(text(section_, "lacks"), ','))
        if (std::strtoul(number.c_str(), nullptr, 0) == asked.Cap)
            return fail(TWCC_CAPUNSUPPORTED);
    if (message == MSG_SET)
        return state_ == 4 ? set_capability(asked) : fail(TWCC_SEQERROR);
    if (message == MSG_GET && asked.Cap == ICAP_COMPRESSION)
        return give_list(asked);
    const auto known = settings_.find(asked.Cap);
    if (known == settings_.end())
        return fail(TWCC_CAPUNSUPPORTED);
    TW_UINT32 value = known->second;
    const bool resolution = asked.Cap == ICAP_XRESOLUTION || asked.Cap == ICAP_YRESOLUTION;
    if (asked.Cap == ICAP_PIXELFLAVOR && page_ < pages_.size() && pages_[page_].kind == "vanilla")
        value = TWPF_VANILLA;
    asked.ConType = TWON_ONEVALUE;
    asked.hContainer = memory.allocate(sizeof(TW_ONEVALUE));
    *static_cast<TW_ONEVALUE*>(memory.lock(asked.hContainer)) = {
        resolution ? TW_UINT16{TWTY_FIX32} : TW_UINT16{TWTY_UINT16}, value};
    memory.unlock(asked.hContainer);
    return TWRC_SUCCESS;
}

Source::Answer Source::give_list(TW_CAPABILITY& asked) const {
    const bool jpeg = is("compression", "jpeg");
    asked.ConType = TWON_ENUMERATION;
    asked.hContainer = memory.allocate(offsetof(TW_ENUMERATION, ItemList) + 4);
    auto* list = static_cast<TW_ENUMERATION*>(memory.lock(asked.hContainer));
    list->ItemType = TWTY_UINT16;
    list->NumItems = is("nonsense", "container") ? 0xfffffff0u : jpeg ? 2 : 1;
    const TW_UINT16 items[2] = {TWCP_NONE, jpeg ? TWCP_JPEG : TWCP_NONE};
    std::memcpy(list->ItemList, items, sizeof items);
    memory.unlock(asked.hContainer);
    return TWRC_SUCCESS;
}

Source::Answer Source::set_capability(const TW_CAPABILITY& wish) {
    const auto* told = static_cast<const TW_ONEVALUE*>(memory.lock(wish.hContainer));
    if (told == nullptr)
        return fail(TWCC_BADVALUE);
    const TW_ONEVALUE one = *told;
    memory.unlock(wish.hContainer);
    if (wish.ConType != TWON_ONEVALUE)
        return fail(TWCC_BADVALUE);
    const TW_UINT32 value = one.Item & 0xffff;
    const std::string ways = text(section_, "transfers", "native,memory");
    const char* way = value == TWSX_MEMORY ? "memory" : "native";
    if (wish.Cap == ICAP_XFERMECH && ways.find(way) == std::string::npos)
        return fail(TWCC_BADVALUE);
    if (wish.Cap == ICAP_COMPRESSION && value == TWCP_JPEG && !is("compression", "jpeg"))
        return fail(TWCC_BADVALUE);
    settings_[wish.Cap] = value;
    char line[80];
    std::snprintf(line, sizeof line, " set %04x to %u", wish.Cap, static_cast<unsigned>(value));
    note(section_ + line);
    return TWRC_SUCCESS;
}

Source::Answer Source::enable(const TW_USERINTERFACE& interface) {
    note(section_ + (interface.ShowUI != 0 ? " enable with its window" : " enable"));
    mishap_at(section_, "enable");
    if (state_ != 4)
        return fail(TWCC_SEQERROR);
    if (const Answer told = fail_if_told("enable"))
        return told;
    if (is("answer", "cancel_at_once"))
        return TWRC_CANCEL;
    parent_ = static_cast<HWND>(interface.hParent);
    WNDCLASSA shape{};
    shape.lpfnWndProc = on_message;
    shape.lpszClassName = "FolidexVirtualScanner";
    RegisterClassA(&shape);
    const bool shown = say("window") != 0;
    window_ = CreateWindowExA(0, shape.lpszClassName, section_.c_str(), WS_OVERLAPPEDWINDOW, 60, 60,
                              320, 150, parent_, nullptr, nullptr, nullptr);
    if (window_ == nullptr)
        return fail(TWCC_OPERATIONERROR);
    SetWindowLongPtrA(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    if (shown) {
        CreateWindowExA(0, "BUTTON", "Scan", WS_CHILD | WS_VISIBLE | BS_DEFPUSHBUTTON, 20, 50, 120,
                        36, window_, reinterpret_cast<HMENU>(IDOK), nullptr, nullptr);
        CreateWindowExA(0, "BUTTON", "Cancel", WS_CHILD | WS_VISIBLE, 160, 50, 120, 36, window_,
                        reinterpret_cast<HMENU>(IDCANCEL), nullptr, nullptr);
        // Not before its buttons are there, because who sees it presses them at once.
        ShowWindow(window_, SW_SHOW);
        SetForegroundWindow(window_);
    }
    if (interface.ModalUI != 0)
        EnableWindow(parent_, FALSE);
    pages_ = read_pages(text(section_, "pages", "rgb100@60x40"));
    page_ = 0;
    trouble_over_ = false;
    state_ = 5;
    if (say("ready_at_once") != 0)
        act("scan");
    else if (!text(section_, "answer", shown ? "" : "scan").empty())
        SetTimer(window_, kReadyTimer, static_cast<UINT>(say("ready_ms", 10)), nullptr);
    return TWRC_SUCCESS;
}

Source::Answer Source::disable() {
    note(section_ + " disable");
    mishap_at(section_, "disable");
    if (state_ != 5)
        return fail(TWCC_SEQERROR);
    EnableWindow(parent_, TRUE);
    DestroyWindow(window_);
    window_ = nullptr;
    state_ = 4;
    return TWRC_SUCCESS;
}

LRESULT CALLBACK Source::on_message(HWND window, UINT message, WPARAM first, LPARAM second) {
    auto* source = reinterpret_cast<Source*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (source != nullptr && message == WM_TIMER && first == kReadyTimer) {
        KillTimer(window, kReadyTimer);
        source->act(text(source->section_, "answer", "scan"));
        return 0;
    }
    if (source != nullptr && (message == WM_COMMAND || message == WM_CLOSE)) {
        source->act(message == WM_COMMAND && LOWORD(first) == IDOK ? "scan" : "cancel");
        return 0;
    }
    return DefWindowProcA(window, message, first, second);
}

void Source::act(const std::string& what) {
    mishap_at(section_, "window");
    if (what == "cancel" || (what == "scan" && page_ >= pages_.size())) {
        tell(MSG_CLOSEDSREQ);
    } else if (what == "scan" && state_ == 5) {
        state_ = 6;
        row_ = 0;
        tell(MSG_XFERREADY);
    }
}

void Source::tell(TW_UINT16 message) {
    message_ = message;
    const std::string way = text(section_, "notify", "call");
    const bool calls = call_manager && identity_.ProtocolMajor >= 2 && way != "event";
    if (!calls || way == "both")
        PostMessageA(window_, kNews, 0, 0);
    if (calls && way == "thread")
        CloseHandle(CreateThread(nullptr, 0, tell_from_thread, this, 0, nullptr));
    else if (calls)
        call_manager(message);
}

DWORD WINAPI Source::tell_from_thread(void* source) {
    auto* self = static_cast<Source*>(source);
    self->call_manager(self->message_);
    return 0;
}

Source::Answer Source::event(TW_EVENT& event) {
    auto* message = static_cast<MSG*>(event.pEvent);
    event.TWMessage = MSG_NULL;
    if (window_ == nullptr || (message->hwnd != window_ && !IsChild(window_, message->hwnd)))
        return TWRC_NOTDSEVENT;
    if (message->message == kNews)
        event.TWMessage = message_;
    else if (!IsDialogMessageA(window_, message)) {
        TranslateMessage(message);
        DispatchMessageA(message);
    }
    return TWRC_DSEVENT;
}

} // namespace folidex::scripted
