// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/Module1.h"
#include "app/application.h"
#include "common/error_trap.h"

int main(int argc, char** argv) {
    folidex::Application application(argc, argv);
    folidex::outermost(folidex::Main);
    return application.exec();
}
