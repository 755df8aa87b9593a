// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/error_trap.h"

#include <QEventLoop>
#include <QTest>
#include <memory>
#include <new>
#include <stdexcept>

using namespace folidex;

class TestErrorTrap : public QObject {
    Q_OBJECT

signals:
    void numbered(int number);

private slots:
    void init();
    void cleanup();
    void a_prompt_is_put_together_to_the_letter();
    void a_procedure_that_passed_no_numbered_line_reports_line_0();
    void the_last_line_passed_is_reported();
    void a_failure_two_levels_deep_shows_two_reports_and_ends_the_program();
    void a_report_comes_before_the_callers_own_work_ends();
    void a_procedure_gives_back_what_its_body_gives();
    void an_error_passed_on_has_no_source_of_its_own();
    void foreign_exceptions_have_a_number_data();
    void foreign_exceptions_have_a_number();
    void traps_form_a_chain_while_they_are_armed();
    void the_toolkits_road_into_the_program_cuts_the_chain();
    void locals_are_released_before_the_report();
    void a_report_that_cannot_be_shown_does_not_stop_the_chain();
    void an_untrapped_failure_of_a_connected_handler_ends_the_program();
    void a_handler_gets_the_signals_arguments_or_none();
    void an_untrapped_failure_of_a_later_handler_ends_the_program();
    void a_later_handler_is_forgotten_with_its_context();
    void a_handler_run_by_a_signal_that_a_procedure_caused_is_outermost();
    void a_procedure_waiting_in_a_nested_loop_reports_nothing();

private:
    QStringList told_;
    QList<int> endings_;
    std::function<void(const Report&)> show_before_;
    std::function<void(const Error&)> end_before_;
};

namespace {

void fail() {
    throw Error{3078, QStringLiteral("no such table: tags"), QStringLiteral("database")};
}

void fill_grid() {
    trapped("frmTags", "fill_grid", fail);
}

void form_load() {
    trapped("frmTags", "Form_Load", fill_grid);
}

const QString kFillGrid = QStringLiteral("frmTags fill_grid 0 no such table: tags (3078)");
const QString kFormLoad =
    QStringLiteral("frmTags Form_Load 0 Application-defined or object-defined error (65535)");

} // namespace

void TestErrorTrap::init() {
    told_.clear();
    endings_.clear();
    show_before_ = show_report;
    end_before_ = end_program;
    show_report = [this](const Report& report) {
        told_ << QStringLiteral("%1 %2 %3 %4 (%5)")
                     .arg(report.module, report.procedure)
                     .arg(report.line)
                     .arg(report.description)
                     .arg(report.number);
    };
    end_program = [this](const Error& error) { endings_ << error.number; };
}

void TestErrorTrap::cleanup() {
    QCOMPARE(Trap::innermost, nullptr);
    show_report = show_before_;
    end_program = end_before_;
}

void TestErrorTrap::a_prompt_is_put_together_to_the_letter() {
    const Report report{QStringLiteral("frmTags"), QStringLiteral("fill_grid"), 0,
                        QStringLiteral("no such table: tags"), 3078};
    const QString prompt = report.prompt();
    QCOMPARE(prompt, QStringLiteral(
                         " has encountered a problem. We are sorry for the inconvenience.\r\n\r\n"
                         "Module: frmTags\r\nProcedure: fill_grid\r\nLine Number: 0\r\n\r\n"
                         "no such table: tags (3078)"));
    QVERIFY(prompt.startsWith(u' '));
    const QStringList lines = prompt.split(QStringLiteral("\r\n"));
    QCOMPARE(lines.count(QString()), 2);
    QCOMPARE(lines.indexOf(QString()), 1);
    QCOMPARE(lines.lastIndexOf(QString()), 5);
}

void TestErrorTrap::a_procedure_that_passed_no_numbered_line_reports_line_0() {
    outermost(fill_grid);
    QCOMPARE(told_, QStringList{kFillGrid});
}

void TestErrorTrap::the_last_line_passed_is_reported() {
    outermost([] {
        trapped("frmTags", "Form_Load", [](Trap& at) {
            at.line(10);
            at.line(-20);
            fill_grid();
            at.line(30);
        });
    });
    QCOMPARE(told_.value(1), QStringLiteral("frmTags Form_Load -20 Application-defined or "
                                            "object-defined error (65535)"));
}

void TestErrorTrap::a_failure_two_levels_deep_shows_two_reports_and_ends_the_program() {
    struct Ended {};
    end_program = [this](const Error& error) {
        endings_ << error.number;
        throw Ended{};
    };
    QVERIFY_EXCEPTION_THROWN(outermost(form_load), Ended);
    QCOMPARE(told_, (QStringList{kFillGrid, kFormLoad}));
    QCOMPARE(endings_, QList<int>{65535});
}

void TestErrorTrap::a_report_comes_before_the_callers_own_work_ends() {
    bool went_on = false;
    outermost([&] {
        trapped("frmTags", "Form_Load", [&] {
            fill_grid();
            went_on = true;
        });
    });
    QVERIFY(!went_on);
}

void TestErrorTrap::a_procedure_gives_back_what_its_body_gives() {
    QCOMPARE(trapped("Utilities", "getNewLink", [] { return 42; }), 42);
    const auto moved = trapped("Utilities", "x", [] { return std::make_unique<int>(7); });
    QCOMPARE(*moved, 7);
    int ran = 0;
    trapped("Utilities", "y", [&](Trap& at) {
        at.line(1);
        ++ran;
    });
    QCOMPARE(ran, 1);
    QVERIFY(told_.isEmpty());
    QVERIFY(endings_.isEmpty());
}

void TestErrorTrap::an_error_passed_on_has_no_source_of_its_own() {
    try {
        fill_grid();
        QFAIL("not passed on");
    } catch (const Error& error) {
        QCOMPARE(error.number, 65535);
        QCOMPARE(error.description, QStringLiteral("Application-defined or object-defined error"));
        QVERIFY(error.source.isEmpty());
    }
}

void TestErrorTrap::foreign_exceptions_have_a_number_data() {
    using Thrower = std::function<void()>;
    QTest::addColumn<Thrower>("thrower");
    QTest::addColumn<QString>("told");
    QTest::newRow("memory") << Thrower{[] { throw std::bad_alloc(); }} << "Out of memory (7)";
    QTest::newRow("subscript") << Thrower{[] { std::string().at(1); }}
                               << "Subscript out of range (9)";
    QTest::newRow("with words") << Thrower{[] { throw std::runtime_error("wrong"); }}
                                << "Internal error: wrong (51)";
    QTest::newRow("a number") << Thrower{[] { throw 5; }} << "Internal error (51)";
}

void TestErrorTrap::foreign_exceptions_have_a_number() {
    QFETCH(std::function<void()>, thrower);
    QFETCH(QString, told);
    outermost([&] { trapped("Utilities", "add_pop_menu", thrower); });
    QCOMPARE(told_, QStringList{QStringLiteral("Utilities add_pop_menu 0 ") + told});
}

void TestErrorTrap::traps_form_a_chain_while_they_are_armed() {
    QCOMPARE(Trap::innermost, nullptr);
    trapped("Module1", "Main", [](Trap& outer) {
        QCOMPARE(Trap::innermost, &outer);
        trapped("Module1", "open_database", [&](Trap& inner) {
            QCOMPARE(Trap::innermost, &inner);
            QCOMPARE(inner.outer(), &outer);
            const Boundary boundary;
            QCOMPARE(Trap::innermost, nullptr);
        });
        QCOMPARE(Trap::innermost, &outer);
    });
    QCOMPARE(Trap::innermost, nullptr);
}

void TestErrorTrap::the_toolkits_road_into_the_program_cuts_the_chain() {
    trapped("frmMain", "TB1_ButtonClick", [&](Trap& waiting) {
        Trap* seen = &waiting;
        outermost([&] { seen = Trap::innermost; });
        QCOMPARE(seen, nullptr);
        QCOMPARE(Trap::innermost, &waiting);
        outermost(fail);
        QCOMPARE(Trap::innermost, &waiting);
    });
    QCOMPARE(endings_, QList<int>{3078});
}

void TestErrorTrap::locals_are_released_before_the_report() {
    const auto shared = std::make_shared<int>(1);
    long owners = 0;
    show_report = [&](const Report&) { owners = shared.use_count(); };
    outermost([&] {
        trapped("frmTags", "fill_grid", [&] {
            const auto local = shared;
            fail();
        });
    });
    QCOMPARE(owners, 1L);
}

void TestErrorTrap::a_report_that_cannot_be_shown_does_not_stop_the_chain() {
    int times = 0;
    show_report = [&](const Report& report) {
        if (times++ == 0)
            throw std::bad_alloc();
        told_ << report.procedure + QString::number(report.number);
    };
    outermost(form_load);
    QCOMPARE(told_, QStringList{QStringLiteral("Form_Load65535")});
    QCOMPARE(endings_, QList<int>{65535});
}

void TestErrorTrap::an_untrapped_failure_of_a_connected_handler_ends_the_program() {
    QObject context;
    on(this, &TestErrorTrap::numbered, &context, form_load);
    emit numbered(1);
    QCOMPARE(told_, (QStringList{kFillGrid, kFormLoad}));
    QCOMPARE(endings_, QList<int>{65535});
}

void TestErrorTrap::a_handler_gets_the_signals_arguments_or_none() {
    QObject context;
    int got = 0;
    int ran = 0;
    on(this, &TestErrorTrap::numbered, &context, [&](int number) { got = number; });
    on(this, &TestErrorTrap::numbered, &context, [&] { ++ran; });
    emit numbered(12);
    QCOMPARE(got, 12);
    QCOMPARE(ran, 1);
}

void TestErrorTrap::an_untrapped_failure_of_a_later_handler_ends_the_program() {
    QObject context;
    later(&context, 0, fail);
    QVERIFY(endings_.isEmpty());
    QTRY_COMPARE(endings_, QList<int>{3078});
    QVERIFY(told_.isEmpty());
}

void TestErrorTrap::a_later_handler_is_forgotten_with_its_context() {
    auto context = std::make_unique<QObject>();
    later(context.get(), 0, fail);
    context.reset();
    bool passed = false;
    later(this, 0, [&] { passed = true; });
    QTRY_VERIFY(passed);
    QVERIFY(endings_.isEmpty());
}

void TestErrorTrap::a_handler_run_by_a_signal_that_a_procedure_caused_is_outermost() {
    QObject combo;
    on(&combo, &QObject::objectNameChanged, &combo,
       [] { trapped("frmMain", "cmbTags_Change", fail); });
    QStringList told_when_ended;
    end_program = [&](const Error& error) {
        endings_ << error.number;
        told_when_ended = told_;
    };
    trapped("frmMain", "fill_me", [&] { combo.setObjectName(QStringLiteral("chosen")); });
    QCOMPARE(told_when_ended,
             QStringList{QStringLiteral("frmMain cmbTags_Change 0 no such table: tags (3078)")});
    QCOMPARE(endings_, QList<int>{65535});
    QCOMPARE(told_, told_when_ended); // fill_me has nothing to report
}

void TestErrorTrap::a_procedure_waiting_in_a_nested_loop_reports_nothing() {
    trapped("frmMain", "TB1_ButtonClick", [&] {
        QEventLoop loop;
        end_program = [&](const Error& error) {
            endings_ << error.number;
            loop.quit();
        };
        later(&loop, 0, form_load);
        loop.exec();
    });
    QCOMPARE(told_, (QStringList{kFillGrid, kFormLoad}));
    QCOMPARE(endings_, QList<int>{65535});
}

QTEST_GUILESS_MAIN(TestErrorTrap)
#include "test_error_trap.moc"
