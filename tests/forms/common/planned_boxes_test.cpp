// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/planned_boxes.h"

#include "common/error_trap.h"
#include "common/message_box.h"

#include <QApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

using namespace folidex;
using namespace Qt::StringLiterals;
using test::PlannedBoxes;

class PlannedBoxesTest : public QObject {
    Q_OBJECT

private:
    static void complaint(const char* words) {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QString::fromLatin1(words)));
    }

private Q_SLOTS:
    void planned_answers_are_given_in_order() {
        PlannedBoxes boxes;
        boxes.expect(u"Sure?"_s, kYesNo + kQuestionIcon, u"Confirm"_s, kAnswerYes);
        boxes.expect_containing(u"path"_s, kCriticalIcon, u"Error"_s);
        boxes.expect_input(u"Name"_s, u"Profile"_s, u"Bills"_s);
        QCOMPARE(message_box(u"Sure?"_s, 36, u"Confirm"_s), 6);
        QCOMPARE(message_box(u"no such path: x"_s, 16, u"Error"_s), 1);
        QCOMPARE(input_box(u"Name"_s, u"Profile"_s), u"Bills"_s);
        QCOMPARE(boxes.shown().size(), 3);
        QVERIFY(boxes.verify());
    }

    void an_unexpected_box_fails_and_is_answered_with_no() {
        PlannedBoxes boxes;
        QCOMPARE(message_box(u"Sure?"_s, kYesNo + kQuestionIcon, u"Confirm"_s), kAnswerNo);
        complaint("was not expected.*Confirm.*36.*Sure");
        QVERIFY(!boxes.verify());
    }

    void a_box_that_never_came_fails() {
        PlannedBoxes boxes;
        boxes.expect(u"x"_s, kOkOnly, u"Error"_s);
        complaint("never came.*Error");
        QVERIFY(!boxes.verify());
    }

    void other_words_style_or_title_fail_data() {
        QTest::addColumn<QString>("prompt");
        QTest::addColumn<int>("style");
        QTest::addColumn<QString>("title");
        QTest::newRow("words") << u"Thing"_s << kCriticalIcon << u"Error"_s;
        QTest::newRow("more words") << u"thing "_s << kCriticalIcon << u"Error"_s;
        QTest::newRow("style") << u"thing"_s << kInformationIcon << u"Error"_s;
        QTest::newRow("title") << u"thing"_s << kCriticalIcon << u"error"_s;
    }
    void other_words_style_or_title_fail() {
        QFETCH(QString, prompt);
        QFETCH(int, style);
        QFETCH(QString, title);
        PlannedBoxes boxes;
        boxes.expect(u"thing"_s, kCriticalIcon, u"Error"_s);
        message_box(prompt, style, title);
        complaint("Another box came");
        QVERIFY(!boxes.verify());
    }

    void an_input_box_is_no_message_box() {
        PlannedBoxes boxes;
        boxes.expect(u"Name"_s, kOkOnly, u"Profile"_s);
        QCOMPARE(input_box(u"Name"_s, u"Profile"_s), QString());
        complaint("Another box came: input box");
        QVERIFY(!boxes.verify());
    }

    void error_reports_are_boxes() {
        PlannedBoxes boxes;
        boxes.expect_report(u"frmTags"_s, u"fill_grid"_s, 53);
        boxes.expect_report(u"frmTags"_s, u"Form_Load"_s, kPassedOn);
        const auto form_load = [] {
            trapped("frmTags", "Form_Load", [] {
                trapped("frmTags", "fill_grid", [] { throw Error{53, u"File not found"_s}; });
            });
        };
        QVERIFY_THROWS_EXCEPTION(Error, form_load());
        QVERIFY(boxes.verify());
        QCOMPARE(boxes.shown().at(0).title, u"Application Error"_s);
        QCOMPARE(boxes.shown().at(0).style, kCriticalIcon);
    }

    void a_report_of_another_procedure_or_number_fails_data() {
        QTest::addColumn<QString>("procedure");
        QTest::addColumn<int>("number");
        QTest::newRow("procedure") << u"fill_me"_s << 53;
        QTest::newRow("beginning of the name") << u"fill_gri"_s << 53;
        QTest::newRow("number") << u"fill_grid"_s << 5;
    }
    void a_report_of_another_procedure_or_number_fails() {
        QFETCH(QString, procedure);
        QFETCH(int, number);
        PlannedBoxes boxes;
        boxes.expect_report(u"frmTags"_s, procedure, number);
        QVERIFY_THROWS_EXCEPTION(Error, trapped("frmTags", "fill_grid", [] {
                                     throw Error{53, u"no"_s};
                                 }));
        complaint("Another box came");
        QVERIFY(!boxes.verify());
    }

    void a_test_that_never_asks_fails_at_the_end_of_the_plan() {
        QProcess forgetful;
        forgetful.start(QCoreApplication::applicationFilePath(), {u"--forgetful"_s});
        QVERIFY(forgetful.waitForFinished(60'000));
        QCOMPARE(forgetful.exitStatus(), QProcess::NormalExit);
        QCOMPARE(forgetful.exitCode(), 2);
        const QString said = QString::fromUtf8(forgetful.readAllStandardOutput());
        QVERIFY2(said.contains(u"A box never came"_s), qPrintable(said));
        QVERIFY2(said.contains(u"was not expected"_s), qPrintable(said));
    }

    void reports_go_where_they_went_before() {
        int reports = 0;
        const auto former = show_report;
        show_report = [&](const Report&) { ++reports; };
        { PlannedBoxes boxes; }
        show_report({});
        show_report = former;
        QCOMPARE(reports, 1);
    }
};

/// Run in a process of its own: every test of it must fail.
class ForgetfulTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void expects_a_box_that_never_comes() {
        PlannedBoxes boxes;
        boxes.expect(u"x"_s, kOkOnly, u"Error"_s);
    }
    void shows_a_box_that_it_did_not_expect() {
        PlannedBoxes boxes;
        message_box(u"x"_s);
    }
};

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (application.arguments().contains(u"--forgetful"_s)) {
        ForgetfulTest forgetful;
        return QTest::qExec(&forgetful, QStringList{u"forgetful"_s});
    }
    PlannedBoxesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "planned_boxes_test.moc"
