#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""Scanning, refusals and giving up, in the capture form of the real program."""

import station_case
from driver.robot import BUTTON, COMBO, TEXT

STRANGE = "Grüße \U0001F4C4 שלום 100 % & <b>O'Brien</b>"


class Capture(station_case.StationCase):
    def setUp(self):
        super().setUp()
        self.given_data_folder()
        self.main = self.open_program()

    def test_what_is_missing_is_asked_for_one_by_one(self):
        capture = self.clerk.new_scan(self.main)
        self.clerk.press(capture, "Save")
        self.assertEqual(self.read_box("Error"), "Please enter a valid description.")
        self.robot.type_text(self.robot.find(TEXT, "Description", capture), "A letter")
        self.clerk.press(capture, "Save")
        self.assertEqual(self.read_box("Error"), "You need to assign at least 1 tag.")
        self.clerk.describe(capture, "A letter", None, ["Letters"])
        self.clerk.press(capture, "Save")
        self.assertEqual(self.read_box("Error"), "You have no scanned document.")
        self.assertEqual(self.rows("select * from scans"), [])
        self.clerk.cancel_capture(capture)
        self.end_program(self.main)

    def test_cancelling_discards_the_scan_and_keeps_the_new_tag(self):
        capture = self.clerk.new_scan(self.main)
        self.clerk.scan(capture)
        self.clerk.describe(capture, "Never filed", None, ["Letters"])
        self.assertTrue(self.temporary_scan.is_file())
        self.clerk.cancel_capture(capture)
        self.assertFalse(self.temporary_scan.exists())
        self.assertEqual(self.rows("select description from tags"), [("Letters",)])
        self.assertEqual(self.rows("select * from scans"), [])
        self.end_program(self.main)

    def test_save_and_new_files_one_document_after_the_other(self):
        capture = self.clerk.new_scan(self.main)
        for text in ("First", "Second"):
            self.clerk.scan(capture)
            self.clerk.describe(capture, text, "12 Oct 2009", ["Letters"])
            self.clerk.save_and_new(capture)
            self.assertEqual(self.clerk.assigned_tags(capture), [])
            self.assertFalse(self.temporary_scan.exists())
        self.clerk.cancel_capture(capture)
        self.clerk.all_dates(self.main, True)
        self.clerk.choose_tag(self.main, "Letters")
        self.wait_listed(self.main, ("12 Oct 2009", "First"), ("12 Oct 2009", "Second"))
        self.end_program(self.main)
        names = [name for name, in self.rows("select fname from scans order by link")]
        files = {file.name for file in (self.data / "scanned_files/1009").iterdir()}
        self.assertEqual((len(names), set(names)), (2, files))

    def test_a_document_is_filed_by_keyboard_alone(self):
        robot = self.robot
        robot.wait(lambda: robot.has_focus(robot.find(COMBO, None, self.main)),
                   "the focus in the filter")
        robot.tab_to(robot.find(BUTTON, "New", self.main))
        robot.keys("space")
        form = robot.window_with(BUTTON, "Save")
        description = robot.find(TEXT, "Description", form)
        robot.wait(lambda: robot.has_focus(description), "the focus in the description")
        self.station.run("xdotool", "type", "--delay", "8", "By hand")
        # A caret that still moves looks like a focus that does.
        robot.wait(lambda: description.text == "By hand", "the description")
        combo = robot.find(COMBO, None, form)
        robot.tab_to(combo)
        self.station.run("xdotool", "type", "--delay", "8", "Keys")
        robot.keys("Return")
        robot.wait(lambda: self.rows("select description from tags") == [("Keys",)], "the new tag")
        scan = robot.find(BUTTON, "Scan", form)
        robot.tab_to(scan)
        self.station.bus.forget_shown()
        robot.keys("space")
        robot.wait(robot.open_menu_shown, "the scanner menu")
        robot.keys("Down", "Return")
        self.clerk.wait_scanned(form)
        self.assertTrue(self.temporary_scan.is_file())
        robot.tab_to(robot.find(BUTTON, "Save", form))
        robot.keys("space")
        robot.wait_gone(form)
        self.assertEqual(self.rows("select description from scans"), [("By hand",)])
        robot.tab_to(robot.find(BUTTON, "Exit", self.main))
        robot.keys("space")
        self.assertEqual(robot.wait_for_end(), 0)

    def test_any_text_is_stored_and_shown_unchanged(self):
        self.file_document(self.main, STRANGE, None, [STRANGE])
        self.clerk.all_dates(self.main, True)
        self.robot.enter_tag(self.robot.find(COMBO, None, self.main), STRANGE)
        self.clerk.wait_results(self.main, lambda listed: [row[1] for row in listed] == [STRANGE],
                                "the document with the strange name")
        self.assertEqual(self.clerk.chosen_tags(self.main), [STRANGE])
        self.end_program(self.main)
        self.assertEqual(self.rows("select description from tags"), [(STRANGE,)])
        self.assertEqual(self.rows("select description from scans"), [(STRANGE,)])


class LongScan(station_case.StationCase):
    """With a scanner that needs longer for its pages than anybody waits for the end of a scan."""

    scanner = {"resolution": "600.0", "read-delay": "true", "read-delay-duration": "200000"}

    def test_cancelling_a_scan_does_not_wait_for_the_scanner_and_keeps_nothing(self):
        self.given_data_folder()
        main = self.open_program()
        capture = self.clerk.new_scan(main)
        self.clerk.begin_scan(capture)
        progress = self.clerk.progress_window()
        self.clerk.press(progress, "Cancel")
        self.robot.wait_gone(progress)
        # The form takes the next scan, and has nothing of this one.
        self.clerk.close_menu(self.clerk.menu_of(capture, "Scan"))
        self.assertIsNone(self.clerk.pages_scanned(capture))
        self.assertNotIn("enabled", self.robot.find(BUTTON, "View", capture).states)
        self.assertFalse(self.temporary_scan.exists())
        self.clerk.cancel_capture(capture)
        self.end_program(main)


if __name__ == "__main__":
    station_case.main()
