# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""What the end-to-end tests share: a station a test, with the program of this build."""

import os
import pathlib
import re
import shutil
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))

from driver import Robot, Station  # noqa: E402
from driver.archivist import Archivist  # noqa: E402
from driver.case import DriverCase, main  # noqa: E402, F401

PROGRAM = pathlib.Path(os.environ.get("FOLIDEX_PROGRAM", "build/dev/app/folidex")).resolve()
PICTURES = pathlib.Path(os.environ.get("FOLIDEX_PICTURES", "build/e2e-failures")).resolve()
# What a sanitizer writes when it finds something.
SANITIZER = re.compile(r"runtime error:|ERROR: \w*Sanitizer")


class StationCase(DriverCase):
    """A test's own station; scanner adds to the configuration of its scanner."""

    # As slow as a real one: the toolkit loses track of the active window when one is hidden before
    # the window manager has activated it, as the progress window of a scan in no time would be.
    scanner = {"read-delay": "true", "read-delay-duration": "8000"}

    def setUp(self):
        self.station = self.new_station()
        self.robot = Robot(self.station, PICTURES)
        self.clerk = Archivist(self.robot)
        self.data = self.station.home / "shared" / "Documents"
        self.data.parent.mkdir()

    def new_station(self):
        """It ends with the test; then what its program wrote is looked through."""
        self.assertTrue(PROGRAM.is_file(), f"there is no program at {PROGRAM}")
        home = tempfile.mkdtemp(prefix="folidex-e2e-")
        station = Station(PROGRAM, home, scanner=self.scanner)
        self.addCleanup(shutil.rmtree, home, ignore_errors=True)
        self.addCleanup(self.check_program_log, station)
        return self.enterContext(station)

    def check_program_log(self, station):
        self.assertNotRegex(station.program_log(), SANITIZER)
