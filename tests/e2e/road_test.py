#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""From an empty machine to a filed and found document, and what lies on disk afterwards."""

import datetime
import re

import station_case
from driver.robot import CHECK, DATE, TABLE

DESCRIPTION = "O'Brien's lease: 100 % \"signed\" & <sealed>"
TAGS = ("Landlord's", "Contracts")
DAY = datetime.date(2009, 10, 12)
DAY_NUMBER = 40098


class Road(station_case.StationCase):
    page_delay = True

    def walk(self):
        """First start to found document; the main window."""
        self.robot.start()
        main = self.clerk.create_data_folder(self.data.parent, self.data.name)
        capture = self.clerk.new_scan(main)
        self.clerk.scan(capture)
        self.assertTrue(self.temporary_scan.is_file())
        self.clerk.describe(capture, DESCRIPTION, "12 Oct 2009", TAGS)
        self.clerk.save(capture)
        self.clerk.all_dates(main, True)
        self.clerk.choose_tag(main, TAGS[0])
        self.clerk.wait_results(main, lambda listed: listed == [("12 Oct 2009", DESCRIPTION)],
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

    def look_into_the_database(self, before, after):
        self.assertEqual(self.rows("select * from tags order by link"),
                         [(1, TAGS[0]), (2, TAGS[1])])
        ((self.link, description, date, self.file_name, location),) = self.rows(
            "select link, description, date, fname, location from scans")
        self.assertEqual((self.link, description, date, location),
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
        facts = dict(line.split(":", 1) for line in
                     self.station.run("pdfinfo", str(pdf)).splitlines() if ":" in line)
        self.assertEqual(facts["Pages"].strip(), "10")
        width, height = re.match(r" *([\d.]+) x ([\d.]+) pts", facts["Page size"]).groups()
        # 120 by 160 mm, within half a millimetre.
        self.assertAlmostEqual(float(width) / 72 * 25.4, 120, delta=0.5)
        self.assertAlmostEqual(float(height) / 72 * 25.4, 160, delta=0.5)
        self.assertIn("No syntax or stream encoding errors found",
                      self.station.run("qpdf", "--check", str(pdf)))

    def look_into_the_preferences(self):
        root = self.preferences()
        self.assertEqual(root.tag, "folidex")
        self.assertEqual(root.findtext("dblocation"), str(self.data))
        self.assertEqual(root.findtext("chkDates"), "1")
        self.assertEqual([(flag.tag, flag.text) for flag in root.find("tagprofiles/fdxloadfilter")],
                         [("Tag2", "0"), ("Tag1", "1")])
        self.assertGreater(float(root.findtext("dtTo")), DAY_NUMBER)

    def test_the_second_start_asks_nothing_and_shows_the_filter_of_the_first(self):
        self.end_program(self.walk())
        main = self.open_program()
        self.clerk.wait_results(main, lambda listed: listed == [("12 Oct 2009", DESCRIPTION)],
                                "the results of the last run")
        self.assertEqual(self.clerk.chosen_tags(main), [TAGS[0]])
        self.assertIn("checked", self.robot.find(CHECK, "All Dates", main).states)
        self.assertEqual(len(self.robot.windows()), 1)
        self.end_program(main)

    def test_the_date_range_narrows_the_results(self):
        main = self.walk()
        self.clerk.all_dates(main, False)
        self.clerk.wait_results(main, lambda listed: listed == [], "the document to be too old")
        self.robot.set_date(self.robot.find(DATE, "From", main), "12 Oct 2009")
        self.clerk.wait_results(main, lambda listed: len(listed) == 1, "the document in the range")
        self.robot.set_date(self.robot.find(DATE, "From", main), "13 Oct 2009")
        self.clerk.wait_results(main, lambda listed: listed == [], "the document before the range")
        self.assertEqual(self.robot.find(TABLE, "Documents", main).table_size[0], 0)
        self.end_program(main)


if __name__ == "__main__":
    station_case.main()
