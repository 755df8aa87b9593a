# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""A Windows machine as wine makes one: its drive, its registry, its installed programs."""

import os
import pathlib
import shutil
import subprocess
import tempfile

from .stack import PATIENCE
from .widget import DriverError

_WINE = pathlib.Path("/usr/lib/wine")
# What wine would ask the user to download, and what would write menus into the desktop.
_WITHOUT = "mscoree,mshtml,winemenubuilder.exe="
# Files that wine rewrites; all others of the system are never changed and may be shared.
_REGISTRY = "*.reg"


def environment(prefix, home):
    """What a process needs to run on the machine in a folder."""
    keep = {key: os.environ[key] for key in ("PATH", "USER", "LOGNAME") if key in os.environ}
    return keep | {"WINEPREFIX": str(prefix), "WINEDLLOVERRIDES": _WITHOUT, "HOME": str(home),
                   "WINEDEBUG": "fixme-all", "LANG": "C.UTF-8", "LC_ALL": "C.UTF-8"}


def _share(original, copy):
    try:
        os.link(original, copy)
    except OSError:
        # They lie on different file systems.
        shutil.copy2(original, copy)


class Machine:
    """The machine in a folder of its own (wine's prefix)."""

    def __init__(self, prefix, home):
        self.prefix = pathlib.Path(prefix).resolve()
        self.home = pathlib.Path(home)
        self.environment = environment(self.prefix, home)

    @property
    def drive(self):
        return self.prefix / "drive_c"

    def make(self):
        """A machine as it comes from the shop."""
        self.run("wineboot", "--init")
        # Left to itself wine claims to be an older Windows than the program is for.
        self.run("winecfg", "/v", "win10")
        script = self.prefix / "settings.reg"
        self.set_registry({
            # A caret that blinks never comes to rest.
            r"HKEY_CURRENT_USER\Control Panel\Desktop": {"CursorBlinkRate": "-1"},
            # Windows' own fonts are missing, and any other would be taken for them.
            r"HKEY_CURRENT_USER\Software\Wine\Fonts\Replacements": dict.fromkeys(
                ("Tahoma", "Segoe UI", "MS Shell Dlg", "MS Shell Dlg 2", "MS Sans Serif"),
                "DejaVu Sans")}, script)
        script.unlink()
        self.end()
        # Wine links the user's folders to the home, which machines share.
        for folder in self.drive.glob("users/*/*"):
            if folder.is_symlink():
                folder.unlink()
                folder.mkdir()

    def copy_to(self, prefix):
        """Gives another folder the same machine; what is never changed they share."""
        shutil.copytree(self.prefix, prefix, symlinks=True, copy_function=_share)
        for original in self.prefix.glob(_REGISTRY):
            copy = pathlib.Path(prefix) / original.name
            copy.unlink()
            shutil.copy2(original, copy)

    def command(self, program, *arguments):
        return [str(_WINE / "wine64"), program, *arguments]

    def run(self, program, *arguments, accept=(0,)):
        """Runs a program to its end; its output. DriverError when it ends with another code."""
        # Not through a pipe: what the program leaves running may hold that open.
        with tempfile.TemporaryFile("w+", encoding="utf-8", errors="replace") as said:
            code = subprocess.call(self.command(program, *arguments), env=self.environment,
                                   stdin=subprocess.DEVNULL, stdout=said, stderr=said)
            said.seek(0)
            output = said.read()
        if code not in accept:
            raise DriverError(f"{program} {' '.join(arguments)} ended with code {code}: "
                              f"{output.strip()}")
        return output

    def set_registry(self, folders, file):
        """Sets named texts and numbers of registry folders; file is where the script is put."""
        lines = ["Windows Registry Editor Version 5.00"]
        for folder, values in folders.items():
            lines += ["", f"[{folder}]"]
            for name, value in values.items():
                name = f'"{name}"' if name else "@"
                text = str(value).replace("\\", "\\\\").replace('"', '\\"')
                lines.append(f"{name}=dword:{value:08x}" if isinstance(value, int)
                             else f'{name}="{text}"')
        file.write_text("\r\n".join([*lines, ""]), encoding="utf-16")
        self.run("regedit", "/S", self.as_told(file))

    def install(self, setup):
        """Runs an installer without asking anything."""
        self.run(str(setup), "/S")
        self.end()

    def end(self):
        """Ends whatever runs on the machine, and lets it write its registry."""
        for option in ("-k", "-w"):
            subprocess.run([str(_WINE / "wineserver"), option], env=self.environment,
                           stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL, check=False, timeout=PATIENCE)

    def as_told(self, path):
        """A path of the disk as programs on the machine write it."""
        path = pathlib.Path(path)
        if path.is_relative_to(self.drive):
            return "C:\\" + str(path.relative_to(self.drive)).replace("/", "\\")
        return "Z:" + str(path).replace("/", "\\")
