#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""What Windows reads from the programs' files, as they are installed: what they look like in a
folder, what they call themselves, how they want to be run."""

import re
import struct
import unittest

import wine_case

SETUP = wine_case.setup()
STAGE = SETUP.parent / "folidex"
VERSION = SETUP.name.split("-")[1]
ICON_FILE = wine_case.BUILD / "resources/icons/folidex.ico"
PROGRAMS = ("folidex.exe", "folidex-twain32.exe", "folidex-twain64.exe")
# Kinds of resources.
ICON, ICON_GROUP, VERSION_INFO, MANIFEST = 3, 14, 16, 24
# A program with windows, to Windows.
WINDOWS_SUBSYSTEM = 2


class Program:
    """A program's file: headers, sections and the tree of resources (kind, number, language)."""

    def __init__(self, name):
        self._data = (STAGE / name).read_bytes()
        self._header = self._number("<I", 0x3C)
        assert self._data[self._header:self._header + 4] == b"PE\0\0", name
        self.subsystem = self._number("<H", self._header + 24 + 68)
        self.resources = {kind: {number: self._only_language(place)
                                 for number, place in self._folder(folder)}
                          for kind, folder in self._folder(0)}

    def _number(self, kind, place):
        return struct.unpack_from(kind, self._data, place)[0]

    def _place(self, address):
        """Where in the file lies what is loaded to an address."""
        count, options = (self._number("<H", self._header + place) for place in (6, 20))
        for index in range(count):
            section = self._header + 24 + options + 40 * index
            size, start, _, raw = struct.unpack_from("<IIII", self._data, section + 8)
            if start <= address < start + size:
                return raw + address - start
        raise AssertionError(f"no section holds {address:x}")

    def _root(self):
        # Addresses of the 64-bit kind of header are twice as long.
        wide = self._number("<H", self._header + 24) == 0x20B
        table = self._header + 24 + (112 if wide else 96)
        return self._place(self._number("<I", table + 2 * 8))

    def _folder(self, place):
        """The numbers in a folder of the tree, and the places of what they name."""
        start = self._root() + place
        named, numbered = struct.unpack_from("<HH", self._data, start + 12)
        for index in range(named + numbered):
            number, below = struct.unpack_from("<II", self._data, start + 16 + 8 * index)
            yield number, below & 0x7FFFFFFF

    def _only_language(self, place):
        ((_language, entry),) = self._folder(place)
        address, size = struct.unpack_from("<II", self._data, self._root() + entry)
        start = self._place(address)
        return self._data[start:start + size]

    def only(self, kind):
        (data,) = self.resources[kind].values()
        return data


class Programs(unittest.TestCase):
    def test_every_program_names_its_version_and_maker(self):
        for name in PROGRAMS:
            data = Program(name).only(VERSION_INFO)
            for key, value in (("ProductVersion", VERSION), ("FileVersion", VERSION),
                               ("CompanyName", "The Folidex authors"), ("ProductName", "Folidex"),
                               ("OriginalFilename", name)):
                # The value follows its key, aligned to four bytes.
                found = re.search(re.escape(f"{key}\0".encode("utf-16-le")) + b"(?:\0\0)?"
                                  + re.escape(f"{value}\0".encode("utf-16-le")), data)
                self.assertTrue(found, f"{name} has no {key} \"{value}\"")
            numbers = [int(number) for number in VERSION.split(".")]
            fixed = struct.pack("<IIHHHH", 0xFEEF04BD, 0x10000, numbers[1], numbers[0], 0,
                                numbers[2])
            self.assertIn(fixed, data, f"{name} has no version in numbers")

    def test_the_program_has_its_icon_in_every_size(self):
        resources = Program("folidex.exe").resources
        (group,) = resources[ICON_GROUP].values()
        # The file has the same table, but tells a place where the resource tells a number.
        file = ICON_FILE.read_bytes()
        self.assertEqual(group[:6], file[:6])
        widths = set()
        for index in range(struct.unpack_from("<HHH", file)[2]):
            *_, size, place = struct.unpack_from("<BBBBHHII", file, 6 + 16 * index)
            width, *_, listed, number = struct.unpack_from("<BBBBHHIH", group, 6 + 14 * index)
            self.assertEqual(listed, size)
            self.assertEqual(resources[ICON][number], file[place:place + size])
            # A byte cannot tell the largest.
            widths.add(width or 256)
        self.assertLessEqual({16, 24, 32, 48, 64, 256}, widths)

    def manifest(self, name):
        return Program(name).only(MANIFEST).decode()

    def test_no_program_asks_for_elevation(self):
        for name in PROGRAMS:
            self.assertIn('<requestedExecutionLevel level="asInvoker" uiAccess="false"',
                          self.manifest(name))

    def test_the_program_wants_sharp_windows_long_paths_and_todays_controls(self):
        manifest = self.manifest("folidex.exe")
        self.assertRegex(manifest, r"<dpiAwareness [^>]*>PerMonitorV2, PerMonitor<")
        self.assertRegex(manifest, r"<longPathAware [^>]*>true<")
        self.assertRegex(manifest, r'name="Microsoft.Windows.Common-Controls" version="6\.0\.0\.0"')
        self.assertIn("{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}", manifest)

    def test_no_program_opens_a_console(self):
        for name in PROGRAMS:
            self.assertEqual(Program(name).subsystem, WINDOWS_SUBSYSTEM, name)


if __name__ == "__main__":
    unittest.main()
