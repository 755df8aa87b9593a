#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""A document and its tags after filing, to the end of both; what each step leaves on disk."""

import datetime
import re

import station_case
from driver.desktop import Desktop
from driver.lease import FILE, OLD_PDF, Lease
from driver.robot import ITEM

DAY, DAY_NUMBER = datetime.date(2009, 10, 13), 40099
IN_USE = "There are documents linked to this tag. Cannot delete."


class Keeping(Lease, station_case.StationCase):
    def test_a_document_is_edited_opened_located_and_deleted(self):
        self.desktop = Desktop(self.station)
        self.begin()
        self.edit_it()
        self.open_and_locate_it()
        self.maintain_tags()
        self.delete_it()
        self.start_again()

    def edit_it(self):
        clerk = self.clerk
        clerk.select_document(self.main, "Lease")
        form = clerk.edit_document(self.main, "Lease")
        self.assertEqual(clerk.document_date(form), "12 Oct 2009")
        self.assertEqual(clerk.assigned_tags(form), ["Contracts", "Landlord"])
        clerk.change_date(form, "13 Oct 2009")
        clerk.take_tag_off(form, "Landlord")
        clerk.assign_tag(form, "Leases")
        clerk.scan(form)
        clerk.view(form, "My new scan")
        self.desktop.wait_opened(self.temporary_scan)
        clerk.view(form, "The scan on file.")
        self.desktop.wait_opened(self.pdf)
        self.assertEqual(self.pdf.read_bytes(), OLD_PDF)
        clerk.save(form)
        self.wait_for(DAY)
        self.assertEqual(self.contents(), (
            [(3, "Lease", DAY_NUMBER, FILE, "1009")], [(3, 1), (3, 4)],
            [(1, "Contracts"), (2, "Landlord"), (4, "Leases")], [(5,)]))
        self.assertFalse(self.temporary_scan.exists())
        self.assertEqual(self.pdf_facts(self.pdf)["Pages"], "10")

    def open_and_locate_it(self):
        before = self.contents()
        self.clerk.maintenance(self.main, "-> Open PDF")
        self.clerk.double_click(self.main, "Lease")
        self.desktop.wait_opened(self.pdf, 2)
        # The choice is in the file when the window closes, like the filter.
        self.assertIsNone(self.preferences().find("DoubleClick"))
        self.clerk.command(self.main, "Open File")
        self.desktop.wait_opened(self.pdf, 3)
        self.clerk.command(self.main, "Locate File")
        self.desktop.wait_located(self.pdf)
        self.assertEqual(self.desktop.opened, [str(self.temporary_scan)] + 3 * [str(self.pdf)])
        self.assertEqual(self.desktop.located, [str(self.pdf)])
        self.assertEqual(self.contents(), before)

    def maintain_tags(self):
        clerk = self.clerk
        window = clerk.open_tags(self.main)
        self.assertEqual(clerk.catalogue(window), ["Contracts", "Landlord", "Leases"])
        clerk.rename_tag(window, "Leases", "Rents")
        renamed = [(1, "Contracts"), (2, "Landlord"), (4, "Rents")]
        self.assertEqual(self.rows("select * from tags order by link"), renamed)
        question, refusal = clerk.try_to_delete_tag(window, "Rents")
        self.assertEqual(question, "Are you sure you want to delete Rents")
        self.assertEqual(refusal, IN_USE)
        self.assertEqual(self.rows("select * from tags order by link"), renamed)
        clerk.delete_tag(window, "Landlord")
        clerk.close_tags(window)
        self.robot.wait(lambda: clerk.chosen_tags(self.main) == ["Contracts"],
                        "the deleted tag to leave the filter")
        self.assertEqual(self.contents(), (
            [(3, "Lease", DAY_NUMBER, FILE, "1009")], [(3, 1), (3, 4)],
            [(1, "Contracts"), (4, "Rents")], [(5,)]))

    def start_again(self):
        self.end_program(self.main)
        kept = self.preferences()
        self.assertEqual(kept.findtext("DoubleClick"), "Open")
        self.assertEqual(kept.findtext("chkDates"), "1")
        self.assertEqual(kept.findtext("dblocation"), str(self.data))
        flags = kept.find("tagprofiles/fdxloadfilter")
        self.assertEqual((flags.findtext("Tag1"), flags.findtext("Tag4")), ("1", "0"))
        self.main = self.open_program()
        self.robot.wait(lambda: self.clerk.chosen_tags(self.main) == ["Contracts"],
                        "the filter of the last run")
        menu = self.clerk.menu_of(self.main, "Maintenance")
        checked = [item.name for item in menu.walk(4)
                   if item.role in ITEM and "checked" in item.states]
        self.assertEqual(checked, ["-> Open PDF"])
        self.clerk.close_menu(menu)
        self.end_program(self.main)
        self.assertEqual(self.preferences().findtext("DoubleClick"), "Open")

    def test_without_a_file_manager_the_folder_is_opened(self):
        self.desktop = Desktop(self.station, file_manager=False)
        self.begin()
        self.clerk.select_document(self.main, "Lease")
        self.clerk.command(self.main, "Locate File")
        self.desktop.wait_opened(self.pdf.parent)
        self.assertEqual(self.desktop.located, [])
        self.end_program(self.main)

    def test_online_help_and_support_open_the_pages_beside_the_program(self):
        self.desktop = Desktop(self.station)
        self.begin()
        site = self.station.program_folder / "site"
        pictures = re.findall(r'src="([^"]+)"', (site / "help/index.html").read_text())
        self.assertIn("images/main.png", pictures)
        for picture in pictures:
            self.assertTrue((site / "help" / picture).is_file(), picture)
        self.clerk.help(self.main, "Online Help")
        self.desktop.wait_opened(site / "help/index.html")
        self.clerk.help(self.main, "Get Support")
        self.desktop.wait_opened(site / "support/index.html")
        self.end_program(self.main)


if __name__ == "__main__":
    station_case.main()
