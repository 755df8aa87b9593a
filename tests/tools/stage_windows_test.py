#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""tools/stage-windows with stand-ins for the compiler's tools: a program here is a text that names
its word size and what it imports, as objdump would print it."""

import pathlib
import subprocess
import sys
import tempfile
import unittest
import zipfile

TOOL = pathlib.Path(__file__).resolve().parents[2] / "tools/stage-windows"
PREFIX = "x86_64-w64-mingw32-"
BASE = ("libgcc_s_seh-1.dll", "libstdc++-6.dll", "libwinpthread-1.dll")


def program(*imports, size="x86-64"):
    return f"file format pei-{size}\n" + "".join(f"\tDLL Name: {name}\n" for name in imports)


class StageWindows(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.stage = self.folder / "out/folidex"
        self.tool("objdump", 'cat "$2"')
        self.tool("strip", 'for file; do :; done; echo "$file" >>"$FOLDER/stripped"')
        self.tool("g++-posix", 'echo "$FOLDER/compiler/${1#-print-file-name=}"')
        self.write("build/app/folidex.exe",
                   program("KERNEL32.dll", "Qt6Core.dll", "api-ms-win-core-synch-l1-2-0.dll"))
        self.write("build/resources/dbm.mdb", "template")
        self.write("helper/folidex-twain32.exe", program("USER32.dll", size="i386"))
        self.write("kit/qt/bin/Qt6Core.dll", program("MSVCRT.dll", "libstdc++-6.dll"))
        self.write("kit/qt/bin/Qt6Spare.dll", program())
        for name in BASE:
            self.write(f"compiler/{name}", program("KERNEL32.dll"))
        self.write("compiler/libstdc++-6.dll", program("libgcc_s_seh-1.dll"))
        for name in ("platforms/qwindows", "styles/qwindowsvistastyle", "imageformats/qjpeg"):
            self.write(f"kit/qt/plugins/{name}.dll", program("Qt6Core.dll", "USER32.dll"))
        self.write("kit/qt/include/QtCore/qtcoreversion.h", '#define QTCORE_VERSION_STR "6.4.9"')
        self.write("kit/sqlite/include/sqlite3.h", '#define SQLITE_VERSION        "3.40.9"')
        self.write("kit/sqlite/copyright", "public domain")
        for name in ("qt6-base-dev", "gcc-mingw-w64-base", "mingw-w64-common", "nsis"):
            self.write(f"documents/{name}/copyright", f"licence of {name}")

    def tool(self, name, text):
        path = self.write(f"tools/{PREFIX}{name}", f"#!/bin/sh\n{text}\n")
        path.chmod(0o755)

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
        return path

    def put_together(self, *options):
        done = subprocess.run(
            [sys.executable, str(TOOL), "--build", self.folder / "build",
             "--kit", self.folder / "kit", "--version", "1.2.3", "--to", self.stage,
             "--helper", self.folder / "helper/folidex-twain32.exe",
             "--documents", self.folder / "documents", *options],
            env={"PATH": f"{self.folder / 'tools'}:/usr/bin:/bin", "FOLDER": str(self.folder)},
            capture_output=True, text=True, check=False)
        return done.returncode, done.stdout + done.stderr

    def assert_refused(self, words):
        code, output = self.put_together()
        self.assertEqual(code, 1, output)
        self.assertIn(words, output)
        self.assertFalse(self.stage.exists())

    def test_every_dll_that_is_imported_comes_along_and_no_other(self):
        code, output = self.put_together()
        self.assertEqual(code, 0, output)
        self.assertEqual(sorted(path.name for path in self.stage.glob("*.dll")),
                         ["Qt6Core.dll", "libgcc_s_seh-1.dll", "libstdc++-6.dll"])
        for name in ("folidex.exe", "folidex-twain32.exe", "dbm.mdb", "site/help/index.html",
                     "platforms/qwindows.dll", "styles/qwindowsvistastyle.dll",
                     "imageformats/qjpeg.dll"):
            self.assertTrue((self.stage / name).is_file(), name)

    def test_every_program_and_dll_is_stripped(self):
        self.put_together()
        stripped = {pathlib.Path(line).name
                    for line in (self.folder / "stripped").read_text().splitlines()}
        self.assertEqual(stripped, {path.name for path in self.stage.rglob("*")
                                    if path.suffix in (".exe", ".dll")})

    def test_a_dll_that_is_nowhere_is_named_with_who_wants_it(self):
        self.write("build/app/folidex.exe", program("Qt6Network.dll"))
        self.assert_refused("folidex.exe imports Qt6Network.dll, which is neither")

    def test_a_dll_that_is_wanted_by_a_dll_alone_is_missed_too(self):
        self.write("compiler/libstdc++-6.dll", program("libssp-0.dll"))
        self.assert_refused("libstdc++-6.dll imports libssp-0.dll")

    def test_a_dll_that_only_a_plug_in_imports_is_missed_too(self):
        self.write("kit/qt/plugins/imageformats/qjpeg.dll", program("libjpeg-62.dll"))
        self.assert_refused("imageformats/qjpeg.dll imports libjpeg-62.dll")

    def test_a_dll_of_the_other_word_size_is_refused(self):
        self.write("helper/folidex-twain32.exe", program("Qt6Core.dll", size="i386"))
        self.assert_refused("folidex-twain32.exe (i386) imports Qt6Core.dll, which is x86-64")

    def test_a_helper_that_was_not_built_is_named(self):
        (self.folder / "helper/folidex-twain32.exe").unlink()
        self.assert_refused("folidex-twain32.exe; was it built?")

    def test_a_missing_licence_is_named(self):
        (self.folder / "documents/mingw-w64-common/copyright").unlink()
        self.assert_refused("mingw-w64-common/copyright is missing")

    def test_a_program_that_is_none_is_named(self):
        self.tool("objdump", 'echo "$2: file format not recognized" >&2; exit 1')
        self.assert_refused("could not be read")

    def test_the_licences_name_every_part_with_its_version(self):
        self.put_together()
        text = (self.stage / "licences/README.txt").read_text()
        for words in ("Qt 6.4.9 ", "SQLite 3.40.9 ", "GCC's run-time libraries", "MinGW-w64",
                      "NSIS", "Fluent UI System Icons"):
            self.assertIn(words, text)
        self.assertIn("licence of qt6-base-dev", (self.stage / "licences/Qt.txt").read_text())

    def test_the_list_names_every_file_and_the_uninstaller_in_the_words_of_windows(self):
        self.put_together()
        names = (self.stage / "installed-files.txt").read_bytes().decode().split("\r\n")
        self.assertEqual(names.pop(), "")
        self.assertEqual(sorted(name.replace("\\", "/") for name in names),
                         sorted(["uninstall.exe", *(str(path.relative_to(self.stage))
                                 for path in self.stage.rglob("*") if path.is_file())]))

    def test_the_archive_holds_the_same_files_in_one_folder(self):
        archive = self.folder / "portable.zip"
        self.put_together("--archive", archive)
        expected = {f"Folidex-1.2.3/{path.relative_to(self.stage)}"
                    for path in self.stage.rglob("*") if path.is_file()}
        with zipfile.ZipFile(archive) as pack:
            self.assertEqual(set(pack.namelist()),
                             expected - {"Folidex-1.2.3/installed-files.txt"})

    def test_what_an_earlier_run_left_goes(self):
        self.write("out/folidex/old.dll", "old")
        self.assertEqual(self.put_together()[0], 0)
        self.assertFalse((self.stage / "old.dll").exists())


if __name__ == "__main__":
    unittest.main()
