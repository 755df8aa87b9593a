#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""The installer and the portable archive, each test on a workstation of its own under wine.

wine_case.py tells by which variables the installer is found; the archive and the folder folidex/
that it was made from lie beside it.
"""

import os
import pathlib
import shutil
import subprocess
import unittest
import zipfile

import wine_case
from driver.stack import wait_until

KEY = r"HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\Folidex"
DEFAULT = "Program Files/Folidex"
SHORTCUT = "ProgramData/Microsoft/Windows/Start Menu/Programs/Folidex.lnk"
PREFERENCES = "ProgramData/Brightmoor/folidex_Preferences.xml"
FIRST_WINDOW = "Tell folidex where your data folder is."
LIST = "installed-files.txt"
RUNNING, FAILED, TOO_OLD, NOT_SHARED = 3, 2, 4, 5

SETUP = wine_case.setup()
STAGE = SETUP.parent / "folidex"
VERSION = SETUP.name.split("-")[1]


def contents(folder):
    return {str(path.relative_to(folder)): path.read_bytes()
            for path in folder.rglob("*") if path.is_file()}


class Installer(unittest.TestCase):
    def setUp(self):
        self.station = wine_case.bare_station(self)
        self.drive = self.station.drive
        self.folder = self.drive / DEFAULT

    def exit_code(self, program, *arguments):
        return subprocess.run(self.station.machine.command(str(program), *arguments), check=False,
                              env=self.station.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode

    def start(self, program):
        """Starts the program and waits for its first window; the process."""
        machine = self.station.machine
        process = self.station.start_tool("program", machine.command(machine.as_told(program)))
        wait_until(lambda: f'"{FIRST_WINDOW}"' in self.station.output("xwininfo", "-root", "-tree"),
                   "the program's first window")
        return process

    def install(self, folder=None):
        """The exit code of a silent installation. The folder is told as administrators tell it:
        last and without quotes, whatever it holds."""
        return self.exit_code(SETUP, "/S", *(f"/D={folder}".split(" ") if folder else ()))

    def assert_same_files(self, found, expected):
        """Names those that differ; nobody could read how."""
        names = found.keys() | expected.keys()
        self.assertEqual({name for name in names if found.get(name) != expected.get(name)}, set())

    def registered(self):
        """The values under which Windows lists the program; none when it does not."""
        output = self.station.machine.run("reg", "query", KEY, "/reg:64", accept=(0, 1))
        rows = [line.split(None, 2) for line in output.splitlines() if line.startswith("    ")]
        return {row[0]: row[2] for row in rows}

    def uninstall(self, folder=None):
        """As Windows does it; the uninstaller goes on after its first process has ended."""
        folder = folder or self.folder
        command = self.registered()["QuietUninstallString"]
        self.assertEqual(command, f'"{self.station.machine.as_told(folder)}\\uninstall.exe" /S')
        self.assertEqual(self.exit_code(folder / "uninstall.exe", "/S"), 0)
        wait_until(lambda: not self.registered(), "the end of the uninstallation")

    def test_everything_is_where_all_users_find_it(self):
        self.assertEqual(self.install(), 0)
        installed = contents(self.folder)
        del installed["uninstall.exe"]
        self.assert_same_files(installed, contents(STAGE))
        self.assertTrue((self.drive / SHORTCUT).is_file())
        self.assertTrue((self.drive / PREFERENCES).parent.is_dir())

    def test_every_user_may_modify_what_all_share(self):
        tool = self.drive / "windows/system32/icacls.exe"
        # What lies there is shared with other machines.
        tool.unlink()
        shutil.copy(wine_case.STAND_IN, tool)
        self.station.environment["WINEDLLOVERRIDES"] += ";icacls.exe=n"
        self.assertEqual(self.install(), 0)
        told = tool.with_name("icacls.exe.txt").read_text(encoding="utf-8")
        # The group of all users, by its number, as its name is another in every language; also for
        # the folders and files that are made there later.
        self.assertEqual(told, "C:\\ProgramData\\Brightmoor\t/grant\t*S-1-5-32-545:(OI)(CI)M\t/Q\n")

    def test_windows_lists_the_program(self):
        self.assertEqual(self.install(), 0)
        listed = self.registered()
        self.assertEqual(listed["DisplayName"], "Folidex")
        self.assertEqual(listed["DisplayVersion"], VERSION)
        self.assertEqual(listed["Publisher"], "The Folidex authors")
        self.assertEqual(listed["InstallLocation"], r"C:\Program Files\Folidex")
        self.assertEqual(listed["DisplayIcon"], r"C:\Program Files\Folidex\folidex.exe,0")
        size = sum(len(data) for data in contents(self.folder).values())
        self.assertAlmostEqual(int(listed["EstimatedSize"], 16), size / 1024, delta=1000)

    def test_the_program_starts_where_it_was_installed(self):
        self.assertEqual(self.install(), 0)
        self.assertFalse((self.drive / PREFERENCES).exists())
        self.start(self.folder / "folidex.exe")
        self.assertIn("<folidex", (self.drive / PREFERENCES).read_text(encoding="utf-8"))

    def test_another_folder_may_be_named(self):
        self.assertEqual(self.install(r"C:\Büro für 文書\Folidex"), 0)
        folder = self.drive / "Büro für 文書/Folidex"
        self.assertTrue((folder / "dbm.mdb").is_file())
        self.assertFalse(self.folder.exists())
        self.start(folder / "folidex.exe")

    def test_an_upgrade_replaces_the_program_and_nothing_else(self):
        self.assertEqual(self.install(), 0)
        preferences = b"<?xml version='1.0'?><folidex><dblocation>P:\\Office</dblocation></folidex>"
        (self.drive / PREFERENCES).write_bytes(preferences)
        (self.folder / "notes.txt").write_text("kept by a clerk")
        # As if the older version had been made of other files.
        (self.folder / "oldplugins/deep").mkdir(parents=True)
        (self.folder / "oldplugins/deep/qold.dll").write_text("old")
        (self.folder / "Qt6Core.dll").write_text("old")
        with (self.folder / LIST).open("a", newline="") as names:
            names.write("oldplugins\\deep\\qold.dll\r\n")
        self.station.machine.run("reg", "add", KEY, "/v", "DisplayVersion", "/d", "0.9", "/f",
                                 "/reg:64")
        self.assertEqual(self.install(), 0)
        installed = contents(self.folder)
        self.assertEqual(installed.pop("notes.txt"), b"kept by a clerk")
        del installed["uninstall.exe"]
        self.assert_same_files(installed, contents(STAGE))
        self.assertFalse((self.folder / "oldplugins").exists())
        self.assertEqual((self.drive / PREFERENCES).read_bytes(), preferences)
        self.assertEqual(self.registered()["DisplayVersion"], VERSION)

    def test_an_upgrade_finds_the_program_where_it_is(self):
        self.assertEqual(self.install(r"C:\Archive\Folidex"), 0)
        (self.drive / "Archive/Folidex/dbm.mdb").unlink()
        self.assertEqual(self.install(), 0)
        self.assertTrue((self.drive / "Archive/Folidex/dbm.mdb").is_file())
        self.assertFalse(self.folder.exists())

    def test_an_upgrade_to_another_folder_leaves_none_behind(self):
        self.assertEqual(self.install(), 0)
        self.assertEqual(self.install(r"C:\Archive\Folidex"), 0)
        self.assertTrue((self.drive / "Archive/Folidex/folidex.exe").is_file())
        self.assertFalse(self.folder.exists())
        self.assertEqual(self.registered()["InstallLocation"], r"C:\Archive\Folidex")

    def test_an_upgrade_to_the_usual_folder_leaves_no_other_behind(self):
        self.assertEqual(self.install(r"C:\Archive\Folidex"), 0)
        self.assertEqual(self.install(r"C:\Program Files\Folidex"), 0)
        self.assertTrue((self.folder / "folidex.exe").is_file())
        self.assertFalse((self.drive / "Archive/Folidex").exists())
        self.assertEqual(self.registered()["InstallLocation"], r"C:\Program Files\Folidex")

    def test_a_folder_under_another_name_is_the_same_folder(self):
        self.assertEqual(self.install(r"C:\Archive\Folidex"), 0)
        (self.drive / "Link").symlink_to("Archive")
        self.assertEqual(self.install(r"C:\Link\Folidex"), 0)
        installed = contents(self.drive / "Archive/Folidex")
        del installed["uninstall.exe"]
        self.assert_same_files(installed, contents(STAGE))

    def make_older(self, folder):
        """As if the program in the folder were of an older version; its contents."""
        (folder / "site/help/index.html").write_text("old")
        (folder / "notes.txt").write_text("kept by a clerk")
        (folder / "oldplugins").mkdir()
        (folder / "oldplugins/qold.dll").write_text("old")
        with (folder / LIST).open("a", newline="") as names:
            names.write("oldplugins\\qold.dll\r\n")
        return contents(folder)

    def assert_upgrade_fails_and_leaves(self, before):
        listed = self.registered()
        self.assertEqual(self.install(), FAILED)
        self.assert_same_files(contents(self.folder), before)
        self.assertFalse((self.folder / "new-files").exists())
        self.assertFalse((self.folder / "replaced-files").exists())
        self.assertEqual(self.registered(), listed)
        self.start(self.folder / "folidex.exe")

    def test_an_upgrade_with_a_folder_in_its_way_leaves_the_older_version(self):
        self.assertEqual(self.install(), 0)
        (self.folder / "licences/SQLite.txt").unlink()
        (self.folder / "licences/SQLite.txt").mkdir()
        (self.folder / "licences/SQLite.txt/notes.txt").write_text("kept by a clerk")
        self.assert_upgrade_fails_and_leaves(self.make_older(self.folder))

    def test_an_upgrade_with_a_file_in_the_place_of_a_folder_leaves_the_older_version(self):
        self.assertEqual(self.install(), 0)
        # Most files are in place before the first of this folder.
        shutil.rmtree(self.folder / "styles")
        (self.folder / "styles").write_text("kept by a clerk")
        self.assert_upgrade_fails_and_leaves(self.make_older(self.folder))

    def test_an_upgrade_that_fills_the_disk_leaves_the_older_version(self):
        disk = pathlib.Path(os.environ["FOLIDEX_SMALL_DISK"].removeprefix("Z:"))
        folder = disk / "Folidex"
        self.addCleanup(shutil.rmtree, folder)
        folder.mkdir()
        for name in ("folidex.exe", "Qt6Core.dll", "dbm.mdb"):
            (folder / name).write_text(f"old {name}")
        (folder / LIST).write_text(f"folidex.exe\r\nQt6Core.dll\r\ndbm.mdb\r\n{LIST}\r\n")
        before = contents(folder)
        self.station.machine.run("reg", "add", KEY, "/v", "InstallLocation", "/d",
                                 self.station.machine.as_told(folder), "/f", "/reg:64")
        listed = self.registered()
        self.assertEqual(self.install(), FAILED)
        self.assert_same_files(contents(folder), before)
        self.assertEqual({path.name for path in folder.iterdir()}, before.keys())
        self.assertEqual(self.registered(), listed)
        self.assertFalse(self.folder.exists())

    def test_a_running_program_is_not_replaced(self):
        self.assertEqual(self.install(), 0)
        before = contents(self.folder)
        self.start(self.folder / "folidex.exe")
        self.assertEqual(self.install(), RUNNING)
        self.assertEqual(self.install(r"C:\Archive\Folidex"), RUNNING)
        self.assert_same_files(contents(self.folder), before)
        self.assertFalse((self.drive / "Archive").exists())

    def test_a_running_program_is_not_removed(self):
        self.assertEqual(self.install(), 0)
        before = contents(self.folder)
        self.start(self.folder / "folidex.exe")
        # Told its folder, the uninstaller stays the process whose code is seen here.
        told = "_?=" + self.station.machine.as_told(self.folder)
        code = self.exit_code(self.folder / "uninstall.exe", "/S", *told.split(" "))
        self.assertEqual(code, RUNNING)
        self.assert_same_files(contents(self.folder), before)
        self.assertTrue((self.drive / SHORTCUT).is_file())

    def test_uninstalling_leaves_data_and_preferences(self):
        self.assertEqual(self.install(), 0)
        preferences = b"<?xml version='1.0'?><folidex/>"
        (self.drive / PREFERENCES).write_bytes(preferences)
        document = self.drive / "Documents/scanned_files/1009/paper.pdf"
        document.parent.mkdir(parents=True)
        document.write_bytes(b"%PDF-")
        self.uninstall()
        wait_until(lambda: not self.folder.exists(), "the program's folder to go")
        self.assertFalse((self.drive / SHORTCUT).exists())
        self.assertEqual((self.drive / PREFERENCES).read_bytes(), preferences)
        self.assertEqual(document.read_bytes(), b"%PDF-")

    def test_uninstalling_leaves_what_it_did_not_install(self):
        self.assertEqual(self.install(), 0)
        (self.folder / "site/notes.txt").write_text("kept by a clerk")
        self.uninstall()
        wait_until(lambda: list(contents(self.folder)) == ["site/notes.txt"],
                   "everything else to go")

    def test_what_was_uninstalled_can_be_installed_again(self):
        self.assertEqual(self.install(), 0)
        self.uninstall()
        wait_until(lambda: not self.folder.exists(), "the program's folder to go")
        self.assertEqual(self.install(), 0)
        self.assertEqual(self.registered()["DisplayVersion"], VERSION)

    def test_an_older_windows_is_refused(self):
        self.station.machine.run("winecfg", "/v", "win7")
        self.assertEqual(self.install(), TOO_OLD)
        self.assert_nothing_is_installed()

    def assert_nothing_is_installed(self):
        self.assertEqual(self.registered(), {})
        self.assertFalse(self.folder.exists())
        self.assertFalse((self.drive / SHORTCUT).exists())

    def test_a_folder_that_cannot_be_made_is_refused(self):
        (self.drive / "taken").write_text("a file")
        self.assertEqual(self.install(r"C:\taken\Folidex"), FAILED)
        self.assert_nothing_is_installed()

    def test_a_file_that_cannot_be_written_fails_the_installation(self):
        (self.drive / "Archive/dbm.mdb/in the way").mkdir(parents=True)
        self.assertEqual(self.install(r"C:\Archive"), FAILED)
        self.assert_nothing_is_installed()

    def logs(self):
        """What silent installations left to read."""
        return [path.read_text("utf-16") for path in self.drive.rglob("folidex-setup.log")]

    def test_rights_that_cannot_be_given_are_told_and_do_not_stop_the_installation(self):
        usual = self.station.environment["WINEDLLOVERRIDES"]
        # A Windows that cannot start the tool which gives them.
        self.station.environment["WINEDLLOVERRIDES"] = usual + ";icacls.exe="
        self.assertEqual(self.install(), NOT_SHARED)
        self.assertEqual(self.registered()["DisplayVersion"], VERSION)
        self.assertTrue((self.drive / SHORTCUT).is_file())
        (log,) = self.logs()
        self.assertIn(f"Folidex {VERSION}", log)
        self.assertIn(r"not every user of this workstation may write in C:\ProgramData\Brightmoor",
                      log)
        program = self.start(self.folder / "folidex.exe")
        self.station.machine.end()
        self.station.wait_for_end(program)
        self.station.environment["WINEDLLOVERRIDES"] = usual
        self.assertEqual(self.install(), 0)
        self.assertEqual(self.logs(), [])

    def test_the_portable_archive_runs_where_it_was_unpacked(self):
        archive = SETUP.with_name(f"Folidex-{VERSION}-portable.zip")
        with zipfile.ZipFile(archive) as pack:
            pack.extractall(self.drive / "Stick")
        folder = self.drive / f"Stick/Folidex-{VERSION}"
        expected = contents(STAGE)
        del expected[LIST]
        self.assert_same_files(contents(folder), expected)
        self.start(folder / "folidex.exe")


if __name__ == "__main__":
    unittest.main()
