// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/Module1.h"
#include "app/application.h"
#include "common/error_trap.h"
#include "common/leave_process.h"

int main(int argc, char** argv) {
    int code = 0;
    {
        folidex::Application application(argc, argv);
        folidex::outermost(folidex::Main);
        code = application.exec();
    }
    folidex::leave_process(code);
}
