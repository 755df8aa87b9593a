#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""From the installer to a filed and found document, and what lies on the disk afterwards."""

import wine_case
from driver import road
from driver.robot import TEXT

PAGES = "rgb100@400x600, bw200@800x1200"


class FirstStart(road.Starts, wine_case.WineCase):
    def new_station(self, machine=None):
        return super().new_station(wine_case.bare_machine())

    def test_a_clean_machine_is_asked_for_its_folder_once(self):
        self.assertFalse(self.station.program_folder.exists())
        wine_case.install(self.station.machine)
        self.begin_on_a_clean_machine()
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
        self.robot.wait(lambda: name.text == "Papers", "the folder's name")
        self.clerk.press(window, "OK")
        self.end_program(self.clerk.main_window())
        self.assertTrue((folder / "Papers" / "db.mdb").is_file())
        self.assertEqual(self.preferences().findtext("dblocation"),
                         self.station.as_told(folder / "Papers"))


class Road(road.Road, wine_case.WineCase):
    def test_a_document_is_scanned_filed_and_found(self):
        self.scanners.connect(64, "Flatbed", Flatbed={"pages": PAGES})
        pdf = self.walk_and_look()
        facts = self.pdf_facts(pdf)
        self.assertEqual(facts["Pages"], "2")
        # Both pages are 4 by 6 inches.
        self.assert_page_size(facts, 4 * 25.4, 6 * 25.4)
        images = [line.split() for line in
                  self.station.run("pdfimages", "-list", str(pdf)).splitlines()[2:]]
        self.assertEqual([(each[0], each[3], each[4], each[8]) for each in images],
                         [("1", "400", "600", "jpeg"), ("2", "800", "1200", "ccitt")])
        self.assertEqual(self.preferences().findtext("dblocation"), r"C:\shared\Documents")
        self.assertEqual(self.station.as_told(self.station.preferences_file),
                         r"C:\ProgramData\Brightmoor\folidex_Preferences.xml")
        self.open_again()


if __name__ == "__main__":
    wine_case.main()
