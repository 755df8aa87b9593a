# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""What a clerk does otherwise on Windows: a scanner's driver brings a window of its own."""

import re

from .archivist import Archivist
from .robot import BUTTON
from .widget import DriverError

# The middle of the buttons in the virtual scanner's window (tests/support/twain).
_BUTTONS = {"Scan": (80, 68), "Cancel": (220, 68)}


class WindowsClerk(Archivist):
    """Presses the buttons of the virtual scanners' windows, which no plug-in tells of."""

    # -- windows of the system, which no plug-in tells of

    def browse(self, window, beginning, title="Browse for Folder"):
        """Browses for the location of a new data folder: goes to the folder of the desktop whose
        name begins so, and takes it."""
        robot = self.robot
        robot.press(robot.nodes(BUTTON, "Browse Location", window)[0])
        robot.wait(lambda: self._active_title() == title, f"\"{title}\"")
        self._picture("browse", None)
        # From the button that takes the choice to the folders.
        robot.keys("shift+Tab", *beginning, "Return")
        robot.wait(lambda: self._active_title() != title, f"\"{title}\" to close")

    def take_up(self, window):
        """Turns to a window again, as a click into the task bar does. Under wine nobody does it
        by himself when the window of another program closes before it."""
        def look():
            title = window.name
            for number in self._windows_titled(title):
                self.robot.station.output("xdotool", "windowactivate", number)
            return self._active_title() == title
        self.robot.wait(look, f"{window.describe()} to be taken up")

    def _windows_titled(self, title):
        return self.robot.station.output("xdotool", "search", "--onlyvisible", "--name",
                                         f"^{re.escape(title)}$").split()

    def _active_title(self):
        return self.robot.station.output("xdotool", "getactivewindow", "getwindowname").strip()

    # -- the capture form

    def cancel_capture(self, window):
        self.robot.press(self.robot.find(BUTTON, "Cancel", window))
        self.robot.wait_gone(window)

    # -- the scanner

    def choose_scanner(self, window, name):
        """Chooses a source of the menu; the sources that it showed."""
        robot = self.robot
        menu = self.menu_of(window, "Scan")
        items = [item for item in robot.items(menu) if "enabled" in item.states]
        names = [item.name for item in items]
        if names.count(name) != 1:
            raise DriverError(f"the scanner menu has not one \"{name}\": {names}")
        item = items[names.index(name)]
        robot.hover(item)
        robot.wait(lambda: "focused" in item.states, "the source to be marked")
        self._picture("scanner-menu", window, (menu,))
        robot.choose(menu, item)
        return names

    def source_window(self, name):
        """The number of the driver's own window on the display."""
        return self.robot.wait(lambda: self._windows_titled(name), f"the window of \"{name}\"")[-1]

    def press_in_source(self, name, button):
        """Presses a button of the driver's window, and waits until the window has gone."""
        station, number = self.robot.station, self.source_window(name)
        self._picture("source", None)
        x, y = _BUTTONS[button]
        station.run("xdotool", "mousemove", "--window", number, str(x), str(y), "click", "1")
        self.robot.wait(lambda: not self._windows_titled(name), f"the window of \"{name}\" to go")

    def scan(self, window, source="Flatbed"):
        """Scans with a source, to the end of its feeder."""
        view = self.robot.find(BUTTON, "View", window)
        names = self.choose_scanner(window, source)
        self.press_in_source(source, "Scan")
        self.robot.wait(lambda: "enabled" in view.states, "the scan to be there to view")
        self.take_up(window)
        return names
