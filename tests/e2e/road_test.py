#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""From an empty machine to a filed and found document, and what lies on disk afterwards."""

import station_case
from driver import road
from driver.robot import DATE


class Road(road.Road, station_case.StationCase):
    def test_a_document_is_scanned_filed_and_found(self):
        facts = self.pdf_facts(self.walk_and_look())
        self.assertEqual(facts["Pages"], "10")
        self.assert_page_size(facts, 120, 160)
        self.open_again()

    def test_the_date_range_narrows_the_results(self):
        main = self.walk()
        self.clerk.all_dates(main, False)
        # It is too old for the range at hand.
        self.wait_listed(main)
        self.robot.set_date(self.robot.find(DATE, "From", main), "12 Oct 2009")
        self.wait_listed(main, self.found)
        self.robot.set_date(self.robot.find(DATE, "From", main), "13 Oct 2009")
        self.wait_listed(main)
        self.end_program(main)


if __name__ == "__main__":
    station_case.main()
