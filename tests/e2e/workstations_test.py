#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""Two workstations at one data folder: each with a display, preferences and a scanner of its own."""

import station_case
from driver import Robot
from driver.archivist import Archivist
from driver.case import write_preferences


class Workstations(station_case.StationCase):
    def setUp(self):
        super().setUp()
        self.other_station = self.new_station()
        self.other = Archivist(Robot(self.other_station, station_case.PICTURES))

    def test_both_file_documents_and_each_sees_the_others(self):
        self.robot.start()
        main = self.clerk.create_data_folder(self.data.parent, self.data.name)
        write_preferences(self.other_station, dblocation=self.data)
        with self.other.robot.evidence(f"{self.id()}-other"):
            self.other.robot.start()
            self.file_from_both(main, self.other.main_window())
        links = [link for rows in (self.rows("select link from scans"),
                                   self.rows("select link from tags")) for link, in rows]
        self.assertEqual(sorted(links), [1, 2, 3])
        self.assertEqual(self.rows("select NewLink from comp"), [(4,)])
        self.assertEqual(len(list((self.data / "scanned_files/1009").iterdir())), 2)

    def file_from_both(self, main, other_main):
        self.file_document(main, "From here", "12 Oct 2009", ["Shared"])
        self.clerk.all_dates(main, True)
        self.clerk.choose_tag(main, "Shared")
        there = self.other.new_scan(other_main)
        self.other.scan(there)
        self.other.describe(there, "From there", "13 Oct 2009", ["Shared"])
        self.other.save(there)
        self.other.all_dates(other_main, True)
        self.other.choose_tag(other_main, "Shared")
        both = [("12 Oct 2009", "From here"), ("13 Oct 2009", "From there")]
        self.other.wait_results(other_main, lambda listed: listed == both, "both documents there")
        self.clerk.all_dates(main, False)
        self.clerk.all_dates(main, True)
        self.wait_listed(main, *both)
        self.assertEqual(self.other.close_main(other_main), 0)
        self.end_program(main)


if __name__ == "__main__":
    station_case.main()
