// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/status_line.h"

#include <QDir>
#include <QLocale>
#include <QResizeEvent>
#include <QStyleOption>
#include <QStylePainter>

namespace folidex {

StatusLine::StatusLine(QWidget* parent)
    : QStatusBar(parent), count_(new QLabel(this)), folder_(new QLabel(this)) {
    setObjectName(QStringLiteral("StatusBar1"));
    setSizeGripEnabled(false);
    count_->setObjectName(QStringLiteral("lblCount"));
    folder_->setObjectName(QStringLiteral("lblFolder"));
    for (QLabel* label : {count_, folder_})
        label->setTextFormat(Qt::PlainText);
    folder_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    // The path never asks for room: it is shortened to what there is.
    folder_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    addWidget(count_);
    addWidget(folder_, 1);
}

void StatusLine::show_count(int documents) {
    count_->setText(documents == 1
                        ? QStringLiteral("1 document")
                        : QLocale::system().toString(documents) + QStringLiteral(" documents"));
    shorten_folder();
}

void StatusLine::show_folder(const QString& path) {
    path_ = QDir::toNativeSeparators(path);
    folder_->setToolTip(path_);
    folder_->setAccessibleName(path_);
    shorten_folder();
}

void StatusLine::shorten_folder() {
    const int room = width() - count_->sizeHint().width() - 4 * fontMetrics().averageCharWidth();
    folder_->setText(folder_->fontMetrics().elidedText(path_, Qt::ElideMiddle, qMax(room, 0)));
}

void StatusLine::resizeEvent(QResizeEvent* event) {
    QStatusBar::resizeEvent(event);
    shorten_folder();
}

void StatusLine::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    painter.drawPrimitive(QStyle::PE_PanelStatusBar, option);
}

} // namespace folidex
