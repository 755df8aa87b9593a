// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QString>
#include <functional>

namespace folidex {

/// The link control AL1: opens its target with the associated program. Mode 2 is a file, mode
/// 0 a web address.
class ActiveLink : public QObject {
    Q_OBJECT

public:
    enum Mode { kWebAddress = 0, kFile = 2 };

    explicit ActiveLink(QObject* parent = nullptr);

    void set_target(const QString& target) { target_ = target; }
    void set_mode(int mode) { mode_ = mode; }
    QString target() const { return target_; }
    int mode() const { return mode_; }
    /// Hands the target to the desktop; a file that is not there is the desktop's to report. A
    /// desktop without a program for it is told in a message box.
    void start();

    /// Seam for tests: what start() hands the target to.
    static std::function<void(const QString& target)> opener;

private:
    QString target_;
    int mode_ = kFile;
};

} // namespace folidex
