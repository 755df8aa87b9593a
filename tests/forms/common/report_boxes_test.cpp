// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include <QMessageBox>
#include <QProcess>
#include <QTest>

/// Looks at the real report boxes of a failing form, in the program of report_boxes.cpp.
class ReportBoxesTest : public QObject {
    Q_OBJECT

private slots:
    void a_failing_form_shows_a_box_for_each_procedure_and_ends_the_program_data();
    void a_failing_form_shows_a_box_for_each_procedure_and_ends_the_program();
};

void ReportBoxesTest::a_failing_form_shows_a_box_for_each_procedure_and_ends_the_program_data() {
    QTest::addColumn<QString>("how");
    QTest::addColumn<QString>("failure");
    QTest::newRow("error") << "error"
                           << "no <b>such</b> table & no field (3078)";
    QTest::newRow("fault") << "fault"
                           << "Access Violation (10005)";
    QTest::newRow("fault that no exception can leave") << "noexcept"
                                                       << "Access Violation (10005)";
}

void ReportBoxesTest::a_failing_form_shows_a_box_for_each_procedure_and_ends_the_program() {
    QFETCH(QString, how);
    QFETCH(QString, failure);
    QProcess child;
    child.start(QStringLiteral(FOLIDEX_REPORT_BOXES), {how});
    QVERIFY2(child.waitForFinished(60'000), qPrintable(child.errorString()));
    const QString box = QStringLiteral("BOX title=Application Error icon=%1 buttons=%2 modal=1")
                            .arg(QMessageBox::Critical)
                            .arg(QString::number(QMessageBox::Ok, 16));
    const QString text =
        QStringLiteral(" has encountered a problem. We are sorry for the inconvenience.||"
                       "Module: frmTags|Procedure: %1|Line Number: 0||%2");
    const QString passed_on = QStringLiteral("Application-defined or object-defined error (65535)");
    const QStringList expected{box, text.arg(QStringLiteral("fill_grid"), failure), box,
                               text.arg(QStringLiteral("Form_Load"), passed_on)};
    QCOMPARE(QString::fromUtf8(child.readAllStandardOutput().replace('\r', ""))
                 .split(u'\n', Qt::SkipEmptyParts),
             expected);
    QCOMPARE(child.exitStatus(), QProcess::NormalExit);
    QCOMPARE(child.exitCode(), 255);
}

QTEST_GUILESS_MAIN(ReportBoxesTest)
#include "report_boxes_test.moc"
