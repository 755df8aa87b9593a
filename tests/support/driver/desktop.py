# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""What a station's desktop does for the program: opens a file, shows one in its folder.

Both are stand-ins that only write down what they were told: a viewer registered for PDFs, web
pages and folders, which the desktop's opener finds, and a file manager on the session bus.
"""

import pathlib

from gi.repository import Gio

from .stack import wait_until

_SERVICE = pathlib.Path(__file__).with_name("file_manager.py")
_NAME = "org.freedesktop.FileManager1"
_VIEWER = """\
#!/bin/sh
printf '%s\\n' "$1" >>"{opened}"
"""
_ENTRY = """\
[Desktop Entry]
Type=Application
Name=Viewer
Exec={viewer} %f
MimeType=application/pdf;text/html;inode/directory;
"""
_DEFAULTS = """\
[Default Applications]
application/pdf=viewer.desktop
text/html=viewer.desktop
inode/directory=viewer.desktop
"""


def _lines(path):
    return path.read_text().splitlines() if path.is_file() else []


class Desktop:
    """Belongs to a running station. Make it before the program starts, whose environment it adds
    to; the folder of all users' data stays as it is."""

    def __init__(self, station, file_manager=True):
        self._station = station
        folder = station.home / "desktop"
        folder.mkdir()
        self._opened, self._located = folder / "opened", folder / "located"
        self._register_viewer(folder)
        if file_manager:
            self._start_file_manager()

    def _register_viewer(self, folder):
        viewer = folder / "viewer"
        viewer.write_text(_VIEWER.format(opened=self._opened))
        viewer.chmod(0o755)
        entries = folder / "share" / "applications"
        entries.mkdir(parents=True)
        (entries / "viewer.desktop").write_text(_ENTRY.format(viewer=viewer))
        config = folder / "config"
        config.mkdir()
        (config / "mimeapps.list").write_text(_DEFAULTS)
        self._station.environment |= {
            "XDG_CONFIG_HOME": str(config),
            "XDG_DATA_DIRS": f"{folder / 'share'}:/usr/local/share:/usr/share",
            "XDG_CURRENT_DESKTOP": "X-Generic",
        }

    def _start_file_manager(self):
        station = self._station
        station.start_tool("file-manager", ["/usr/bin/python3", str(_SERVICE),
                                            str(self._located)])
        wait_until(lambda: _NAME in station.output(
            "dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/",
            "org.freedesktop.DBus.ListNames"), "the file manager on the session bus")

    @property
    def opened(self):
        """The paths that the viewer was given, in order."""
        return _lines(self._opened)

    @property
    def located(self):
        """The paths that the file manager was asked to show, in order."""
        return [Gio.File.new_for_uri(uri).get_path() for uri in _lines(self._located)]

    def wait_opened(self, path, times=1):
        wait_until(lambda: self.opened.count(str(path)) >= times, f"the viewer to be given {path}")

    def wait_located(self, path, times=1):
        wait_until(lambda: self.located.count(str(path)) >= times,
                   f"the file manager to be asked for {path}")
