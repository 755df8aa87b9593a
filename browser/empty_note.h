// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QAbstractScrollArea>
#include <QLabel>

namespace folidex {

/// A quiet sentence in the middle of an empty list that says what to do next. It follows the
/// list's size and lets the mouse through.
class EmptyNote : public QLabel {
    Q_OBJECT

public:
    explicit EmptyNote(QAbstractScrollArea* list);

    /// Shows the sentence; an empty one hides the note.
    void say(const QString& sentence);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace folidex
