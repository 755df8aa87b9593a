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
        robot.press(robot.wait(lambda: robot.nodes(BUTTON, "Browse Location", window),
                               "a button to browse with")[0])
        robot.wait(lambda: robot.station.active_title() == title, f"\"{title}\"")
        self._picture("browse", None)
        # From the button that takes the choice to the folders.
        robot.keys("shift+Tab", *beginning, "Return")
        robot.wait(lambda: not self._windows_titled(title), f"\"{title}\" to close")

    def take_up(self, window):
        """Turns to a window again, as a click into the task bar does. Under wine nobody does it
        by himself when the window of another program closes before it."""
        self.robot.wait(lambda: self._take_up(window.name), f"{window.describe()} to be taken up")

    def _take_up(self, title):
        """Turns to the window with a title; its number when it is the active one."""
        for number in self._windows_titled(title):
            if self.robot.station.active_window() == number:
                return number
            self.robot.station.output("xdotool", "windowactivate", number)
        return None

    def _windows_titled(self, title):
        return self.robot.station.output("xdotool", "search", "--onlyvisible", "--name",
                                         f"^{re.escape(title)}$").split()

    # -- the scanner

    def choose_scanner(self, window, name):
        """Chooses a source of the menu; the sources that it showed. They come as their managers
        tell of them, so who misses one looks again."""
        robot = self.robot

        def look():
            menu = self.menu_of(window, "Scan")
            items = [item for item in robot.items(menu) if "enabled" in item.states]
            names = [item.name for item in items]
            if name in names:
                return menu, items, names
            self.close_menu(menu)
            return None
        menu, items, names = robot.wait(look, f"\"{name}\" in the scanner menu")
        if names.count(name) != 1:
            raise DriverError(f"the scanner menu has not one \"{name}\": {names}")
        item = items[names.index(name)]
        robot.hover(item)
        robot.wait(lambda: "focused" in item.states, "the source to be marked")
        self._picture("scanner-menu", window, (menu,))
        robot.choose(menu, item)
        return names

    def press_in_source(self, name, button):
        """Presses a button of the driver's own window, and waits until the window has gone."""
        number = self.robot.wait(lambda: self._take_up(name), f"the window of \"{name}\"")
        self._picture("source", None)
        x, y = _BUTTONS[button]
        self.robot.station.run("xdotool", "mousemove", "--window", number, str(x), str(y),
                               "click", "1")
        self.robot.wait(lambda: not self._windows_titled(name), f"the window of \"{name}\" to go")

    def scan(self, window, source="Flatbed"):
        """Scans with a source, to the end of its feeder; the sources of the menu."""
        names = self.choose_scanner(window, source)
        self.press_in_source(source, "Scan")
        self.wait_scanned(window)
        self.take_up(window)
        return names

    def wait_released(self, window):
        """Waits until no driver runs any more, and the form that it ran for is within reach."""
        self.robot.wait(lambda: not self.robot.station.scanning_helpers(), "the drivers to end")
        self.robot.wait(lambda: self.robot.windows()[-1] == window,
                        "nothing to lie over the form")
        self.take_up(window)
