#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""Trouble with scanners, as whoever sits before the capture form sees it."""

import os
import signal

import wine_case
from driver.robot import BUTTON
from driver.stack import wait_until


class Trouble(wine_case.WineCase):
    def setUp(self):
        super().setUp()
        self.given_data_folder()

    def open_capture(self):
        self.main = self.open_program()
        return self.clerk.new_scan(self.main)

    def assert_unchanged(self, capture):
        """The form is as it was before the scan, and offers the next one."""
        self.clerk.close_menu(self.clerk.menu_of(capture, "Scan"))
        self.assertIsNone(self.clerk.pages_scanned(capture))
        self.assertNotIn("enabled", self.robot.find(BUTTON, "View", capture).states)
        self.assertIn("Scan", self.clerk.label_texts(capture))
        self.assertFalse(self.temporary_scan.exists())

    def finish(self, capture):
        self.clerk.cancel_capture(capture)
        self.end_program(self.main)

    def test_a_crash_of_the_driver_is_told_and_the_next_scan_works(self):
        self.scanners.connect(64, "Broken", "Flatbed", Broken={"crash": "transfer"})
        capture = self.open_capture()
        self.clerk.choose_scanner(capture, "Broken")
        self.clerk.press_in_source("Broken", "Scan")
        self.assertIn("Broken", self.read_box("Folidex"))
        self.assert_unchanged(capture)
        self.clerk.scan(capture, "Flatbed")
        self.assertEqual(self.pdf_facts(self.temporary_scan)["Pages"], "1")
        self.finish(capture)

    def test_cancel_in_the_drivers_window_leaves_the_form_as_it_was(self):
        self.scanners.connect(64, "Flatbed")
        capture = self.open_capture()
        self.clerk.choose_scanner(capture, "Flatbed")
        self.clerk.press_in_source("Flatbed", "Cancel")
        self.robot.wait(lambda: "Flatbed close" in self.scanners.log(64), "the source to close")
        self.clerk.wait_released(capture)
        self.assert_unchanged(capture)
        self.clerk.scan(capture, "Flatbed")
        self.finish(capture)

    def test_a_manager_that_hangs_keeps_nobody_waiting(self):
        self.scanners.connect(64, "Flatbed", manager={"hang": "load"})
        capture = self.open_capture()
        # The helper that asks the manager would be gone, had the form waited until it was given up.
        self.robot.wait(lambda: self.listing(64), "the helper that hangs")
        self.assertNotIn("enabled", self.robot.find(BUTTON, "Scan", capture).states)
        self.robot.wait(lambda: "hang at load:0" in self.scanners.log(64), "the manager to be asked")
        self.finish(capture)

    def listing(self, bits):
        """The helper that asks for the scanners of a word size, while it does."""
        return [line for _number, line in self.station.scanning_helpers()
                if f"folidex-twain{bits}.exe" in line and line.endswith(" list")]

    def helpers(self):
        """The numbers of the 64-bit helpers that run."""
        return [number for number, command in self.station.scanning_helpers()
                if "folidex-twain64.exe" in command]

    def test_a_helper_whose_driver_hangs_goes_with_a_program_that_is_killed(self):
        self.scanners.connect(64, "Flatbed", Flatbed={"hang": "enable"})
        self.clerk.choose_scanner(self.open_capture(), "Flatbed")
        self.robot.wait(lambda: "Flatbed enable with its window" in self.scanners.log(64),
                        "the driver to hang")
        self.robot.wait(lambda: len(self.helpers()) == 1, "those that listed sources to end")
        (helper,) = self.helpers()
        # A process that is held can do nothing for its own end; only the system ends it.
        os.kill(helper, signal.SIGSTOP)
        self.robot.process.kill()
        wait_until(lambda: not self.helpers(), "the helper to go")

    def test_a_machine_without_scanners_says_so(self):
        self.scanners.disconnect_wines_own()
        capture = self.open_capture()
        self.robot.wait(lambda: any(text.startswith("No scanner found.")
                                    for text in self.clerk.label_texts(capture)), "the search to end")
        self.assertNotIn("enabled", self.robot.find(BUTTON, "Scan", capture).states)
        self.finish(capture)

    def test_a_source_that_does_not_open_leaves_the_form_without_a_word(self):
        self.scanners.connect(64, "Switched off", "Flatbed", Switched_off={"fail": "open:23"})
        capture = self.open_capture()
        self.clerk.choose_scanner(capture, "Switched off")
        self.robot.wait(lambda: "Switched off open" in self.scanners.log(64), "the attempt to open")
        self.clerk.wait_released(capture)
        self.assertEqual(self.robot.windows(), [self.main, capture])
        self.assert_unchanged(capture)
        self.clerk.scan(capture, "Flatbed")
        self.finish(capture)

    def test_wines_own_source_manager_finds_and_runs_a_driver(self):
        self.scanners.disconnect_wines_own()
        self.scanners.connect_to_wines_own("Virtual flatbed", {"pages": "gray100@400x600"})
        capture = self.open_capture()
        self.assertEqual(self.clerk.scan(capture, "Virtual flatbed"), ["Virtual flatbed"])
        self.assertEqual(self.pdf_facts(self.temporary_scan)["Pages"], "1")
        self.finish(capture)


if __name__ == "__main__":
    wine_case.main()
