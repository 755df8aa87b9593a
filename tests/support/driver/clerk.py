# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""The road of a document through the program's windows, as a clerk walks it."""

import re

from .robot import BUTTON, CHECK, COMBO, DATE, LABEL, RADIO, TABLE, TEXT
from .widget import DriverError

CREATE_NEW = "I want to create a new data base."
USE_EXISTING = "I would like to point to an existing data base."
_PROGRESS = "Scanning"


class Clerk:
    """Uses the windows through a robot; picture(name, window, also) may photograph on the way."""

    def __init__(self, robot, picture=None):
        self.robot = robot
        self._picture = picture or (lambda name, window, also=(): None)

    def press(self, window, button):
        self.robot.press(self.robot.find(BUTTON, button, window))

    # -- where the data is

    def location_window(self):
        return self.robot.window_with(RADIO, CREATE_NEW)

    def create_data_folder(self, parent, name):
        """From the data location form to the main window; the main window."""
        window = self.location_window()
        self.name_data_folder(window, parent, name)
        self._picture("location", window)
        self.press(window, "OK")
        self.robot.wait_gone(window)
        return self.main_window()

    def name_data_folder(self, window, parent, name):
        robot = self.robot
        robot.type_text(robot.find(TEXT, "Location", window), str(parent))
        robot.type_text(robot.find(TEXT, "Folder name", window), name)

    # -- the browser

    def main_window(self):
        return self.robot.window_with(CHECK, "All Dates")

    def chosen_tags(self, window):
        return [row[1] for row in self._grid(window, "Chosen tags")]

    def results(self, window):
        """The listed documents as (date, description)."""
        return [tuple(row[:2]) for row in self._grid(window, "Documents")]

    def _grid(self, window, name):
        return [[text for text in row if text is not None]
                for row in self.robot.cells(self.robot.find(TABLE, name, window))]

    def all_dates(self, window, on):
        robot, box = self.robot, self.robot.find(CHECK, "All Dates", window)
        if ("checked" in box.states) != on:
            robot.press(box)
            robot.wait(lambda: ("checked" in box.states) == on, "\"All Dates\" to follow")

    def choose_tag(self, window, tag):
        """Types a tag into the filter."""
        robot = self.robot
        robot.enter_tag(robot.find(COMBO, None, window), tag)
        robot.wait(lambda: tag.casefold() in [chosen.casefold() for chosen
                                              in self.chosen_tags(window)],
                   f"\"{tag}\" among the chosen tags")

    def wait_results(self, window, condition, what):
        def look():
            listed = self.results(window)
            # In a tuple, because an empty list would count as no result.
            return (listed,) if condition(listed) else None
        return self.robot.wait(look, what)[0]

    def close_main(self, window):
        self.press(window, "Exit")
        return self.robot.wait_for_end()

    # -- the capture form

    def new_scan(self, main):
        self.press(main, "New")
        window = self.robot.window_with(BUTTON, "Save")
        self._picture("capture-empty", window)
        return window

    def cancel_capture(self, window):
        self.press(window, "Cancel")
        self.robot.wait_gone(window)

    def scan(self, window, source=0):
        """Scans with a source of the menu, to the end of its feeder."""
        self.begin_scan(window, source)
        self.wait_scanned(window)

    def begin_scan(self, window, source=0):
        robot = self.robot
        menu = robot.open_menu(robot.find(BUTTON, "Scan", window))
        sources = [item for item in robot.items(menu) if "enabled" in item.states]
        if len(sources) <= source:
            raise DriverError(f"the scanner menu has no source {source}: {menu.dump()}")
        robot.hover(sources[source])
        robot.wait(lambda: "focused" in sources[source].states, "the source to be marked")
        self._picture("scanner-menu", window, (menu,))
        robot.choose(menu, sources[source])

    def progress_window(self):
        """Of a scan that takes its time: it shows for as long as the scanner works."""
        return self.robot.wait(lambda: self.robot.box(_PROGRESS), "the progress window")

    def wait_scanned(self, window):
        """Waits until a form that had no scanned pages tells of some and is within reach again."""
        self.robot.wait(lambda: self.pages_scanned(window) and not self.robot.box(_PROGRESS),
                        "the scanned pages")

    def pages_scanned(self, window):
        """What the form tells of new pages; nothing when it has none."""
        return next((text for text in self.label_texts(window)
                     if re.match(r"\d+ pages? scanned", text)), None)

    def describe(self, window, description, date=None, tags=()):
        """Fills the form; date as the picker writes it."""
        robot = self.robot
        robot.type_text(robot.find(TEXT, "Description", window), description)
        if date:
            robot.set_date(robot.find(DATE, "Date", window), date)
        for tag in tags:
            robot.enter_tag(robot.find(COMBO, None, window), tag)
            robot.wait(lambda: tag in [row[1] for row in self._grid(window, "Assigned tags")],
                       f"\"{tag}\" among the assigned tags")

    def save(self, window):
        self.press(window, "Save")
        self.robot.wait_gone(window)

    # -- what it says

    def label_texts(self, window):
        return [label.name for label in self.robot.nodes(LABEL, None, window)]
