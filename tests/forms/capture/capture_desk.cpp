// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/forms/capture/capture_desk.h"

#include "app/process_values.h"
#include "common/drop_menu.h"
#include "controls/active_link.h"
#include "platform/safe_file.h"
#include "platform/shell.h"

#include <QDir>
#include <QSignalSpy>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace folidex::test {

namespace {

constexpr int kLongestWait = 60'000;

} // namespace

CaptureDesk::CaptureDesk() : end_program_before_(end_program) {
    wall_clock = [this] { return now; };
    set_scanner_factory([script = scanner] { return std::make_unique<ScriptedScanner>(script); });
    ActiveLink::opener = [this](const QString& target) { opened.append(target); };
    end_program = [this](const Error& error) { ended.append(error.number); };
}

CaptureDesk::~CaptureDesk() {
    form.reset();
    wall_clock = [] { return QDateTime::currentDateTime(); };
    set_scanner_factory({});
    ActiveLink::opener = {};
    end_program = end_program_before_;
    sel_link = -1;
}

frmScanNew& CaptureDesk::show(int link) {
    form.reset();
    sel_link = link;
    form = std::make_unique<frmScanNew>();
    form->show();
    form->activateWindow();
    if (!QTest::qWaitForWindowActive(form.get(), kLongestWait))
        qWarning("the form did not become active");
    return *form;
}

frmScanNew& CaptureDesk::open(int link) {
    show(link);
    const auto* timer = control<QTimer>("Timer1");
    if (!QTest::qWaitFor([timer] { return !timer->isActive(); }, kLongestWait))
        qWarning("the document was not loaded");
    return *form;
}

QString CaptureDesk::focus_name() const {
    // Inner parts of a control, such as the combo's field, count as the control.
    const QWidget* widget = form->focusWidget();
    while (widget && (widget->objectName().isEmpty() || widget->objectName().startsWith(u"qt_"_s)))
        widget = widget->parentWidget();
    return widget ? widget->objectName() : QString();
}

void CaptureDesk::click(const char* button) const {
    auto* target = control<QAbstractButton>(button);
    QTest::mouseClick(target, Qt::LeftButton);
}

void CaptureDesk::describe(const QString& text) const {
    description()->selectAll();
    description()->insert(text);
}

void CaptureDesk::add_tag(const QString& text) const {
    tags()->setFocus();
    tags()->set_entered_text({});
    // To the widget with the focus, as a keyboard gives them: that is not the combo's field.
    QTest::keyClicks(form->focusWidget(), text);
    QTest::keyClick(form->focusWidget(), Qt::Key_Return);
}

void CaptureDesk::scan(const QString& source) {
    click("cmdScan");
    choose(source);
}

void CaptureDesk::choose(const QString& caption) const {
    auto* menu = control<DropMenu>("Dmnu");
    if (!QTest::qWaitFor([menu] { return menu->isVisible(); }, kLongestWait))
        qWarning("no menu is open");
    for (int index = 1; index <= menu->ItemCount(); ++index) {
        if (menu->ItemCaption(index) != caption)
            continue;
        const QSignalSpy chosen(menu, &DropMenu::ItemClick);
        menu->setActiveAction(menu->actions().at(index - 1));
        QTest::keyClick(menu, Qt::Key_Return);
        if (!QTest::qWaitFor([&chosen] { return !chosen.isEmpty(); }, kLongestWait))
            qWarning("the item could not be chosen");
        return;
    }
    qWarning("the menu has no such item");
}

QStringList CaptureDesk::menu() const {
    const auto* menu = control<DropMenu>("Dmnu");
    QStringList lines;
    for (int index = 1; index <= menu->ItemCount(); ++index) {
        if (menu->is_separator(index))
            lines.append(u"-"_s);
        else
            lines.append((menu->item_enabled(index) ? u""_s : u"!"_s) +
                         (menu->item_checked(index) ? u"*"_s : u""_s) + menu->ItemCaption(index));
    }
    return lines;
}

QStringList CaptureDesk::scans() const {
    return station.rows(u"Select description, date, fname, location from scans order by link"_s);
}

QStringList CaptureDesk::tagged() const {
    return station.rows(u"Select rowid, scan, tag from tagged order by rowid"_s);
}

QStringList CaptureDesk::assigned_tags() const {
    QStringList lines;
    for (int row = 0; row < assigned()->rows(); ++row)
        lines.append(assigned()->text(row, 1) + u'=' + assigned()->text(row, 2));
    return lines;
}

void CaptureDesk::click_cell(int row, int column) const {
    const Grid* grid = assigned();
    const QRect cell = grid->visualRect(grid->model()->index(row, column));
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cell.center());
}

void CaptureDesk::set_date(const QDate& day) const {
    date()->setDate(day);
}

void CaptureDesk::fill_in(const QString& text, const QString& tag) {
    describe(text);
    add_tag(tag);
    scan();
}

QString CaptureDesk::filed(const QString& location, const QString& name) const {
    return content_of(document_path(location, name));
}

void CaptureDesk::put_file(const QString& location, const QString& name,
                           const QByteArray& content) const {
    QDir(station.data_folder()).mkpath(u"scanned_files/"_s + location);
    QFile file(document_path(location, name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot put a file in place");
}

QStringList CaptureDesk::files(const QString& location) const {
    return QDir(station.data_folder() + u"/scanned_files/"_s + location)
        .entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

void CaptureDesk::have_help_page() const {
    const QDir program(program_folder());
    program.mkpath(u"site/help"_s);
    write_file(program.filePath(u"site/help/index.html"_s), "help");
}

void leave(std::unique_ptr<CaptureDesk>& desk) {
    const bool as_planned = desk->boxes.verify();
    const QList<int> ended = desk->ended;
    desk.reset();
    QVERIFY(as_planned);
    QCOMPARE(ended, QList<int>());
}

QString content_of(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : u"<none>"_s;
}

} // namespace folidex::test
