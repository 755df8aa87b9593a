# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""A Windows workstation under wine on which the program is installed, on a display of its own."""

import pathlib

from .plugin_tree import PluginBus
from .stack import Stack
from .wine_machine import Machine

PROGRAM = "Program Files/Folidex/folidex.exe"
_DOTS_AN_INCH = 96


class WineStation(Stack):
    """home holds machine (wine's prefix, a copy of an existing machine's) and log.

    plugin is the folder in which generic/folidexrobot.dll lies; the program loads it by the
    toolkit's own environment variables, so that what runs is what was installed.
    """

    def __init__(self, machine, plugin, home=None, scale=1, name="folidex-wine-"):
        super().__init__(home, scale, name)
        self._origin = machine
        self._plugin = pathlib.Path(plugin).resolve()
        self.machine = Machine(self.home / "machine", self.home / "home")

    @property
    def drive(self):
        return self.machine.drive

    @property
    def program(self):
        return self.drive / PROGRAM

    @property
    def program_folder(self):
        return self.program.parent

    @property
    def all_users_folder(self):
        return self.drive / "ProgramData"

    @property
    def app_folder(self):
        return self.all_users_folder / "Brightmoor"

    @property
    def preferences_file(self):
        return self.app_folder / "folidex_Preferences.xml"

    def as_told(self, path):
        """A path of the disk as the program writes it."""
        return self.machine.as_told(path)

    # -- the stack

    def _make_folders(self):
        for name in ("log", "home"):
            (self.home / name).mkdir(parents=True, exist_ok=True)
        self._origin.copy_to(self.machine.prefix)

    def _environment(self):
        return dict(self.machine.environment)

    def _connect(self):
        self.bus = PluginBus()
        self.environment |= {
            # Wine takes QT_ as the business of the system it runs on, unless marked as its own.
            "WINEQT_QPA_GENERIC_PLUGINS": "folidexrobot",
            "WINEQT_PLUGIN_PATH": self.as_told(self._plugin),
            "FOLIDEX_ROBOT": str(self.bus.port),
        }
        self.machine.environment = self.environment
        if self.scale != 1:
            self.set_registry({r"HKEY_CURRENT_USER\Control Panel\Desktop":
                               {"LogPixels": _DOTS_AN_INCH * self.scale}})

    def _end_processes(self):
        self.machine.end()
        super()._end_processes()

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

    # -- the program

    def start_program(self, environment=None):
        saved = self.environment
        self.environment = saved | (environment or {})
        try:
            return self._start("program", self.machine.command(self.as_told(self.program)))
        finally:
            self.environment = saved
