#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""tools/install-packages with stand-ins for the package tools: what it asks for, and its words."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

TOOL = pathlib.Path(__file__).resolve().parents[2] / "tools/install-packages"
INSTALLED = "#!/bin/sh\nprintf installed\n"
NOT_INSTALLED = "#!/bin/sh\nexit 1\n"
APT = "#!/bin/sh\necho \"$@ $DEBIAN_FRONTEND\" >>\"$CALLS\"\n"


class InstallPackages(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.calls = self.folder / "calls"
        self.tools = self.folder / "bin"
        self.tools.mkdir()
        for name in ("bash", "env", "sort", "mktemp", "rm", "tail", "sh"):
            (self.tools / name).symlink_to(shutil.which(name))

    def stand_in(self, name, text):
        path = self.tools / name
        path.write_text(text)
        path.chmod(0o755)

    def install(self, *groups, root):
        # EUID cannot be assigned in bash, so the ordinary user is made by a copy that asks another
        # variable.
        script = self.folder / "install-packages"
        script.write_text(TOOL.read_text().replace("$EUID", "$ASKED_EUID"))
        return subprocess.run(
            [str(self.tools / "bash"), str(script), *groups], stdin=subprocess.DEVNULL,
            env={"PATH": str(self.tools), "CALLS": str(self.calls), "TMPDIR": str(self.folder),
                 "ASKED_EUID": "0" if root else "1000"},
            capture_output=True, text=True, check=False)

    def called(self):
        return self.calls.read_text().splitlines() if self.calls.exists() else []

    def test_it_is_quiet_when_nothing_is_missing(self):
        self.stand_in("dpkg-query", INSTALLED)
        self.stand_in("apt-get", APT)
        done = self.install("run", "tour", "test", "cross", root=True)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))
        self.assertEqual(self.called(), [])

    def test_only_the_missing_packages_are_installed(self):
        self.stand_in("dpkg-query", "#!/bin/sh\nfor a; do :; done\n"
                                    "[ \"$a\" != xvfb ] && printf installed || exit 1\n")
        self.stand_in("apt-get", APT)
        done = self.install("run", "tour", root=True)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn("Installing xvfb\n", done.stdout)
        update, install = self.called()
        self.assertIn(" update noninteractive", update)
        self.assertTrue(install.endswith(
            " install --no-install-recommends xvfb noninteractive"), install)

    def test_a_removed_package_whose_settings_remain_is_missing(self):
        self.stand_in("dpkg-query", "#!/bin/sh\nprintf config-files\n")
        self.stand_in("apt-get", APT)
        self.assertEqual(self.install("cross", root=True).returncode, 0)
        self.assertEqual(len(self.called()), 2)

    def test_an_ordinary_user_goes_through_sudo(self):
        self.stand_in("dpkg-query", NOT_INSTALLED)
        self.stand_in("apt-get", APT)
        self.stand_in("sudo", "#!/bin/sh\n[ \"$1\" = -n ] && exit 0\n"
                              "echo \"sudo $*\" >>\"$CALLS\"\nexec \"$@\"\n")
        done = self.install("test", root=False)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertTrue(self.called()[0].startswith("sudo env DEBIAN_FRONTEND=noninteractive "
                                                    "apt-get"), self.called())

    def test_without_root_and_sudo_it_says_what_to_install(self):
        self.stand_in("dpkg-query", NOT_INSTALLED)
        self.stand_in("apt-get", APT)
        done = self.install("cross", root=False)
        self.assertEqual(done.returncode, 1)
        self.assertIn("neither root nor sudo is at hand", done.stderr)
        self.assertIn("g++-mingw-w64-x86-64-posix", done.stderr)
        self.assertEqual(self.called(), [])

    def test_sudo_that_wants_a_password_of_nobody_is_not_waited_for(self):
        self.stand_in("dpkg-query", NOT_INSTALLED)
        self.stand_in("apt-get", APT)
        self.stand_in("sudo", "#!/bin/sh\nexit 1\n")
        done = self.install("test", root=False)
        self.assertEqual(done.returncode, 1)
        self.assertIn("sudo asks for a password", done.stderr)
        self.assertEqual(self.called(), [])

    def test_a_failing_package_tool_is_told_with_its_words(self):
        self.stand_in("dpkg-query", NOT_INSTALLED)
        self.stand_in("apt-get", "#!/bin/sh\necho no space left >&2\nexit 100\n")
        done = self.install("test", root=True)
        self.assertEqual(done.returncode, 1)
        self.assertIn("no space left", done.stderr)
        self.assertIn("apt-get update failed", done.stderr)

    def test_a_machine_without_packages_of_this_kind_is_told(self):
        done = self.install("test", root=True)
        self.assertEqual(done.returncode, 1)
        self.assertIn("this is no Debian system", done.stderr)

    def test_an_unknown_group_is_refused(self):
        self.stand_in("dpkg-query", INSTALLED)
        done = self.install("tests", root=True)
        self.assertEqual(done.returncode, 1)
        self.assertIn('no group "tests"', done.stderr)
        self.assertIn("name the groups", self.install(root=True).stderr)


if __name__ == "__main__":
    unittest.main()
