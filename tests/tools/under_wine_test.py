#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""tests/windows/under_wine with a stand-in for wine: words and exit code of a test come through, and
nobody waits for what it leaves behind."""

import contextlib
import os
import pathlib
import signal
import subprocess
import tempfile
import unittest

TOOL = pathlib.Path(__file__).resolve().parents[2] / "tests/windows/under_wine"


class UnderWine(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.temporary = self.folder / "tmp"
        self.temporary.mkdir()

    def start(self, text, *arguments):
        wine = self.folder / "wine"
        wine.write_text(f"#!/bin/bash\n{text}\n")
        wine.chmod(0o755)
        run = subprocess.Popen(
            [TOOL, *arguments], text=True, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT, start_new_session=True,
            env=os.environ | {"FOLIDEX_WINE": str(wine), "TMPDIR": str(self.temporary)})
        self.addCleanup(self.end, run)
        return run

    @staticmethod
    def end(run):
        with contextlib.suppress(ProcessLookupError):
            os.killpg(run.pid, signal.SIGKILL)
        run.stdout.close()
        run.wait()

    def test_words_and_exit_code_of_the_test_come_through(self):
        run = self.start('printf "%s\\n" "$@"; echo to the other stream >&2; exit 42',
                         "test.exe", "two words")
        self.assertEqual(run.stdout.read(), "test.exe\ntwo words\nto the other stream\n")
        self.assertEqual(run.wait(), 42)
        self.assertEqual(list(self.temporary.iterdir()), [])

    def test_a_long_output_comes_whole(self):
        run = self.start("seq 100000; exit 0")
        self.assertEqual(run.stdout.read().split(), [str(k) for k in range(1, 100001)])
        self.assertEqual(run.wait(), 0)

    def test_words_come_while_the_test_still_runs(self):
        run = self.start("echo begins; exec sleep infinity")
        self.assertEqual(run.stdout.readline(), "begins\n")
        self.assertIsNone(run.poll())

    def test_what_the_test_leaves_running_is_not_waited_for(self):
        run = self.start("sleep infinity & echo left $!; exit 3")
        # To the end of the stream, as ctest does.
        left, number = run.stdout.read().split()
        self.assertEqual((left, run.wait()), ("left", 3))
        os.kill(int(number), 0)


if __name__ == "__main__":
    unittest.main()
