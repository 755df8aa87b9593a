# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""What a person at the station does: look for a widget, click it, type, take a photograph."""

import contextlib
import pathlib
import time

from .stack import wait_until
from .widget import TABLES as TABLE
from .widget import DriverError, Gone

BUTTON = ("push button", "button", "push button menu")
CHECK = ("check box",)
RADIO = ("radio button",)
TEXT = ("text", "entry")
COMBO = ("combo box",)
DATE = ("spin box", "date editor")
LABEL = ("label",)
ITEM = ("menu item", "check menu item", "radio menu item")
MENU = ("popup menu", "menu")
BOX = ("alert message", "alert", "dialog")


def _same(name, wanted):
    return name.rstrip(":").strip().casefold() == wanted.casefold()


class Robot:
    """Works on one run of the program at a station; pictures go to a folder."""

    def __init__(self, station, pictures=None, timeout=60):
        self.station = station
        self.pictures = pathlib.Path(pictures or station.log_folder)
        self.pictures.mkdir(parents=True, exist_ok=True)
        self.timeout = timeout
        self.process = None
        self.app = None

    # -- the program

    def start(self, environment=None):
        self.station.bus.forget_shown()
        self.process = self.station.start_program(environment)
        self.app = self.wait(lambda: self.station.bus.application(self.process.pid),
                             "the program on the accessibility bus")

    def wait_for_end(self):
        return self.station.wait_for_end(self.process, self.timeout)

    def wait(self, condition, what, timeout=None):
        """wait_until, but at once over when the program has ended."""
        def look():
            try:
                result = condition()
            except Gone:
                result = None
            if not result and self.process and self.process.poll() is not None:
                raise DriverError(f"the program ended with code {self.process.returncode} while "
                                  f"the driver waited for {what}: {self.station.program_log()}")
            return result
        return wait_until(look, what, timeout or self.timeout)

    @contextlib.contextmanager
    def evidence(self, name="failure"):
        """When the work inside fails, leaves a picture of the screen and the widget tree."""
        try:
            yield self
        except BaseException:
            tree = self.pictures / f"{name}.txt"
            with contextlib.suppress(Exception):
                tree.write_text(self.app.dump() + "\n")
                print(tree.read_text())
            with contextlib.suppress(Exception):
                self.station.run("import", "-window", "root", str(self.pictures / f"{name}.png"))
            with contextlib.suppress(Exception):
                print("the program said:", self.station.program_log())
            print(f"the screen and the widget tree of the failure: {self.pictures}/{name}.*")
            raise

    # -- looking

    def windows(self):
        """The program's windows that show, the latest last."""
        return [node for node in self.app.children if "showing" in node.states]

    def nodes(self, roles, name=None, inside=None):
        found = []
        for top in ([inside] if inside else self.windows()):
            found += [node for node, its_name in top.showing(roles)
                      if name is None or _same(its_name, name)]
        return found

    def find(self, roles, name=None, inside=None, timeout=None):
        """The one showing widget of a role and name."""
        found = self.wait(lambda: self.nodes(roles, name, inside),
                          f"{roles[0]} \"{name}\"", timeout)
        if len(found) > 1 and name is not None:
            raise DriverError(f"{len(found)} widgets of role {roles[0]} are called \"{name}\"")
        return found[0]

    def window_with(self, roles, name, timeout=None):
        """The latest window that shows a widget of a role and name."""
        def look():
            for window in reversed(self.windows()):
                if self.nodes(roles, name, window):
                    return window
            return None
        return self.wait(look, f"a window with the {roles[0]} \"{name}\"", timeout)

    def message(self, title, timeout=None):
        """The message box with a title, as (box, its text)."""
        def look():
            for window in self.windows():
                if window.role in BOX and _same(window.name, title):
                    texts = [label.name for label in self.nodes(LABEL, None, window)]
                    return window, "\n".join(text for text in texts if text)
            return None
        return self.wait(look, f"the message \"{title}\"", timeout)

    def answer(self, box, button):
        self.press(self.find(BUTTON, button, box))
        self.wait_gone(box)

    def wait_gone(self, node, timeout=None):
        def gone():
            if self.process.poll() is not None:
                return True
            try:
                return "showing" not in node.states
            except Gone:
                return True
        wait_until(gone, "a window to close", timeout or self.timeout)

    def wait_enabled(self, node):
        self.wait(lambda: "enabled" in node.states and "sensitive" in node.states,
                  f"{node.describe()} to be enabled")

    # -- doing

    def _still(self, node):
        """The extents of a widget that has come to rest."""
        before = None

        def look():
            nonlocal before
            now = node.extents
            rests, before = now == before and now[2] > 0 and now[3] > 0, now
            return now if rests else None
        return self.wait(look, f"{node.describe()} to come to rest")

    def click_at(self, x, y, times=1):
        scale = self.station.scale
        self.station.run("xdotool", "mousemove", str(round(x * scale)), str(round(y * scale)),
                         "click", "--repeat", str(times), "--delay", "40", "1")

    def _wait_active(self):
        """A click on a window that the window manager still places would go past it."""
        pid = str(self.process.pid)
        self.wait(lambda: self.station.output("xdotool", "getactivewindow",
                                              "getwindowpid").strip() == pid,
                  "the program's window to be the active one")

    def hover(self, node):
        """Puts the pointer over a widget."""
        x, y, width, height = (value * self.station.scale for value in self._still(node))
        self.station.run("xdotool", "mousemove", str(x + width // 2), str(y + height // 2))

    def press(self, node, times=1):
        """Clicks the middle of an enabled widget."""
        self.wait_enabled(node)
        self._wait_active()
        x, y, width, height = self._still(node)
        if node.role in CHECK + RADIO:
            width = min(width, 18)
        self.click_at(x + width / 2, y + height / 2, times)

    def keys(self, *names):
        self.station.run("xdotool", "key", "--delay", "15", *names)

    def focus(self, node):
        self.press(node)
        self.wait(lambda: any("focused" in each.states for each in node.walk(2)),
                  f"{node.describe()} to take the focus")

    def has_focus(self, node):
        return any("focused" in each.states for each in node.walk(1))

    def tab_to(self, node, key="Tab", most=30):
        """Presses Tab until a widget has the focus."""
        for _ in range(most):
            if self.has_focus(node):
                return
            before = self._focused()
            self.keys(key)
            self.wait(lambda: self._focused() != before, f"{key} to move the focus")
        raise DriverError(f"{most} times {key} did not come to {node.describe()}")

    def _focused(self):
        for window in reversed(self.windows()):
            for node in window.walk():
                with contextlib.suppress(Gone):
                    if "focused" in node.states and "showing" in node.states:
                        # In a date the key goes through day, month and year first.
                        return node, node.caret
        return None

    def type_text(self, node, text, enter=False):
        """Replaces a field's text by typing."""
        self.focus(node)
        if text.isascii():
            self.keys("ctrl+a", "BackSpace")
            if text:
                self.station.run("xdotool", "type", "--delay", "8", "--", text)
        else:
            # As a whole: keys may arrive later than what is said to the program directly.
            node.set_text(text)
        self.wait(lambda: self.text_of(node) == text,
                  f"{node.describe()} to read \"{text}\"")
        if enter:
            self.keys("Return")

    def text_of(self, node):
        if node.role in COMBO:
            for child in node.children:
                if child.role in TEXT:
                    return child.text
            return node.name
        return node.text

    def enter_tag(self, combo, text):
        """Types a tag and presses Enter; the combo is empty again when the program took it."""
        entry = self.entry_of(combo)
        self.type_text(entry, text, enter=True)
        self.wait(lambda: entry.text == "", f"the program to take the tag \"{text}\"")

    def entry_of(self, combo):
        for child in combo.children:
            if child.role in TEXT:
                return child
        return combo

    def set_date(self, node, text):
        """Puts a date into a picker, in the format that the picker shows."""
        self.focus(node)
        node.set_text(text)
        self.keys("Tab")
        self.wait(lambda: node.text == text, f"{node.describe()} to read \"{text}\"")

    def cells(self, table):
        """The texts of a table's visible columns, a list for every row."""
        rows, columns = table.table_size
        texts = []
        for row in range(rows):
            line = []
            for column in range(columns):
                with contextlib.suppress(Gone):
                    line.append(table.table_cell(row, column).name)
            texts.append(line)
        return texts

    # -- pop-up menus

    def open_menu(self, button):
        """Presses a button that shows a pop-up menu; the menu."""
        self.station.bus.forget_shown()
        self.press(button)
        return self.wait(self.open_menu_shown, "the pop-up menu")

    def open_menu_shown(self):
        """The pop-up menu that shows, if one does."""
        for node in self.station.bus.shown():
            with contextlib.suppress(Gone):
                if node.role in MENU and "showing" in node.states:
                    return node
        return None

    def items(self, menu):
        return [node for node in menu.walk(4) if node.role in ITEM]

    def choose(self, menu, item):
        self.press(item)
        self.wait_gone(menu)

    # -- photographs

    def photograph(self, name, window=None, also=()):
        """A picture of a window with its frame (else of the whole screen), with what pops out
        of it; what lies beside both is left out."""
        path = self.pictures / f"{name}.png"
        command = ["import", "-window", "root"]
        if window:
            boxes = [self._frame_of(window)]
            for node in also:
                x, y, width, height = (value * self.station.scale for value in node.extents)
                boxes.append((x, y, x + width, y + height))
            left, top = (max(min(box[side] for box in boxes), 0) for side in (0, 1))
            right, bottom = (max(box[side] for box in boxes) for side in (2, 3))
            command += ["-crop", f"{right - left}x{bottom - top}+{left}+{top}", "+repage"]
        self.station.run(*command, str(path))
        if also:
            self._leave_out(path, [[box[side] - (left, top)[side % 2] for side in range(4)]
                                   for box in boxes])
        return path

    def _leave_out(self, path, boxes):
        """Makes a picture transparent outside the boxes."""
        shown = " ".join(f"rectangle {left},{top} {right - 1},{bottom - 1}"
                         for left, top, right, bottom in boxes)
        self.station.run("convert", str(path), "(", "+clone", "-fill", "black", "-colorize", "100",
                         "-fill", "white", "-draw", shown, ")", "-alpha", "off", "-compose",
                         "CopyOpacity", "-composite", str(path))

    def _frame_of(self, window):
        """left, top, right, bottom of a window with its frame, in pixels of the screen."""
        told = [value * self.station.scale for value in self._still(window)]
        found = [(sum(abs(a - b) for a, b in zip(box, told)), box, number)
                 for number, box in self._x_windows()]
        # What the accessibility bus tells is rounded to the program's own pixels.
        nearby = [each for each in found if each[0] <= 4 * self.station.scale]
        if not nearby:
            return told[0], told[1], told[0] + told[2], told[1] + told[3]
        _distance, (x, y, width, height), number = min(nearby)
        margins = [0, 0, 0, 0]
        line = self.station.output("xprop", "-id", number, "_NET_FRAME_EXTENTS")
        if "=" in line:
            margins = [int(part) for part in line.split("=")[1].split(",")]
        left, right, top, bottom = margins
        return x - left, y - top, x + width + right, y + height + bottom

    def _x_windows(self):
        """The program's visible windows as the display knows them: (id, (x, y, width, height))."""
        for number in self.station.output("xdotool", "search", "--onlyvisible", "--pid",
                                          str(self.process.pid)).split():
            facts = dict(line.strip().split(": ", 1) for line in self.station.output(
                "xwininfo", "-id", number).splitlines() if ": " in line)
            with contextlib.suppress(KeyError):
                yield number, tuple(int(facts[key]) for key in (
                    "Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))

    def park_pointer(self):
        """Moves the pointer where it lights up nothing, and waits for the picture to settle."""
        self.station.run("xdotool", "mousemove", "1", "1")
        self.settle()

    def settle(self, quiet=0.3):
        """Returns when two pictures of the screen in succession are the same."""
        before = None

        def look():
            nonlocal before
            now = self.station.output("import", "-window", "root", "-format",
                                      "%#\n", "info:-") or None
            rests, before = now is not None and now == before, now
            if not rests:
                time.sleep(quiet / 4)
            return rests
        wait_until(look, "the screen to come to rest")
