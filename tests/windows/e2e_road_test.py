#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""From the installer to a filed and found document, and what lies on the disk afterwards."""

import datetime
import re

import wine_case
from driver.robot import BUTTON, CHECK, TEXT

DESCRIPTION = "O'Brien's lease: 100 % \"signed\" & <sealed>"
TAGS = ("Landlord's", "Contracts")
DAY, DAY_NUMBER = "10/12/2009", 40098
PAGES = "rgb100@400x600, bw200@800x1200"


class FirstStart(wine_case.WineCase):
    def new_station(self, machine=None):
        return super().new_station(wine_case.bare_machine())

    def test_a_clean_machine_is_asked_for_its_folder_once(self):
        self.assertFalse(self.station.program_folder.exists())
        wine_case.install(self.station.machine)
        self.robot.start()
        window = self.clerk.location_window()
        self.assertEqual(self.robot.windows(), [window])
        self.assertIn("Database Location", self.clerk.label_texts(window))
        self.assertEqual(self.preferences().tag, "folidex")
        self.assertEqual(len(self.preferences()), 0)
        main = self.clerk.create_data_folder(self.station.as_told(self.data.parent),
                                             self.data.name)
        self.end_program(main)
        self.assertEqual(self.preferences().findtext("dblocation"), r"C:\shared\Documents")
        self.assertEqual(self.rows("select NewLink from comp"), [(1,)])
        main = self.open_program()
        self.assertEqual(self.robot.windows(), [main])
        self.end_program(main)

    def test_browsing_brings_a_folder_into_the_form(self):
        wine_case.install(self.station.machine)
        self.robot.start()
        window = self.clerk.location_window()
        self.clerk.browse(window, "doc")
        entry = self.robot.find(TEXT, "Location", window)
        self.robot.wait(lambda: entry.text.startswith("C:"), "the folder in the form")
        folder = self.station.drive / entry.text.removeprefix("C:\\").replace("\\", "/")
        self.assertEqual(folder.name, "Documents")
        self.assertTrue(folder.is_dir(), entry.text)
        name = self.robot.find(TEXT, "Folder name", window)
        self.robot.wait(lambda: "focused" in name.states, "the focus on the folder's name")
        self.robot.keys(*"Papers")
        self.robot.press(self.robot.find(BUTTON, "OK", window))
        self.end_program(self.clerk.main_window())
        self.assertTrue((folder / "Papers" / "db.mdb").is_file())
        self.assertEqual(self.preferences().findtext("dblocation"),
                         self.station.as_told(folder / "Papers"))


class Road(wine_case.WineCase):
    def walk(self):
        """First start to found document; the main window."""
        self.scanners.connect(64, "Flatbed", Flatbed={"pages": PAGES})
        self.robot.start()
        main = self.clerk.create_data_folder(self.station.as_told(self.data.parent),
                                             self.data.name)
        capture = self.clerk.new_scan(main)
        self.clerk.scan(capture)
        self.assertTrue(self.temporary_scan.is_file())
        self.clerk.describe(capture, DESCRIPTION, DAY, TAGS)
        self.clerk.save(capture)
        self.clerk.all_dates(main, True)
        self.clerk.choose_tag(main, TAGS[0])
        self.clerk.wait_results(main, lambda listed: listed == [(DAY, DESCRIPTION)],
                                "the document among the results")
        return main

    def test_a_document_is_scanned_filed_and_found(self):
        before = datetime.datetime.now().replace(microsecond=0)
        main = self.walk()
        after = datetime.datetime.now()
        self.end_program(main)
        self.look_into_the_database(before, after)
        self.look_into_the_pdf()
        self.look_into_the_preferences()
        self.assertFalse(self.temporary_scan.exists())
        months = sorted(folder.name for folder in (self.data / "scanned_files").iterdir())
        self.assertEqual(months, sorted({"1009", after.strftime("%m%y")}))
        self.open_again()

    def look_into_the_database(self, before, after):
        self.assertEqual(self.rows("select * from tags order by link"),
                         [(1, TAGS[0]), (2, TAGS[1])])
        ((link, description, date, self.file_name, location),) = self.rows(
            "select link, description, date, fname, location from scans")
        self.assertEqual((link, description, date, location),
                         (3, DESCRIPTION, DAY_NUMBER, "1009"))
        self.assertEqual(self.rows("select scan, tag from tagged order by rowid"),
                         [(3, 1), (3, 2)])
        self.assertEqual(self.rows("select NewLink from comp"), [(4,)])
        moment = re.fullmatch(r"(\d{12})_3\.pdf", self.file_name)
        self.assertTrue(moment, self.file_name)
        saved = datetime.datetime.strptime(moment.group(1), "%m%d%y%H%M%S")
        self.assertTrue(before <= saved <= after, f"{before} {saved} {after}")

    def look_into_the_pdf(self):
        pdf = self.data / "scanned_files" / "1009" / self.file_name
        facts = self.pdf_facts(pdf)
        self.assertEqual(facts["Pages"], "2")
        # Both pages are 4 by 6 inches.
        width, height = re.match(r"([\d.]+) x ([\d.]+) pts", facts["Page size"]).groups()
        self.assertAlmostEqual(float(width), 4 * 72, delta=1)
        self.assertAlmostEqual(float(height), 6 * 72, delta=1)
        images = [line.split() for line in
                  self.station.run("pdfimages", "-list", str(pdf)).splitlines()[2:]]
        self.assertEqual([(each[0], each[3], each[4], each[8]) for each in images],
                         [("1", "400", "600", "jpeg"), ("2", "800", "1200", "ccitt")])

    def look_into_the_preferences(self):
        self.assertEqual(self.station.as_told(self.station.preferences_file),
                         r"C:\ProgramData\Brightmoor\folidex_Preferences.xml")
        root = self.preferences()
        self.assertEqual(root.tag, "folidex")
        self.assertEqual(root.findtext("dblocation"), r"C:\shared\Documents")
        self.assertEqual(root.findtext("chkDates"), "1")
        self.assertEqual([(flag.tag, flag.text) for flag in root.find("tagprofiles/fdxloadfilter")],
                         [("Tag2", "0"), ("Tag1", "1")])
        self.assertGreater(float(root.findtext("dtTo")), DAY_NUMBER)

    def open_again(self):
        main = self.open_program()
        self.clerk.wait_results(main, lambda listed: listed == [(DAY, DESCRIPTION)],
                                "the results of the last run")
        self.assertEqual(self.clerk.chosen_tags(main), [TAGS[0]])
        self.assertIn("checked", self.robot.find(CHECK, "All Dates", main).states)
        self.assertEqual(self.robot.windows(), [main])
        self.end_program(main)


if __name__ == "__main__":
    wine_case.main()
