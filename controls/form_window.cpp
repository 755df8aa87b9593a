// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "controls/form_window.h"

#include <QApplication>
#include <QScreen>
#include <algorithm>
#include <cmath>

namespace folidex {

namespace {

// Far beyond any desktop, and safe to add up in whole numbers.
constexpr double kFarthest = 1e6;
// As much of a window's top edge as can be taken hold of with the pointer.
constexpr int kGripWidth = 64;
constexpr int kGripHeight = 16;

// A form that was not shown yet has its size only after its layout was asked.
QRect frame_of(QWidget* form) {
    if (!form->isVisible() && !form->testAttribute(Qt::WA_Resized)) {
        form->ensurePolished();
        form->adjustSize();
    }
    return form->frameGeometry();
}

bool can_be_grasped(const QRect& frame) {
    const QList<QScreen*> screens = QGuiApplication::screens();
    return std::any_of(screens.begin(), screens.end(), [&](const QScreen* screen) {
        const QRect seen =
            QRect(frame.topLeft(), QSize(frame.width(), kGripHeight)) & screen->availableGeometry();
        return seen.width() >= std::min(kGripWidth, frame.width()) && seen.height() >= kGripHeight;
    });
}

int outside(const QRect& area, const QPoint& point) {
    const int x = std::max({area.left() - point.x(), point.x() - area.right(), 0});
    const int y = std::max({area.top() - point.y(), point.y() - area.bottom(), 0});
    return x + y;
}

QPoint moved_into_view(const QRect& frame) {
    QRect best;
    const QList<QScreen*> screens = QGuiApplication::screens();
    for (const QScreen* screen : screens) {
        const QRect area = screen->availableGeometry();
        if (best.isNull() || outside(area, frame.center()) < outside(best, frame.center()))
            best = area;
    }
    const int x = std::min(frame.left(), best.right() + 1 - frame.width());
    const int y = std::min(frame.top(), best.bottom() + 1 - frame.height());
    return {std::max(x, best.left()), std::max(y, best.top())};
}

} // namespace

int to_pixels(double twips) {
    if (std::isnan(twips))
        return 0;
    return static_cast<int>(std::lround(std::clamp(twips / kTwipsPerPixel, -kFarthest, kFarthest)));
}

QString FormWindow::name() const {
    return form_->objectName();
}

double FormWindow::top() const {
    return to_twips(frame_of(form_).top());
}

double FormWindow::left() const {
    return to_twips(frame_of(form_).left());
}

double FormWindow::width() const {
    return to_twips(frame_of(form_).width());
}

double FormWindow::height() const {
    return to_twips(frame_of(form_).height());
}

void FormWindow::set_top(double top) {
    wanted_top_ = to_pixels(top);
    place();
}

void FormWindow::set_left(double left) {
    wanted_left_ = to_pixels(left);
    place();
}

void FormWindow::place() {
    const QRect now = frame_of(form_);
    // The coordinate set before counts as it was wanted: together they may lie on a screen
    // that neither reaches alone.
    const QRect wanted(QPoint(wanted_left_.value_or(now.left()), wanted_top_.value_or(now.top())),
                       now.size());
    form_->move(can_be_grasped(wanted) ? wanted.topLeft() : moved_into_view(wanted));
}

double FormWindow::screen_width() const {
    return to_twips(QGuiApplication::primaryScreen()->geometry().width());
}

double FormWindow::screen_height() const {
    return to_twips(QGuiApplication::primaryScreen()->geometry().height());
}

double FormWindow::main_width() const {
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows)
        if (window->objectName() == u"frmMain")
            return to_twips(frame_of(window).width());
    return 0;
}

} // namespace folidex
