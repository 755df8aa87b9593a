// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/message_box.h"

#include "common/box_style.h"
#include "common/whole_drives.h"

#include <QApplication>
#include <QInputDialog>
#include <QLabel>
#include <QLayout>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QScreen>

namespace folidex {

namespace {

using namespace Qt::StringLiterals;

// Longer texts would make a box that fits no screen; the whole text is then under "Details".
constexpr qsizetype kLongestText = 1500;
constexpr qsizetype kMostLines = 24;
// A run in which no line would be wrapped is broken here, or the box would be as wide as it.
constexpr qsizetype kLongestRun = 60;
// How wide the toolkit makes a box: a text that is wider than the usual width is wrapped, and no
// word makes it wider than the widest, which leaves some of a large screen free.
constexpr int kUsualWidth = 500;
constexpr int kWidest = 1000;
constexpr int kLeftFree = 480;
constexpr int kSmallScreen = 1024;

std::function<int(const QString&, int, const QString&)> box_presenter;
std::function<QString(const QString&, const QString&)> input_presenter;

QWidget* owner_window() {
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    if (QWidget* active = QApplication::activeWindow())
        return active;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows)
        if (window->isVisible() && window->windowType() != Qt::Popup)
            return window;
    return nullptr;
}

QString with_plain_line_ends(QString text) {
    return text.replace("\r\n"_L1, "\n"_L1).replace(u'\r', u'\n');
}

// Lines are wrapped after these as they stand; after those of breaks_well only by force.
bool wraps_by_itself(QChar c) {
    return c.isSpace() || c == u'/' || c == u'-';
}

bool breaks_well(QChar c) {
    return c == u'\\' || c == u'.' || c == u'_' || c == u',';
}

// Never between the two halves of a surrogate pair.
QString with_long_runs_broken(const QString& text) {
    QString broken;
    qsizetype run = 0;
    qsizetype last_break = -1;
    for (const QChar c : text) {
        if (run >= kLongestRun && !wraps_by_itself(c) && !c.isLowSurrogate()) {
            const qsizetype at = last_break >= 0 ? last_break : broken.size();
            broken.insert(at, u'\n');
            run = broken.size() - at - 1;
            last_break = -1;
        }
        broken += c;
        ++run;
        if (wraps_by_itself(c)) {
            run = 0;
            last_break = -1;
        } else if (breaks_well(c)) {
            last_break = broken.size();
        }
    }
    return broken;
}

QString shortened(const QString& text) {
    QStringList lines = text.split(u'\n');
    QString head = text.left(kLongestText);
    if (lines.size() > kMostLines)
        head = lines.mid(0, kMostLines).join(u'\n').left(kLongestText);
    if (head.size() == text.size())
        return text;
    if (head.back().isHighSurrogate())
        head.chop(1);
    return head + u'\u2026';
}

QMessageBox::Icon icon_of(int style) {
    switch (style & 0x70) {
    case kCriticalIcon:
        return QMessageBox::Critical;
    case kQuestionIcon:
        return QMessageBox::Question;
    case kInformationIcon:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

// The text stays as it is, to the letter; the box becomes wider where that keeps a path whole.
void keep_drives_with_paths(QMessageBox& box, QLabel& label) {
    box.ensurePolished();
    const int screen = box.screen()->availableGeometry().width();
    const int usual = qMin(screen / 2, kUsualWidth);
    const int widest = screen <= kSmallScreen ? screen : qMin(screen - kLeftFree, kWidest);
    const int unwrapped = box.layout()->totalMinimumSize().width();
    if (unwrapped <= usual)
        return;
    const QMargins margins = label.contentsMargins();
    const int frame =
        margins.left() + margins.right() + 2 * label.margin() + qMax(label.indent(), 0);
    const int beside = unwrapped - label.minimumSizeHint().width() + frame;
    label.setWordWrap(true);
    const int longest_word = label.minimumSizeHint().width() - frame;
    const int least = qMax(usual - beside, longest_word);
    const int width = width_that_keeps_drives(label.text(), label.font(), least, widest - beside);
    if (width > least)
        label.setMinimumWidth(width + frame);
}

int show_box(const QString& prompt, int style, const QString& title) {
    const bool yes_no = (style & 0xf) == kYesNo;
    // On the heap: the owner may be destroyed, and the box with it, while it is open.
    QPointer<QMessageBox> box = new QMessageBox(owner_window());
    box->setStyle(new BoxStyle(box));
    box->setTextFormat(Qt::PlainText);
    box->setIcon(icon_of(style));
    box->setWindowTitle(title);
    const QString text = with_plain_line_ends(prompt);
    const QString head = shortened(text);
    box->setText(with_long_runs_broken(head));
    if (head != text)
        box->setDetailedText(text);
    box->setStandardButtons(yes_no ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok);
    const QList<QAbstractButton*> buttons = box->buttons();
    for (QAbstractButton* button : buttons)
        button->setIcon(QIcon());
    box->setDefaultButton(yes_no ? QMessageBox::Yes : QMessageBox::Ok);
    box->setEscapeButton(yes_no ? QMessageBox::No : QMessageBox::Ok);
    if (auto* label = box->findChild<QLabel*>(u"qt_msgbox_label"_s)) {
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        keep_drives_with_paths(*box, *label);
    }
    const int answer = box->exec();
    delete box;
    if (!yes_no)
        return kAnswerOk;
    return answer == QMessageBox::Yes ? kAnswerYes : kAnswerNo;
}

QString show_input(const QString& prompt, const QString& title) {
    QPointer<QInputDialog> dialog = new QInputDialog(owner_window());
    dialog->setInputMode(QInputDialog::TextInput);
    dialog->setWindowTitle(title);
    dialog->setLabelText(with_long_runs_broken(shortened(with_plain_line_ends(prompt))));
    if (auto* label = dialog->findChild<QLabel*>())
        label->setTextFormat(Qt::PlainText);
    const bool accepted = dialog->exec() == QDialog::Accepted;
    const QString text = dialog && accepted ? dialog->textValue() : QString();
    delete dialog;
    return text;
}

} // namespace

int message_box(const QString& prompt, int style, const QString& title) {
    return box_presenter ? box_presenter(prompt, style, title) : show_box(prompt, style, title);
}

QString input_box(const QString& prompt, const QString& title) {
    return input_presenter ? input_presenter(prompt, title) : show_input(prompt, title);
}

void set_message_box_presenter(
    std::function<int(const QString& prompt, int style, const QString& title)> presenter) {
    box_presenter = std::move(presenter);
}

void set_input_box_presenter(
    std::function<QString(const QString& prompt, const QString& title)> presenter) {
    input_presenter = std::move(presenter);
}

} // namespace folidex
