// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/message_loop.h"

#include "capture/scanner/twain/failure.h"
#include "capture/scanner/twain/frame_pipe.h"
#include "capture/scanner/twain/twain_codes.h"

namespace folidex::twain {

namespace {

constexpr wchar_t kClassName[] = L"FolidexScanningHelper";
constexpr UINT_PTR kAliveTimer = 1;
constexpr UINT kAliveEvery = 1000; // milliseconds
constexpr UINT kWakeMessage = WM_APP;
/// A window that posts to itself without end must not keep pages from coming.
constexpr int kMostAtOnce = 200;

LRESULT CALLBACK on_message(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (message == WM_TIMER && first == kAliveTimer) {
        FramePipe::of_process().send(Kind::kAlive);
        return 0;
    }
    return DefWindowProcW(window, message, first, second);
}

void deal_with(MSG& message, const MessageLoop::Offer& offer) {
    if (offer && offer(message))
        return;
    TranslateMessage(&message);
    DispatchMessageW(&message);
}

} // namespace

MessageLoop::MessageLoop(HWND owner) {
    WNDCLASSW shape{};
    shape.lpfnWndProc = on_message;
    shape.hInstance = GetModuleHandleW(nullptr);
    shape.lpszClassName = kClassName;
    RegisterClassW(&shape);
    // The program's window may have gone since; then the helper's stands alone.
    // Never shown, it lies over the program's window, because sources centre theirs on it.
    for (const HWND above : {IsWindow(owner) ? owner : nullptr, HWND{nullptr}}) {
        RECT place{};
        GetWindowRect(above != nullptr ? above : GetDesktopWindow(), &place);
        window_ = CreateWindowExW(WS_EX_TOOLWINDOW, kClassName, L"Folidex", WS_POPUP, place.left,
                                  place.top, place.right - place.left, place.bottom - place.top,
                                  above, nullptr, shape.hInstance, nullptr);
        if (window_ != nullptr)
            break;
    }
    if (window_ == nullptr)
        throw Failure{Outcome::kFailed, Step::kLoadManager, TWRC_FAILURE, TWCC_LOWMEMORY};
    SetTimer(window_, kAliveTimer, kAliveEvery, nullptr);
}

MessageLoop::~MessageLoop() {
    DestroyWindow(window_);
}

void MessageLoop::step(const Offer& offer) const {
    MSG message{};
    if (GetMessageW(&message, nullptr, 0, 0) > 0)
        deal_with(message, offer);
}

void MessageLoop::drain(const Offer& offer) const {
    MSG message{};
    for (int dealt = 0; dealt < kMostAtOnce; ++dealt) {
        if (!PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            return;
        deal_with(message, offer);
    }
}

void MessageLoop::wake(HWND window) {
    PostMessageW(window, kWakeMessage, 0, 0);
}

} // namespace folidex::twain
