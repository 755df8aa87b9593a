# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""What the end-to-end tests of the installed Windows program share: a machine a test, under wine.

    FOLIDEX_SETUP     the installer (the newest in build/windows/); or the program's folder, which
                      is put in place by hand
    FOLIDEX_BUILD     the folder of the 64-bit build with its tests (build/windows)
    FOLIDEX_BUILD32   the same for 32-bit scanning (build/windows32)
    FOLIDEX_MACHINES  a folder in which machines are kept from one test program to the next
    FOLIDEX_PICTURES  where failures leave their pictures (build/windows-e2e-failures)
"""

import atexit
import fcntl
import functools
import os
import pathlib
import shutil
import sys
import tempfile

TREE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TREE / "tests/support"))
sys.dont_write_bytecode = True

from driver import DriverError, Robot  # noqa: E402
from driver.case import DriverCase, main  # noqa: E402, F401
from driver.virtual_scanners import VirtualScanners  # noqa: E402
from driver.wine_desktop import WineDesktop  # noqa: E402
from driver.wine_machine import Machine  # noqa: E402
from driver.wine_station import PROGRAM, WineStack, WineStation  # noqa: E402
from driver.windows_clerk import WindowsClerk  # noqa: E402


def _from_environment(name, default):
    return pathlib.Path(os.environ.get(name, TREE / default)).resolve()


BUILD = _from_environment("FOLIDEX_BUILD", "build/windows")
BUILD32 = _from_environment("FOLIDEX_BUILD32", "build/windows32")
PICTURES = _from_environment("FOLIDEX_PICTURES", "build/windows-e2e-failures")
PLUGIN = BUILD / "tests/support/robot_plugin/plugins"
STAND_IN = BUILD / "tests/support/stand_in/folidex-stand-in.exe"


def setup():
    """The installer."""
    if "FOLIDEX_SETUP" in os.environ:
        return pathlib.Path(os.environ["FOLIDEX_SETUP"]).resolve()
    found = sorted(BUILD.glob("Folidex-*-setup.exe"), key=lambda path: path.stat().st_mtime)
    if not found:
        raise DriverError(f"there is no installer in {BUILD}; ./build-windows makes it")
    return found[-1]


def install(machine):
    source = setup()
    if source.is_dir():
        shutil.copytree(source, (machine.drive / PROGRAM).parent)
    else:
        machine.install(source)


@functools.cache
def _machines():
    """The folder in which machines are kept."""
    if "FOLIDEX_MACHINES" in os.environ:
        folder = pathlib.Path(os.environ["FOLIDEX_MACHINES"]).resolve()
        folder.mkdir(parents=True, exist_ok=True)
        return folder
    folder = pathlib.Path(tempfile.mkdtemp(prefix="folidex-machines-"))
    atexit.register(shutil.rmtree, folder, ignore_errors=True)
    return folder


def _kept_machine(name, prepare):
    folder = _machines()
    machine = Machine(folder / name, folder / "home")
    with open(folder / f"{name}.lock", "w", encoding="utf-8") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        if not machine.prefix.exists():
            making = Machine(folder / f"{name}.making", folder / "home")
            shutil.rmtree(making.prefix, ignore_errors=True)
            making.home.mkdir(exist_ok=True)
            prepare(making)
            making.prefix.rename(machine.prefix)
    return machine


def bare_machine():
    """A machine on which the program was never installed."""
    return _kept_machine("bare", lambda machine: machine.make())


def installed_machine():
    def prepare(machine):
        bare_machine().copy_to(machine.prefix)
        install(machine)
    source = setup()
    return _kept_machine(f"installed-{source.stat().st_mtime_ns}", prepare)


def enter_station(case, make):
    """A station, made for its folder, that lasts as long as the test."""
    # Where machines share what is never changed.
    home = tempfile.mkdtemp(prefix="station-", dir=_machines())
    # Once its programs have ended, also after a failure; what it left is among the pictures.
    case.addCleanup(shutil.rmtree, home, ignore_errors=True)
    return case.enterContext(make(home))


def bare_station(case):
    """A machine of the test's own with a display, on which the program was never installed."""
    return enter_station(case, lambda home: WineStack(bare_machine(), home))


class WineCase(DriverCase):
    """A test's own workstation with the program installed."""

    def setUp(self):
        self.station = self.new_station()
        self.robot = Robot(self.station, PICTURES)
        self.clerk = WindowsClerk(self.robot)
        self.scanners = self.new_scanners(self.station)
        self.data = self.station.drive / "shared" / "Documents"
        self.data.parent.mkdir()

    def new_station(self, machine=None):
        self.assertTrue(any(PLUGIN.glob("generic/*.dll")), f"there is no plug-in in {PLUGIN}")
        return enter_station(self, lambda home: WineStation(machine or installed_machine(), PLUGIN,
                                                            home))

    def new_scanners(self, station):
        return VirtualScanners(station, {64: BUILD, 32: BUILD32})

    def new_desktop(self):
        return WineDesktop(self.station, STAND_IN)
