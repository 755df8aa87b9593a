#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""tools/wine-room as far as it goes without root: what it makes of its options, whom it asks for
root's rights, and what it hands on. Nothing is mounted: the call into namespaces of its own has a
stand-in. ./test-windows shows the rest."""

import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import unittest

TOOLS = pathlib.Path(__file__).resolve().parents[2] / "tools"
# Each argument on a line of its own, so that spaces in them are seen.
LOG = 'printf "%s\\n" "${0##*/}" "$@" >>"$CALLS"\n'
SIGNALS = {signal.SIGTERM: 143, signal.SIGHUP: 143, signal.SIGINT: 130}


def heed_signals():
    """A script cannot heed what whoever started the tests let them ignore."""
    for number in SIGNALS:
        signal.signal(number, signal.SIG_DFL)


class WineRoom(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name).resolve()
        self.calls = self.folder / "calls"
        tools = self.folder / "tree/tools"
        tools.mkdir(parents=True)
        shutil.copy(TOOLS / "debian_room.bash", tools)
        # EUID cannot be assigned in bash, so who runs it is told by another variable.
        self.tool = tools / "wine-room"
        self.tool.write_text((TOOLS / "wine-room").read_text().replace("$EUID", "$ASKED_EUID"))
        (self.folder / "bin").mkdir()
        for name in ("bash", "cat", "cut", "dirname", "env", "flock", "mkdir", "readlink",
                     "sha256sum", "sh", "sort"):
            (self.folder / "bin" / name).symlink_to(shutil.which(name))
        self.stand_in("debootstrap", "exit 1\n")
        self.stand_in("unshare", LOG)

    def stand_in(self, name, text):
        path = self.folder / "bin" / name
        path.write_text("#!/bin/bash\n" + text)
        path.chmod(0o755)

    def start(self, *arguments, root=True, **environment):
        environment |= {"PATH": str(self.folder / "bin"), "CALLS": str(self.calls),
                        "XDG_CACHE_HOME": str(self.folder / "cache"),
                        "ASKED_EUID": "0" if root else "1000"}
        return subprocess.Popen(
            [str(self.folder / "bin/bash"), str(self.tool), *map(str, arguments)], text=True,
            env=environment, cwd=self.folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE, preexec_fn=heed_signals)

    def enter(self, *arguments, **options):
        with self.start(*arguments, **options) as process:
            output, errors = process.communicate()
        return process.returncode, output + errors

    def called(self):
        return self.calls.read_text().splitlines() if self.calls.exists() else []

    def assert_refused(self, words, *arguments, **options):
        code, output = self.enter(*arguments, **options)
        self.assertEqual(code, 1, output)
        self.assertIn(f"wine-room: {words}", output)
        self.assertEqual(self.called(), [])

    def inner_call(self, *options):
        return ["unshare", "--mount", "--pid", "--fork", "--kill-child", str(self.tool), "--inner",
                "--base", *map(str, options)]

    def test_what_it_cannot_understand_is_refused(self):
        self.assert_refused("which command?")
        self.assert_refused("which command?", "--user", "root")
        self.assert_refused('unknown option "--bound"', "--bound", "/srv", "ls")
        for option in ("--base", "--bind", "--layer", "--writable"):
            self.assert_refused(f"{option} wants a folder", option)
            self.assert_refused(f"{option} wants a folder", option, "")
        self.assert_refused("--user wants clerk or root", "--user", "nobody", "ls")

    def test_its_help_names_every_option(self):
        code, output = self.enter("--help", root=False)
        self.assertEqual(code, 0)
        for option in ("--base", "--bind", "--layer", "--writable", "--user", "--make"):
            self.assertIn(f"  {option} ", output)
        self.assertLessEqual(max(map(len, output.splitlines())), 100)

    def test_the_command_goes_in_with_an_ordinary_users_rights_by_default(self):
        self.assertEqual(self.enter("ls", "-l"), (0, ""))
        self.assertEqual(self.called(), self.inner_call(
            self.folder / "cache/folidex/wine-room", "--user", "clerk", "ls", "-l"))

    def test_folders_go_in_with_full_paths_in_their_order(self):
        self.enter("--writable", "out put", "--layer", "a/../b", "--base", "rooms", "--bind",
                   "/srv", "--user", "root", "true")
        self.assertEqual(self.called(), self.inner_call(
            self.folder / "rooms", "--user", "root", "--writable", self.folder / "out put",
            "--layer", self.folder / "b", "--bind", "/srv", "true"))

    def test_options_of_the_command_are_its_own(self):
        self.enter("ctest", "--make", "--user", "nobody", "two words")
        self.assertEqual(self.called()[-5:], ["ctest", "--make", "--user", "nobody", "two words"])

    def test_making_the_room_needs_no_command(self):
        self.assertEqual(self.enter("--make")[0], 0)
        self.assertEqual(self.called()[-1], "--make")

    def test_the_commands_exit_code_is_handed_on(self):
        self.stand_in("unshare", "exit 42\n")
        self.assertEqual(self.enter("ls")[0], 42)

    def test_who_is_told_to_stop_takes_along_what_runs_inside(self):
        self.stand_in("unshare", "echo inside $$; exec sleep infinity\n")
        (self.folder / "bin/sleep").symlink_to(shutil.which("sleep"))
        for number, code in SIGNALS.items():
            with self.start("ls") as process:
                inside = int(process.stdout.readline().split()[1])
                process.send_signal(number)
                self.assertEqual(process.wait(), code)
            with self.assertRaises(ProcessLookupError):
                os.kill(inside, 0)

    def test_an_ordinary_user_goes_through_sudo_with_the_same_options_and_the_proxy(self):
        self.stand_in("sudo", LOG)
        self.assertEqual(self.enter("--bind", "/srv", "ls", "-l", root=False,
                                    http_proxy="http://proxy:3128"), (0, ""))
        self.assertEqual(self.called(), [
            "sudo", "env", "ROOM_APT_PROXY=http://proxy:3128", str(self.tool), "--base",
            str(self.folder / "cache/folidex/wine-room"), "--user", "clerk", "--bind", "/srv",
            "ls", "-l"])

    def test_without_root_and_sudo_it_says_what_it_needs(self):
        self.assert_refused("needs root or sudo", "ls", root=False)

    def test_another_list_of_packages_is_another_room(self):
        def room():
            self.enter("ls")
            return {path.name for path in (self.folder / "cache/folidex/wine-room").glob("*.lock")}
        (first,) = room()
        self.tool.write_text(self.tool.read_text().replace("=(wine ", "=(less wine ", 1))
        self.assertEqual(len(room() - {first}), 1)


if __name__ == "__main__":
    unittest.main()
