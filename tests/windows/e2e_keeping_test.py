#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""A document after filing, to its end: edited, scanned again, opened, located, deleted."""

import shutil

import wine_case

FILE = "101209143005_3.pdf"
FILED = f"""
insert into tags values (1, 'Contracts');
insert into tags values (2, 'Landlord');
insert into scans (link, description, date, fname, location)
    values (3, 'Lease', 40098, '{FILE}', '1009');
insert into tagged (scan, tag) values (3, 1);
insert into tagged (scan, tag) values (3, 2);
update comp set NewLink = 4;
"""
OLD_PDF = b"%PDF-1.4 a scan of long ago"
QUESTION = "Are you sure you want to continue? There is NO UNDO !"
OLD_FLATBED, NEW_FEEDER = "Old flatbed", "New feeder"


class Keeping(wine_case.WineCase):
    def setUp(self):
        super().setUp()
        self.given_data_folder(FILED)
        self.pdf = self.data / "scanned_files" / "1009" / FILE
        self.pdf.parent.mkdir(parents=True)
        self.pdf.write_bytes(OLD_PDF)

    def begin(self):
        """Starts the program and finds the document."""
        self.main = self.open_program()
        self.clerk.all_dates(self.main, True)
        self.clerk.choose_tag(self.main, "Contracts")
        self.wait_for(("10/12/2009", "Lease"))

    def wait_for(self, *documents):
        self.clerk.wait_results(self.main, lambda listed: listed == list(documents),
                                f"the documents {documents}")

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
        self.wait_for(("3/5/2010", "Lease"))
        self.end_program(self.main)
        self.assertEqual(self.rows("select * from scans"), [(3, "Lease", 40242, FILE, "1009")])
        self.assertEqual(self.rows("select scan, tag from tagged order by rowid"), [(3, 1), (3, 4)])
        self.assertEqual(self.pdf_facts(self.pdf)["Pages"], "3")

    def test_deleting_asks_first_and_keeps_the_pdf(self):
        self.begin()
        self.clerk.select_document(self.main, "Lease")
        self.assertEqual(self.clerk.delete_document(self.main, "No"), QUESTION)
        self.clerk.select_document(self.main, "Lease")
        self.assertEqual(self.clerk.delete_document(self.main, "Yes"), QUESTION)
        self.wait_for()
        self.end_program(self.main)
        self.assertEqual(self.rows("select * from scans"), [])
        self.assertEqual(self.rows("select * from tagged"), [])
        self.assertEqual(self.pdf.read_bytes(), OLD_PDF)

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
        self.wait_for(("10/12/2009", "Lease"))
        self.clerk.maintenance(self.main, "-> Open PDF")
        self.clerk.double_click(self.main, "Lease")
        desktop.wait_opened(self.pdf)
        self.end_program(self.main)
        self.assertEqual(self.preferences().findtext("DoubleClick"), "Open")


if __name__ == "__main__":
    wine_case.main()
