# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""The widget tree as the accessibility bus tells it, read afresh at every question."""

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

from .stack import PATIENCE  # noqa: E402
from .widget import DriverError, Gone, Widget, plain_name  # noqa: E402

_ACCESSIBLE = "org.a11y.atspi.Accessible"
_ROOT = "/org/a11y/atspi/accessible/root"
_CALL_TIMEOUT = PATIENCE * 1000

# Bits of the state set that the driver asks about.
_STATES = {"checked": 4, "editable": 7, "enabled": 8, "focused": 12, "modal": 16,
           "selected": 23, "sensitive": 24, "showing": 25, "visible": 30}


class Bus:
    """The accessibility bus of one session."""

    def __init__(self, session_address):
        session = self._connect(session_address)
        reply = session.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress",
                                  None, GLib.VariantType("(s)"), 0, _CALL_TIMEOUT, None)
        self._connection = self._connect(reply.unpack()[0])
        session.close_sync(None)
        self._shown = []
        self._connection.signal_subscribe(None, "org.a11y.atspi.Event.Object", "StateChanged",
                                          None, "showing", 0, self._remember_shown)
        # Programs send only the events that somebody asked the registry for.
        self.call("org.a11y.atspi.Registry", "/org/a11y/atspi/registry",
                  "org.a11y.atspi.Registry", "RegisterEvent",
                  GLib.Variant("(s)", ("object:state-changed:showing",)))

    @staticmethod
    def _connect(address):
        flags = (Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
                 | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
        return Gio.DBusConnection.new_for_address_sync(address, flags, None, None)

    def close(self):
        if not self._connection.is_closed():
            self._connection.close_sync(None)

    def _remember_shown(self, _connection, service, path, _interface, _signal, arguments):
        if arguments.unpack()[1]:
            self._shown.append(Node(self, service, path))

    def forget_shown(self):
        self._shown.clear()

    def shown(self):
        """What was announced as newly shown, latest first. Pop-up menus, which belong to no
        window's tree, are known only by this."""
        context = GLib.MainContext.default()
        while context.iteration(False):
            pass
        return list(reversed(self._shown))

    def call(self, service, path, interface, method, arguments=None):
        try:
            return self._connection.call_sync(service, path, interface, method, arguments, None,
                                              0, _CALL_TIMEOUT, None).unpack()
        except GLib.Error as failure:
            if failure.matches(Gio.io_error_quark(), Gio.IOErrorEnum.TIMED_OUT):
                # It may well be there; nobody must take it for closed.
                raise DriverError(f"{path} did not answer {method} within {PATIENCE} "
                                  "seconds") from None
            raise Gone(failure.message) from None

    def process_id(self, service):
        return self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                         "GetConnectionUnixProcessID", GLib.Variant("(s)", (service,)))[0]

    def application(self, process_id):
        """The root of a process's widgets; nothing while it has not come to the bus."""
        try:
            for service, path in self.call("org.a11y.atspi.Registry", _ROOT, _ACCESSIBLE,
                                           "GetChildren")[0]:
                if self.process_id(service) == process_id:
                    return Node(self, service, path)
        except Gone:
            pass
        return None


class Node(Widget):
    """One object on the bus."""

    def __init__(self, bus, service, path):
        self._bus, self.service, self.path = bus, service, path

    def __eq__(self, other):
        return (isinstance(other, Node)
                and (self.service, self.path) == (other.service, other.path))

    def __hash__(self):
        return hash((self.service, self.path))

    def call(self, interface, method, arguments=None):
        return self._bus.call(self.service, self.path, f"org.a11y.atspi.{interface}", method,
                              arguments)

    def _property(self, interface, name):
        return self._bus.call(self.service, self.path, "org.freedesktop.DBus.Properties", "Get",
                              GLib.Variant("(ss)", (f"org.a11y.atspi.{interface}", name)))[0]

    @property
    def name(self):
        return plain_name(self._property("Accessible", "Name"))

    @property
    def role(self):
        return self.call("Accessible", "GetRoleName")[0]

    @property
    def parent(self):
        return Node(self._bus, *self._property("Accessible", "Parent"))

    @property
    def children(self):
        return [Node(self._bus, service, path)
                for service, path in self.call("Accessible", "GetChildren")[0]
                if path != "/org/a11y/atspi/null"]

    @property
    def states(self):
        low, high = self.call("Accessible", "GetState")[0]
        bits = low | high << 32
        return {name for name, bit in _STATES.items() if bits >> bit & 1}

    @property
    def extents(self):
        """x, y, width, height on the screen."""
        return tuple(self.call("Component", "GetExtents", GLib.Variant("(u)", (0,)))[0])

    @property
    def text(self):
        return self.call("Text", "GetText", GLib.Variant("(ii)", (0, -1)))[0]

    @property
    def caret(self):
        """Where the caret stands in a text; nothing for what has no text."""
        try:
            return self._property("Text", "CaretOffset")
        except Gone:
            return None

    def set_text(self, text):
        self.call("EditableText", "SetTextContents", GLib.Variant("(s)", (text,)))

    def table_cell(self, row, column):
        service, path = self.call("Table", "GetAccessibleAt",
                                  GLib.Variant("(ii)", (row, column)))[0]
        return Node(self._bus, service, path)

    @property
    def table_size(self):
        return self._property("Table", "NRows"), self._property("Table", "NColumns")
