# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""The road of a document through the program's windows, as a clerk walks it."""

from .robot import BOX, BUTTON, CHECK, COMBO, DATE, LABEL, RADIO, TABLE, TEXT
from .widget import DriverError

CREATE_NEW = "I want to create a new data base."
USE_EXISTING = "I would like to point to an existing data base."


class Clerk:
    """Uses the windows through a robot; picture(name, window, also) may photograph on the way."""

    def __init__(self, robot, picture=None):
        self.robot = robot
        self._picture = picture or (lambda name, window, also=(): None)

    # -- where the data is

    def location_window(self):
        return self.robot.window_with(RADIO, CREATE_NEW)

    def create_data_folder(self, parent, name):
        """From the data location form to the main window; the main window."""
        robot, window = self.robot, self.location_window()
        robot.type_text(robot.find(TEXT, "Location", window), str(parent))
        robot.type_text(robot.find(TEXT, "Folder name", window), name)
        self._picture("location", window)
        robot.press(robot.find(BUTTON, "OK", window))
        robot.wait_gone(window)
        return self.main_window()

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
        robot = self.robot
        robot.press(robot.find(BUTTON, "Exit", window))
        return robot.wait_for_end()

    # -- the capture form

    def new_scan(self, main):
        robot = self.robot
        robot.press(robot.find(BUTTON, "New", main))
        window = robot.window_with(BUTTON, "Save")
        self._picture("capture-empty", window)
        return window

    def scan(self, window, source=0):
        """Scans with a source of the menu, to the end of its feeder."""
        robot = self.robot
        menu = robot.open_menu(robot.find(BUTTON, "Scan", window))
        sources = [item for item in robot.items(menu) if "enabled" in item.states]
        if len(sources) <= source:
            raise DriverError(f"the scanner menu has no source {source}: {menu.dump()}")
        robot.hover(sources[source])
        robot.wait(lambda: "focused" in sources[source].states, "the source to be marked")
        self._picture("scanner-menu", window, (menu,))
        view = robot.find(BUTTON, "View", window)
        robot.choose(menu, sources[source])
        progress = self.progress_window()
        self._picture("progress", progress)
        robot.wait_gone(progress, 180)
        robot.wait(lambda: "enabled" in view.states, "the scan to be there to view")

    def progress_window(self):
        def look():
            for window in self.robot.windows():
                if window.role in BOX and window.name == "Scanning":
                    return window
            return None
        return self.robot.wait(look, "the progress window")

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
        robot = self.robot
        robot.press(robot.find(BUTTON, "Save", window))
        robot.wait_gone(window)

    # -- what it says

    def label_texts(self, window):
        return [label.name for label in self.robot.nodes(LABEL, None, window)]
