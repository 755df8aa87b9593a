// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain_settings.h"

#include <QTemporaryDir>

namespace folidex::test {

/// Scanning helpers that play scripts. A word size without a script has no source manager; a
/// script is a list of lines:
///     source INDEX NAME · opened · await (a command) · window · ready · page KIND WIDTH HEIGHT DPI
///     DPI · rows COUNT · file NAME (the bytes of a JPEG) · end [ROWS] · drop · trouble CODE CODE
///     [exit] (and the answer) · pages COUNT (of the endings) · done OUTCOME [STEP CODE CODE
///     DETAIL] · gate NAME (until the test opens it) · alive NAME (the same, with signs of life) ·
///     busy NAME (the same, without looking at commands) · parks NAME (held up there when it ends)
///     · raw HEX BYTES · deaf (to commands) · hang · exit CODE
/// Cancelled, or when its input ends, a helper that is not deaf ends as it should.
class ScriptedTwain {
public:
    ScriptedTwain();

    /// Settings with these helpers, for a session. With so much patience that a helper which
    /// behaves is never given up on a busy machine; what a hang costs is for its tests to set.
    TwainSettings settings;

    void list(int bits, const QStringList& script) const;
    void scan(int bits, const QStringList& script) const;
    /// The lines of a scan that delivers whole grey pages of these widths, each 50 rows.
    static QStringList pages(const QList<int>& widths);

    void put_file(const QString& name, const QByteArray& content) const;
    void open_gate(const QString& name) const { put_file(name, {}); }
    /// What the helpers were told and did, one helper behind the other in no certain order: their
    /// command lines as "scan64 --index 0 ...", then "scan64: command a", "scan64: at GATE",
    /// "scan64: hangs", "scan64: input ended", "scan64: left with 0".
    QStringList log() const;
    bool noted(const QString& line) const { return log().contains(line); }

private:
    QTemporaryDir folder_;
};

} // namespace folidex::test
