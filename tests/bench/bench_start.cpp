// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// From the start of the program to its first painted window, with preferences and a data folder
// of a hundred thousand documents there, against a window of the same shape that does nothing.
// Offscreen, in turns, everything in the system's cache. Ends with the ratio, the goal and an
// exit code of 1 when it is missed.

#include "app/process_values.h"
#include "common/error.h"
#include "data/database.h"
#include "tests/bench/comparison.h"
#include "tests/bench/sample_data.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDir>
#include <QFile>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTableView>
#include <QTemporaryDir>
#include <QTextStream>
#include <QToolBar>
#include <ctime>

using namespace folidex;
using namespace Qt::StringLiterals;

namespace {

constexpr int kRepetitions = 15;
constexpr double kMostOfWindow = 2;
constexpr int kPatience = 60'000;

double monotonic_seconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

QTableView* table(int columns, QWidget* parent) {
    auto* view = new QTableView(parent);
    view->setModel(new QStandardItemModel(0, columns, view));
    view->horizontalHeader()->setStretchLastSection(true);
    return view;
}

/// The main window's controls, with nothing behind them.
int be_window(int& argc, char** argv) {
    QApplication application(argc, argv);
    QWidget window;
    auto* commands = new QToolBar(&window);
    for (const char* text :
         {"New", "Edit", "Delete", "Locate File", "Open File", "Maintenance", "Help", "Exit"})
        commands->addAction(QLatin1String(text));
    auto* filter = new QGroupBox(u"Filter"_s, &window);
    auto* tag_line = new QHBoxLayout;
    auto* tags = new QComboBox;
    tags->setEditable(true);
    tag_line->addWidget(tags, 1);
    tag_line->addWidget(new QPushButton(u"Add"_s));
    auto* lines = new QFormLayout(filter);
    lines->addRow(tag_line);
    lines->addRow(new QCheckBox(u"All Dates"_s));
    for (const char* text : {"From", "To"}) {
        auto* date = new QDateEdit;
        date->setCalendarPopup(true);
        lines->addRow(QLatin1String(text), date);
    }
    lines->addRow(table(3, filter));
    lines->addRow(new QPushButton(u"Add All"_s));
    auto* documents = new QGroupBox(u"Documents"_s, &window);
    (new QHBoxLayout(documents))->addWidget(table(5, documents));
    auto* halves = new QHBoxLayout;
    halves->addWidget(filter);
    halves->addWidget(documents, 1);
    auto* all = new QVBoxLayout(&window);
    all->addWidget(commands);
    all->addLayout(halves, 1);
    all->addWidget(new QLabel(u"0 documents"_s));
    window.resize(1000, 640);
    window.show();
    return QApplication::exec();
}

/// Seconds to the first paint; what the process is given makes it tell.
double start(const QString& program, const QStringList& arguments, const QString& home) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    environment.insert(u"QT_PLUGIN_PATH"_s, QStringLiteral(FOLIDEX_FIRST_PAINT));
    environment.insert(u"QT_QPA_GENERIC_PLUGINS"_s, u"folidexfirstpaint"_s);
    environment.insert(u"XDG_DATA_HOME"_s, home);
    QProcess process;
    process.setProcessEnvironment(environment);
    const double begin = monotonic_seconds();
    process.start(program, arguments);
    bool is_number = false;
    if (process.waitForFinished(kPatience)) {
        const double end = process.readAllStandardOutput().trimmed().toDouble(&is_number) * 1e-9;
        if (is_number)
            return end - begin;
    }
    qFatal("%s told no moment: %s", qPrintable(program),
           process.readAllStandardError().constData());
}

/// What an earlier run left.
void make_home(const QString& home) {
    const QString data = home + u"/Documents"_s;
    const QString folder = home + u"/Brightmoor"_s;
    if (!QDir().mkpath(data) || !QDir().mkpath(folder))
        throw Error{kPathNotFound, home};
    bench::open_sample(data + u"/db.mdb"_s, bench::sample_size());
    set_database(nullptr);
    QFile file(folder + u"/folidex_Preferences.xml"_s);
    if (!file.open(QIODevice::WriteOnly))
        throw Error{kPermissionDenied, file.fileName()};
    file.write("<folidex><dblocation>" + data.toUtf8() + "</dblocation></folidex>");
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 1 && QByteArrayView(argv[1]) == QByteArrayView("--window"))
        return be_window(argc, argv);
    QCoreApplication application(argc, argv);
    bench::Comparison comparison(argc, argv);
    QTextStream out(stdout);
    try {
        const QTemporaryDir folder;
        const QString home = folder.path();
        const QString self = QCoreApplication::applicationFilePath();
        const QString program = QStringLiteral(FOLIDEX_PROGRAM);
        make_home(home);
        // Once before, so that everything is in the cache.
        start(program, {}, home);
        start(self, {u"--window"_s}, home);
        comparison.add("program", kRepetitions, [&] { return start(program, {}, home); });
        comparison.add("window", kRepetitions, [&] { return start(self, {u"--window"_s}, home); });
        comparison.run();
        const double ours = comparison.median("program");
        const double window = comparison.median("window");
        out << "to the first paint: program " << ours * 1000 << " ms, a window of its shape "
            << window * 1000 << " ms" << Qt::endl;
        return bench::report(u"start by the window's"_s, window == 0 ? 0 : ours / window,
                             kMostOfWindow)
                   ? 0
                   : 1;
    } catch (const Error& error) {
        out << error.description << Qt::endl;
        return 2;
    }
}
