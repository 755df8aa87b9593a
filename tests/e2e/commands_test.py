#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""The main window's commands on a filed document, and its menus."""

import station_case
from driver.clerk import USE_EXISTING
from driver.robot import COMBO, RADIO

FILED = """
insert into tags values (1, 'Contracts');
insert into tags values (2, 'Taxes');
insert into scans (link, description, date, fname, location)
    values (3, 'Lease', 40098, '101209143005_3.pdf', '1009');
insert into scans (link, description, date, fname, location)
    values (4, 'Assessment', 40100, '101409090000_4.pdf', '1009');
insert into tagged (scan, tag) values (3, 1);
insert into tagged (scan, tag) values (4, 1);
insert into tagged (scan, tag) values (4, 2);
update comp set NewLink = 5;
"""
LEASE, ASSESSMENT = ("12 Oct 2009", "Lease"), ("14 Oct 2009", "Assessment")
PDF = b"%PDF-1.4 a scan of long ago"


class Commands(station_case.StationCase):
    def setUp(self):
        super().setUp()
        self.given_data_folder(FILED)
        self.folder = self.data / "scanned_files" / "1009"
        self.folder.mkdir(parents=True)
        for name in ("101209143005_3.pdf", "101409090000_4.pdf"):
            (self.folder / name).write_bytes(PDF)
        self.main = self.open_program()
        self.clerk.all_dates(self.main, True)
        self.clerk.choose_tag(self.main, "Contracts")
        self.wait_for(LEASE, ASSESSMENT)

    def wait_for(self, *documents):
        self.wait_listed(self.main, *documents)

    def test_editing_changes_the_row_and_leaves_the_file_where_it_was_filed(self):
        self.clerk.select_document(self.main, "Lease")
        form = self.clerk.edit_document(self.main, "Lease")
        self.assertEqual(self.clerk.document_date(form), "12 Oct 2009")
        self.clerk.describe(form, "Lease, ended", "5 Mar 2010", ["Taxes"])
        self.clerk.save(form)
        self.wait_for(ASSESSMENT, ("5 Mar 2010", "Lease, ended"))
        self.end_program(self.main)
        self.assertEqual(self.rows("select * from scans where link = 3"),
                         [(3, "Lease, ended", 40242, "101209143005_3.pdf", "1009")])
        self.assertEqual(self.rows("select tag from tagged where scan = 3 order by rowid"),
                         [(1,), (2,)])
        self.assertEqual((self.folder / "101209143005_3.pdf").read_bytes(), PDF)

    def test_a_double_click_edits_and_scanning_again_replaces_the_file(self):
        self.clerk.double_click(self.main, "Assessment")
        form = self.clerk.editing_window("Assessment")
        self.clerk.scan(form)
        self.assertTrue(self.temporary_scan.is_file())
        self.clerk.save(form)
        self.wait_for(LEASE, ASSESSMENT)
        self.end_program(self.main)
        self.assertEqual(self.pdf_facts(self.folder / "101409090000_4.pdf")["Pages"], "10")
        self.assertEqual((self.folder / "101209143005_3.pdf").read_bytes(), PDF)

    def test_deleting_takes_one_document_and_keeps_its_pdf(self):
        self.clerk.select_document(self.main, "Assessment")
        self.clerk.delete_document(self.main)
        self.wait_for(LEASE)
        self.end_program(self.main)
        self.assertEqual(self.rows("select link from scans"), [(3,)])
        self.assertEqual(self.rows("select scan, tag from tagged"), [(3, 1)])
        self.assertEqual((self.folder / "101409090000_4.pdf").read_bytes(), PDF)

    def test_locating_a_missing_file_is_told_with_its_path(self):
        path = self.folder / "101209143005_3.pdf"
        path.unlink()
        self.clerk.select_document(self.main, "Lease")
        self.clerk.command(self.main, "Locate File")
        self.assertEqual(self.read_box("Error").replace(" ", ""),
                         f"Cannotfindfile:{path}".replace(" ", ""))
        self.end_program(self.main)

    def test_the_choice_for_a_double_click_is_kept(self):
        self.clerk.maintenance(self.main, "-> Locate PDF")
        (self.folder / "101209143005_3.pdf").unlink()
        self.clerk.double_click(self.main, "Lease")
        self.assertIn("Cannot find file: ", self.read_box("Error"))
        self.end_program(self.main)
        self.assertEqual(self.preferences().findtext("DoubleClick"), "Locate")

    def test_the_about_box_tells_the_version(self):
        self.assertRegex(" ".join(self.clerk.about(self.main)), r"Version \d+\.\d+\.\d+")
        self.end_program(self.main)

    def test_data_location_leads_out_of_the_main_window_and_back(self):
        form = self.clerk.data_location(self.main)
        self.robot.wait(lambda: self.robot.windows() == [form], "the main window to close")
        self.assertIn("checked", self.robot.find(RADIO, USE_EXISTING, form).states)
        self.clerk.press(form, "OK")
        self.main = self.clerk.main_window()
        self.wait_for(LEASE, ASSESSMENT)
        self.end_program(self.main)

    def test_a_tag_deleted_from_the_catalogue_leaves_the_chosen_tags(self):
        self.clerk.choose_tag(self.main, "Taxes")
        catalogue = self.clerk.open_tags(self.main)
        self.change_database("delete from tags where link = 2")
        self.clerk.close_tags(catalogue)
        self.robot.wait(lambda: self.clerk.chosen_tags(self.main) == ["Contracts"],
                        "the deleted tag to leave the filter")
        self.robot.find(COMBO, None, self.main)
        self.end_program(self.main)


if __name__ == "__main__":
    station_case.main()
