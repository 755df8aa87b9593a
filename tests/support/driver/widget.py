# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""A widget as the driver sees it, whoever tells of it: the accessibility bus, or a plug-in of the
program."""

import contextlib
import re

# Roles of what may have very many parts.
TABLES = ("table", "tree", "tree table")
POPUPS = ("popup menu", "menu")


class DriverError(Exception):
    """The program did not do what the driver was told to expect."""


class Gone(Exception):
    """The object asked is no longer there."""


def plain_name(name):
    """A mnemonic's mark is no part of a name."""
    return re.sub(r"&(\S)", r"\1", name).strip()


class Widget:
    """Every property asks the program anew. A kind of widget gives name, role, states, parent,
    children, extents (x, y, width and height on the screen, in the program's own pixels), text,
    caret, set_text(), table_size and table_cell()."""

    def window(self):
        """The window or pop-up menu that it lies in, or that it is."""
        node = self
        while node.role not in POPUPS and (above := node.parent).role != "application":
            node = above
        return node

    def walk(self, depth=30):
        """This widget and all below it, outermost first; cells of tables are left out."""
        yield self
        if depth == 0:
            return
        try:
            if self.role in TABLES:
                return
            children = self.children
        except Gone:
            return
        for child in children:
            yield from child.walk(depth - 1)

    def showing(self, roles):
        """(widget, its name) of those that show and have one of the roles."""
        for node in self.walk():
            with contextlib.suppress(Gone):
                if node.role in roles and "showing" in node.states:
                    yield node, node.name

    def describe(self):
        try:
            states = self.states
            marks = " ".join(sorted(states & {"showing", "enabled", "focused", "checked",
                                              "modal"}))
            return f"{self.role} \"{self.name}\" [{marks}] {self.extents}"
        except Gone:
            try:
                return f"{self.role} \"{self.name}\""
            except Gone:
                return "(gone)"

    def dump(self, depth=0):
        lines = ["  " * depth + self.describe()]
        try:
            if self.role not in TABLES:
                for child in self.children:
                    lines.append(child.dump(depth + 1))
        except Gone:
            pass
        return "\n".join(lines)
