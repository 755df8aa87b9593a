#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""What the user sees and what the disk keeps when something is wrong with the shared data."""

import re

import station_case
from driver.robot import COMBO, TEXT

# The code of a program that an untrapped failure ended: the low byte of 65535.
FAILED = 255


class Failures(station_case.StationCase):
    def read_report(self):
        """The next error report, as (module, procedure, description, number)."""
        text = self.read_box("Application Error")
        found = re.fullmatch(
            r"has encountered a problem\. We are sorry for the inconvenience\. "
            r"Module: (\w+) Procedure: (\w+) Line Number: \d+ (.*) \((-?\d+)\)", text)
        self.assertTrue(found, text)
        module, procedure, description, number = found.groups()
        return module, procedure, description, int(number)

    def assert_reports(self, *chain):
        """The chain of reports from the innermost procedure out; the first one's words."""
        first = None
        for index, (module, procedure) in enumerate(chain):
            report = self.read_report()
            self.assertEqual(report[:2], (module, procedure))
            if index == 0:
                first = report
                self.assertNotEqual(report[3], 65535)
            else:
                self.assertEqual(report[3], 65535)
        self.assertEqual(self.robot.wait_for_end(), FAILED)
        return first

    def test_a_table_that_vanishes_is_reported_by_each_procedure_and_ends_the_program(self):
        self.given_data_folder("insert into tags values (1, 'Taxes');"
                               "update comp set NewLink = 2;")
        main = self.open_program()
        self.change_database("drop table tagged")
        combo = self.robot.entry_of(self.robot.find(COMBO, None, main))
        self.robot.type_text(combo, "Taxes", enter=True)
        _, _, description, _ = self.assert_reports(
            ("frmMain", "fill_me"), ("frmMain", "cmdAdd_Click"), ("frmMain", "cmbTags_KeyDown"))
        self.assertIn("tagged", description)
        self.assertIn(str(self.data / "db.mdb").replace(" ", ""), description.replace(" ", ""))

    def test_a_database_of_another_program_is_not_changed(self):
        self.given_data_folder("drop table tags; drop table comp; create table theirs (a);")
        before = (self.data / "db.mdb").read_bytes()
        self.robot.start()
        text = self.read_box("Folidex")
        self.assertRegex(text, r"^Error \d+: no such table: (tags|comp): ")
        self.assertIn("db.mdb", text)
        self.clerk.press(self.clerk.location_window(), "Cancel")
        self.assertEqual(self.robot.wait_for_end(), 0)
        self.assertEqual((self.data / "db.mdb").read_bytes(), before)
        self.assertEqual([file.name for file in self.data.iterdir()], ["db.mdb"])

    def test_a_file_that_is_no_database_is_told_and_not_changed(self):
        self.given_data_folder()
        content = b"This is a letter, not a database.\n" * 200
        (self.data / "db.mdb").write_bytes(content)
        self.robot.start()
        text = self.read_box("Folidex")
        self.assertRegex(text, r"^Error \d+: ")
        self.assertIn("db.mdb", text)
        window = self.clerk.location_window()
        self.assertEqual(self.robot.find(TEXT, "Existing data folder", window).text,
                         str(self.data))
        self.clerk.press(window, "Cancel")
        self.assertEqual(self.robot.wait_for_end(), 0)
        self.assertEqual((self.data / "db.mdb").read_bytes(), content)

    def test_a_month_folder_that_cannot_be_made_keeps_the_scan(self):
        self.given_data_folder()
        main = self.open_program()
        # A file stands where the month's folder is to be made.
        (self.data / "scanned_files" / "1009").write_text("in the way")
        capture = self.clerk.new_scan(main)
        self.clerk.scan(capture)
        self.clerk.describe(capture, "In the way", "12 Oct 2009", ["Taxes"])
        scan = self.temporary_scan.read_bytes()
        self.clerk.press(capture, "Save")
        _, _, description, _ = self.assert_reports(("frmScanNew", "save_me"),
                                                   ("frmScanNew", "cmdSave_Click"))
        self.assertIn("1009", description)
        self.assertEqual((self.data / "scanned_files" / "1009").read_text(), "in the way")
        self.assertEqual(self.temporary_scan.read_bytes(), scan)


if __name__ == "__main__":
    station_case.main()
