// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/process_values.h"
#include "common/error_trap.h"
#include "data/database.h"
#include "data/link_numbers.h"

#include <QTextStream>
#include <iostream>
#include <string>

// draw_numbers <file>: one workstation. For every line on its input, which all stations get at the
// same time, it draws a number and prints it.
int main(int, char** arguments) {
    using namespace folidex;
    QTextStream out(stdout);
    try {
        set_database(Database::open(QString::fromUtf8(arguments[1])));
        out << "ready" << Qt::endl;
        for (std::string line; std::getline(std::cin, line);)
            out << getNewLink(QString()) << Qt::endl;
        set_database(nullptr);
    } catch (const Error& error) {
        QTextStream(stderr) << error.number << ' ' << error.description << Qt::endl;
        return 1;
    }
    return 0;
}
