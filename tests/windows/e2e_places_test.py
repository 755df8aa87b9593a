#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""Data folders and application folders in places that make trouble."""

import os

import wine_case
from driver.clerk import USE_EXISTING
from driver.robot import BUTTON, RADIO, TEXT

CANNOT_FIND = ("Folidex cannot find or open your database file. If the file resides on a network "
               "drive please ensure that you are connected to that network drive.")
# A folder of 250 characters, written in five ways.
FAR_AWAY = "Büro und Ablage/Документы отдела/文書/קבצים"
DAY = "10/12/2009"


class Places(wine_case.WineCase):
    def cancel(self, window):
        self.robot.press(self.robot.find(BUTTON, "Cancel", window))
        self.assertEqual(self.robot.wait_for_end(), 0)

    def far_away(self):
        """A folder for data folders, whose path on the machine is nearly as long as one can be."""
        folder = self.data.parent / FAR_AWAY
        rest = 230 - len(self.station.as_told(folder)) - 1
        folder = folder / ("ö" * rest)
        folder.mkdir(parents=True)
        return folder

    def test_a_far_away_folder_in_many_letters_is_used_from_end_to_end(self):
        self.scanners.connect(64, "Flatbed")
        desktop = self.new_desktop()
        folder = self.far_away()
        self.data = folder / "Договоры 2009"
        self.robot.start()
        main = self.clerk.create_data_folder(self.station.as_told(folder), self.data.name)
        self.file_document(main, "Miete für März, 100 €", DAY, ["Vermieter Ü", "住所"])
        self.clerk.all_dates(main, True)
        self.clerk.choose_tag(main, "住所")
        self.clerk.wait_results(main, lambda listed: listed == [(DAY, "Miete für März, 100 €")],
                                "the document among the results")
        (pdf,) = (self.data / "scanned_files" / "1009").iterdir()
        self.assertEqual(self.pdf_facts(pdf)["Pages"], "1")
        self.clerk.select_document(main, "Miete für März, 100 €")
        self.clerk.command(main, "Open File")
        desktop.wait_opened(pdf)
        self.end_program(main)
        self.assertEqual(self.preferences().findtext("dblocation"),
                         self.station.as_told(self.data))
        self.assertEqual(self.rows("select description from tags order by link"),
                         [("Vermieter Ü",), ("住所",)])
        main = self.open_program()
        self.clerk.wait_results(main, lambda listed: len(listed) == 1, "the document once more")
        self.end_program(main)

    def test_a_drive_that_is_gone_is_told_and_can_be_corrected(self):
        self.given_data_folder("insert into tags values (1, 'Taxes');"
                               "update comp set NewLink = 2;")
        for gone in (r"Q:\Office\Documents", r"\\nowhere\Office\Documents"):
            with self.subTest(gone=gone):
                self.given_preferences(dblocation=gone)
                self.robot.start()
                self.assertEqual(self.read_box("Folidex"), CANNOT_FIND)
                window = self.clerk.location_window()
                self.assertIn("ERROR opening database file", self.clerk.label_texts(window))
                existing = self.robot.find(RADIO, USE_EXISTING, window)
                self.assertIn("checked", existing.states)
                entry = self.robot.find(TEXT, "Existing data folder", window)
                self.assertEqual(entry.text, gone)
                self.cancel(window)
                self.assertEqual(self.preferences().findtext("dblocation"), gone)
        self.robot.start()
        self.read_box("Folidex")
        window = self.clerk.location_window()
        self.robot.type_text(self.robot.find(TEXT, "Existing data folder", window),
                             self.station.as_told(self.data))
        self.robot.press(self.robot.find(BUTTON, "OK", window))
        main = self.clerk.main_window()
        self.clerk.choose_tag(main, "taxes")
        self.end_program(main)

    def test_an_application_folder_that_cannot_be_made_is_told_with_its_path(self):
        self.assertNotEqual(os.geteuid(), 0, "the superuser may write everywhere")
        # The installer made it for all users.
        self.station.app_folder.rmdir()
        self.station.all_users_folder.chmod(0o555)
        self.addCleanup(self.station.all_users_folder.chmod, 0o755)
        self.robot.start()
        self.assertIn(r"C:\ProgramData\Brightmoor", self.told_path())

    def test_preferences_that_cannot_be_written_are_told_with_their_path(self):
        self.assertNotEqual(os.geteuid(), 0, "the superuser may write everywhere")
        self.station.app_folder.mkdir(exist_ok=True)
        self.station.app_folder.chmod(0o555)
        self.addCleanup(self.station.app_folder.chmod, 0o755)
        self.robot.start()
        self.assertIn(r"C:\ProgramData\Brightmoor", self.told_path())

    def told_path(self):
        """The text of the message box that shows, whatever its title, without blanks."""
        window = self.robot.window_with(BUTTON, "OK")
        text = "".join(self.clerk.label_texts(window)).replace(" ", "").replace("\n", "")
        return text


if __name__ == "__main__":
    wine_case.main()
