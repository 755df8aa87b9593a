// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QProxyStyle>

namespace folidex {

/// The style of a message box: the desktop's, with plain icons of our own, sharp at every
/// scale, where the desktop has no icon theme.
class BoxStyle : public QProxyStyle {
    Q_OBJECT

public:
    explicit BoxStyle(QObject* parent) { setParent(parent); }

    QIcon standardIcon(StandardPixmap which, const QStyleOption* option,
                       const QWidget* widget) const override;
};

} // namespace folidex
