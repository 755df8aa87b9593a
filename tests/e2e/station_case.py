# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""What the end-to-end tests share: a station a test, with the program of this build."""

import contextlib
import os
import pathlib
import re
import shutil
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))

from driver import Robot, Station  # noqa: E402
from driver.case import PREFERENCES, DriverCase, main  # noqa: E402, F401
from driver.clerk import Clerk  # noqa: E402

PROGRAM = pathlib.Path(os.environ.get("FOLIDEX_PROGRAM", "build/dev/app/folidex")).resolve()
PICTURES = pathlib.Path(os.environ.get("FOLIDEX_PICTURES", "build/e2e-failures")).resolve()
# What a sanitizer writes when it finds something.
SANITIZER = re.compile(r"runtime error:|ERROR: \w*Sanitizer")


class StationCase(DriverCase):
    """A test's own station; page_delay makes the scanner as slow as a real one."""

    page_delay = False

    def setUp(self):
        self.assertTrue(PROGRAM.is_file(), f"there is no program at {PROGRAM}")
        self.station = self.enterContext(Station(PROGRAM, page_delay=self.page_delay))
        self.robot = Robot(self.station, PICTURES)
        self.clerk = Clerk(self.robot)
        self.data = self.station.home / "shared" / "Documents"
        self.data.parent.mkdir()
        self.addCleanup(self.check_program_log)
        self.addCleanup(shutil.rmtree, self.station.home, ignore_errors=True)

    def check_program_log(self):
        with contextlib.suppress(FileNotFoundError):
            self.assertNotRegex(self.station.program_log(), SANITIZER)
