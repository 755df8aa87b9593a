// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/scan_control.h"
#include "capture/scanner/scan_patience.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QTimer>
#include <functional>
#include <memory>

class QEventLoop;
class QLabel;
class QProgressBar;
class QPushButton;
class QStackedWidget;

namespace folidex {

/// The window over a form while the scanner works: which source, which page, how much of it,
/// Cancel; after a jam or an open cover what to do about it. While the source shows a window of
/// its own this one stays away, unless the source falls silent; the form is out of reach all the
/// same. run() follows one operation to its end, and after Cancel no longer than its patience
/// lasts. UI thread.
class ScanProgress : public QDialog {
    Q_OBJECT

public:
    enum class Outcome { kEnded, kNoAnswer };
    static constexpr int kNever = -1;
    /// How often it looks at the operation.
    static constexpr std::chrono::milliseconds kFollowEvery{40};

    ScanProgress(const QString& source, QWidget* parent, const ScanPatience& patience = {});
    ~ScanProgress() override;

    /// Returns when the operation is done, or when it did not end in time after Cancel. Comes
    /// up after so many milliseconds (kNever: only for a question). nudge is called once when
    /// the operation goes on after Cancel, and before it is left behind in any case.
    Outcome run(std::shared_ptr<ScanControl> operation, int show_after,
                std::function<void()> nudge = {});
    /// Closes the window once the event loop is reached, unless another run() began by then.
    void release();

public Q_SLOTS:
    /// Escape and the window's own close button: Cancel; after a jam they keep what there is.
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void build(const QString& source);
    void build_buttons();
    void follow();
    void refresh(const ScanControl::State& state);
    void show_trouble(const ScanControl::Trouble& trouble);
    void show_progress(const ScanControl::State& state);
    void cancel();
    void answer(ScanControl::Answer answer);
    void leave(Outcome outcome);
    bool wanted(const ScanControl::State& state) const;
    void appear();
    void make_way();

    QLabel* lblSource;
    QLabel* lblPage;
    QStackedWidget* stack;
    QProgressBar* pbPage;
    QLabel* lblTrouble;
    QPushButton* cmdContinue;
    QPushButton* cmdKeepPages;
    QPushButton* cmdDiscardPages;
    QPushButton* cmdCancelScan;

    /// A modal window that is nowhere to be seen: it keeps input from the form.
    QDialog* shield;

    const ScanPatience patience_;
    std::shared_ptr<ScanControl> operation_;
    std::function<void()> nudge_;
    int show_after_ = 0;
    QEventLoop* loop_ = nullptr;
    bool ended_ = false;
    Outcome outcome_ = Outcome::kEnded;
    QTimer timer_;
    QElapsedTimer since_start_;
    QElapsedTimer since_cancel_;
};

} // namespace folidex
