// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/planned_boxes.h"

#include "common/error_trap.h"
#include "common/message_box.h"

#include <QTest>

namespace folidex::test {

namespace {

using namespace Qt::StringLiterals;

constexpr int kAnyInput = -1;

void report_in_a_box(const Report& report) {
    message_box(report.prompt(), kCriticalIcon, QString::fromLatin1(kReportTitle));
}

QString described(const QString& prompt, int style, const QString& title) {
    if (style == kAnyInput)
        return u"input box \"%1\": \"%2\""_s.arg(title, prompt);
    return u"box \"%1\" (style %2): \"%3\""_s.arg(title).arg(style).arg(prompt);
}

} // namespace

struct PlannedBoxes::Expected {
    QStringList parts;
    bool whole = false;
    int style = 0;
    QString title;
    int answer = kAnswerOk;
    QString input;

    bool matches(const ShownBox& box) const {
        if (box.style != style || box.title != title)
            return false;
        if (whole)
            return box.prompt == parts.constFirst();
        return std::all_of(parts.begin(), parts.end(),
                           [&](const QString& part) { return box.prompt.contains(part); });
    }
    QString text() const { return described(parts.join(u" ... "_s), style, title); }
};

PlannedBoxes::PlannedBoxes() : former_report_(show_report) {
    show_report = report_in_a_box;
    set_message_box_presenter([this](const QString& prompt, int style, const QString& title) {
        const std::optional<Expected> planned = met({prompt, style, title});
        if (planned)
            return planned->answer;
        return (style & 0xf) == kYesNo ? kAnswerNo : kAnswerOk;
    });
    set_input_box_presenter([this](const QString& prompt, const QString& title) {
        const std::optional<Expected> planned = met({prompt, kAnyInput, title});
        return planned ? planned->input : QString();
    });
}

PlannedBoxes::~PlannedBoxes() {
    show_report = former_report_;
    set_message_box_presenter({});
    set_input_box_presenter({});
    if (verified_)
        return;
    const QStringList wrong = complaints();
    if (!wrong.isEmpty())
        QTest::qFail(wrong.join(u'\n').toUtf8().constData(), __FILE__, __LINE__);
}

void PlannedBoxes::expect(const QString& prompt, int style, const QString& title, int answer) {
    verified_ = false;
    expected_.push_back({{prompt}, true, style, title, answer, {}});
}

void PlannedBoxes::expect_containing(const QString& part, int style, const QString& title,
                                     int answer) {
    verified_ = false;
    expected_.push_back({{part}, false, style, title, answer, {}});
}

void PlannedBoxes::expect_input(const QString& prompt, const QString& title,
                                const QString& answer) {
    verified_ = false;
    expected_.push_back({{prompt}, true, kAnyInput, title, kAnswerOk, answer});
}

void PlannedBoxes::expect_report(const QString& module, const QString& procedure, int number) {
    verified_ = false;
    const QStringList parts{u"Module: %1\r\n"_s.arg(module), u"Procedure: %1\r\n"_s.arg(procedure),
                            u"(%1)"_s.arg(number)};
    expected_.push_back(
        {parts, false, kCriticalIcon, QString::fromLatin1(kReportTitle), kAnswerOk, {}});
}

std::optional<PlannedBoxes::Expected> PlannedBoxes::met(const ShownBox& box) {
    verified_ = false;
    shown_.append(box);
    const QString text = described(box.prompt, box.style, box.title);
    if (expected_.empty()) {
        failures_.append(u"A box came that was not expected: "_s + text);
        return std::nullopt;
    }
    const Expected planned = expected_.front();
    expected_.erase(expected_.begin());
    if (planned.matches(box))
        return planned;
    failures_.append(u"Another box came: "_s + text + u"\nThe test expected: "_s + planned.text());
    return std::nullopt;
}

QStringList PlannedBoxes::complaints() const {
    QStringList all = failures_;
    for (const Expected& planned : expected_)
        all.append(u"A box never came: "_s + planned.text());
    return all;
}

bool PlannedBoxes::verify() {
    verified_ = true;
    const QStringList wrong = complaints();
    for (const QString& line : wrong)
        qWarning("%s", line.toUtf8().constData());
    return wrong.isEmpty();
}

} // namespace folidex::test
