# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""Windows machines under wine on displays of their own, and such on which the program is."""

import pathlib

from .plugin_tree import PluginBus
from .stack import Stack
from .wine_machine import Machine
from .workplace import Workplace

PROGRAM = "Program Files/Folidex/folidex.exe"
_DOTS_AN_INCH = 96


class WineStack(Stack):
    """home holds machine (wine's prefix, a copy of an existing machine's) and log."""

    def __init__(self, origin, home=None, scale=1, name="folidex-wine-"):
        super().__init__(home, scale, name)
        self._origin = origin
        self.machine = Machine(self.home / "machine", self.home / "home")

    @property
    def drive(self):
        return self.machine.drive

    def _make_folders(self):
        for name in ("log", "home"):
            (self.home / name).mkdir(parents=True, exist_ok=True)
        self._origin.copy_to(self.machine.prefix)

    def _environment(self):
        return dict(self.machine.environment)

    def _connect(self):
        # With the display, which came after the machine.
        self.machine.environment = self.environment

    def _end_processes(self):
        self.machine.end()
        super()._end_processes()


class WineStation(WineStack, Workplace):
    """The program where it was installed.

    plugin is the folder in which generic/folidexrobot.dll lies; the program loads it by the
    toolkit's own environment variables, so that what runs is what was installed.
    """

    def __init__(self, origin, plugin, home=None, scale=1, name="folidex-wine-"):
        super().__init__(origin, home, scale, name)
        self._plugin = pathlib.Path(plugin).resolve()

    @property
    def program(self):
        return self.drive / PROGRAM

    @property
    def all_users_folder(self):
        return self.drive / "ProgramData"

    def as_told(self, path):
        """A path of the disk as the program writes it."""
        return self.machine.as_told(path)

    @staticmethod
    def as_picker_writes(day):
        """A date as the program's pickers and lists write it."""
        return f"{day.month}/{day.day}/{day.year}"

    # -- the stack

    def _connect(self):
        super()._connect()
        self.bus = PluginBus()
        # The machine's own, in place.
        self.environment |= {
            # Wine takes QT_ as the business of the system it runs on, unless marked as its own.
            "WINEQT_QPA_GENERIC_PLUGINS": "folidexrobot",
            "WINEQT_PLUGIN_PATH": self.as_told(self._plugin),
            "FOLIDEX_ROBOT": str(self.bus.port),
        }
        if self.scale != 1:
            self.set_registry({r"HKEY_CURRENT_USER\Control Panel\Desktop":
                               {"LogPixels": _DOTS_AN_INCH * self.scale}})

    # -- the machine

    def set_registry(self, folders):
        self.machine.set_registry(folders, self.home / "values.reg")

    def processes(self):
        """(number, command line) of the machine's processes, as the system underneath sees them."""
        mark = f"WINEPREFIX={self.machine.prefix}\0".encode()
        for entry in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                if mark in (entry / "environ").read_bytes():
                    # Wine writes its program's words over its own and leaves the rest empty.
                    words = (entry / "cmdline").read_bytes().rstrip(b"\0").decode(errors="replace")
                    yield int(entry.name), words.replace("\0", " ")
            except OSError:
                continue

    def scanning_helpers(self):
        """(number, command line) of the programs in which scanners' drivers run."""
        return [each for each in self.processes() if "folidex-twain" in each[1]]

    # -- the program

    def _program_command(self):
        return self.machine.command(self.as_told(self.program))
