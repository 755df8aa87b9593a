// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QDialog>

class QLabel;
class QPushButton;

namespace folidex {

/// The about box: the program's name and version. Shown modally.
class frmAbout : public QDialog {
    Q_OBJECT

public:
    explicit frmAbout(QWidget* parent);

    void Form_Load();
    void cmdOK_Click();

    QLabel* lblVersion;
    QPushButton* cmdOK;
};

/// "Version " and the program's major, minor and revision numbers.
QString version_text();

} // namespace folidex
