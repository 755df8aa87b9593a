// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QApplication>

namespace folidex {

/// The toolkit set up for the program: its name and icon, error reports shown as message boxes,
/// and the process ending when its last window is gone and none took its place.
class Application : public QApplication {
public:
    Application(int& argc, char** argv);

private:
    void end_without_windows();
};

} // namespace folidex
