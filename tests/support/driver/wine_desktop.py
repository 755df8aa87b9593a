# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""The program that opens PDFs on a Windows machine: a stand-in that writes down what it is told."""

import os
import shutil
import signal
from urllib.parse import unquote

from .stack import wait_until

_CLASS = "StandIn.Document"
_CLASSES = r"HKEY_LOCAL_MACHINE\Software\Classes"


class WineDesktop:
    """Belongs to a running station; program is the stand-in (tests/support/stand_in)."""

    def __init__(self, station, program):
        self._station = station
        copy = station.drive / "stand-in.exe"
        shutil.copy(program, copy)
        self._told = station.drive / "stand-in.exe.txt"
        command = f'"{station.as_told(copy)}" "%1"'
        station.set_registry({
            rf"{_CLASSES}\.pdf": {"": _CLASS}, rf"{_CLASSES}\.html": {"": _CLASS},
            rf"{_CLASSES}\{_CLASS}\shell\open\command": {"": command}})

    @property
    def opened(self):
        """The paths that were opened, in order; of pages their addresses' paths."""
        if not self._told.is_file():
            return []
        return [unquote(line.removeprefix("file:///")).replace("/", "\\")
                if line.startswith("file:///") else line
                for line in self._told.read_text(encoding="utf-8").splitlines()]

    def wait_opened(self, path, times=1):
        told = self._station.as_told(path)
        wait_until(lambda: self.opened.count(told) >= times, f"the stand-in to be given {told}")

    def wait_located(self, path):
        """Waits for the file manager's window on the file's folder, and closes it."""
        told = self._station.as_told(path)
        process = wait_until(
            lambda: next((number for number, line in self._station.processes()
                          if line == f"explorer /select,{told}"), None),
            f"the file manager to be asked for {told}")
        wait_until(lambda: self._station.output("xdotool", "search", "--onlyvisible", "--name",
                                                f"^{path.parent.name}$"), "the folder's window")
        os.kill(process, signal.SIGKILL)
