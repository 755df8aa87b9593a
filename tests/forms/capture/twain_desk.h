// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain_scanner.h"
#include "tests/forms/capture/capture_desk.h"
#include "tests/forms/capture/scan_hands.h"
#include "tests/support/scripted_twain.h"

namespace folidex::test {

/// Parts of scripts: the source's window is up, a whole grey page of 100 columns, half of one.
inline const QStringList kBegin{QStringLiteral("opened"), QStringLiteral("await"),
                                QStringLiteral("window")};
inline const QStringList kPage{QStringLiteral("page gray 100 50 100 100"),
                               QStringLiteral("rows 50"), QStringLiteral("end")};
inline const QStringList kHalfAPage{QStringLiteral("page gray 100 50 100 100"),
                                    QStringLiteral("rows 25")};

/// A clerk at the capture form whose scanners are TWAIN sources: the 64-bit "Front desk" and
/// "Archive", the 32-bit "Old copier", behind helpers that play scripts.
class TwainDesk : public CaptureDesk {
public:
    TwainDesk();
    ~TwainDesk();

    ScriptedTwain twain;
    /// Of the forms opened from now on. More than the program's own, so that a busy machine shows
    /// the same; tests of the waiting change it.
    ScanPatience patience;

    /// The session of all forms of this desk; settings count until it is first asked for.
    const std::shared_ptr<TwainSession>& session();
    /// Opens the form and waits until all sources are listed.
    void open_listed(int link = -1);
    /// Has a script played by the front desk's helper, and scans with it.
    void scan_with(const QStringList& script);
    /// Does something while the next source is being opened, or scans: both return only when
    /// they are over.
    void while_opening(const std::function<void()>& action) { while_opening_ = action; }
    void while_scanning(const std::function<void()>& action) { while_scanning_ = action; }
    /// Presses a button of the progress window once that can be done.
    static void press_when_shown(const char* button);
    /// Lets a box come that holds a text: plain, with OK alone and the program's name.
    void expect_box(const QString& part);

    QString scan_label() const { return control<QLabel>("lblScan")->text(); }
    /// Widths of the pages in the temporary scan, in their order; none without a scan.
    QList<int> scanned_widths() const;
    QByteArray scanned_pdf() const;

private:
    class WatchedScanner;

    std::shared_ptr<TwainSession> session_;
    std::function<void()> while_opening_;
    std::function<void()> while_scanning_;
};

/// A test at such a desk: a new one each time, and afterwards all boxes came that were planned
/// and nothing ended the program.
class TwainDeskTest : public QObject {
    Q_OBJECT

protected:
    std::unique_ptr<TwainDesk> desk_;

private Q_SLOTS:
    void init();
    void cleanup();
};

} // namespace folidex::test
