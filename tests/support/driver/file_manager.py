#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""A file manager that only writes down, in the file it is given, which items it was to show."""

import sys

from gi.repository import Gio, GLib

NAME = "org.freedesktop.FileManager1"
PATH = "/org/freedesktop/FileManager1"
INTERFACE = """\
<node><interface name="org.freedesktop.FileManager1"><method name="ShowItems">
<arg type="as" direction="in"/><arg type="s" direction="in"/>
</method></interface></node>"""


def main():
    loop = GLib.MainLoop()

    def called(_connection, _sender, _path, _interface, _method, arguments, invocation):
        uris, _startup_id = arguments.unpack()
        with open(sys.argv[1], "a", encoding="utf-8") as told:
            told.writelines(f"{uri}\n" for uri in uris)
        invocation.return_value(None)

    def export(connection, _name):
        node = Gio.DBusNodeInfo.new_for_xml(INTERFACE)
        connection.register_object(PATH, node.interfaces[0], called, None, None)

    def lost(_connection, _name):
        loop.quit()

    Gio.bus_own_name(Gio.BusType.SESSION, NAME, Gio.BusNameOwnerFlags.NONE, export, None, lost)
    loop.run()


if __name__ == "__main__":
    main()
