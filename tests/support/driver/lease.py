# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""A data folder in which one document was filed long ago, and its end, the same on every system."""

import datetime

FILE = "101209143005_3.pdf"
DAY, DAY_NUMBER = datetime.date(2009, 10, 12), 40098
FILED = f"""
insert into tags values (1, 'Contracts');
insert into tags values (2, 'Landlord');
insert into scans (link, description, date, fname, location)
    values (3, 'Lease', {DAY_NUMBER}, '{FILE}', '1009');
insert into tagged (scan, tag) values (3, 1);
insert into tagged (scan, tag) values (3, 2);
update comp set NewLink = 4;
"""
OLD_PDF = b"%PDF-1.4 a scan of long ago"
QUESTION = "Are you sure you want to continue? There is NO UNDO !"


class Lease:
    """Part of a case, before the case itself: setUp files the document."""

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
        for tag in ("Contracts", "Landlord"):
            self.clerk.choose_tag(self.main, tag)
        self.wait_for(DAY)

    def wait_for(self, *days):
        """Waits until the document is listed under its day, or not at all."""
        self.wait_listed(self.main, *((self.station.as_picker_writes(day), "Lease")
                                      for day in days))

    def contents(self):
        """Every row of the tables that people see."""
        return (self.rows("select * from scans"),
                self.rows("select scan, tag from tagged order by rowid"),
                self.rows("select * from tags order by link"),
                self.rows("select NewLink from comp"))

    def delete_it(self):
        """The question comes first, and the PDF stays."""
        clerk, before, pdf = self.clerk, self.contents(), self.pdf.read_bytes()
        clerk.select_document(self.main, "Lease")
        self.assertEqual(clerk.delete_document(self.main, "No"), QUESTION)
        clerk.command(self.main, "Delete")
        # Now that it asks again, it is through with the first answer.
        self.robot.message("IMPORTANT !")
        self.assertEqual(self.contents(), before)
        self.assertEqual(self.read_box("IMPORTANT !", "Yes"), QUESTION)
        self.wait_for()
        self.assertEqual(self.contents(), ([], [], before[2], before[3]))
        self.assertEqual(self.pdf.read_bytes(), pdf)
