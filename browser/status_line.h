// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QLabel>
#include <QStatusBar>

namespace folidex {

/// The main window's bottom line: how many documents are listed, and the data folder, shortened
/// in its middle where it does not fit.
class StatusLine : public QStatusBar {
    Q_OBJECT

public:
    explicit StatusLine(QWidget* parent);

    void show_count(int documents);
    void show_folder(const QString& path);

protected:
    void resizeEvent(QResizeEvent* event) override;
    /// Without the frames that some styles draw round each part.
    void paintEvent(QPaintEvent* event) override;

private:
    void shorten_folder();

    QLabel* count_;
    QLabel* folder_;
    QString path_;
};

} // namespace folidex
