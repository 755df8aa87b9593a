// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include <QFileInfo>
#include <QProcess>
#include <QTest>

namespace {

constexpr int kPatience = 60'000;
constexpr int kCode = 7;

/// What a program of leave_cases.cpp says, line by line; it must end, and with its code.
QStringList said_by(const QString& program, const QString& name) {
    QProcess child;
    child.start(program, {name});
    if (!child.waitForFinished(kPatience)) {
        child.kill();
        child.waitForFinished();
        return {QStringLiteral("hangs or does not start: ") + child.errorString()};
    }
    if (child.exitStatus() != QProcess::NormalExit || child.exitCode() != kCode)
        return {QStringLiteral("ended with code %1").arg(child.exitCode())};
    return QString::fromUtf8(child.readAllStandardOutput().replace('\r', ""))
        .split(u'\n', Qt::SkipEmptyParts);
}

} // namespace

class TestLeaveProcess : public QObject {
    Q_OBJECT

private slots:
    void initTestCase_data();
    void what_the_program_keeps_is_put_away();
    void a_dropped_process_puts_nothing_away();
};

void TestLeaveProcess::initTestCase_data() {
    QTest::addColumn<QString>("program");
    for (const QString& program : QStringLiteral(FOLIDEX_LEAVE_CASES).split(u'|'))
        QTest::newRow(qPrintable(QFileInfo(program).baseName())) << program;
}

void TestLeaveProcess::what_the_program_keeps_is_put_away() {
    QFETCH_GLOBAL(QString, program);
    QCOMPARE(said_by(program, QStringLiteral("left")),
             QStringList({QStringLiteral("exit heard of"), QStringLiteral("put away")}));
}

void TestLeaveProcess::a_dropped_process_puts_nothing_away() {
    QFETCH_GLOBAL(QString, program);
    QCOMPARE(said_by(program, QStringLiteral("dropped")), QStringList());
}

QTEST_GUILESS_MAIN(TestLeaveProcess)
#include "test_leave_process.moc"
