# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""What the tests of the scanning helpers share: a workstation under wine, a desk on it for each test,
and what is asked of a scan."""

import shutil
import tempfile
import unittest

import helper_process as hp

WORKSTATION = hp.Workstation()
JAM, DOUBLE_FEED, INTERLOCK, NO_MEDIA = 20, 21, 24, 29
SMALL = "rgb100@60x40"
# A page that comes so slowly that nobody sees its end.
SLOW = {"pages": "gray100@100x60000*3", "rows": 2, "strip_ms": 20}


def set_up_module():
    unittest.enterModuleContext(WORKSTATION)


class Scanning:
    """A desk of one word size, and what is asked of a scan."""

    bits = None

    def setUp(self):
        self.program = hp.builds()[self.bits]
        self.desk = self.new_desk()

    def new_desk(self, library="TWAINDSM.dll", drivers=None):
        folder = tempfile.mkdtemp(prefix="desk-")
        self.addCleanup(shutil.rmtree, folder)
        return hp.Desk(WORKSTATION, folder, self.program, library, drivers)

    def scan(self, **keys):
        """Lets the one virtual scanner play; returns the helper and how it ended."""
        self.desk.script(Virtual=keys)
        with self.desk.scanning() as helper:
            ending = helper.done()
            helper.exit_code = helper.ended()
        return helper, ending

    def paused(self, place, **keys):
        """A scan that has come to a place from which its driver does not come back yet."""
        (self.desk.folder / "scanners.go").unlink(missing_ok=True)
        self.desk.script(Virtual={"pages": "gray100@30x20*2", "rows": 5, "pause": place, **keys})
        helper = self.enterContext(self.desk.scanning())
        self.desk.wait_for_log(f"pause at {place}")
        return helper

    def go_on(self):
        (self.desk.folder / "scanners.go").touch()

    def assert_outcome(self, ending, outcome, step=hp.NO_STEP, condition=0, pages=0):
        self.assertEqual((ending.outcome, ending.step, ending.condition, ending.pages),
                         (outcome, step, condition, pages), ending)

    def assert_page(self, page, kind, width, height, number, resolution=100):
        wanted = {"bw": hp.BILEVEL, "vanilla": hp.BILEVEL, "gray": hp.GRAY, "gray4": hp.GRAY,
                  "gray16": hp.GRAY}.get(kind, hp.RGB)
        self.assertEqual((page.kind, page.width, page.rows), (wanted, width, height))
        self.assertAlmostEqual(page.x_resolution, resolution, places=2)
        self.assertAlmostEqual(page.y_resolution, resolution, places=2)
        self.assertEqual(bytes(page.data), hp.picture(kind, width, height, number))

    def listed(self, desk=None, **options):
        """The names of the sources."""
        names = []
        with (desk or self.desk).list(**options) as helper:
            while (frame := helper.frame())[0] == "S":
                names.append(frame[1][4:].decode())
            self.assert_outcome(hp.Ending(frame[1]), hp.GOOD)
        return names

    def steps(self):
        """What the source was told after it was opened, without its settings and its pauses."""
        return [line.removeprefix("Virtual ") for line in self.desk.log()
                if " set " not in line and not line.startswith("pause at ")]

    def assert_released(self):
        """The whole ladder down, each rung in its state."""
        steps = self.steps()
        self.assertEqual(steps[-3:], ["disable", "close", "manager close"], steps)
        self.assertFalse([line for line in steps if "out of order" in line], steps)

    def assert_stays_silent(self, helper):
        """For a while a helper that is already silent stays so, and alive: as long as another one,
        whose user takes his time, gives three signs of life."""
        desk = self.new_desk()
        desk.script(Virtual={"answer": "wait"})
        with desk.scanning() as other:
            other.until("W")
            other.sign_of_life()
            while not helper.frames.empty():
                # From before it fell silent; nothing but signs of life was under way then.
                helper.sign_of_life()
            for _ in range(3):
                other.sign_of_life()
        self.assertTrue(helper.frames.empty())
        self.assertIsNone(helper.process.poll())
