#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""Scanning, refusals and giving up, in the capture form of the real program."""

import time

import station_case
from driver.robot import BUTTON, COMBO, ITEM, TABLE, TEXT

STRANGE = "Grüße \U0001F4C4 שלום 100 % & <b>O'Brien</b>"


class Capture(station_case.StationCase):
    page_delay = True

    def setUp(self):
        super().setUp()
        self.given_data_folder()
        self.main = self.open_program()

    def press(self, window, button):
        self.robot.press(self.robot.find(BUTTON, button, window))

    def test_what_is_missing_is_asked_for_one_by_one(self):
        capture = self.clerk.new_scan(self.main)
        self.press(capture, "Save")
        self.assertEqual(self.read_box("Error"), "Please enter a valid description.")
        self.robot.type_text(self.robot.find(TEXT, "Description", capture), "A letter")
        self.press(capture, "Save")
        self.assertEqual(self.read_box("Error"), "You need to assign at least 1 tag.")
        self.clerk.describe(capture, "A letter", None, ["Letters"])
        self.press(capture, "Save")
        self.assertEqual(self.read_box("Error"), "You have no scanned document.")
        self.assertEqual(self.rows("select * from scans"), [])
        self.press(capture, "Cancel")
        self.robot.wait_gone(capture)
        self.end_program(self.main)

    def test_cancelling_discards_the_scan_and_keeps_the_new_tag(self):
        capture = self.clerk.new_scan(self.main)
        self.clerk.scan(capture)
        self.clerk.describe(capture, "Never filed", None, ["Letters"])
        self.assertTrue(self.temporary_scan.is_file())
        self.press(capture, "Cancel")
        self.robot.wait_gone(capture)
        self.assertFalse(self.temporary_scan.exists())
        self.assertEqual(self.rows("select description from tags"), [("Letters",)])
        self.assertEqual(self.rows("select * from scans"), [])
        self.end_program(self.main)

    def test_cancelling_a_scan_acts_within_two_seconds_and_keeps_nothing(self):
        capture = self.clerk.new_scan(self.main)
        menu = self.robot.open_menu(self.robot.find(BUTTON, "Scan", capture))
        source = [node for node in menu.walk(4)
                  if node.role in ITEM and "enabled" in node.states][0]
        self.robot.choose(menu, source)
        progress = self.clerk.progress_window()
        cancel = self.robot.find(BUTTON, "Cancel", progress)
        self.robot.press(cancel)
        pressed = time.monotonic()
        self.robot.wait_gone(progress)
        self.assertLess(time.monotonic() - pressed, 2.5)
        view = self.robot.find(BUTTON, "View", capture)
        self.assertNotIn("enabled", view.states)
        self.assertFalse(self.temporary_scan.exists())
        self.press(capture, "Cancel")
        self.robot.wait_gone(capture)
        self.end_program(self.main)

    def test_save_and_new_files_one_document_after_the_other(self):
        capture = self.clerk.new_scan(self.main)
        description = self.robot.find(TEXT, "Description", capture)
        for text in ("First", "Second"):
            self.clerk.scan(capture)
            self.clerk.describe(capture, text, "12 Oct 2009", ["Letters"])
            self.press(capture, "Save & New")
            self.robot.wait(lambda: description.text == "", "the form to be empty again")
            self.assertEqual(self.robot.find(TABLE, "Assigned tags", capture).table_size[0], 0)
            self.assertFalse(self.temporary_scan.exists())
        self.press(capture, "Cancel")
        self.robot.wait_gone(capture)
        self.clerk.all_dates(self.main, True)
        self.clerk.choose_tag(self.main, "Letters")
        self.clerk.wait_results(self.main, lambda listed: [row[1] for row in listed]
                                == ["First", "Second"], "both documents")
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
        robot.wait_gone(self.clerk.progress_window(), 180)
        robot.wait(self.temporary_scan.is_file, "the scan")
        robot.tab_to(robot.find(BUTTON, "Save", form))
        robot.keys("space")
        robot.wait_gone(form)
        self.assertEqual(self.rows("select description from scans"), [("By hand",)])
        robot.tab_to(robot.find(BUTTON, "Exit", self.main))
        robot.keys("space")
        self.assertEqual(robot.wait_for_end(), 0)

    def test_any_text_is_stored_and_shown_unchanged(self):
        capture = self.clerk.new_scan(self.main)
        self.clerk.scan(capture)
        self.clerk.describe(capture, STRANGE, None, [STRANGE])
        self.clerk.save(capture)
        self.clerk.all_dates(self.main, True)
        self.robot.enter_tag(self.robot.find(COMBO, None, self.main), STRANGE)
        self.clerk.wait_results(self.main, lambda listed: [row[1] for row in listed] == [STRANGE],
                                "the document with the strange name")
        self.assertEqual(self.clerk.chosen_tags(self.main), [STRANGE])
        self.end_program(self.main)
        self.assertEqual(self.rows("select description from tags"), [(STRANGE,)])
        self.assertEqual(self.rows("select description from scans"), [(STRANGE,)])


if __name__ == "__main__":
    station_case.main()
