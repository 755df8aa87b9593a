// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/frmAbout.h"

#include "app/process_values.h"
#include "common/error_trap.h"
#include "controls/icons.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

namespace folidex {

QString version_text() {
    return QStringLiteral("Version %1.%2.%3")
        .arg(FOLIDEX_VERSION_MAJOR)
        .arg(FOLIDEX_VERSION_MINOR)
        .arg(FOLIDEX_VERSION_REVISION);
}

frmAbout::frmAbout(QWidget* parent)
    : QDialog(parent), lblVersion(new QLabel(this)),
      cmdOK(new QPushButton(QStringLiteral("OK"), this)) {
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About Folidex"));
    lblVersion->setObjectName(QStringLiteral("lblVersion"));
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setAccessibleName(QStringLiteral("OK"));
    cmdOK->setDefault(true);

    auto* picture = new QLabel(this);
    picture->setPixmap(application_icon().pixmap(QSize(64, 64), devicePixelRatioF()));
    auto* name = new QLabel(ProductTitle, this);
    QFont large = name->font();
    large.setPointSizeF(large.pointSizeF() * 1.6);
    large.setBold(true);
    name->setFont(large);
    auto* purpose = new QLabel(QStringLiteral("Scan, tag and find paper documents."), this);

    auto* lines = new QGridLayout(this);
    lines->setContentsMargins(24, 24, 24, 16);
    lines->setHorizontalSpacing(24);
    lines->setVerticalSpacing(8);
    lines->addWidget(picture, 0, 0, 3, 1, Qt::AlignTop);
    lines->addWidget(name, 0, 1);
    lines->addWidget(lblVersion, 1, 1);
    lines->addWidget(purpose, 2, 1);
    lines->setRowMinimumHeight(3, 16);
    lines->addWidget(cmdOK, 4, 0, 1, 2, Qt::AlignRight);
    lines->setSizeConstraint(QLayout::SetFixedSize);
    on(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
    outermost([this] { Form_Load(); });
}

void frmAbout::Form_Load() {
    trapped("frmAbout", "Form_Load", [&] { lblVersion->setText(version_text()); });
}

void frmAbout::cmdOK_Click() {
    trapped("frmAbout", "cmdOK_Click", [&] { accept(); });
}

} // namespace folidex
