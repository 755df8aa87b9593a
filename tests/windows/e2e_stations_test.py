#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""Two workstations at one data folder: each a machine with preferences and a scanner of its own."""

import wine_case
from driver import Robot
from driver.case import write_preferences
from driver.windows_clerk import WindowsClerk

SHARE = "S:"
HERE, THERE = ("10/12/2009", "From here"), ("10/13/2009", "From there")


class Workstations(wine_case.WineCase):
    def setUp(self):
        super().setUp()
        self.other_station = self.new_station()
        self.other = WindowsClerk(Robot(self.other_station, wine_case.PICTURES))
        for station in (self.station, self.other_station):
            self.new_scanners(station).connect(64, "Flatbed")
            # As a network drive is connected: a letter for a folder that lies elsewhere.
            (station.machine.prefix / "dosdevices" / SHARE.lower()).symlink_to(self.data.parent)

    def test_both_file_documents_and_each_sees_the_others(self):
        self.robot.start()
        main = self.clerk.create_data_folder(SHARE + "\\", self.data.name)
        self.change_database("insert into tags values (1, 'Shared'); update comp set NewLink = 2")
        write_preferences(self.other_station, dblocation=f"{SHARE}\\{self.data.name}")
        with self.other.robot.evidence(f"{self.id()}-other"):
            self.other.robot.start()
            self.file_from_both(main, self.other.main_window())
        self.assertEqual(self.rows("select link from scans order by link"), [(2,), (3,)])
        self.assertEqual(self.rows("select * from tags"), [(1, "Shared")])
        self.assertEqual(self.rows("select NewLink from comp"), [(4,)])
        self.assertEqual(len(list((self.data / "scanned_files/1009").iterdir())), 2)

    def file_from_both(self, main, other_main):
        forms = [(clerk, window, clerk.new_scan(window), document) for clerk, window, document
                 in ((self.clerk, main, HERE), (self.other, other_main, THERE))]
        # Both forms are open at once; each step is done here and there.
        for clerk, _window, form, _document in forms:
            clerk.scan(form)
        for clerk, _window, form, (date, description) in forms:
            clerk.describe(form, description, date, ["Shared"])
        for clerk, _window, form, _document in forms:
            clerk.save(form)
        for clerk, window, _form, _document in forms:
            clerk.all_dates(window, True)
            clerk.choose_tag(window, "Shared")
            clerk.wait_results(window, lambda listed: listed == [HERE, THERE], "both documents")
        self.assertEqual(self.other.close_main(other_main), 0)
        self.end_program(main)


if __name__ == "__main__":
    wine_case.main()
