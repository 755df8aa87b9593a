#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""Every rule of tools/check_source must be seen to fail, and to let the right place pass."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

TOOL = pathlib.Path(__file__).resolve().parents[2] / "tools/check_source"
HEAD = "// SPDX-FileCopyrightText: The Folidex authors\n// SPDX-License-Identifier: Apache-2.0\n"
CMAKE_HEAD = HEAD.replace("//", "#")


class CheckSource(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.root = pathlib.Path(self.folder.name)

    def write(self, path, text, head=None):
        file = self.root / path
        file.parent.mkdir(parents=True, exist_ok=True)
        if head is None:
            head = CMAKE_HEAD if path.endswith("CMakeLists.txt") else HEAD
        file.write_text(head + text)

    def check(self, *options):
        done = subprocess.run([sys.executable, str(TOOL), "--root", str(self.root),
                               *(options or ("--format", "off"))],
                              capture_output=True, text=True, check=False)
        return done.returncode, done.stdout + done.stderr

    def assert_found(self, path, words, line):
        code, output = self.check()
        self.assertEqual(code, 1, output)
        self.assertIn(f"{path}:{line}: ", output)
        self.assertIn(words, output)
        self.assertIn(" 1 errors", output)

    def assert_clean(self):
        code, output = self.check()
        self.assertEqual(code, 0, output)
        self.assertIn(" 0 errors, 0 warnings", output)

    def test_a_bare_connect_is_found(self):
        self.write("tags/a.cpp", "void f() {\n    connect(a, &A::b, c);\n}\n")
        self.assert_found("tags/a.cpp", "bare connect(", 4)

    def test_a_connect_named_with_its_class_is_found(self):
        self.write("tags/a.cpp", "void f() { QObject::connect(a, &A::b, c); }\n")
        self.assert_found("tags/a.cpp", "bare connect(", 3)

    def test_connect_in_a_comment_a_text_or_another_word_is_none(self):
        self.write("tags/a.cpp", '// connect(a)\n/* connect(\n a) */ auto t = "connect(";\n'
                                 "void g() { disconnect(a); }\nauto r = R\"(connect()\";\n")
        self.assert_clean()

    def test_the_boundary_itself_and_tests_may_connect(self):
        self.write("common/error_trap.cpp", "void f() { connect(a); singleShot(b); }\n")
        self.write("tests/unit/a.cpp", "void f() { connect(a); QMessageBox b; }\n")
        self.assert_clean()

    def test_a_bare_single_shot_is_found(self):
        self.write("browser/a.cpp", "void f() { QTimer::singleShot(0, [] {}); }\n")
        self.assert_found("browser/a.cpp", "bare singleShot(", 3)

    def test_a_message_box_elsewhere_is_found(self):
        self.write("location/a.cpp", "void f() { QMessageBox::about(a); }\n")
        self.assert_found("location/a.cpp", "QMessageBox belongs", 3)

    def test_a_message_box_header_elsewhere_is_found(self):
        self.write("location/a.h", "#include <QMessageBox>\n")
        code, output = self.check()
        self.assertEqual(code, 1)
        self.assertIn("location/a.h:3: QMessageBox belongs", output)

    def test_message_box_cpp_may_show_one(self):
        self.write("common/message_box.cpp", "#include <QMessageBox>\nQMessageBox box;\n")
        self.assert_clean()

    def test_sqlite_outside_data_is_found(self):
        self.write("browser/a.cpp", "#include <sqlite3.h>\n")
        self.assert_found("browser/a.cpp", "sqlite3.h is included outside", 3)

    def test_sqlite_in_a_header_of_data_is_found(self):
        self.write("data/database.h", "#include <sqlite3.h>\n")
        self.assert_found("data/database.h", "sqlite3.h is included outside", 3)

    def test_sane_outside_its_back_end_is_found(self):
        self.write("capture/scanner/scanner.cpp", "#include <sane/sane.h>\n")
        self.assert_found("capture/scanner/scanner.cpp", "sane/sane.h is included outside", 3)

    def test_windows_header_outside_its_sources_is_found(self):
        self.write("common/a.cpp", "#include <windows.h>\n")
        self.assert_found("common/a.cpp", "windows.h is included outside", 3)

    def test_system_headers_at_home_pass(self):
        self.write("data/database.cpp", "#include <sqlite3.h>\n")
        self.write("capture/scanner/sane_scanner.cpp", "#include <sane/sane.h>\n")
        self.write("common/crash_filter_windows.cpp", "#include <windows.h>\n")
        self.assert_clean()

    def test_system_conditions_are_found(self):
        for condition in ("#ifdef _WIN32", "#if defined(Q_OS_LINUX)", "# ifndef __linux__",
                          "#elif defined(Q_OS_WIN)"):
            self.write("app/a.cpp", f"{condition}\n#endif\n")
            self.assert_found("app/a.cpp", "a condition on", 3)

    def test_system_conditions_in_platform_and_back_ends_pass(self):
        self.write("platform/shell.h", "#ifdef _WIN32\n#endif\n")
        self.write("capture/scanner/twain_types.h", "#ifdef _WIN32\n#endif\n")
        self.assert_clean()

    def test_a_data_library_with_widgets_is_found(self):
        self.write("data/CMakeLists.txt", "folidex_library(folidex_data core SOURCES\n    a.cpp\n"
                                          "    LINK Qt6::Widgets)\n")
        self.assert_found("data/CMakeLists.txt", "has no windows", 3)

    def test_a_data_library_of_kind_widgets_is_found(self):
        self.write("data/CMakeLists.txt", "folidex_library(folidex_data widgets SOURCES a.cpp)\n")
        self.assert_found("data/CMakeLists.txt", "must not be of kind widgets", 3)

    def test_a_core_library_of_common_with_a_later_link_is_found(self):
        self.write("common/CMakeLists.txt", "folidex_library(folidex_common core SOURCES a.cpp)\n"
                                            "target_link_libraries(folidex_common PRIVATE Qt6::Gui)"
                                            "\n")
        self.assert_found("common/CMakeLists.txt", "has no windows", 4)

    def test_the_windows_library_of_common_may_link_widgets(self):
        self.write("common/CMakeLists.txt", "folidex_library(folidex_common_ui widgets SOURCES "
                                            "a.cpp LINK folidex_common Qt6::Widgets)\n")
        self.assert_clean()

    def test_a_missing_licence_line_is_found(self):
        self.write("data/a.h", "int a;\n", head=HEAD.splitlines()[0] + "\n")
        self.assert_found("data/a.h", "SPDX-License-Identifier: Apache-2.0", 1)

    def test_an_installer_script_or_shared_shell_code_without_licence_is_found(self):
        for name in ("packaging/windows/a.nsi", "packaging/windows/a.nsh", "tools/a.bash"):
            self.assert_unlicenced(name)

    def test_a_window_a_document_and_settings_without_licence_are_found(self):
        for name in ("tags/a.ui", "README.md", "docs/a.md", "tests/support/sane/a.conf"):
            self.assert_unlicenced(name)

    def test_a_licence_in_a_comment_of_the_language_passes(self):
        lines = [line.removeprefix("// ") for line in HEAD.splitlines()]
        note = "".join(f"<!-- {line} -->\n" for line in lines)
        self.write("README.md", "# A\n", head=note)
        self.write("tags/a.ui", "<ui/>\n", head='<?xml version="1.0"?>\n' + note)
        self.write("tests/a.conf", "a\n", head=CMAKE_HEAD)
        self.assert_clean()

    def assert_unlicenced(self, name):
        self.write(name, "Name a\n", head="")
        code, output = self.check()
        self.assertEqual(code, 1, name)
        self.assertIn(f"{name}:1: ", output)

    def test_a_script_without_licence_is_found(self):
        self.write("tools/a", "#!/bin/bash\nset -euo pipefail\n", head="")
        code, output = self.check()
        self.assertEqual(code, 1)
        self.assertIn("tools/a:1: ", output)

    def test_a_form_that_includes_another_is_found(self):
        self.write("tags/frmTags.cpp", '#include "browser/frmMain.h"\n')
        self.assert_found("tags/frmTags.cpp", "must not know browser/frmMain.h", 3)
        self.write("tags/frmTags.cpp", '#include "capture/frmScanNew.h"\n')
        self.assert_found("tags/frmTags.cpp", "must not know capture/frmScanNew.h", 3)

    def test_a_lower_floor_that_includes_a_higher_is_found(self):
        self.write("data/recordset.cpp", '#include "controls/grid.h"\n')
        self.assert_found("data/recordset.cpp", "must not know controls/grid.h", 3)

    def test_a_form_that_includes_start_up_is_found(self):
        self.write("location/a.cpp", '#include "app/Module1.h"\n')
        self.assert_found("location/a.cpp", "must not know app/Module1.h", 3)

    def test_the_browser_may_include_the_forms_it_opens(self):
        self.write("browser/a.cpp", '#include "capture/frmScanNew.h"\n#include "tags/frmTags.h"\n'
                                    '#include "app/preferences.h"\n#include "common/error.h"\n')
        self.assert_clean()

    def test_long_files_are_warned_of(self):
        self.write("tags/long.cpp", "int a;\n" * 399)
        self.write("tags/long.h", "int a;\n" * 149)
        code, output = self.check()
        self.assertEqual(code, 0, output)
        self.assertIn("tags/long.cpp:1: warning: 401 lines", output)
        self.assertIn("tags/long.h:1: warning: 151 lines", output)

    def test_a_script_that_does_not_parse_is_found(self):
        self.write("tools/a", "set -euo pipefail\nif true; then\n",
                   head="#!/bin/bash\n" + CMAKE_HEAD)
        self.assert_found("tools/a", "does not parse", 1)

    def test_a_python_script_that_does_not_parse_is_found(self):
        self.write("tools/a.py", "def f(:\n", head=CMAKE_HEAD)
        self.assert_found("tools/a.py", "does not parse", 3)

    def test_a_bash_script_that_goes_on_after_a_failure_is_found(self):
        self.write("tools/a", "true\n", head="#!/bin/bash\n" + CMAKE_HEAD)
        self.assert_found("tools/a", "sets -euo pipefail", 1)

    def test_unformatted_code_is_warned_of_or_refused(self):
        (self.root / ".clang-format").write_text("BasedOnStyle: LLVM\n")
        self.write("tags/a.cpp", "int   a ;\n")
        code, output = self.check("--format", "warn")
        self.assertEqual(code, 0, output)
        self.assertIn("tags/a.cpp:3: warning: not as .clang-format wants it", output)
        code, output = self.check("--format", "error")
        self.assertEqual(code, 1, output)

    def test_an_empty_folder_is_no_success(self):
        code, output = self.check()
        self.assertEqual(code, 1)
        self.assertIn("there are no files under", output)


if __name__ == "__main__":
    unittest.main()
