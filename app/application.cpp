// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/application.h"

#include "common/error_trap.h"
#include "common/message_box.h"
#include "controls/icons.h"

namespace folidex {

using namespace Qt::StringLiterals;

namespace {

// As the toolkit's own light palette has it: half of the text's strength.
constexpr int kPromptAlpha = 128;

} // namespace

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {
    setApplicationName(u"Folidex"_s);
    setApplicationDisplayName({});
    setApplicationVersion(QString::number(FOLIDEX_VERSION_MAJOR) + u'.' +
                          QString::number(FOLIDEX_VERSION_MINOR) + u'.' +
                          QString::number(FOLIDEX_VERSION_REVISION));
    setDesktopFileName(u"folidex"_s);
    setWindowIcon(application_icon());
    // Dark desktops leave the prompts of empty fields in a colour that cannot be read on theirs.
    QColor prompt = palette().color(QPalette::Text);
    prompt.setAlpha(kPromptAlpha);
    QPalette prompts;
    prompts.setColor(QPalette::PlaceholderText, prompt);
    setPalette(prompts);
    show_report = [](const Report& report) {
        message_box(report.prompt(), kCriticalIcon, QString::fromLatin1(kReportTitle));
    };
    // "Data Location" closes the only window before the next one is there, so the decision
    // waits until the handler that closed it is through.
    setQuitOnLastWindowClosed(false);
    on(this, &QGuiApplication::lastWindowClosed, this,
       [this] { later(this, 0, [this] { end_without_windows(); }); });
}

void Application::end_without_windows() {
    for (const QWidget* window : topLevelWidgets())
        if (window->isVisible())
            return;
    quit();
}

} // namespace folidex
