// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// A scanning helper without a scanner: it plays a script, line by line (scripted_twain.h).

#include "capture/scanner/twain/frames.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <process.h>
#else
#include <unistd.h>
#endif

using namespace folidex::twain;

namespace {

constexpr std::chrono::milliseconds kLook{5};
/// A helper that hangs is killed by whoever tests that; should that fail, it goes by itself, later
/// than anybody waits for it who is to give up.
constexpr std::chrono::seconds kLongestHang{90};
constexpr char kInputEnded = '\0';
/// As many as a helper with a driver sends in one frame, more or less.
constexpr std::uint32_t kRowsAtATime = 30;

std::filesystem::path g_folder;
/// "scan64", as it stands in front of all that this helper notes.
std::string g_task;
/// Of this process alone: several helpers run side by side.
std::filesystem::path g_log;
std::mutex g_mutex;
std::deque<char> g_commands;
bool g_deaf = false;
/// The gate at which its way down is held up; none when empty.
std::string g_parking;

std::uint32_t g_pages = 0;
std::uint32_t g_rows = 0;
PageHeader g_page{};

void note(const std::string& what) {
    const std::lock_guard lock(g_mutex);
    std::ofstream(g_log, std::ios::app) << g_task + what + '\n' << std::flush;
}

void write(const void* bytes, std::size_t size) {
    std::fwrite(bytes, 1, size, stdout);
    std::fflush(stdout);
}

void frame(Kind kind, const std::vector<char>& payload = {}) {
    const Frame head{kind, {0, 0, 0}, static_cast<std::uint32_t>(payload.size())};
    std::vector<char> bytes(sizeof head + payload.size());
    std::memcpy(bytes.data(), &head, sizeof head);
    std::copy(payload.begin(), payload.end(), bytes.begin() + sizeof head);
    write(bytes.data(), bytes.size());
}

template <class T> void frame(Kind kind, const T& payload) {
    std::vector<char> bytes(sizeof payload);
    std::memcpy(bytes.data(), &payload, sizeof payload);
    frame(kind, bytes);
}

[[noreturn]] void leave(int code) {
    note(": left with " + std::to_string(code));
    std::_Exit(code);
}

/// Waits for a gate that the test opens; looks at something else now and then.
void wait_for_gate(const std::string& name, const std::function<void()>& meanwhile) {
    note(": at " + name);
    const auto end = std::chrono::steady_clock::now() + kLongestHang;
    while (!std::filesystem::exists(g_folder / name)) {
        if (std::chrono::steady_clock::now() > end)
            leave(9);
        meanwhile();
        std::this_thread::sleep_for(kLook);
    }
}

/// As it should be, once the scanner is put away.
[[noreturn]] void go_down() {
    if (!g_parking.empty())
        wait_for_gate(g_parking, [] {});
    leave(0);
}

void done(Outcome outcome, Step step = Step::kNone, std::uint16_t return_code = 0,
          std::uint16_t condition_code = 0, std::uint32_t detail = 0) {
    frame(Kind::kDone, Ending{outcome, step, return_code, condition_code, 0, g_pages, detail});
}

void read_commands() {
    for (;;) {
        const int got = std::getchar();
        const char command = got == EOF ? kInputEnded : static_cast<char>(got);
        note(got == EOF ? ": input ended" : std::string(": command ") + command);
        {
            const std::lock_guard lock(g_mutex);
            g_commands.push_back(command);
        }
        if (got == EOF)
            return;
    }
}

bool is_an_end(char command) {
    return command == kInputEnded || command == static_cast<char>(Command::kClose) ||
           command == static_cast<char>(Command::kCancel);
}

[[noreturn]] void end_as_told() {
    done(Outcome::kCancelled);
    go_down();
}

/// Being told to end ends a helper that is not deaf. All other commands stay for whoever waits
/// for them: they may come long before that.
void heed_an_end() {
    {
        const std::lock_guard lock(g_mutex);
        if (g_deaf || std::none_of(g_commands.begin(), g_commands.end(), is_an_end))
            return;
    }
    end_as_told();
}

char wait_for_command() {
    for (;;) {
        {
            const std::lock_guard lock(g_mutex);
            if (!g_deaf && !g_commands.empty()) {
                const char next = g_commands.front();
                if (!is_an_end(next)) {
                    g_commands.pop_front();
                    return next;
                }
            }
        }
        heed_an_end();
        std::this_thread::sleep_for(kLook);
    }
}

void hang() {
    g_deaf = true;
    note(": hangs");
    std::this_thread::sleep_for(kLongestHang);
    leave(9);
}

PageKind kind_of(const std::string& word) {
    if (word == "bilevel")
        return PageKind::kBilevel;
    if (word == "gray")
        return PageKind::kGray;
    if (word == "rgb")
        return PageKind::kRgb;
    if (word == "jpeg")
        return PageKind::kJpeg;
    return static_cast<PageKind>(std::stoi(word));
}

void begin_page(std::istringstream& words) {
    std::string kind;
    g_page = {};
    g_rows = 0;
    words >> kind >> g_page.width >> g_page.height >> g_page.x_resolution >> g_page.y_resolution;
    g_page.kind = kind_of(kind);
    frame(Kind::kPage, g_page);
}

void send_rows(std::uint32_t count) {
    const auto width = static_cast<std::size_t>(g_page.width);
    const std::size_t row = g_page.kind == PageKind::kBilevel ? (width + 7) / 8
                            : g_page.kind == PageKind::kRgb   ? width * 3
                                                              : width;
    for (std::uint32_t sent = 0; sent < count; sent += kRowsAtATime) {
        const std::size_t part = std::min(kRowsAtATime, count - sent);
        frame(Kind::kRows, std::vector<char>(row * part, static_cast<char>(16 * (g_pages + 1))));
    }
    g_rows += count;
}

void send_file(const std::string& name) {
    std::ifstream file(g_folder / name, std::ios::binary);
    std::vector<char> part(700);
    while (file.read(part.data(), static_cast<std::streamsize>(part.size())), file.gcount() > 0)
        frame(Kind::kRows, std::vector<char>(part.begin(), part.begin() + file.gcount()));
}

void send_raw(std::istringstream& words) {
    std::vector<char> bytes;
    for (std::string byte; words >> byte;)
        bytes.push_back(static_cast<char>(std::stoi(byte, nullptr, 16)));
    write(bytes.data(), bytes.size());
}

void send_source(std::istringstream& words) {
    SourceEntry entry{};
    std::string name;
    words >> entry.index >> std::ws;
    std::getline(words, name);
    std::vector<char> payload(sizeof entry + name.size());
    std::memcpy(payload.data(), &entry, sizeof entry);
    name.copy(payload.data() + sizeof entry, name.size());
    frame(Kind::kSource, payload);
}

void end_page(std::istringstream& words) {
    std::uint32_t rows = g_rows;
    words >> rows;
    frame(Kind::kPageEnd, PageEnd{rows});
    ++g_pages;
}

void trouble(std::istringstream& words) {
    Ending ending{};
    words >> ending.return_code >> ending.condition_code;
    ending.outcome = Outcome::kFailed;
    ending.step = Step::kTransfer;
    ending.pages = g_pages;
    frame(Kind::kTrouble, ending);
    std::string and_then;
    if (words >> and_then && and_then == "exit")
        leave(3);
    if (wait_for_command() == static_cast<char>(Command::kKeep)) {
        done(Outcome::kGood);
        go_down();
    }
}

void finish(std::istringstream& words) {
    int outcome = 0;
    int step = 0;
    std::uint16_t return_code = 0;
    std::uint16_t condition_code = 0;
    std::uint32_t detail = 0;
    words >> outcome >> step >> return_code >> condition_code >> detail;
    done(static_cast<Outcome>(outcome), static_cast<Step>(step), return_code, condition_code,
         detail);
}

void play(const std::string& line) {
    std::istringstream words(line);
    std::string what;
    words >> what;
    std::string name;
    std::uint32_t number = 0;
    if (what == "source")
        send_source(words);
    else if (what == "opened")
        frame(Kind::kOpened);
    else if (what == "await")
        wait_for_command();
    else if (what == "window")
        frame(Kind::kWindow);
    else if (what == "ready")
        frame(Kind::kReady);
    else if (what == "page")
        begin_page(words);
    else if (what == "rows" && words >> number)
        send_rows(number);
    else if (what == "file" && words >> name)
        send_file(name);
    else if (what == "end")
        end_page(words);
    else if (what == "drop")
        frame(Kind::kPageDrop);
    else if (what == "trouble")
        trouble(words);
    else if (what == "pages")
        words >> g_pages;
    else if (what == "done")
        finish(words);
    else if (what == "gate" && words >> name)
        wait_for_gate(name, heed_an_end);
    else if (what == "alive" && words >> name)
        wait_for_gate(name, [] {
            frame(Kind::kAlive);
            heed_an_end();
        });
    else if (what == "busy" && words >> name)
        wait_for_gate(name, [] {});
    else if (what == "parks")
        words >> g_parking;
    else if (what == "raw")
        send_raw(words);
    else if (what == "deaf")
        g_deaf = true;
    else if (what == "hang")
        hang();
    else if (what == "exit" && words >> number)
        leave(static_cast<int>(number));
    else
        leave(99);
}

/// All of it before any of it is played: the test may write the next one meanwhile.
std::vector<std::string> read_script() {
    std::ifstream script(g_folder / g_task);
    std::vector<std::string> lines;
    for (std::string line; std::getline(script, line);)
        lines.push_back(line);
    return lines;
}

std::string process_number() {
#ifdef _WIN32
    return std::to_string(_getpid());
#else
    return std::to_string(getpid());
#endif
}

} // namespace

/// scripted_helper FOLDER BITS list|scan ...
int main(int argc, char** argv) {
    if (argc < 4)
        return 98;
#ifdef _WIN32
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
#endif
    g_folder = argv[1];
    g_task = std::string(argv[3]) + argv[2];
    g_log = g_folder / ("log " + process_number());
    const std::vector<std::string> script = read_script();
    std::string arguments;
    for (int k = 4; k < argc; ++k)
        arguments += std::string(" ") + argv[k];
    note(arguments);
    std::thread(read_commands).detach();
    if (script.empty()) {
        done(Outcome::kNoManager);
        leave(0);
    }
    for (const std::string& line : script) {
        play(line);
        heed_an_end();
    }
    go_down();
}
