// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/frame_pipe.h"

#include <cstring>
#include <fcntl.h>
#include <io.h>

namespace folidex::twain {

namespace {

struct LastFrame {
    Frame frame;
    Ending ending;
};

LastFrame last_frame(const Ending& ending) {
    return {{Kind::kDone, {}, sizeof ending}, ending};
}

/// A handle of our own that no child process inherits. The standard one is left to whoever closes
/// it: the C runtime does, when its file becomes NUL.
HANDLE taken(DWORD which) {
    const HANDLE standard = GetStdHandle(which);
    SetHandleInformation(standard, HANDLE_FLAG_INHERIT, 0);
    HANDLE own = nullptr;
    const HANDLE process = GetCurrentProcess();
    if (!DuplicateHandle(process, standard, process, &own, 0, FALSE, DUPLICATE_SAME_ACCESS))
        return nullptr;
    return own;
}

/// Windows' own handle and the C runtime's file become NUL.
void put_nul(DWORD which, int file) {
    const bool in = which == STD_INPUT_HANDLE;
    const HANDLE nul =
        CreateFileW(L"NUL", in ? GENERIC_READ : GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                    nullptr, OPEN_EXISTING, 0, nullptr);
    SetStdHandle(which, nul);
    const int opened = _open("NUL", in ? _O_RDONLY : _O_WRONLY);
    if (opened >= 0 && opened != file) {
        _dup2(opened, file);
        _close(opened);
    }
}

} // namespace

FramePipe& FramePipe::of_process() {
    static FramePipe pipe;
    return pipe;
}

FramePipe::FramePipe() {
    input_ = taken(STD_INPUT_HANDLE);
    output_ = taken(STD_OUTPUT_HANDLE);
    // A driver's runtime that looks at the input would wait behind the thread that reads it, and
    // nobody empties the pipe of error messages.
    put_nul(STD_INPUT_HANDLE, 0);
    put_nul(STD_OUTPUT_HANDLE, 1);
    put_nul(STD_ERROR_HANDLE, 2);
}

bool FramePipe::send(Kind kind, const void* head, std::size_t head_bytes, const void* tail,
                     std::size_t tail_bytes) noexcept {
    const Frame frame{kind, {}, static_cast<std::uint32_t>(head_bytes + tail_bytes)};
    AcquireSRWLockExclusive(&lock_);
    if (!ended_) {
        frame_.resize(sizeof frame + frame.length);
        std::memcpy(frame_.data(), &frame, sizeof frame);
        if (head_bytes > 0)
            std::memcpy(frame_.data() + sizeof frame, head, head_bytes);
        if (tail_bytes > 0)
            std::memcpy(frame_.data() + sizeof frame + head_bytes, tail, tail_bytes);
        if (!write(frame_.data(), frame_.size()))
            broken_ = true;
    }
    ReleaseSRWLockExclusive(&lock_);
    return !broken_;
}

void FramePipe::send_last(const Ending& ending) noexcept {
    send(Kind::kDone, ending);
    AcquireSRWLockExclusive(&lock_);
    ended_ = true;
    ReleaseSRWLockExclusive(&lock_);
}

void FramePipe::send_last_words(const Ending& ending) noexcept {
    constexpr int kPatience = 2000; // milliseconds
    bool mine = false;
    for (int waited = 0; !mine && waited < kPatience; ++waited) {
        mine = TryAcquireSRWLockExclusive(&lock_) != FALSE;
        if (!mine)
            Sleep(1);
    }
    if (!mine || ended_)
        return;
    const LastFrame last = last_frame(ending);
    write(&last, sizeof last);
    ended_ = true;
    // The lock is kept: the process ends now.
}

bool FramePipe::write(const void* data, std::size_t bytes) noexcept {
    const auto* at = static_cast<const char*>(data);
    while (bytes > 0) {
        DWORD written = 0;
        if (!WriteFile(output_, at, static_cast<DWORD>(bytes), &written, nullptr))
            return false;
        at += written;
        bytes -= written;
    }
    return true;
}

} // namespace folidex::twain
