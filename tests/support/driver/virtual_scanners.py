# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""Virtual scanners of both word sizes on a Windows machine (tests/support/twain)."""

import pathlib
import shutil

# Where a scanner's set-up puts the source manager of a word size.
_FOLDERS = {64: "windows/system32", 32: "windows/syswow64"}


class VirtualScanners:
    """builds gives the folder of each word size's build, {64: folder, 32: folder}."""

    def __init__(self, station, builds):
        self._station, self._builds = station, builds

    def connect(self, bits, *names, manager=None, **scripts):
        """Sets up a source manager with sources of a word size; a script is given for each name
        with "_" for blanks, as {key: value}. Connecting again replaces what was there."""
        folder = self.folder(bits)
        copy = folder / "TWAINDSM.dll"
        # It may be shared with another machine.
        copy.unlink(missing_ok=True)
        shutil.copy(self._file(bits, "TWAINDSM.dll"), copy)
        sections = {"manager": {"sources": "|".join(names), "log": 1} | (manager or {})}
        for name in names:
            sections[name] = {"window": 1} | scripts.get(name.replace(" ", "_"), {})
        self._write(folder / "scanners.ini", sections)

    def connect_to_wines_own(self, name, script):
        """Sets up a source where wine's own source manager of 64 bits finds it."""
        folder = self._drivers(64)
        (folder / "sane.ds").unlink(missing_ok=True)
        shutil.copy(self._file(64, "sane.ds"), folder / "sane.ds")
        self._write(folder / "scanners.ini", {"manager": {"sources": name, "log": 1},
                                              name: {"window": 1} | script})

    def disconnect_wines_own(self):
        """Takes away the drivers that wine brings along, which are for cameras too."""
        for bits in _FOLDERS:
            for driver in self._drivers(bits).glob("*.ds"):
                driver.unlink()

    def _drivers(self, bits):
        return self._station.drive / "windows" / f"twain_{bits}"

    def folder(self, bits):
        return self._station.drive / _FOLDERS[bits]

    def log(self, bits):
        """What the sources of a word size were asked, line by line."""
        path = self.folder(bits) / "scanners.log"
        return path.read_text(errors="replace").splitlines() if path.is_file() else []

    @staticmethod
    def _write(path, sections):
        path.write_text("".join(
            f"[{name}]\r\n" + "".join(f"{key}={value}\r\n" for key, value in keys.items())
            for name, keys in sections.items()))

    def _file(self, bits, name):
        found = sorted(pathlib.Path(self._builds[bits]).rglob(name))
        if not found:
            raise FileNotFoundError(f"there is no {name} in {self._builds[bits]}")
        return found[0]
