// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

namespace folidex {
struct Report;
}

namespace folidex::test {

/// A message box as it was shown.
struct ShownBox {
    QString prompt;
    int style = 0;
    QString title;
};

/// Answers message boxes, input boxes and error reports while it lives. A box that was not
/// expected, or that comes with other words, fails the running test, and so does an expected
/// one that never came: verify() tells, and whatever it was not asked about the destructor
/// fails the test for. Boxes are expected in the order in which they come; error reports are
/// boxes titled "Application Error". Build one per test, as a local variable.
class PlannedBoxes {
public:
    PlannedBoxes();
    ~PlannedBoxes();
    PlannedBoxes(const PlannedBoxes&) = delete;
    PlannedBoxes& operator=(const PlannedBoxes&) = delete;

    /// Expects the next box with exactly this text and plants its answer.
    void expect(const QString& prompt, int style, const QString& title, int answer = 1);
    /// Expects the next box to hold a text; style and title exactly.
    void expect_containing(const QString& part, int style, const QString& title, int answer = 1);
    /// Expects the next input box and plants its answer.
    void expect_input(const QString& prompt, const QString& title, const QString& answer);
    /// Expects the next error report.
    void expect_report(const QString& module, const QString& procedure, int number);

    /// All boxes shown so far, expected or not; an input box has style -1.
    const QList<ShownBox>& shown() const { return shown_; }
    /// True when all expected boxes came and no other.
    [[nodiscard]] bool verify();

private:
    struct Expected;
    std::optional<Expected> met(const ShownBox& box);
    QStringList complaints() const;

    QList<ShownBox> shown_;
    std::vector<Expected> expected_;
    QStringList failures_;
    bool verified_ = false;
    std::function<void(const Report&)> former_report_;
};

} // namespace folidex::test
