#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""tools/debian-source with stand-ins for apt: which package it takes, and its words."""

import pathlib
import subprocess
import tempfile
import unittest

TOOL = pathlib.Path(__file__).resolve().parents[2] / "tools/debian-source"
LOG = 'echo "${0##*/} $*" >>"$CALLS"\n'


class DebianSource(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.calls = self.folder / "calls"
        self.tool("apt-get", LOG)
        self.tool("apt-cache", "printf 'Package: wanted\\nVersion: %s\\n\\n' "
                               "3.40.1-2 3.40.1-2+deb12u10 3.40.1-2+deb12u9 3.41.0-1\n")
        self.tool("dpkg-source", LOG + 'for folder; do :; done; mkdir "$folder"\n')

    def tool(self, name, text):
        path = self.folder / "bin" / name
        path.parent.mkdir(exist_ok=True)
        path.write_text("#!/bin/sh\n" + text)
        path.chmod(0o755)

    def fetch(self, upstream="3.40.1", folder="sources"):
        done = subprocess.run(
            ["bash", str(TOOL), "wanted", upstream, str(self.folder / folder)],
            env={"PATH": f"{self.folder / 'bin'}:/usr/bin:/bin", "CALLS": str(self.calls),
                 "TMPDIR": str(self.folder)},
            stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False)
        return done.returncode, done.stdout, done.stderr

    def test_the_newest_package_of_the_version_is_taken(self):
        code, output, errors = self.fetch()
        self.assertEqual((code, output), (0, "3.40.1-2+deb12u10\n"), errors)
        calls = self.calls.read_text()
        self.assertIn("source --only-source --download-only wanted=3.40.1-2+deb12u10\n", calls)
        self.assertIn("wanted_3.40.1-2+deb12u10.dsc", calls)
        self.assertTrue((self.folder / "sources").is_dir())

    def test_what_is_added_to_a_version_and_an_epoch_are_no_part_of_it(self):
        self.tool("apt-cache", "echo Version: 2:6.4.2+dfsg-10; echo Version: 6.4.2.1-1\n")
        self.assertEqual(self.fetch("6.4.2")[:2], (0, "2:6.4.2+dfsg-10\n"))
        self.assertIn("wanted_6.4.2+dfsg-10.dsc", self.calls.read_text())

    def test_the_machines_own_lists_are_neither_read_nor_written(self):
        self.fetch()
        for line in self.calls.read_text().splitlines():
            if line.startswith("apt-get"):
                for name in ("Etc::SourceList", "Etc::SourceParts", "State::Lists"):
                    self.assertRegex(line, rf"-o Dir::{name}={self.folder}/")

    def test_a_version_that_debian_has_not_is_told(self):
        code, _, errors = self.fetch("9.9")
        self.assertEqual(code, 1)
        self.assertIn("Debian has no sources of wanted 9.9", errors)

    def test_a_search_that_fails_is_told(self):
        self.tool("apt-cache", "exit 100\n")
        code, _, errors = self.fetch()
        self.assertEqual(code, 1)
        self.assertIn("Debian has no sources of wanted 3.40.1", errors)

    def test_a_mirror_that_cannot_be_reached_is_told_in_its_words(self):
        self.tool("apt-get", LOG + "echo no route to it; exit 100\n")
        code, _, errors = self.fetch()
        self.assertEqual(code, 1)
        self.assertIn("no route to it", errors)
        self.assertIn("could not get the sources of wanted", errors)
        self.assertFalse((self.folder / "sources").exists())

    def test_a_list_that_is_only_warned_of_is_an_error(self):
        self.fetch()
        update = self.calls.read_text().splitlines()[0]
        self.assertTrue(update.endswith("APT::Update::Error-Mode=any update"), update)

    def test_a_folder_that_is_there_is_left_alone(self):
        (self.folder / "sources").mkdir()
        code, _, errors = self.fetch()
        self.assertEqual(code, 1)
        self.assertIn("sources is there already", errors)
        self.assertFalse(self.calls.exists())


if __name__ == "__main__":
    unittest.main()
