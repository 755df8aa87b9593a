#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""The main window's commands on a filed document, and its menus."""

import station_case
from driver.clerk import USE_EXISTING
from driver.robot import BUTTON, COMBO, DATE, RADIO, TABLE, TEXT

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
    page_delay = True

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
        self.clerk.wait_results(self.main, lambda listed: listed == list(documents),
                                f"the documents {documents}")

    def select(self, row):
        cell = self.robot.find(TABLE, "Documents", self.main).table_cell(row, 1)
        self.robot.press(cell)
        self.robot.wait(lambda: "selected" in cell.states, "the row to be selected")

    def command(self, name):
        self.robot.press(self.robot.find(BUTTON, name, self.main))

    def choose(self, menu_button, caption):
        menu = self.robot.open_menu(self.robot.find(BUTTON, menu_button, self.main))
        items = {item.name.strip(): item for item in self.robot.items(menu)}
        self.assertIn(caption, items)
        self.robot.choose(menu, items[caption])

    def test_editing_changes_the_row_and_leaves_the_file_where_it_was_filed(self):
        self.select(0)
        self.command("Edit")
        form = self.robot.window_with(BUTTON, "Save")
        description = self.robot.find(TEXT, "Description", form)
        self.robot.wait(lambda: description.text == "Lease", "the document in the form")
        self.assertEqual(self.robot.find(DATE, "Date", form).text, "12 Oct 2009")
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
        cell = self.robot.find(TABLE, "Documents", self.main).table_cell(1, 1)
        self.robot.press(cell, times=2)
        form = self.robot.window_with(BUTTON, "Save")
        description = self.robot.find(TEXT, "Description", form)
        self.robot.wait(lambda: description.text == "Assessment", "the document in the form")
        self.clerk.scan(form)
        self.robot.wait(self.temporary_scan.is_file, "the new scan")
        self.clerk.save(form)
        self.wait_for(LEASE, ASSESSMENT)
        self.end_program(self.main)
        pdf = self.folder / "101409090000_4.pdf"
        self.assertIn("No syntax or stream encoding errors found",
                      self.station.run("qpdf", "--check", str(pdf)))
        self.assertEqual((self.folder / "101209143005_3.pdf").read_bytes(), PDF)

    def test_deleting_asks_first_and_keeps_the_pdf(self):
        self.select(1)
        self.command("Delete")
        self.assertEqual(self.read_box("IMPORTANT !", "No"),
                         "Are you sure you want to continue? There is NO UNDO !")
        self.assertEqual(len(self.rows("select * from scans")), 2)
        self.select(1)
        self.command("Delete")
        self.read_box("IMPORTANT !", "Yes")
        self.wait_for(LEASE)
        self.end_program(self.main)
        self.assertEqual(self.rows("select link from scans"), [(3,)])
        self.assertEqual(self.rows("select scan, tag from tagged"), [(3, 1)])
        self.assertEqual((self.folder / "101409090000_4.pdf").read_bytes(), PDF)

    def test_locating_a_missing_file_is_told_with_its_path(self):
        path = self.folder / "101209143005_3.pdf"
        path.unlink()
        self.select(0)
        self.command("Locate File")
        self.assertEqual(self.read_box("Error").replace(" ", ""),
                         f"Cannotfindfile:{path}".replace(" ", ""))
        self.end_program(self.main)

    def test_the_choice_for_a_double_click_is_kept(self):
        self.choose("Maintenance", "-> Locate PDF")
        (self.folder / "101209143005_3.pdf").unlink()
        cell = self.robot.find(TABLE, "Documents", self.main).table_cell(0, 1)
        self.robot.press(cell, times=2)
        self.assertIn("Cannot find file: ", self.read_box("Error"))
        self.end_program(self.main)
        self.assertEqual(self.preferences().findtext("DoubleClick"), "Locate")

    def test_the_about_box_tells_the_version(self):
        self.choose("Help", "About Folidex")
        about = self.robot.window_with(BUTTON, "OK")
        self.assertRegex(" ".join(self.clerk.label_texts(about)), r"Version \d+\.\d+\.\d+")
        self.robot.answer(about, "OK")
        self.end_program(self.main)

    def test_data_location_leads_out_of_the_main_window_and_back(self):
        self.choose("Maintenance", "Data Location")
        form = self.clerk.location_window()
        self.robot.wait(lambda: self.robot.windows() == [form], "the main window to close")
        self.assertIn("checked", self.robot.find(RADIO, USE_EXISTING, form).states)
        self.robot.press(self.robot.find(BUTTON, "OK", form))
        self.main = self.clerk.main_window()
        self.wait_for(LEASE, ASSESSMENT)
        self.end_program(self.main)

    def test_a_tag_deleted_from_the_catalogue_leaves_the_chosen_tags(self):
        self.clerk.choose_tag(self.main, "Taxes")
        self.choose("Maintenance", "Tag Maintenance")
        self.robot.wait(lambda: len(self.robot.windows()) == 2, "the tag catalogue")
        catalogue = self.robot.windows()[-1]
        self.change_database("delete from tags where link = 2")
        self.robot.press(self.robot.find(BUTTON, "Close", catalogue))
        self.robot.wait_gone(catalogue)
        self.robot.wait(lambda: self.clerk.chosen_tags(self.main) == ["Contracts"],
                        "the deleted tag to leave the filter")
        self.robot.find(COMBO, None, self.main)
        self.end_program(self.main)


if __name__ == "__main__":
    station_case.main()
