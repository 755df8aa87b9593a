// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <functional>

namespace folidex {

/// Styles and answers of a message box by their long-standing numbers; a style is the sum of
/// one set of buttons and one icon.
inline constexpr int kOkOnly = 0;
inline constexpr int kYesNo = 4;
inline constexpr int kCriticalIcon = 16;
inline constexpr int kQuestionIcon = 32;
inline constexpr int kInformationIcon = 64;

inline constexpr int kAnswerOk = 1;
inline constexpr int kAnswerYes = 6;
inline constexpr int kAnswerNo = 7;

/// The title of a box that was given none.
inline constexpr const char* kDefaultBoxTitle = "Folidex";

/// Shows a modal message box over the active window and returns the answer. Every box of the
/// program passes here. The text is plain, never markup; "\r\n" breaks lines.
int message_box(const QString& prompt, int style = kOkOnly,
                const QString& title = QString::fromLatin1(kDefaultBoxTitle));

/// Asks for one line of text; empty when cancelled.
QString input_box(const QString& prompt, const QString& title);

/// Seams for tests: replace how boxes are shown. Setting an empty function restores the box.
void set_message_box_presenter(
    std::function<int(const QString& prompt, int style, const QString& title)> presenter);
void set_input_box_presenter(
    std::function<QString(const QString& prompt, const QString& title)> presenter);

} // namespace folidex
