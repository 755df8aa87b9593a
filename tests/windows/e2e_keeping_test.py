#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""A document after filing, to its end: edited, scanned again, opened, located, deleted."""

import datetime
import shutil

import wine_case
from driver.lease import DAY, FILE, Lease

OLD_FLATBED, NEW_FEEDER = "Old flatbed", "New feeder"


class Keeping(Lease, wine_case.WineCase):
    def test_a_document_is_scanned_again_with_a_32_bit_driver(self):
        self.scanners.connect(64, NEW_FEEDER)
        self.scanners.connect(32, OLD_FLATBED, Old_flatbed={"pages": "gray100@400x600*3"})
        desktop = self.new_desktop()
        self.begin()
        self.clerk.select_document(self.main, "Lease")
        form = self.clerk.edit_document(self.main, "Lease")
        self.clerk.change_date(form, "3/5/2010")
        self.clerk.take_tag_off(form, "Landlord")
        self.clerk.assign_tag(form, "Taxes")
        # 64-bit drivers come first in the menu.
        self.assertEqual(self.clerk.scan(form, OLD_FLATBED), [NEW_FEEDER, OLD_FLATBED])
        self.assertEqual(self.scanners.log(64).count(f"{NEW_FEEDER} open"), 0)
        self.clerk.view(form, "My new scan")
        desktop.wait_opened(self.temporary_scan)
        self.clerk.view(form, "The scan on file.")
        desktop.wait_opened(self.pdf)
        self.clerk.save(form)
        self.wait_for(datetime.date(2010, 3, 5))
        self.end_program(self.main)
        self.assertEqual(self.rows("select * from scans"), [(3, "Lease", 40242, FILE, "1009")])
        self.assertEqual(self.rows("select scan, tag from tagged order by rowid"), [(3, 1), (3, 4)])
        self.assertEqual(self.pdf_facts(self.pdf)["Pages"], "3")

    def test_deleting_asks_first_and_keeps_the_pdf(self):
        self.begin()
        self.delete_it()
        self.end_program(self.main)

    def test_a_document_is_located_in_the_file_manager(self):
        desktop = self.new_desktop()
        self.begin()
        self.clerk.select_document(self.main, "Lease")
        self.clerk.command(self.main, "Locate File")
        told = self.station.as_told(self.pdf)
        desktop.wait_located(self.pdf)
        shutil.rmtree(self.pdf.parent)
        self.clerk.command(self.main, "Locate File")
        self.assertEqual(self.read_box("Error").replace(" ", ""),
                         f"Cannotfindfile:{told}".replace(" ", ""))
        self.end_program(self.main)

    def test_a_double_click_does_what_was_chosen(self):
        desktop = self.new_desktop()
        self.begin()
        self.clerk.double_click(self.main, "Lease")
        form = self.clerk.editing_window("Lease")
        self.clerk.cancel_capture(form)
        # The list is read afresh when the form closes.
        self.wait_for(DAY)
        self.clerk.maintenance(self.main, "-> Open PDF")
        self.clerk.double_click(self.main, "Lease")
        desktop.wait_opened(self.pdf)
        self.end_program(self.main)
        self.assertEqual(self.preferences().findtext("DoubleClick"), "Open")


if __name__ == "__main__":
    wine_case.main()
