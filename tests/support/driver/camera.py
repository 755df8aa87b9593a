# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""What the display knows of the program's windows, and photographs of them."""

import contextlib
import time

from .stack import wait_until


class Camera:
    """Part of a robot: works at its station, on its program, into its folder of pictures."""

    # -- windows as the display knows them

    def _box_of(self, number):
        """x, y, width and height of a window without its frame; nothing when it has gone."""
        facts = dict(line.strip().split(": ", 1) for line in self.station.output(
            "xwininfo", "-id", number).splitlines() if ": " in line)
        try:
            return tuple(int(facts[key]) for key in (
                "Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))
        except KeyError:
            return None

    def _x_windows(self):
        """The program's visible windows: (number, box)."""
        for number in self.station.output("xdotool", "search", "--onlyvisible", "--pid",
                                          str(self.process.pid)).split():
            if box := self._box_of(number):
                yield number, box

    def _told_box(self, node):
        """The same in the words of the program, in pixels of the screen."""
        return tuple(value * self.station.scale for value in node.extents)

    def _distance(self, box, told):
        """How far apart the two are; nothing when they are not of one window. What the program
        tells is rounded to its own pixels."""
        distance = sum(abs(a - b) for a, b in zip(box, told))
        return distance if distance <= 4 * self.station.scale else None

    # -- photographs

    def photograph(self, name, window=None, also=()):
        """A picture of a window with its frame (else of the whole screen), with what pops out
        of it; what lies beside both is left out."""
        path = self.pictures / f"{name}.png"
        command = ["import", "-window", "root"]
        if window:
            boxes = [self._frame_of(window)]
            for node in also:
                x, y, width, height = self._told_box(node)
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
        def look():
            told = self._told_box(window)
            return min(((distance, box, number) for number, box in self._x_windows()
                        if (distance := self._distance(box, told)) is not None), default=None)
        _distance, (x, y, width, height), number = self.wait(
            look, f"{window.describe()} to be where the program says")
        margins = [0, 0, 0, 0]
        line = self.station.output("xprop", "-id", number, "_NET_FRAME_EXTENTS")
        if "=" in line:
            margins = [int(part) for part in line.split("=")[1].split(",")]
        left, right, top, bottom = margins
        return x - left, y - top, x + width + right, y + height + bottom

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
