// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/crash_report.h"
#include "capture/scanner/twain/frame_pipe.h"
#include "capture/scanner/twain/options.h"
#include "capture/scanner/twain/scan.h"
#include "capture/scanner/twain/twain_codes.h"

#include <new>
#include <objbase.h>
#include <shellapi.h>

namespace folidex::twain {

namespace {

constexpr int kBadCommandLine = 2;

/// The program's name aside.
std::vector<std::string> arguments() {
    int count = 0;
    wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> list;
    for (int i = 1; i < count; ++i) {
        const int bytes =
            WideCharToMultiByte(CP_UTF8, 0, wide[i], -1, nullptr, 0, nullptr, nullptr);
        std::string text(static_cast<std::size_t>(bytes), '\0');
        WideCharToMultiByte(CP_UTF8, 0, wide[i], -1, text.data(), bytes, nullptr, nullptr);
        text.resize(text.size() - 1);
        list.push_back(std::move(text));
    }
    LocalFree(wide);
    return list;
}

void list_sources(Manager& manager) {
    std::uint32_t index = 0;
    for (const TW_IDENTITY& source : manager.sources()) {
        const std::string name = source_name(source);
        const SourceEntry entry{index++};
        FramePipe::of_process().send(Kind::kSource, &entry, sizeof entry, name.data(), name.size());
    }
}

/// What to do with the open source; nothing when the program is gone or thinks better of it.
Outcome wait_for_acquire(const MessageLoop& loop, Commands& commands) {
    FramePipe::of_process().send(Kind::kOpened);
    for (;;) {
        if (commands.is_cancelled())
            return Outcome::kCancelled;
        const char command = commands.take();
        if (command == static_cast<char>(Command::kClose))
            return Outcome::kCancelled;
        if (command == static_cast<char>(Command::kAcquire))
            return Outcome::kGood;
        loop.step({});
    }
}

Ending scan(Session& session, const MessageLoop& loop, Commands& commands, const Options& options) {
    Ending ending{};
    Scan scan(session, loop, commands, options);
    try {
        session.open(options.index, options.name);
        ending.outcome = wait_for_acquire(loop, commands);
        if (ending.outcome == Outcome::kGood)
            ending.outcome = scan.run();
        ending.pages = scan.pages();
    } catch (const Failure& failure) {
        ending = failure.ending(scan.pages());
    } catch (const std::bad_alloc&) {
        ending = Failure{Outcome::kFailed, Step::kTransfer, TWRC_FAILURE, TWCC_LOWMEMORY}.ending(
            scan.pages());
    }
    return ending;
}

void work(const Options& options) {
    FramePipe& pipe = FramePipe::of_process();
    const MessageLoop loop(reinterpret_cast<HWND>(static_cast<std::uintptr_t>(options.owner)));
    // Its thread outlives this function.
    static Commands commands;
    commands.listen(pipe.input(), loop.window());
    Manager manager;
    manager.open(loop.window());
    if (!options.scan) {
        list_sources(manager);
        pipe.send_last(Ending{});
        return;
    }
    Session session(manager);
    // The pages are told before the source is released, because drivers hang and crash on the way
    // out, too.
    pipe.send_last(scan(session, loop, commands, options));
}

} // namespace

} // namespace folidex::twain

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
    using namespace folidex::twain;
    FramePipe& pipe = FramePipe::of_process();
    report_crashes();
    // Drivers take it for granted, as every program with windows has done it.
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const auto options = read_options(arguments());
    if (!options)
        return kBadCommandLine;
    try {
        work(*options);
    } catch (const Failure& failure) {
        pipe.send_last(failure.ending(0));
    }
    // Returning would end the thread that watches over the way down before it calls on drivers that
    // are still loaded, of which one that hangs would stay for good.
    TerminateProcess(GetCurrentProcess(), 0);
    return 0;
}
