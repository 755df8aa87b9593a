// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// A program with a form whose loading fails as its argument says. It closes its own report
// boxes and writes on stdout what they showed; report_boxes_test reads it.

#include "common/crash_filter.h"
#include "common/error_trap.h"
#include "common/message_box.h"
#include "tests/support/test_system.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QTimer>
#include <cstdio>
#include <cstring>

using namespace folidex;

namespace {

int* volatile nowhere = nullptr;

void say(const QString& line) {
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

void close_the_box() {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (!box || !box->isVisible())
        return;
    QStringList buttons;
    for (const QAbstractButton* button : box->buttons())
        buttons << QString::number(box->standardButton(const_cast<QAbstractButton*>(button)), 16);
    say(QStringLiteral("BOX title=%1 icon=%2 buttons=%3 modal=%4")
            .arg(box->windowTitle())
            .arg(box->icon())
            .arg(buttons.join(u','))
            .arg(box->isModal()));
    say(box->text().replace(u'\n', u'|'));
    box->button(QMessageBox::Ok)->click();
}

void fault_under_noexcept() noexcept {
    *nowhere = 1;
}

void fill_grid(const char* how) {
    trapped("frmTags", "fill_grid", [how] {
        if (std::strcmp(how, "error") == 0)
            throw Error{3078, QStringLiteral("no <b>such</b> table & no field")};
        if (std::strcmp(how, "fault") == 0)
            *nowhere = 1;
        fault_under_noexcept();
    });
}

void form_load(const char* how) {
    trapped("frmTags", "Form_Load", [how] { fill_grid(how); });
}

/// A form over a form: the procedure that shows it waits in its event loop.
void show_form(const char* how) {
    trapped("frmMain", "TB1_ButtonClick", [how] {
        QDialog form;
        form.setWindowTitle(QStringLiteral("Tags"));
        later(&form, 0, [how] { form_load(how); });
        form.exec();
        say(QStringLiteral("came back"));
    });
}

} // namespace

int main(int argc, char** argv) {
    test::fail_quietly();
    QApplication application(argc, argv);
    show_report = [](const Report& report) {
        message_box(report.prompt(), kCriticalIcon, QString::fromLatin1(kReportTitle));
    };
    QTimer watcher;
    on(&watcher, &QTimer::timeout, &watcher, close_the_box);
    watcher.start(20);
    const char* how = argc > 1 ? argv[1] : "";
    outermost(vbcsInstallFilter);
    later(&application, 0, [how] { show_form(how); });
    return QApplication::exec();
}
