// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/empty_note.h"

#include <QEvent>

namespace folidex {

EmptyNote::EmptyNote(QAbstractScrollArea* list) : QLabel(list->viewport()) {
    setAlignment(Qt::AlignCenter);
    setWordWrap(true);
    setMargin(12);
    setForegroundRole(QPalette::WindowText);
    setTextFormat(Qt::PlainText);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    list->viewport()->installEventFilter(this);
    hide();
}

void EmptyNote::say(const QString& sentence) {
    setText(sentence);
    setVisible(!sentence.isEmpty());
}

bool EmptyNote::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize && watched == parentWidget())
        setGeometry(parentWidget()->rect());
    return false;
}

} // namespace folidex
