// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "common/error_trap.h"

#include "common/leave_process.h"

#include <QTimer>
#include <cstdio>
#include <new>
#include <stdexcept>

namespace folidex {

Trap* Trap::innermost = nullptr;

namespace {

void print_report(const Report& report) {
    std::fprintf(stderr, "%s:%s\n", kReportTitle, report.prompt().toLocal8Bit().constData());
}

void end_process(const Error& error) {
    std::fprintf(stderr, "run-time error %d: %s\n", error.number,
                 error.description.toLocal8Bit().constData());
    std::fflush(nullptr);
    // Static destructors would run with event loops still on the stack.
    drop_process(255);
}

} // namespace

std::function<void(const Report&)> show_report = print_report;
std::function<void(const Error&)> end_program = end_process;

QString Report::prompt() const {
    return QStringLiteral(
               " has encountered a problem. We are sorry for the inconvenience.\r\n\r\n") +
           QStringLiteral("Module: ") + module + QStringLiteral("\r\n") +
           QStringLiteral("Procedure: ") + procedure + QStringLiteral("\r\n") +
           QStringLiteral("Line Number: ") + QString::number(line) + QStringLiteral("\r\n\r\n") +
           description + QStringLiteral(" (") + QString::number(number) + QStringLiteral(")");
}

void Trap::report(int number, const QString& description) const noexcept {
    const Report told{QString::fromLatin1(module_), QString::fromLatin1(procedure_), line_,
                      description, number};
    auto show = [&told] { show_report(told); };
    try {
        called(show);
    } catch (...) {
        print_report(told);
    }
}

void Trap::pass_on() {
    const Error error = current_error();
    report(error.number, error.description);
    throw passed_on();
}

Error passed_on() {
    return {kPassedOn, QString::fromLatin1(kPassedOnText)};
}

Error current_error() {
    if (!std::current_exception()) // std::terminate() needs none
        return {kInternalError, QStringLiteral("Internal error")};
    try {
        throw;
    } catch (const Error& error) {
        return error;
    } catch (const std::bad_alloc&) {
        return {kOutOfMemory, QStringLiteral("Out of memory")};
    } catch (const std::out_of_range&) {
        return {kSubscriptOutOfRange, QStringLiteral("Subscript out of range")};
    } catch (const std::exception& exception) {
        return {kInternalError,
                QStringLiteral("Internal error: ") + QString::fromLocal8Bit(exception.what())};
    } catch (...) {
        return {kInternalError, QStringLiteral("Internal error")};
    }
}

void untrapped() {
    end_program(current_error());
}

void later(QObject* context, int milliseconds, std::function<void()> handler) {
    QTimer::singleShot(milliseconds, context,
                       [handler = std::move(handler)] { outermost(handler); });
}

} // namespace folidex
