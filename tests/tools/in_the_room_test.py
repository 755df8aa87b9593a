#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""tests/windows/in_the_room with stand-ins for display and wine: a room that lacks one of them ends
the run with words, and is not waited for."""

import contextlib
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import unittest

TOOL = pathlib.Path(__file__).resolve().parents[2] / "tests/windows/in_the_room"
NEVER = "exit 1"
# What a process that goes on is to the script; it ends with the test.
GOES_ON = "exec sleep infinity"


class InTheRoom(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.tools = self.folder / "bin"
        self.tools.mkdir()
        for name in ("bash", "dirname", "mktemp", "readlink", "sleep", "tail"):
            (self.tools / name).symlink_to(shutil.which(name))
        for name in ("openbox", "wineboot", "wine", "wineserver"):
            self.stand_in(name, ":")
        self.stand_in("Xvfb", GOES_ON)
        self.stand_in("xdpyinfo", ":")
        self.stand_in("ctest", 'echo "tests ran" >&2')

    def stand_in(self, name, text):
        path = self.tools / name
        path.write_text(f"#!{self.tools}/bash\n{text}\n")
        path.chmod(0o755)

    def assert_ends(self, *words):
        """The run ends as failed before any test, with all these words."""
        with open(self.folder / "said", "w+", encoding="utf-8") as said:
            run = subprocess.Popen(
                [str(self.tools / "bash"), str(TOOL), "/build", "/qt"], start_new_session=True,
                env={"PATH": str(self.tools), "HOME": str(self.folder), "TMPDIR": str(self.folder)},
                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=said)
            try:
                code = run.wait()
            finally:
                with contextlib.suppress(ProcessLookupError):
                    os.killpg(run.pid, signal.SIGKILL)
            said.seek(0)
            text = said.read()
        self.assertEqual(code, 1, text)
        for word in words:
            self.assertIn(word, text)
        self.assertNotIn("tests ran", text)

    def test_a_room_without_a_display_program_ends_the_run(self):
        (self.tools / "Xvfb").unlink()
        self.stand_in("xdpyinfo", NEVER)
        self.assert_ends("Xvfb: command not found", "in_the_room: there is no display")

    def test_a_display_that_does_not_start_ends_the_run_with_its_words(self):
        self.stand_in("Xvfb", "echo the number is taken >&2; exit 1")
        self.stand_in("xdpyinfo", NEVER)
        self.assert_ends("the number is taken", "in_the_room: there is no display")

    def test_a_wine_that_makes_no_machine_ends_the_run_with_its_words(self):
        self.stand_in("wineboot", "echo the disk is full >&2; exit 1")
        self.assert_ends("the disk is full", "in_the_room: wine made no machine")

    def test_a_wine_whose_programs_show_nothing_ends_the_run(self):
        self.stand_in("wine", '[ "$1" != notepad ] || { echo no driver for it; exit 1; }')
        self.stand_in("xdotool", NEVER)
        self.assert_ends("no driver for it", "in_the_room: there is no window")


if __name__ == "__main__":
    unittest.main()
