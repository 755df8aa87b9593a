# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""A workstation of its own for the program: display, window manager, buses, folders, scanner."""

import os
import pathlib
import shutil
import subprocess

from .widget import DriverError
from .workplace import Workplace

_SANE = pathlib.Path(__file__).resolve().parents[1] / "sane"
_TEST_CONF = """\
number_of_devices 1
mode Gray
depth 8
resolution 75.0
test-picture "Color pattern"
br_x 120.0
br_y 160.0
"""


class Station(Workplace):
    """The program on this system.

    home holds data (all-users folder), sane (scanner configuration), log. scanner adds to the
    configuration of SANE's test device, whose feeder holds ten pages.
    """

    def __init__(self, program, home=None, scale=1, scanner=None, name="folidex-e2e-"):
        super().__init__(home, scale, name)
        self.program = str(pathlib.Path(program).resolve())
        self._scanner = scanner or {}

    @property
    def all_users_folder(self):
        return self.home / "data"

    def as_told(self, path):
        """A path of the disk as the program writes it."""
        return str(path)

    @staticmethod
    def as_picker_writes(day):
        """A date as the program's pickers and lists write it."""
        return f"{day.day} {day.strftime('%b')} {day.year}"

    def _make_folders(self):
        for name in ("data", "sane", "log", "home", "run", "cache"):
            (self.home / name).mkdir(parents=True, exist_ok=True)
        (self.home / "run").chmod(0o700)
        shutil.copy(_SANE / "dll.conf", self.home / "sane")
        lines = dict(line.split(" ", 1) for line in _TEST_CONF.splitlines()) | self._scanner
        (self.home / "sane/test.conf").write_text(
            "".join(f"{key} {value}\n" for key, value in lines.items()))

    def _environment(self):
        keep = ("PATH", "LANG", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS")
        environment = {key: os.environ[key] for key in keep if key in os.environ}
        environment |= {
            "HOME": str(self.home / "home"),
            "XDG_DATA_HOME": str(self.all_users_folder),
            "XDG_RUNTIME_DIR": str(self.home / "run"),
            "XDG_CACHE_HOME": str(self.home / "cache"),
            "SANE_CONFIG_DIR": str(self.home / "sane"),
            "LANG": "C.UTF-8",
            "LC_ALL": "C.UTF-8",
            "QT_QPA_PLATFORM": "xcb",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
            "QT_ACCESSIBILITY": "1",
            "NO_AT_BRIDGE": "0",
            "GTK_A11Y": "none",
        }
        # SANE's pretended scanners can bring a program to a stop (tests/support/sane).
        if "FOLIDEX_CALM_THREADS" in os.environ:
            environment["LD_PRELOAD"] = os.environ["FOLIDEX_CALM_THREADS"]
        if self.scale != 1:
            environment["QT_SCALE_FACTOR"] = str(self.scale)
        return environment

    def _connect(self):
        # Here, because a station of another kind has no accessibility bus, nor what it needs.
        from .tree import Bus
        self._start_session_bus()
        self.bus = Bus(self.environment["DBUS_SESSION_BUS_ADDRESS"])

    def _start_session_bus(self):
        daemon = self._start("dbus", ["dbus-daemon", "--session", "--nofork",
                                      "--print-address=1"], stdout=subprocess.PIPE, text=True)
        with daemon.stdout:
            address = daemon.stdout.readline().strip()
        if not address:
            raise DriverError(f"dbus-daemon did not start: {self._read_log('dbus')}")
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = address

    def _program_command(self):
        return [self.program]
