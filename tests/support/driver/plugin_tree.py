# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""The widget tree as the test's own plug-in of the program tells it (tests/support/robot_plugin).

Where there is no accessibility bus the plug-in stands in for it: it sees what assistive programs
see, and answers over a loopback connection.
"""

import json
import re
import select
import socket

from .stack import PATIENCE
from .widget import DriverError, Gone, Widget, plain_name

# The toolkit's roles by the words of the accessibility bus, where they differ from its own.
_ROLES = {"AlertMessage": "alert", "Button": "push button", "ButtonDropDown": "push button menu",
          "ButtonMenu": "push button menu", "Cell": "table cell", "Client": "filler",
          "EditableText": "text", "Grouping": "panel", "Pane": "panel", "StaticText": "label",
          "Window": "frame"}


def _role_word(name):
    return _ROLES.get(name) or re.sub(r"(?<=[a-z])(?=[A-Z])", " ", name).lower()


class PluginBus:
    """Listens for the program that loads the plug-in; one program at a time."""

    def __init__(self):
        self._listener = socket.create_server(("127.0.0.1", 0))
        self._connection = self._stream = None

    @property
    def port(self):
        return self._listener.getsockname()[1]

    def close(self):
        self._hang_up()
        self._listener.close()

    def _hang_up(self):
        for each in (self._stream, self._connection):
            if each:
                each.close()
        self._connection = self._stream = None

    def forget_shown(self):
        """Nothing to forget: the plug-in is asked which pop-up menus are open."""

    def shown(self):
        return [PluginNode(self, number) for number in self.ask("popups")["popups"]]

    def application(self, _process_id):
        """The root of the widgets of the program that came last; nothing while none has come."""
        if select.select([self._listener], [], [], 0)[0]:
            self._hang_up()
            self._connection, _address = self._listener.accept()
            self._connection.settimeout(PATIENCE)
            self._connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            self._stream = self._connection.makefile("r", encoding="utf-8", newline="\n")
            if "hello" not in json.loads(self._stream.readline()):
                raise DriverError("what came to the driver is not the program's plug-in")
        if not self._stream:
            return None
        return PluginNode(self, self.ask("application")["id"])

    def ask(self, operation, **question):
        """The plug-in's answer; Gone when what was asked about is not there any more."""
        try:
            question = json.dumps(question | {"op": operation}) + "\n"
            self._connection.sendall(question.encode())
            line = self._stream.readline()
        except TimeoutError:
            raise DriverError(f"the program did not answer within {PATIENCE} seconds: "
                              f"{question}") from None
        except (OSError, AttributeError):
            line = ""
        answer = json.loads(line) if line else {"gone": "the program"}
        if "gone" in answer:
            raise Gone(answer["gone"])
        return answer


class PluginNode(Widget):
    """One object of the program."""

    def __init__(self, bus, number):
        self._bus, self.number = bus, number

    def __eq__(self, other):
        return isinstance(other, PluginNode) and self.number == other.number

    def __hash__(self):
        return hash(self.number)

    def _ask(self, operation, **question):
        return self._bus.ask(operation, id=self.number, **question)

    @property
    def name(self):
        return plain_name(self._ask("facts")["name"])

    @property
    def role(self):
        return _role_word(self._ask("facts")["role"])

    @property
    def states(self):
        return set(self._ask("facts")["states"])

    @property
    def parent(self):
        return PluginNode(self._bus, self._ask("parent")["id"])

    @property
    def children(self):
        return [PluginNode(self._bus, number) for number in self._ask("children")["children"]]

    @property
    def extents(self):
        return tuple(self._ask("extents")["extents"])

    @property
    def text(self):
        return self._ask("text")["text"]

    @property
    def caret(self):
        try:
            return self._ask("text")["caret"]
        except Gone:
            return None

    def set_text(self, text):
        self._ask("set_text", text=text)

    @property
    def table_size(self):
        return tuple(self._ask("table_size")["size"])

    def table_cell(self, row, column):
        return PluginNode(self._bus, self._ask("table_cell", row=row, column=column)["id"])

    def showing(self, roles):
        # One question instead of several a widget.
        for facts in self._ask("tree")["widgets"]:
            if _role_word(facts["role"]) in roles and "showing" in facts["states"]:
                yield PluginNode(self._bus, facts["id"]), plain_name(facts["name"])
