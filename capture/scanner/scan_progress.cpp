// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/scan_progress.h"

#include "common/error_trap.h"

#include <QApplication>
#include <QCloseEvent>
#include <QEventLoop>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace folidex {

namespace {

constexpr int kSteps = 1000;
constexpr int kTroubleLines = 4;
constexpr int kLoopLeft = 1;
constexpr int kGap = 8;
constexpr int kMargin = 12;

void name(QWidget* control, const char* object_name, const QString& accessible_name) {
    control->setObjectName(QString::fromLatin1(object_name));
    control->setAccessibleName(accessible_name);
}

QString heading(const ScanControl::State& state) {
    switch (state.phase) {
    case ScanControl::Phase::kOpening:
        return QStringLiteral("Opening the scanner...");
    case ScanControl::Phase::kChoosing:
        return QStringLiteral("The scanner's driver does not answer.");
    case ScanControl::Phase::kScanning:
        return QStringLiteral("Page %1").arg(qMax(1, state.page));
    case ScanControl::Phase::kWriting:
        return QStringLiteral("Putting the pages together...");
    }
    return {};
}

} // namespace

ScanProgress::ScanProgress(const QString& source, QWidget* parent, const ScanPatience& patience)
    : QDialog(parent), patience_(patience) {
    setObjectName(QStringLiteral("ScanProgress"));
    setWindowTitle(QStringLiteral("Scanning"));
    setAccessibleName(windowTitle());
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setModal(true);
    build(source);
    shield = new QDialog(this);
    shield->setObjectName(QStringLiteral("shield"));
    shield->setAttribute(Qt::WA_DontShowOnScreen);
    shield->setModal(true);
    on(&timer_, &QTimer::timeout, this, [this] { follow(); });
}

ScanProgress::~ScanProgress() = default;

void ScanProgress::build(const QString& source) {
    lblSource = new QLabel(source, this);
    lblSource->setTextFormat(Qt::PlainText);
    lblSource->setWordWrap(true);
    QFont strong = lblSource->font();
    strong.setBold(true);
    lblSource->setFont(strong);
    name(lblSource, "lblSource", QStringLiteral("Scanner"));

    lblPage = new QLabel(this);
    name(lblPage, "lblPage", QStringLiteral("Page"));

    pbPage = new QProgressBar(this);
    pbPage->setTextVisible(false);
    name(pbPage, "pbPage", QStringLiteral("Progress of the page"));
    auto* progress = new QWidget(this);
    auto* progress_layout = new QVBoxLayout(progress);
    progress_layout->setContentsMargins(0, 0, 0, 0);
    progress_layout->addWidget(pbPage);
    progress_layout->addStretch();

    lblTrouble = new QLabel(this);
    lblTrouble->setTextFormat(Qt::PlainText);
    lblTrouble->setWordWrap(true);
    lblTrouble->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    lblTrouble->setMinimumHeight(kTroubleLines * lblTrouble->fontMetrics().lineSpacing());
    name(lblTrouble, "lblTrouble", QStringLiteral("What happened"));

    stack = new QStackedWidget(this);
    stack->addWidget(progress);
    stack->addWidget(lblTrouble);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setSpacing(kGap);
    layout->addWidget(lblSource);
    layout->addWidget(lblPage);
    layout->addWidget(stack, 1);
    build_buttons();
}

void ScanProgress::build_buttons() {
    cmdContinue = new QPushButton(QStringLiteral("C&ontinue"), this);
    cmdKeepPages = new QPushButton(QStringLiteral("&Keep the pages so far"), this);
    cmdDiscardPages = new QPushButton(QStringLiteral("&Discard"), this);
    cmdCancelScan = new QPushButton(QStringLiteral("Cancel"), this);
    name(cmdContinue, "cmdContinue", QStringLiteral("Continue"));
    name(cmdKeepPages, "cmdKeepPages", QStringLiteral("Keep the pages so far"));
    name(cmdDiscardPages, "cmdDiscardPages", QStringLiteral("Discard"));
    name(cmdCancelScan, "cmdCancelScan", QStringLiteral("Cancel"));
    const QList<QPushButton*> buttons{cmdContinue, cmdKeepPages, cmdDiscardPages, cmdCancelScan};
    int width = 0;
    for (const QPushButton* button : buttons)
        width = qMax(width, button->sizeHint().width() + 2 * kGap);
    auto* row = new QHBoxLayout;
    row->setSpacing(kGap);
    row->addStretch();
    for (QPushButton* button : buttons) {
        button->setMinimumWidth(width);
        row->addWidget(button);
    }
    // As wide as the widest row of buttons from the start, so that a jam moves nothing.
    stack->setMinimumWidth(3 * width + 2 * row->spacing());
    static_cast<QVBoxLayout*>(layout())->addLayout(row);
    using Answer = ScanControl::Answer;
    on(cmdContinue, &QPushButton::clicked, this, [this] { answer(Answer::kContinue); });
    on(cmdKeepPages, &QPushButton::clicked, this, [this] { answer(Answer::kKeep); });
    on(cmdDiscardPages, &QPushButton::clicked, this, [this] { answer(Answer::kDiscard); });
    on(cmdCancelScan, &QPushButton::clicked, this, [this] { cancel(); });
}

ScanProgress::Outcome ScanProgress::run(std::shared_ptr<ScanControl> operation, int show_after,
                                        std::function<void()> nudge) {
    operation_ = std::move(operation);
    nudge_ = std::move(nudge);
    show_after_ = show_after;
    ended_ = false;
    since_start_.start();
    since_cancel_.invalidate();
    timer_.start(kFollowEvery);
    follow();
    while (!ended_) {
        QEventLoop loop;
        loop_ = &loop;
        // Until the window covers the form, clicks wait: they must not begin a second scan.
        const int left =
            loop.exec(isVisible() || shield->isVisible() ? QEventLoop::AllEvents
                                                         : QEventLoop::ExcludeUserInputEvents);
        loop_ = nullptr;
        if (left != kLoopLeft) {
            // The program is being ended; nobody waits for the scanner any more.
            operation_->cancel();
            leave(Outcome::kNoAnswer);
        }
    }
    timer_.stop();
    if (shield->isVisible()) {
        shield->hide();
        if (parentWidget())
            parentWidget()->activateWindow();
    }
    operation_.reset();
    nudge_ = {};
    return outcome_;
}

void ScanProgress::release() {
    later(this, 0, [this] {
        if (!operation_)
            hide();
    });
}

bool ScanProgress::wanted(const ScanControl::State& state) const {
    if (state.phase == ScanControl::Phase::kChoosing)
        return state.silent || state.trouble;
    return state.trouble || (show_after_ != kNever && since_start_.elapsed() >= show_after_);
}

void ScanProgress::appear() {
    show();
    shield->hide();
    // From behind the source's window, which belongs to another process.
    activateWindow();
}

void ScanProgress::make_way() {
    shield->show();
    hide();
}

void ScanProgress::follow() {
    const ScanControl::State state = operation_->state();
    if (state.done) {
        leave(Outcome::kEnded);
        return;
    }
    refresh(state);
    const bool away = state.phase == ScanControl::Phase::kChoosing && !wanted(state);
    const bool changes = away ? !shield->isVisible() : !isVisible() && wanted(state);
    if (changes) {
        away ? make_way() : appear();
        // Back in with clicks let through.
        if (loop_)
            loop_->exit(kLoopLeft);
    }
    if (!since_cancel_.isValid())
        return;
    if (nudge_ && since_cancel_.hasExpired(patience_.nudge.count()))
        std::exchange(nudge_, {})();
    if (since_cancel_.hasExpired(patience_.give_up.count()))
        leave(Outcome::kNoAnswer);
}

void ScanProgress::leave(Outcome outcome) {
    outcome_ = outcome;
    ended_ = true;
    if (loop_)
        loop_->exit(kLoopLeft);
}

void ScanProgress::refresh(const ScanControl::State& state) {
    const bool asking = state.trouble.has_value();
    const auto offer_ways_on = [this](bool on) {
        for (QPushButton* button : {cmdContinue, cmdKeepPages, cmdDiscardPages})
            button->setVisible(on);
    };
    // Hidden before shown: with all four in one row the window would grow for good.
    if (asking) {
        cmdCancelScan->setVisible(false);
        offer_ways_on(true);
        if (stack->currentWidget() != lblTrouble)
            show_trouble(*state.trouble);
    } else {
        offer_ways_on(false);
        cmdCancelScan->setVisible(true);
        show_progress(state);
    }
}

void ScanProgress::show_trouble(const ScanControl::Trouble& trouble) {
    lblPage->setText(QStringLiteral("Page %1 could not be scanned").arg(trouble.page));
    lblTrouble->setText(
        QStringLiteral("%1.\n\nClear the paper path, close the cover and put this page and the "
                       "ones after it back into the feeder. Then choose Continue.")
            .arg(trouble.words));
    cmdKeepPages->setEnabled(trouble.pages_so_far > 0);
    stack->setCurrentWidget(lblTrouble);
    cmdContinue->setDefault(true);
    cmdContinue->setFocus();
    QApplication::alert(this);
}

void ScanProgress::show_progress(const ScanControl::State& state) {
    if (stack->currentWidget() == lblTrouble)
        cmdCancelScan->setFocus();
    stack->setCurrentIndex(0);
    const bool cancelling = operation_->cancelled();
    lblPage->setText(cancelling ? QStringLiteral("Cancelling...") : heading(state));
    cmdCancelScan->setEnabled(!cancelling && state.phase != ScanControl::Phase::kWriting);
    const bool measured = state.fraction >= 0;
    pbPage->setRange(0, measured ? kSteps : 0);
    if (measured)
        pbPage->setValue(static_cast<int>(state.fraction * kSteps));
}

void ScanProgress::cancel() {
    if (!operation_ || operation_->cancelled() ||
        operation_->state().phase == ScanControl::Phase::kWriting)
        return;
    operation_->cancel();
    since_cancel_.start();
    refresh(operation_->state());
}

void ScanProgress::answer(ScanControl::Answer answer) {
    if (!operation_)
        return;
    operation_->answer(answer);
    refresh(operation_->state());
}

void ScanProgress::reject() {
    outermost([this] {
        const auto trouble = operation_ ? operation_->state().trouble : std::nullopt;
        if (!trouble)
            cancel();
        else if (trouble->pages_so_far > 0)
            answer(ScanControl::Answer::kKeep);
        else
            answer(ScanControl::Answer::kDiscard);
    });
}

void ScanProgress::closeEvent(QCloseEvent* event) {
    outermost([&] {
        event->ignore();
        reject();
    });
}

} // namespace folidex
