# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""The road that every system's tests walk: from the first start to a filed and found document."""

import datetime
import re

from .clerk import USE_EXISTING
from .robot import CHECK, RADIO, TEXT

DESCRIPTION = "O'Brien's lease: 100 % \"signed\" & <sealed>"
TAGS = ("Landlord's", "Contracts")
DAY, DAY_NUMBER = datetime.date(2009, 10, 12), 40098
CANNOT_FIND = ("Folidex cannot find or open your database file. If the file resides on a network "
               "drive please ensure that you are connected to that network drive.")


class Starts:
    """Part of a case: what starts find on disk."""

    def cancel(self, window):
        """Leaves the data location form, and so the program."""
        self.clerk.press(window, "Cancel")
        self.assertEqual(self.robot.wait_for_end(), 0)

    def begin_on_a_clean_machine(self):
        """The first start; the data location form."""
        self.robot.start()
        window = self.clerk.location_window()
        self.assertEqual(self.robot.windows(), [window])
        self.assertIn("Database Location", self.clerk.label_texts(window))
        self.assertEqual(self.preferences().tag, "folidex")
        self.assertEqual(len(self.preferences()), 0)
        return window

    def begin_with_a_data_folder_that_is_gone(self, gone):
        """A start that misses the folder of before; the data location form."""
        self.given_preferences(dblocation=gone)
        self.robot.start()
        self.assertEqual(self.read_box("Folidex"), CANNOT_FIND)
        window = self.clerk.location_window()
        self.assertIn("ERROR opening database file", self.clerk.label_texts(window))
        self.assertIn("checked", self.robot.find(RADIO, USE_EXISTING, window).states)
        self.assertEqual(self.robot.find(TEXT, "Existing data folder", window).text, str(gone))
        return window

    def point_to_the_data_folder(self, window):
        """Names the data folder in use in the data location form; the main window."""
        self.robot.type_text(self.robot.find(TEXT, "Existing data folder", window),
                             self.station.as_told(self.data))
        self.clerk.press(window, "OK")
        return self.clerk.main_window()


class Road:
    """Part of a case: a document is scanned, filed and found on an empty machine."""

    @property
    def found(self):
        """The document among the results."""
        return self.station.as_picker_writes(DAY), DESCRIPTION

    def walk(self):
        """First start to found document; the main window."""
        self.robot.start()
        main = self.clerk.create_data_folder(self.station.as_told(self.data.parent),
                                             self.data.name)
        self.file_document(main, DESCRIPTION, self.found[0], TAGS)
        self.clerk.all_dates(main, True)
        self.clerk.choose_tag(main, TAGS[0])
        self.wait_listed(main, self.found)
        return main

    def walk_and_look(self):
        """Walks, ends the program, and looks at what lies on the disk; the filed PDF."""
        before = datetime.datetime.now().replace(microsecond=0)
        main = self.walk()
        after = datetime.datetime.now()
        self.end_program(main)
        self.assertFalse(self.temporary_scan.exists())
        months = {folder.name for folder in (self.data / "scanned_files").iterdir()}
        # The program makes the folder of the month that it is started in.
        self.assertIn(months, [{"1009", day.strftime("%m%y")} for day in (before, after)])
        self.look_into_the_preferences()
        return self.data / "scanned_files" / "1009" / self.look_into_the_database(before, after)

    def look_into_the_database(self, before, after):
        """The name of the filed PDF, which tells when it was saved."""
        self.assertEqual(self.rows("select * from tags order by link"),
                         [(1, TAGS[0]), (2, TAGS[1])])
        ((link, description, date, name, location),) = self.rows(
            "select link, description, date, fname, location from scans")
        self.assertEqual((link, description, date, location),
                         (3, DESCRIPTION, DAY_NUMBER, "1009"))
        self.assertEqual(self.rows("select scan, tag from tagged order by rowid"),
                         [(3, 1), (3, 2)])
        self.assertEqual(self.rows("select NewLink from comp"), [(4,)])
        moment = re.fullmatch(r"(\d{12})_3\.pdf", name)
        self.assertTrue(moment, name)
        saved = datetime.datetime.strptime(moment.group(1), "%m%d%y%H%M%S")
        self.assertTrue(before <= saved <= after, f"{before} {saved} {after}")
        return name

    def look_into_the_preferences(self):
        root = self.preferences()
        self.assertEqual(root.tag, "folidex")
        self.assertEqual(root.findtext("dblocation"), self.station.as_told(self.data))
        self.assertEqual(root.findtext("chkDates"), "1")
        self.assertEqual([(flag.tag, flag.text) for flag in root.find("tagprofiles/fdxloadfilter")],
                         [("Tag2", "0"), ("Tag1", "1")])
        self.assertGreater(float(root.findtext("dtTo")), DAY_NUMBER)

    def open_again(self):
        """The second start asks nothing and shows the filter of the first."""
        main = self.open_program()
        self.wait_listed(main, self.found)
        self.assertEqual(self.clerk.chosen_tags(main), [TAGS[0]])
        self.assertIn("checked", self.robot.find(CHECK, "All Dates", main).states)
        self.assertEqual(self.robot.windows(), [main])
        self.end_program(main)

    def assert_page_size(self, facts, width, height):
        """A page's measures in millimetres, within half of one."""
        told = re.match(r"([\d.]+) x ([\d.]+) pts", facts["Page size"]).groups()
        for points, wanted in zip(told, (width, height)):
            self.assertAlmostEqual(float(points) / 72 * 25.4, wanted, delta=0.5)
