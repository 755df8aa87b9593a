// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain_words.h"

#include "capture/scanner/scanner_error.h"

#include <QDir>
#include <algorithm>
#include <array>

namespace folidex {

namespace {

using twain::Outcome;
using twain::Step;

constexpr const char* kCheckDevice = "Check that it is switched on and connected, then scan again.";
constexpr const char* kClearPath = "Clear the paper path and close the cover, then scan again.";
constexpr const char* kFillFeeder = "Put the pages into the feeder, then scan again.";
constexpr const char* kTakeApart = "Take the sheets apart, put them back into the feeder, then "
                                   "scan again.";
constexpr const char* kFlatten = "Flatten the sheet or scan a copy of it, then scan again.";
constexpr const char* kOtherSettings = "Choose other settings in the scanner's own window, then "
                                       "scan again.";
constexpr const char* kFreeMemory = "Close other programs, then scan again.";
constexpr const char* kFreeDisk = "Make room on the disk, then scan again.";
constexpr const char* kWait = "Another program or another person is using it. Wait until it is "
                              "free, then scan again.";
constexpr const char* kUnlock = "Release its lock, then scan again.";
constexpr const char* kAskForRights = "Ask whoever looks after this computer for the right to use "
                                      "the scanner, or choose another one.";
constexpr const char* kLookAgain = "Close this window and open it again to see the scanners that "
                                   "are there. If it is missing, install its driver again.";
constexpr const char* kDriver = "Scan again. If it happens again, switch the scanner off and on, "
                                "and ask its maker for a newer driver.";

struct Meaning {
    std::uint16_t code;
    int number;
    const char* words;
    const char* advice;
};

constexpr std::uint16_t kSuccess = 0;
constexpr std::uint16_t kFailure = 1;
constexpr std::uint16_t kCheckStatus = 2;
/// From here on codes belong to the makers of drivers.
constexpr std::uint16_t kMakersOwn = 0x8000;

constexpr std::array kConditions{
    Meaning{0, kDeviceIoError, "The scan failed, and no reason was given", kCheckDevice},
    Meaning{1, kDeviceIoError, "A failure of an unknown cause", kCheckDevice},
    Meaning{2, kOutOfMemory, "There is not enough memory for the scan", kFreeMemory},
    Meaning{3, kDeviceUnavailable, "Its driver was not found", kLookAgain},
    Meaning{4, kDeviceUnavailable, "It is in use by as many programs as it can serve", kWait},
    Meaning{5, kDeviceIoError, "Its driver met a failure that it tells of itself", kCheckDevice},
    Meaning{6, kDeviceIoError, "Its driver does not know a setting", kDriver},
    Meaning{9, kDeviceIoError, "Its driver does not know what it was asked for", kDriver},
    Meaning{10, kDeviceIoError, "Its driver takes a value for one that cannot be", kDriver},
    Meaning{11, kDeviceIoError, "Its driver was asked out of turn", kDriver},
    Meaning{12, kDeviceUnavailable, "The source manager does not know it any more", kLookAgain},
    Meaning{13, kDeviceIoError, "It does not support a setting", kOtherSettings},
    Meaning{14, kDeviceIoError, "A setting cannot be used in this way", kOtherSettings},
    Meaning{15, kDeviceIoError, "A setting depends on another one that rules it out",
            kOtherSettings},
    Meaning{16, kPermissionDenied, "Access is denied", kAskForRights},
    Meaning{17, kDeviceIoError, "A file that its driver wants to write is there already",
            kOtherSettings},
    Meaning{18, kDeviceIoError, "A file that its driver needs was not found", kDriver},
    Meaning{19, kDeviceIoError, "A folder that its driver wants to remove is not empty", kDriver},
    Meaning{20, kDeviceIoError, "Paper is jammed in the feeder", kClearPath},
    Meaning{21, kDeviceIoError, "The feeder took several sheets at once", kTakeApart},
    Meaning{22, kDiskFull, "Its driver could not write a file", kFreeDisk},
    Meaning{23, kDeviceUnavailable, "It is switched off or not connected", kCheckDevice},
    Meaning{24, kDeviceIoError, "A cover is open", kClearPath},
    Meaning{25, kDeviceIoError, "A sheet has a damaged corner", kFlatten},
    Meaning{26, kDeviceIoError, "A page could not be brought into focus", kFlatten},
    Meaning{27, kDeviceIoError, "A page is too light", kOtherSettings},
    Meaning{28, kDeviceIoError, "A page is too dark", kOtherSettings},
    Meaning{29, kDeviceIoError, "There is no paper in the feeder", kFillFeeder},
};

/// Return codes that say something of their own, where no condition code says more.
constexpr std::array kReturns{
    Meaning{2, kDeviceIoError, "It could not do exactly what was asked of it", kOtherSettings},
    Meaning{3, kDeviceIoError, "The scan was cancelled in its driver", kDriver},
    Meaning{4, kDeviceIoError, "Its driver answered with an event of its window", kDriver},
    Meaning{5, kDeviceIoError, "Its driver answered that an event was not its own", kDriver},
    Meaning{6, kDeviceIoError, "Its driver ended a page that had not begun", kDriver},
    Meaning{7, kDeviceUnavailable, "It is not in the list of scanners any more", kLookAgain},
    Meaning{8, kDeviceIoError, "It does not have a piece of information", kDriver},
    Meaning{9, kDeviceIoError, "Its driver has no data yet", kDriver},
    Meaning{10, kDeviceUnavailable, "It is busy", kWait},
    Meaning{11, kDeviceUnavailable, "It is locked", kUnlock},
};

constexpr Meaning kMaker{kMakersOwn, kDeviceIoError, "A failure that only its maker knows",
                         kDriver};
constexpr Meaning kUnknown{0, kDeviceIoError, "A failure that TWAIN does not know", kDriver};

const Meaning* find(const auto& table, std::uint16_t code) {
    const auto found = std::find_if(table.begin(), table.end(),
                                    [code](const Meaning& entry) { return entry.code == code; });
    return found == table.end() ? nullptr : &*found;
}

const Meaning& meaning(std::uint16_t return_code, std::uint16_t condition_code) {
    const bool telling = return_code != kSuccess && return_code != kFailure;
    if (telling && (return_code != kCheckStatus || condition_code == kSuccess)) {
        if (const Meaning* known = find(kReturns, return_code))
            return *known;
        if (condition_code == kSuccess)
            return return_code >= kMakersOwn ? kMaker : kUnknown;
    }
    if (const Meaning* known = find(kConditions, condition_code))
        return *known;
    return condition_code >= kMakersOwn ? kMaker : kUnknown;
}

/// What a step fails with when the codes say nothing.
const Meaning* meaning(Step step) {
    static constexpr Meaning kSizes{0, kDeviceIoError,
                                    "The sizes of a page do not agree with each other", kDriver};
    static constexpr Meaning kForm{0, kDeviceIoError,
                                   "It delivers pages in a form that Folidex does not know",
                                   kOtherSettings};
    switch (step) {
    case Step::kBadPage:
        return &kSizes;
    case Step::kForeignPage:
        return &kForm;
    default:
        return nullptr;
    }
}

QString doing(Step step) {
    switch (step) {
    case Step::kNone:
        return QStringLiteral("scanning");
    case Step::kLoadManager:
        return QStringLiteral("loading the source manager");
    case Step::kOpenManager:
        return QStringLiteral("opening the source manager");
    case Step::kFindSource:
        return QStringLiteral("finding the source");
    case Step::kOpenSource:
        return QStringLiteral("opening the source");
    case Step::kEnable:
        return QStringLiteral("starting the scan");
    case Step::kPageInfo:
        return QStringLiteral("asking about a page");
    case Step::kTransfer:
        return QStringLiteral("scanning a page");
    case Step::kBadPage:
        return QStringLiteral("reading a page");
    case Step::kEndPage:
        return QStringLiteral("ending a page");
    case Step::kForeignPage:
        return QStringLiteral("choosing the form of a page");
    }
    return QStringLiteral("step %1").arg(static_cast<int>(step));
}

QString lost(std::uint32_t pages) {
    if (pages == 0)
        return {};
    return pages == 1 ? QStringLiteral(" The page scanned before was not kept.")
                      : QStringLiteral(" The %1 pages scanned before were not kept.").arg(pages);
}

QString hex(std::uint32_t code) {
    return QStringLiteral("%1").arg(code, 8, 16, QLatin1Char('0')).toUpper();
}

Error error_of(int number, const QString& what, const QString& advice, const QString& codes) {
    return {number, QStringLiteral("%1\r\n\r\n%2\r\n\r\n(%3)").arg(what, advice, codes)};
}

QString codes_of(const twain::Ending& ending) {
    const QString codes = QStringLiteral("TWAIN codes %1 and %2, while %3")
                              .arg(ending.return_code)
                              .arg(ending.condition_code)
                              .arg(doing(ending.step));
    return ending.detail == 0 ? codes : codes + QStringLiteral(" (%1)").arg(ending.detail);
}

Error crash_error(const QString& scanner, std::uint32_t pages, const QString& codes) {
    const QString kept = pages == 0 ? QStringLiteral(" No page was kept.") : lost(pages);
    return error_of(kDeviceIoError,
                    QStringLiteral("The driver of the scanner \"%1\" has crashed.%2 The document "
                                   "is as it was before.")
                        .arg(scanner, kept),
                    QString::fromLatin1(kDriver), codes);
}

} // namespace

QString twain_words(std::uint16_t return_code, std::uint16_t condition_code) {
    return QString::fromLatin1(meaning(return_code, condition_code).words);
}

Error twain_error(const QString& scanner, const twain::Ending& ending) {
    if (ending.outcome == Outcome::kCrashed)
        return crash_error(scanner, ending.pages,
                           QStringLiteral("Exception %1").arg(hex(ending.detail)));
    if (ending.outcome == Outcome::kNoManager)
        return error_of(kDeviceUnavailable,
                        QStringLiteral("The scanner \"%1\" cannot be used: TWAIN's source manager "
                                       "is missing on this computer.")
                            .arg(scanner),
                        QStringLiteral("Install the scanner's driver again, then scan again."),
                        QStringLiteral("No source manager"));
    const Meaning* of_step = ending.condition_code == kSuccess ? meaning(ending.step) : nullptr;
    const Meaning& what = of_step ? *of_step : meaning(ending.return_code, ending.condition_code);
    return error_of(what.number,
                    QStringLiteral("The scanner \"%1\" reports: %2.%3")
                        .arg(scanner, QString::fromLatin1(what.words), lost(ending.pages)),
                    QString::fromLatin1(what.advice), codes_of(ending));
}

Error twain_gone_error(const QString& scanner, int pages, std::uint32_t code) {
    return crash_error(scanner, static_cast<std::uint32_t>(pages),
                       QStringLiteral("Exit code %1").arg(hex(code)));
}

Error twain_out_of_step_error(const QString& scanner, const QString& details) {
    return error_of(kDeviceIoError,
                    QStringLiteral("The driver of the scanner \"%1\" delivered what cannot be "
                                   "read. No page was kept.")
                        .arg(scanner),
                    QString::fromLatin1(kDriver), details);
}

Error twain_page_error(const QString& scanner, int page, const Error& why) {
    return {why.number,
            QStringLiteral("Page %1 of the scanner \"%2\" is no good; no page was kept.\r\n\r\n%3")
                .arg(page)
                .arg(scanner, why.description)};
}

Error twain_program_error(const QString& scanner, const QString& program, const QString& reason) {
    return {kFileNotFound,
            QStringLiteral("The scanner \"%1\" cannot be used: the program %2 could not be "
                           "started (%3).\r\n\r\nInstall Folidex again, or ask whoever looks "
                           "after this computer.")
                .arg(scanner, QDir::toNativeSeparators(program), reason)};
}

} // namespace folidex
