// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/whole_drives.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

namespace folidex {

using namespace Qt::StringLiterals;

namespace {

constexpr int kStep = 4;

bool parts_a_drive(const QString& paragraph, qsizetype line_end) {
    return line_end >= 2 && line_end < paragraph.size() && paragraph[line_end] == u'\\' &&
           paragraph[line_end - 1] == u':' && paragraph[line_end - 2].isLetter();
}

bool keeps_drives(const QTextDocument& laid_out) {
    for (QTextBlock block = laid_out.begin(); block.isValid(); block = block.next()) {
        const QTextLayout& layout = *block.layout();
        for (int i = 0; i < layout.lineCount(); ++i) {
            const QTextLine line = layout.lineAt(i);
            if (parts_a_drive(block.text(), line.textStart() + line.textLength()))
                return false;
        }
    }
    return true;
}

} // namespace

int width_that_keeps_drives(const QString& text, const QFont& font, int least, int most) {
    if (!text.contains(u":\\"_s))
        return least;
    // Laid out as a label does it.
    QTextDocument document;
    document.setUndoRedoEnabled(false);
    document.setDefaultFont(font);
    document.setDocumentMargin(0);
    document.setDefaultTextOption(QTextOption()); // breaks no word, as a document by itself would
    document.setPlainText(text);
    for (int width = least; width <= most; width += kStep) {
        document.setTextWidth(width);
        if (document.size().isValid() && keeps_drives(document))
            return width;
    }
    return least;
}

} // namespace folidex
