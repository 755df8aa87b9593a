// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "common/error.h"

#include <QObject>
#include <functional>
#include <type_traits>

namespace folidex {

/// What one trap tells the user about a failure.
struct Report {
    QString module;
    QString procedure;
    int line = 0;
    QString description;
    int number = 0;

    /// The text of the report's message box, lines separated by "\r\n".
    QString prompt() const;
};

inline constexpr const char* kReportTitle = "Application Error";

/// The trap of one running procedure. Traps of nested procedures form a chain, innermost first,
/// which the crash filter reports from where an exception cannot travel. UI thread only.
class Trap {
public:
    Trap(const char* module, const char* procedure) noexcept
        : module_(module), procedure_(procedure), outer_(innermost) {
        innermost = this;
    }
    ~Trap() { innermost = outer_; }
    Trap(const Trap&) = delete;
    Trap& operator=(const Trap&) = delete;

    /// The last numbered line passed; shown in the report.
    void line(int number) noexcept { line_ = number; }

    /// Shows the report of one failure; used by pass_on and by the crash filter. A report that
    /// cannot be shown is printed on stderr.
    void report(int number, const QString& description) const noexcept;
    /// Reports the exception in flight and throws Error{kPassedOn}. Call inside a catch block.
    [[noreturn]] void pass_on();

    Trap* outer() const noexcept { return outer_; }

    static Trap* innermost;

private:
    const char* module_;
    const char* procedure_;
    int line_ = 0;
    Trap* outer_;
};

/// Cuts the chain of traps where the toolkit calls into the program, so that procedures further
/// up, waiting in a nested event loop, are not reported.
class Boundary {
public:
    Boundary() noexcept : outer_(Trap::innermost) { Trap::innermost = nullptr; }
    ~Boundary() { Trap::innermost = outer_; }
    Boundary(const Boundary&) = delete;
    Boundary& operator=(const Boundary&) = delete;

private:
    Trap* outer_;
};

/// Seams, set once before anything runs: how a report is shown, and how the process ends after
/// the outermost one (the default prints a line on stderr and ends with code 255 at once).
extern std::function<void(const Report&)> show_report;
extern std::function<void(const Error&)> end_program;

/// The exception being handled as an Error; foreign exceptions are mapped by a small table.
Error current_error();
/// What a trap raises once it has reported.
Error passed_on();

/// Ends the program for the exception in flight. Call inside a catch block.
void untrapped();

// A fault can come out of what the compiler takes for incapable of failing: with the body inlined,
// or looked into, it would leave the trap out. noipa forbids both.
#if defined(__clang__)
#define FOLIDEX_OPAQUE_CALL [[gnu::noinline]]
#else
#define FOLIDEX_OPAQUE_CALL [[gnu::noinline, gnu::noipa]]
#endif

/// Calls a part of a procedure so that a fault in it reaches the catch around the call.
template <class Body, class... Args> FOLIDEX_OPAQUE_CALL auto called(Body& body, Args&... args) {
    return body(args...);
}

/// Runs a procedure's body under its trap: a failure is reported under the procedure's name
/// and passed on as Error{kPassedOn}. The body may take a Trap& to number its lines.
template <class Body> auto trapped(const char* module, const char* procedure, Body&& body) {
    Trap trap{module, procedure};
    try {
        if constexpr (std::is_invocable_v<Body&, Trap&>)
            return called(body, trap);
        else
            return called(body);
    } catch (...) {
        trap.pass_on();
    }
}

/// The one road by which the toolkit calls into the program: nothing leaves it, an untrapped
/// failure ends the program.
template <class Handler> void outermost(Handler&& handler) {
    Boundary boundary;
    try {
        handler();
    } catch (...) {
        untrapped();
    }
}

/// Connects a signal to a procedure, behind outermost(). The handler takes the signal's
/// arguments or none.
template <class Sender, class Signal, class Handler>
QMetaObject::Connection on(Sender* sender, Signal signal, QObject* context, Handler handler) {
    return QObject::connect(sender, signal, context, [handler](auto&&... args) {
        outermost([&] {
            if constexpr (std::is_invocable_v<const Handler&, decltype(args)...>)
                handler(args...);
            else
                handler();
        });
    });
}

/// Runs a handler once from the event loop, behind outermost(), unless the context is gone.
void later(QObject* context, int milliseconds, std::function<void()> handler);

} // namespace folidex
