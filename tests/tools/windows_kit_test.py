#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""tools/windows-kit with stand-ins for compilers and sources: where it takes Qt and SQLite from,
and its words. A Qt here is a folder whose one DLL tells where it came from."""

import pathlib
import shutil
import subprocess
import tempfile
import unittest

TOOL = pathlib.Path(__file__).resolve().parents[2] / "tools/windows-kit"
PREFIX = "x86_64-w64-mingw32-"
LOG = 'echo "${0##*/} $*" >>"$CALLS"\n'
VERSIONS = {"qt6-base-dev": "6.4.9+dfsg-10", "qt6-base-dev-tools": "6.4.9+dfsg-10",
            "libsqlite3-dev": "3.40.9-2+deb12u1"}
# The folders that sources come in, as far as the tool looks at them.
DEBIAN_SOURCE = LOG + r"""
mkdir -p "$3/debian"
echo "copyright of $1" >"$3/debian/copyright"
printf '#!/bin/sh\n' >"$3/configure"
chmod +x "$3/configure"
touch "$3/sqlite3.h"
"""
CMAKE = LOG + r"""
case $1 in
    -S) for option; do case $option in
            -DCMAKE_INSTALL_PREFIX=*) echo "${option#*=}" >"$0.prefix" ;; esac; done ;;
    --install) qt=$(cat "$0.prefix"); mkdir -p "$qt/bin" "$qt/lib/cmake/Qt6"
        echo built >"$qt/bin/Qt6Core.dll" ;;
esac
"""


class WindowsKit(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.calls = self.folder / "calls"
        self.kit = self.folder / "clone/build/windows-kit"
        self.cache = self.folder / "cache/folidex/windows-kit"
        self.tool = self.folder / "clone/tools/windows-kit"
        self.tool.parent.mkdir(parents=True)
        shutil.copy(TOOL, self.tool)
        self.write("clone/tools/debian-source", DEBIAN_SOURCE)
        self.write("bin/cmake", CMAKE)
        for name in ("make", f"{PREFIX}gcc-posix", f"{PREFIX}ar", f"{PREFIX}strip"):
            self.write(f"bin/{name}", LOG)
        self.write("bin/dpkg-query", 'for package; do :; done\ncase $package in\n' + "".join(
            f"{name}) echo {version} ;;\n" for name, version in VERSIONS.items()) + "esac\n")

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text("#!/bin/sh\n" + text)
        path.chmod(0o755)

    def make(self, *options):
        done = subprocess.run(
            ["bash", str(self.tool), *options], stdin=subprocess.DEVNULL, capture_output=True,
            env={"PATH": f"{self.folder / 'bin'}:/usr/bin:/bin", "CALLS": str(self.calls),
                 "XDG_CACHE_HOME": str(self.folder / "cache")}, text=True, check=False)
        self.assertEqual(list(self.cache.glob("making.*")), [], "scratch folders stayed")
        return done.returncode, done.stdout + done.stderr

    def make_well(self, *options):
        code, output = self.make(*options)
        self.assertEqual(code, 0, output)
        return output

    def fetched(self):
        """The packages whose sources were fetched."""
        if not self.calls.exists():
            return []
        return [line.split()[1:3] for line in self.calls.read_text().splitlines()
                if line.startswith("debian-source ")]

    def add_qt(self, place, origin):
        """A Qt in a folder; what its DLL tells."""
        qt = self.folder / place
        (qt / "bin").mkdir(parents=True)
        (qt / "lib/cmake/Qt6").mkdir(parents=True)
        (qt / "bin/Qt6Core.dll").write_text(f"{origin}\n")
        return qt

    def origin(self):
        return (self.kit / "qt/bin/Qt6Core.dll").read_text().strip()

    def test_without_a_ready_qt_all_is_built_from_sources_of_the_machines_versions(self):
        output = self.make_well()
        self.assertIn("Building Qt 6.4.9 for Windows from Debian's sources", output)
        self.assertEqual(self.fetched(), [["sqlite3", "3.40.9"], ["qt6-base", "6.4.9"]])
        self.assertEqual(self.origin(), "built")
        self.assertEqual((self.kit / "sqlite/copyright").read_text(), "copyright of sqlite3\n")
        self.assertTrue((self.kit / "sqlite/include/sqlite3.h").is_file())
        calls = self.calls.read_text()
        self.assertIn("-DFEATURE_directwrite=OFF", calls)
        self.assertRegex(calls, rf"{PREFIX}strip --strip-unneeded \S+/Qt6Core.dll")

    def test_what_was_built_once_is_taken_from_the_cache(self):
        self.make_well()
        self.calls.unlink()
        self.assertEqual(self.make_well(), "")
        self.assertEqual(self.fetched(), [])
        self.assertEqual(self.origin(), "built")

    def test_a_ready_folder_is_taken_instead_of_building(self):
        self.add_qt("shared/windows-sdk/qt-6.4.9-mingw64", "ready")
        self.assertIn("Using Qt 6.4.9 for Windows in ", self.make_well())
        self.assertEqual(self.origin(), "ready")
        self.assertEqual(self.fetched(), [["sqlite3", "3.40.9"]])

    def test_a_ready_archive_is_unpacked_instead_of_building(self):
        qt = self.add_qt("packing", "packed")
        archive = self.folder / "shared/windows-sdk/qt-6.4.9-mingw64.tar.gz"
        archive.parent.mkdir(parents=True)
        subprocess.run(["tar", "-C", str(qt), "-czf", str(archive), "."], check=True)
        self.assertIn("Unpacking Qt 6.4.9 for Windows from ", self.make_well())
        self.assertEqual(self.origin(), "packed")

    def test_a_ready_qt_of_another_version_is_passed_over(self):
        self.add_qt("shared/windows-sdk/qt-6.4.8-mingw64", "ready")
        self.make_well()
        self.assertEqual(self.origin(), "built")

    def test_the_cache_goes_before_a_ready_qt(self):
        self.make_well()
        self.add_qt("shared/windows-sdk/qt-6.4.9-mingw64", "ready")
        self.make_well()
        self.assertEqual(self.origin(), "built")

    def test_a_build_from_source_can_be_asked_for_whatever_is_at_hand(self):
        self.add_qt("shared/windows-sdk/qt-6.4.9-mingw64", "ready")
        self.make_well()
        self.assertEqual(self.origin(), "ready")
        self.make_well("--qt-from-source")
        self.assertEqual(self.origin(), "built")
        self.assertEqual(self.fetched(), [["sqlite3", "3.40.9"], ["qt6-base", "6.4.9"]])

    def test_an_archive_that_cannot_be_unpacked_is_named_and_not_kept(self):
        self.write("shared/windows-sdk/qt-6.4.9.tar.gz", "no archive")
        code, output = self.make()
        self.assertEqual(code, 1)
        self.assertIn("qt-6.4.9.tar.gz could not be unpacked", output)
        self.assertFalse((self.cache / "qt-6.4.9").exists())

    def test_a_folder_that_holds_no_qt_is_told(self):
        (self.folder / "shared/windows-sdk/qt-6.4.9").mkdir(parents=True)
        code, output = self.make()
        self.assertEqual(code, 1)
        self.assertIn("holds no Qt for Windows", output)

    def test_a_build_that_fails_shows_its_words_and_is_not_kept(self):
        self.write("bin/cmake", "echo the compiler is broken; exit 1\n")
        code, output = self.make()
        self.assertEqual(code, 1)
        self.assertIn("the compiler is broken", output)
        self.assertIn("configuring Qt failed; all of its output is in ", output)
        self.assertFalse((self.cache / "qt-6.4.9").exists())

    def test_sources_that_cannot_be_fetched_are_told(self):
        self.write("clone/tools/debian-source", "echo no route to it; exit 1\n")
        code, output = self.make()
        self.assertEqual(code, 1)
        self.assertIn("no route to it", output)
        self.assertIn("fetching the sources of SQLite failed", output)

    def test_parts_of_qt_of_different_versions_are_told(self):
        self.write("bin/dpkg-query", 'for package; do :; done\ncase $package in\n'
                                     "*-tools) echo 6.4.8-1 ;;\n*) echo 6.4.9-1 ;;\nesac\n")
        code, output = self.make()
        self.assertEqual(code, 1)
        self.assertIn("qt6-base-dev and qt6-base-dev-tools differ in version", output)

    def test_a_package_that_is_missing_is_told(self):
        self.write("bin/dpkg-query", "exit 1\n")
        code, output = self.make()
        self.assertEqual(code, 1)
        self.assertIn("the package libsqlite3-dev is not installed", output)

    def test_an_unknown_option_is_refused(self):
        code, output = self.make("--qt")
        self.assertEqual(code, 1)
        self.assertIn('unknown option "--qt"', output)
        self.assertIn("--qt-from-source", self.make_well("--help"))


if __name__ == "__main__":
    unittest.main()
