// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "common/error_trap.h"
#include "data/database.h"
#include "data/link_numbers.h"

#include <QTextStream>

// draw_numbers <file> <count>: one workstation; it waits for a line on its input, so that all of
// them start together, and prints the numbers that it drew.
int main(int, char** arguments) {
    using namespace folidex;
    QTextStream out(stdout);
    try {
        set_database(Database::open(QString::fromUtf8(arguments[1])));
        out << "ready" << Qt::endl;
        QTextStream(stdin).readLine();
        for (int left = QString::fromUtf8(arguments[2]).toInt(); left > 0; --left)
            out << getNewLink(QString()) << '\n';
        out.flush();
        set_database(nullptr);
    } catch (const Error& error) {
        QTextStream(stderr) << error.number << ' ' << error.description << Qt::endl;
        return 1;
    }
    return 0;
}
