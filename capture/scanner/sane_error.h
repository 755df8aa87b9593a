// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/sane_api.h"
#include "capture/scanner/scanner_error.h"

#include <QByteArray>
#include <QString>

namespace folidex {

/// A text of SANE, which is UTF-8 with newer drivers and Latin-1 with older ones.
QString sane_text(const char* text);
inline QString sane_text(const QByteArray& text) {
    return sane_text(text.constData());
}

/// SANE's own words for a status.
QString sane_words(const SaneApi& api, SANE_Status status);

/// Whom a failure is about.
struct SaneWho {
    QString name; ///< as the user chose it
    QByteArray device;
    QString type; ///< as SANE lists it, e.g. "sheetfed scanner"
};

/// The failure of a device: its name, SANE's words, and what the user can do.
Error sane_error(const SaneApi& api, SANE_Status status, const SaneWho& who);
/// A failure in our own words, in the same form.
Error scanner_error(const SaneWho& who, const QString& words, const QString& advice);

} // namespace folidex
