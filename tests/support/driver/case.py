# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""What end-to-end tests of every system share: evidence, what lies on disk, what boxes say."""

import contextlib
import functools
import re
import shutil
import sqlite3
import unittest
import xml.etree.ElementTree
from xml.sax.saxutils import escape

from .stack import PATIENCE


def write_preferences(station, **elements):
    """Writes a station's preferences file as an earlier run would have left it."""
    station.app_folder.mkdir(parents=True, exist_ok=True)
    texts = (f"<{key}>{escape(str(text))}</{key}>" for key, text in elements.items())
    station.preferences_file.write_text(f"<folidex>{''.join(texts)}</folidex>")


def with_evidence(test):
    """A test that fails leaves a picture of its screen."""
    @functools.wraps(test)
    def run(self):
        with self.robot.evidence(self.id()):
            test(self)
    return run


class DriverCase(unittest.TestCase):
    """setUp of a kind of case gives station, robot, clerk, and data, the data folder."""

    def __init_subclass__(cls):
        for name, member in list(vars(cls).items()):
            if name.startswith("test_"):
                setattr(cls, name, with_evidence(member))

    # -- what lies on disk

    def given_preferences(self, **elements):
        write_preferences(self.station, **elements)

    def given_data_folder(self, change=None):
        """A data folder made by an earlier run; change is SQL for its database."""
        self.data.mkdir(parents=True)
        shutil.copy(self.station.program_folder / "dbm.mdb", self.data / "db.mdb")
        if change:
            self.change_database(change)
        self.given_preferences(dblocation=self.station.as_told(self.data))

    def change_database(self, script):
        """Changes the shared database as another program might."""
        with self.database() as database:
            database.executescript(script)

    def database(self):
        """The shared database as another program opens it, waiting for its turn."""
        return contextlib.closing(sqlite3.connect(self.data / "db.mdb", timeout=PATIENCE))

    def preferences(self):
        """The root element of the preferences file."""
        return xml.etree.ElementTree.parse(self.station.preferences_file).getroot()

    def rows(self, statement):
        with self.database() as database:
            return database.execute(statement).fetchall()

    @property
    def temporary_scan(self):
        return self.station.temporary_scan

    def pdf_facts(self, pdf):
        """What pdfinfo tells of a PDF that qpdf found sound, as {name: text}."""
        self.assertIn("No syntax or stream encoding errors found",
                      self.station.run("qpdf", "--check", str(pdf)))
        return {key: value.strip() for key, value in (
            line.split(":", 1) for line in self.station.run("pdfinfo", str(pdf)).splitlines()
            if ":" in line)}

    # -- what the windows say

    def read_box(self, title, button="OK"):
        """Waits for a message box, answers it, and returns its text on one line."""
        box, text = self.robot.message(title)
        self.robot.answer(box, button)
        return re.sub(r"\s+", " ", text).strip()

    def open_program(self):
        """Starts the program on the data folder at hand; the main window."""
        with self.robot.evidence(self.id()):
            self.robot.start()
            return self.clerk.main_window()

    def file_document(self, main, description, date, tags):
        """Scans and files a new document."""
        capture = self.clerk.new_scan(main)
        self.clerk.scan(capture)
        self.assertTrue(self.temporary_scan.is_file())
        self.clerk.describe(capture, description, date, tags)
        self.clerk.save(capture)
        self.assertFalse(self.temporary_scan.exists())

    def wait_listed(self, main, *documents):
        """Waits until these documents, (date, description) each, are the results."""
        self.clerk.wait_results(main, lambda listed: listed == list(documents),
                                f"the documents {documents}")

    def end_program(self, main):
        self.assertEqual(self.clerk.close_main(main), 0)


def main():
    unittest.main(verbosity=2)
