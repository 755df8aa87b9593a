// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/sane_error.h"

namespace folidex {

namespace {

int number_of(SANE_Status status) {
    switch (status) {
    case SANE_STATUS_ACCESS_DENIED:
        return kPermissionDenied;
    case SANE_STATUS_NO_MEM:
        return kOutOfMemory;
    case SANE_STATUS_DEVICE_BUSY:
    case SANE_STATUS_INVAL:
    case SANE_STATUS_UNSUPPORTED:
        return kDeviceUnavailable;
    default:
        return kDeviceIoError;
    }
}

QString advice_for(SANE_Status status) {
    switch (status) {
    case SANE_STATUS_ACCESS_DENIED:
        return QStringLiteral("Ask whoever looks after this computer for the right to use the "
                              "scanner, or choose another one.");
    case SANE_STATUS_DEVICE_BUSY:
        return QStringLiteral("Another program or another person is using it. Wait until it is "
                              "free, then scan again.");
    case SANE_STATUS_NO_MEM:
        return QStringLiteral("Close other programs, then scan again.");
    case SANE_STATUS_JAMMED:
    case SANE_STATUS_COVER_OPEN:
        return QStringLiteral("Clear the paper path and close the cover, then scan again.");
    case SANE_STATUS_NO_DOCS:
        return QStringLiteral("Put the pages into the feeder, then scan again.");
    default:
        return QStringLiteral("Check that it is switched on and connected, then scan again.");
    }
}

} // namespace

QString sane_text(const char* text) {
    if (!text)
        return {};
    const QString utf8 = QString::fromUtf8(text);
    return utf8.contains(QChar::ReplacementCharacter) ? QString::fromLatin1(text) : utf8;
}

QString sane_words(const SaneApi& api, SANE_Status status) {
    return sane_text(api.strstatus(status));
}

Error sane_error(const SaneApi& api, SANE_Status status, const SaneWho& who) {
    Error error = scanner_error(who, sane_words(api, status), advice_for(status));
    error.number = number_of(status);
    return error;
}

Error scanner_error(const SaneWho& who, const QString& words, const QString& advice) {
    return {kDeviceIoError, QStringLiteral("The scanner \"%1\" (%2) reports: %3.\r\n\r\n%4")
                                .arg(who.name, sane_text(who.device), words, advice)};
}

} // namespace folidex
