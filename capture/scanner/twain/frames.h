// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>

/// What the program and its scanning helper say to each other. Drivers come in two word sizes and
/// crash; so they run in small helper programs, folidex-twain64.exe and folidex-twain32.exe:
///
///     folidex-twain64.exe list
///     folidex-twain64.exe scan --index K --name UTF-8-NAME --owner HWND --wishes BITS [--idle MS]
///
/// The helper writes frames to its standard output, each a Frame and its payload, little endian,
/// without padding; the program writes single bytes (Command) to its standard input. The end of
/// that input means that the program is gone: as kCancel, and the helper ends. The helper's own
/// window belongs to --owner (a window handle in decimal, 0 for none). A source that answers with
/// nothing for --idle milliseconds, usually a minute, is given up.
namespace folidex::twain {

enum class Kind : char {
    kSource = 'S',   ///< list: SourceEntry and the source's name in UTF-8
    kOpened = 'O',   ///< scan: the source is open (state 4); the helper waits for a command
    kWindow = 'W',   ///< the source's own window is up (state 5): now the user decides
    kAlive = 'H',    ///< every second while the helper's user-interface thread runs
    kReady = 'A',    ///< the source has a page (state 6); drivers may take their time to give it
    kPage = 'B',     ///< PageHeader; a page begins
    kRows = 'R',     ///< whole packed rows of the page, or the next bytes of its JPEG
    kPageEnd = 'E',  ///< PageEnd; the page is whole
    kPageDrop = 'X', ///< the page is no page: forget its rows
    kTrouble = 'T',  ///< Ending; paper in the way after pages: answer kGoOn, kKeep or kCancel
    kDone = 'D',     ///< Ending; the last frame. The source is released after it: give it a while
};

enum class Command : char {
    kAcquire = 'a',
    kCancel = 'c', ///< at any time; an unfinished page is dropped
    kGoOn = 'g',
    kKeep = 'k',
    kClose = 'q', ///< instead of kAcquire: close the source and end
};

/// Bits of --wishes: what the capture form asked for.
enum Wish : std::uint32_t {
    kFeeder = 1,
    kAutoFeed = 2,
    kProgress = 4,
    kDuplex = 8,
    kUntilEmpty = 16,
};

enum class Outcome : std::uint8_t {
    kGood = 0,      ///< list or scan came to its end
    kCancelled = 1, ///< by the user, in the source's window or with kCancel
    kFailed = 2,    ///< at `step`, with the return and condition codes
    kNotOpened = 3, ///< the manager would not open the source
    kNoManager = 4, ///< there is no source manager of this word size
    kCrashed = 5,   ///< the driver crashed; `detail` is the exception code
};

/// What was being done when an Ending came about.
enum class Step : std::uint8_t {
    kNone = 0,
    kLoadManager,
    kOpenManager,
    kFindSource,
    kOpenSource,
    kEnable,
    kPageInfo,
    kTransfer,
    kBadPage, ///< the driver's sizes do not agree with each other
    kEndPage,
    kForeignPage, ///< a compression or a kind of pixel that nobody asked for; `detail` is its
                  ///< number
};

enum class PageKind : std::uint16_t {
    kBilevel = 0, ///< 1 bit a pixel, most significant bit first, 1 is black
    kGray = 1,    ///< 1 byte a pixel, 0 is black
    kRgb = 2,     ///< 3 bytes a pixel: red, green, blue
    kJpeg = 3,    ///< kRows carries the bytes of one JPEG file as the source made it
};

#pragma pack(push, 1)
struct Frame {
    Kind kind;
    std::uint8_t zero[3];
    std::uint32_t length; ///< of the payload in bytes, at most kLongestPayload
};
struct SourceEntry {
    std::uint32_t index; ///< in the manager's list, from 0
};
struct PageHeader {
    PageKind kind;
    std::uint16_t zero;
    std::int32_t width;  ///< pixels
    std::int32_t height; ///< rows; 0 when only the end will tell
    double x_resolution; ///< pixels an inch; 0 when unknown
    double y_resolution;
};
struct PageEnd {
    std::uint32_t rows; ///< that came; 0 for a JPEG
};
struct Ending {
    Outcome outcome;
    Step step;
    std::uint16_t return_code;    ///< TWRC_..., TWAIN 2.5 chapter 11
    std::uint16_t condition_code; ///< TWCC_...
    std::uint16_t zero;
    std::uint32_t pages;  ///< whole pages sent so far
    std::uint32_t detail; ///< with kCrashed and kForeignPage
};
#pragma pack(pop)

static_assert(sizeof(Frame) == 8 && sizeof(PageHeader) == 28 && sizeof(Ending) == 16);

inline constexpr std::uint32_t kLongestPayload = 4u << 20;

} // namespace folidex::twain
