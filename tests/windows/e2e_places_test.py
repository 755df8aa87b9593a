#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""Data folders and application folders in places that make trouble."""

import os
import shutil

import wine_case
from driver import road

# In the letters of five languages; a data folder in it is as far away as it may be.
FAR_AWAY = "Büro und Ablage/Документы отдела/文書/קבצים"
CONTRACTS = "Договоры"
LONGEST = 250
DAY = "10/12/2009"
FILED = """
insert into tags values (1, 'Steuern');
insert into scans (link, description, date, fname, location)
    values (2, 'Bescheid', 40098, '101209143005_2.pdf', '1009');
insert into tagged (scan, tag) values (2, 1);
update comp set NewLink = 3;
"""


class Places(road.Starts, wine_case.WineCase):
    def far_away(self):
        """A folder that makes the path of a data folder in it LONGEST letters long."""
        folder = self.data.parent / FAR_AWAY
        while (rest := LONGEST - len(self.station.as_told(folder / CONTRACTS))) > 1:
            folder /= "ö" * (rest - 1 if rest < 50 else 40)
        folder.mkdir(parents=True)
        return folder

    def test_a_far_away_folder_in_many_letters_is_used_from_end_to_end(self):
        self.scanners.connect(64, "Flatbed")
        folder = self.far_away()
        self.data = folder / CONTRACTS
        self.assertEqual(len(self.station.as_told(self.data)), LONGEST)
        self.robot.start()
        main = self.clerk.create_data_folder(self.station.as_told(folder), self.data.name)
        self.file_document(main, "Miete für März, 100 €", DAY, ["Vermieter Ü", "住所"])
        self.clerk.all_dates(main, True)
        self.clerk.choose_tag(main, "住所")
        self.wait_listed(main, (DAY, "Miete für März, 100 €"))
        (pdf,) = (self.data / "scanned_files" / "1009").iterdir()
        self.assertEqual(self.pdf_facts(pdf)["Pages"], "1")
        self.end_program(main)
        main = self.open_program()
        self.wait_listed(main, (DAY, "Miete für März, 100 €"))
        self.end_program(main)
        self.assertEqual(self.preferences().findtext("dblocation"),
                         self.station.as_told(self.data))
        # The path is too long for the test's own library.
        shutil.copy(self.data / "db.mdb", self.station.home)
        self.data = self.station.home
        self.assertEqual(self.rows("select description from tags order by link"),
                         [("Vermieter Ü",), ("住所",)])

    def test_a_pdf_whose_path_has_many_letters_is_opened_and_located(self):
        self.data = self.data.parent / FAR_AWAY / CONTRACTS
        self.given_data_folder(FILED)
        pdf = self.data / "scanned_files" / "1009" / "101209143005_2.pdf"
        pdf.parent.mkdir(parents=True)
        pdf.write_bytes(b"%PDF-1.4 a scan of long ago")
        desktop = self.new_desktop()
        main = self.open_program()
        self.clerk.all_dates(main, True)
        self.clerk.choose_tag(main, "Steuern")
        self.wait_listed(main, (DAY, "Bescheid"))
        self.clerk.select_document(main, "Bescheid")
        self.clerk.command(main, "Open File")
        desktop.wait_opened(pdf)
        self.clerk.command(main, "Locate File")
        desktop.wait_located(pdf)
        self.end_program(main)

    def test_a_drive_that_is_gone_is_told_and_can_be_corrected(self):
        self.given_data_folder("insert into tags values (1, 'Taxes');"
                               "update comp set NewLink = 2;")
        for gone in (r"Q:\Office\Documents", r"\\nowhere\Office\Documents"):
            with self.subTest(gone=gone):
                self.cancel(self.begin_with_a_data_folder_that_is_gone(gone))
                self.assertEqual(self.preferences().findtext("dblocation"), gone)
        main = self.point_to_the_data_folder(self.begin_with_a_data_folder_that_is_gone(gone))
        self.clerk.choose_tag(main, "taxes")
        self.end_program(main)

    def test_an_application_folder_that_cannot_be_made_is_told_with_its_path(self):
        self.assertNotEqual(os.geteuid(), 0, "the superuser may write everywhere")
        # The installer made it for all users.
        self.station.app_folder.rmdir()
        self.station.all_users_folder.chmod(0o555)
        self.addCleanup(self.station.all_users_folder.chmod, 0o755)
        self.robot.start()
        (report,) = self.reports("Main")
        self.assertIn(r"Cannot create the folder C:\ProgramData\Brightmoor: Access denied.", report)

    def test_preferences_that_cannot_be_written_are_told_with_their_path(self):
        self.assertNotEqual(os.geteuid(), 0, "the superuser may write everywhere")
        self.station.app_folder.mkdir(exist_ok=True)
        self.station.app_folder.chmod(0o555)
        self.addCleanup(self.station.app_folder.chmod, 0o755)
        self.robot.start()
        report, _passed_on = self.reports("save_localXML", "Main")
        self.assertIn(r"Cannot write C:\ProgramData\Brightmoor\folidex_Preferences.xml: "
                      "Access denied.", report)

    def reports(self, *procedures):
        """The error reports of these procedures, after which the program ends as failed."""
        texts = []
        for procedure in procedures:
            texts.append(self.read_box("Application Error"))
            self.assertIn(f"Procedure: {procedure} ", texts[-1])
        self.assertEqual(self.robot.wait_for_end(), 255)
        return texts


if __name__ == "__main__":
    wine_case.main()
