# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""What a person at the station does: look for a widget, click it, type."""

import contextlib
import pathlib

from . import pointer
from .camera import Camera
from .stack import wait_until
from .widget import POPUPS as MENU
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
BOX = ("alert message", "alert", "dialog")


def _same(name, wanted):
    return name.rstrip(":").strip().casefold() == wanted.casefold()


class Robot(Camera):
    """Works on one run of the program at a station; pictures go to a folder."""

    def __init__(self, station, pictures=None):
        self.station = station
        self.pictures = pathlib.Path(pictures or station.log_folder)
        self.pictures.mkdir(parents=True, exist_ok=True)
        self.process = None
        self.app = None

    # -- the program

    def start(self, environment=None):
        self.station.bus.forget_shown()
        self.process = self.station.start_program(environment)
        self.app = self.wait(lambda: self.station.bus.application(self.process.pid),
                             "the program on the accessibility bus")

    def wait_for_end(self):
        return self.station.wait_for_end(self.process)

    def wait(self, condition, what):
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
        return wait_until(look, what)

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
        # A tip comes and goes as the pointer rests.
        return [node for node in self.app.children
                if "showing" in node.states and node.role != "tool tip"]

    def nodes(self, roles, name=None, inside=None):
        found = []
        for top in ([inside] if inside else self.windows()):
            found += [node for node, its_name in top.showing(roles)
                      if name is None or _same(its_name, name)]
        return found

    def find(self, roles, name=None, inside=None):
        """The one showing widget of a role and name."""
        found = self.wait(lambda: self.nodes(roles, name, inside), f"{roles[0]} \"{name}\"")
        if len(found) > 1 and name is not None:
            raise DriverError(f"{len(found)} widgets of role {roles[0]} are called \"{name}\"")
        return found[0]

    def window_with(self, roles, name):
        """The latest window that shows a widget of a role and name."""
        def look():
            for window in reversed(self.windows()):
                if self.nodes(roles, name, window):
                    return window
            return None
        return self.wait(look, f"a window with the {roles[0]} \"{name}\"")

    def box(self, title):
        """The message box or dialog with a title, if it shows."""
        return next((window for window in self.windows()
                     if window.role in BOX and _same(window.name, title)), None)

    def message(self, title):
        """The message box with a title, as (box, its text)."""
        box = self.wait(lambda: self.box(title), f"the message \"{title}\"")
        texts = [label.name for label in self.nodes(LABEL, None, box)]
        return box, "\n".join(text for text in texts if text)

    def answer(self, box, button):
        self.press(self.find(BUTTON, button, box))
        self.wait_gone(box)

    def wait_gone(self, node):
        def gone():
            if self.process.poll() is not None:
                return True
            try:
                return "showing" not in node.states
            except Gone:
                return True
        wait_until(gone, "a window to close")

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
        pointer.click(self.station.environment["DISPLAY"], round(x * scale), round(y * scale), times)

    def _wait_reachable(self, node):
        """A click on a window that the window manager still places, or that the program knows
        elsewhere than it is, would go past it, and keys to one that has not the focus yet."""
        window = node.window()

        def look():
            told = self._told_box(window)
            if window.role in MENU:
                boxes = [box for _number, box in self._x_windows()]
            else:
                active = self.station.active_window()
                boxes = [self._box_of(active)] if active else []
            return any(box and self._distance(box, told) is not None for box in boxes)
        self.wait(look, f"{window.describe()} to be the active window")

    def hover(self, node):
        """Puts the pointer over a widget."""
        self._wait_reachable(node)
        x, y, width, height = (value * self.station.scale for value in self._still(node))
        self.station.run("xdotool", "mousemove", str(x + width // 2), str(y + height // 2))

    def press(self, node, times=1):
        """Clicks the middle of an enabled widget."""
        self.wait_enabled(node)
        self._wait_reachable(node)
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
            self.wait(lambda: self._cleared(node), f"{node.describe()} to be empty")
            if text:
                self.station.run("xdotool", "type", "--delay", "8", "--", text)
        else:
            # As a whole: keys may arrive later than what is said to the program directly.
            node.set_text(text)
        self.wait(lambda: self.text_of(node) == text,
                  f"{node.describe()} to read \"{text}\"")
        if enter:
            self.keys("Return")

    def _cleared(self, node):
        """A form that is still coming up may take back what was selected; then it is selected again."""
        if self.text_of(node) == "":
            return True
        self.keys("ctrl+a", "BackSpace")
        return False

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
        """The texts of a table's visible columns, a list for every row, as they stand together: a
        table that changes while it is read is read again."""
        def look():
            rows, columns = size = table.table_size
            texts = [self._row(table, row, columns) for row in range(rows)]
            whole = table.table_size == size and len({len(row) for row in texts}) <= 1
            return (texts,) if whole else None
        return self.wait(look, f"{table.describe()} to come to rest")[0]

    def _row(self, table, row, columns):
        texts = []
        for column in range(columns):
            # Hidden columns have no cells.
            with contextlib.suppress(Gone):
                texts.append(table.table_cell(row, column).name)
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
