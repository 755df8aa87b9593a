#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""The scanning helpers of both word sizes under wine: managers, lists, opening and settings.

Both must have been built; helper_process.py tells where they are looked for.
"""

import shutil
import unittest

import helper_process as hp
from twain_case import JAM, SMALL, WORKSTATION, Scanning, set_up_module

setUpModule = set_up_module


class Opening(Scanning):
    """Up to the first page, with a source manager of our own."""

    # Listing

    def test_the_sources_are_listed_in_the_managers_order_with_their_names(self):
        self.desk.write({"manager": {"sources": "B\xfcro-Scanner|Scanner|Scanner|" + "x" * 34}})
        with self.desk.list() as helper:
            found = []
            while (frame := helper.frame())[0] == "S":
                found.append((int.from_bytes(frame[1][:4], "little"), frame[1][4:].decode()))
            self.assertEqual(frame[0], "D")
            self.assert_outcome(hp.Ending(frame[1]), hp.GOOD)
            self.assertEqual(helper.ended(), 0)
        self.assertEqual(found, [(0, "B\xfcro-Scanner"), (1, "Scanner"), (2, "Scanner"),
                                 (3, "x" * 34)])

    def test_a_script_elsewhere_is_named_by_the_environment(self):
        self.desk.script(Beside={})
        script = self.desk.folder / "other.ini"
        script.write_text("[manager]\nsources=Elsewhere\n")
        named = {"FOLIDEX_TWAIN_SCRIPT": WORKSTATION.machine.as_told(script)}
        self.assertEqual(self.listed(environment=named), ["Elsewhere"])

    def test_a_manager_without_sources_lists_nothing(self):
        self.desk.script()
        with self.desk.list() as helper:
            kind, payload = helper.frame()
            self.assertEqual(kind, "D")
            self.assert_outcome(hp.Ending(payload), hp.GOOD)

    def test_a_list_without_end_is_cut_off(self):
        self.desk.script({"endless": 1}, Virtual={})
        with self.desk.list() as helper:
            count = 0
            while helper.until("S", "D")[0] == "S":
                count += 1
        self.assertEqual(count, 200)

    def test_a_manager_that_cannot_be_opened_is_told_with_its_codes(self):
        self.desk.script({"fail": "open:9"}, Virtual={})
        with self.desk.list() as helper:
            self.assert_outcome(helper.done(), hp.FAILED, hp.OPEN_MANAGER, 9)

    def test_a_manager_among_the_systems_own_is_used_when_there_is_none_beside_the_helper(self):
        folder = WORKSTATION.machine.drive / "windows" / {64: "system32", 32: "syswow64"}[self.bits]
        desk = self.new_desk(drivers=folder)
        for name in ("TWAINDSM.dll", "scanners.ini"):
            self.addCleanup((folder / name).unlink)
        desk.script({"log": 0}, Installed={})
        self.assertEqual(self.listed(desk), ["Installed"])

    def test_the_manager_of_the_windows_folder_is_used_when_there_is_no_newer_one(self):
        folder = WORKSTATION.machine.drive / "windows"
        manager, wines = folder / "twain_32.dll", folder / "twain_32.wine"
        if manager.exists():
            manager.rename(wines)
            self.addCleanup(wines.rename, manager)
        shutil.copy(hp.virtual(self.program, "TWAINDSM.dll"), manager)
        for path in (manager, folder / "scanners.ini"):
            self.addCleanup(path.unlink)
        desk = self.new_desk(None, drivers=folder)
        desk.script({"log": 0}, Old={})
        # Wine would take its own in place of any other of that name.
        overrides = WORKSTATION.environment["WINEDLLOVERRIDES"] + ";twain_32=n"
        self.assertEqual(self.listed(desk, environment={"WINEDLLOVERRIDES": overrides}), ["Old"])

    def test_a_manager_in_the_current_folder_or_on_the_path_is_never_loaded(self):
        self.desk.script(Planted={})
        folder = self.desk.folder
        path = {"WINEPATH": WORKSTATION.machine.as_told(folder)}
        self.assertNotIn("Planted", self.listed(self.new_desk(None), folder=folder,
                                                environment=path))
        self.assertEqual(self.desk.log(), [])

    def test_a_machine_without_a_manager_is_told_as_such(self):
        overrides = WORKSTATION.environment["WINEDLLOVERRIDES"].replace(".exe=", ".exe,twain_32=")
        with self.new_desk(None).list(environment={"WINEDLLOVERRIDES": overrides}) as helper:
            kind, payload = helper.frame()
            self.assertEqual(kind, "D")
            self.assert_outcome(hp.Ending(payload), hp.NO_MANAGER, hp.LOAD_MANAGER)
            self.assertEqual(helper.ended(), 0)

    def test_a_library_that_is_no_manager_is_told_when_there_is_nothing_else(self):
        overrides = WORKSTATION.environment["WINEDLLOVERRIDES"].replace(".exe=", ".exe,twain_32=")
        desk = self.new_desk("not-a-manager.dll")
        with desk.list(environment={"WINEDLLOVERRIDES": overrides}) as helper:
            self.assert_outcome(helper.done(), hp.FAILED, hp.LOAD_MANAGER, 9)

    def test_a_library_that_is_no_manager_is_passed_over(self):
        # Wine's own comes next.
        desk = self.new_desk("not-a-manager.dll")
        with desk.list() as helper:
            self.assert_outcome(helper.done(), hp.GOOD)

    def test_a_manager_that_hangs_on_load_gives_no_sign_of_life(self):
        self.desk.script({"hang": "load", "log": 1}, Virtual={})
        with self.desk.list() as helper:
            self.desk.wait_for_log("hang at load:0")
            self.assert_stays_silent(helper)

    def test_a_manager_that_crashes_on_load_is_passed_over(self):
        # The system takes it for a library that cannot be loaded; wine's own comes next.
        self.desk.script({"crash": "load"}, Virtual={})
        with self.desk.list() as helper:
            self.assert_outcome(helper.done(), hp.GOOD)

    def test_a_manager_that_crashes_while_listing_is_told(self):
        self.desk.script({"crash": "list"}, Virtual={})
        with self.desk.list() as helper:
            self.assertEqual(helper.done().outcome, hp.CRASHED)

    # Opening

    def test_the_source_at_the_index_is_opened_though_names_are_double(self):
        self.desk.write({"manager": {"sources": "Virtual|Virtual|Other", "log": 1},
                            "Virtual": {"pages": SMALL}})
        with self.desk.scanning(index=1) as helper:
            self.assert_outcome(helper.done(), hp.GOOD, pages=1)

    def test_a_list_that_has_changed_is_searched_by_name(self):
        self.desk.script(New={"fail": "open:5"}, Virtual={"pages": SMALL})
        with self.desk.scanning(index=0) as helper:
            self.assert_outcome(helper.done(), hp.GOOD, pages=1)
        self.assertIn("Virtual open", self.desk.log())
        self.assertNotIn("New open", self.desk.log())

    def test_a_source_that_is_gone_is_not_opened(self):
        self.desk.script(Other={})
        with self.desk.scan() as helper:
            self.assert_outcome(helper.done(), hp.NOT_OPENED, hp.FIND_SOURCE, 3)
            self.assertEqual(helper.ended(), 0)

    def test_a_source_that_refuses_to_open_is_told_with_its_condition(self):
        for condition in (1, 4, 23):
            with self.subTest(condition=condition):
                self.desk.script(Virtual={"fail": f"open:{condition}"})
                with self.desk.scan() as helper:
                    self.assert_outcome(helper.done(), hp.NOT_OPENED, hp.OPEN_SOURCE, condition)
                    helper.ended()
                self.assertEqual(self.desk.log()[-1], "manager close")

    def test_a_source_that_is_not_wanted_after_all_is_closed(self):
        self.desk.script(Virtual={})
        with self.desk.scan() as helper:
            helper.until("O")
            helper.say("q")
            self.assert_outcome(helper.done(), hp.CANCELLED)
            self.assertEqual(helper.ended(), 0)
        self.assertEqual(self.steps(), ["manager open", "open", "manager callback", "close",
                                        "manager close"])

    def test_a_program_whose_window_is_gone_gets_its_pages(self):
        self.desk.script(Virtual={"pages": SMALL})
        with self.desk.scanning(owner=987654321) as helper:
            self.assert_outcome(helper.done(), hp.GOOD, pages=1)

    def test_a_program_that_goes_away_leaves_no_open_source(self):
        self.desk.script(Virtual={})
        with self.desk.scan() as helper:
            helper.until("O")
            helper.process.stdin.close()
            helper.until("D")
            self.assertEqual(helper.ended(), 0)
        self.assertEqual(self.steps()[-2:], ["close", "manager close"])

    def test_a_command_line_without_sense_ends_at_once(self):
        for arguments in ([], ["print"], ["scan", "--index"], ["scan", "--index", "-1"]):
            with self.subTest(arguments=arguments), \
                    self.desk.run(*arguments) as helper:
                self.assertEqual(helper.ended(), 2)

    # Settings

    def test_the_wishes_reach_the_source(self):
        self.scan(pages=SMALL, duplex=1)
        settings = [line for line in self.desk.log() if " set " in line]
        self.assertEqual(settings, [f"Virtual set {setting}" for setting in (
            "0001 to 65535", "1002 to 1", "1007 to 1", "100b to 1", "1013 to 1", "0103 to 2",
            "0100 to 0")])

    def test_what_was_not_wished_is_left_alone(self):
        self.desk.script(Virtual={"pages": SMALL, "duplex": 1})
        with self.desk.scanning(wishes=0) as helper:
            helper.done()
            helper.ended()
        settings = [line for line in self.desk.log() if " set " in line]
        self.assertEqual(settings, ["Virtual set 0103 to 2", "Virtual set 0100 to 0"])

    def test_duplex_is_left_alone_where_there_is_none(self):
        self.scan(pages=SMALL, duplex=0)
        self.assertNotIn("Virtual set 1013 to 1", self.desk.log())

    def test_refused_settings_do_not_keep_a_page_from_coming(self):
        helper, ending = self.scan(
            pages=SMALL, lacks="0x1,0x1002,0x1007,0x100b,0x1012,0x1013,0x100,0x101,0x102,0x1118,"
                               "0x1119,0x111f")
        self.assert_outcome(ending, hp.GOOD, pages=1)
        self.assert_page(helper.pages[0], "rgb", 60, 40, 0)

    def test_an_absurd_list_of_values_is_survived(self):
        _, ending = self.scan(pages=SMALL, nonsense="container")
        self.assert_outcome(ending, hp.GOOD, pages=1)


class WinesManager(Scanning):
    """The same with wine's source manager, which is as old as those of the first TWAIN: no
    callbacks, no memory functions."""

    def setUp(self):
        drivers = WORKSTATION.machine.drive / f"windows/twain_{self.bits}"
        (drivers / "gphoto2.ds").unlink(missing_ok=True)
        self.program = hp.builds()[self.bits]
        self.desk = self.new_desk("sane.ds", drivers)
        self.addCleanup((drivers / "sane.ds").unlink)

    def assert_released(self):
        steps = self.steps()
        self.assertEqual(steps[-2:], ["disable", "close"], steps)
        self.assertFalse([line for line in steps if "out of order" in line], steps)

    def test_the_driver_is_listed(self):
        self.desk.script(Virtual={})
        self.assertEqual(self.listed(), ["Virtual"])

    def test_pages_come_through_memory_and_as_bitmaps(self):
        for transfers in ("memory", "native"):
            with self.subTest(transfers=transfers):
                helper, ending = self.scan(pages="rgb100@60x40,bw100@61x43,gray100@30x20",
                                           transfers=transfers, protocol=1)
                self.assert_outcome(ending, hp.GOOD, pages=3)
                self.assert_page(helper.pages[0], "rgb", 60, 40, 0)
                self.assert_page(helper.pages[1], "bw", 61, 43, 1)
                self.assert_page(helper.pages[2], "gray", 30, 20, 2)
                self.assert_released()

    def test_the_source_is_cancelled(self):
        _, ending = self.scan(answer="cancel")
        self.assert_outcome(ending, hp.CANCELLED)
        self.assert_released()

    def test_a_jam_of_the_first_page_is_told_with_its_condition(self):
        _, ending = self.scan(trouble=f"{JAM}:1", rows=5)
        self.assert_outcome(ending, hp.FAILED, hp.TRANSFER, JAM)
        self.assert_released()

    def test_a_driver_that_cannot_be_opened_is_told(self):
        self.desk.script(Virtual={"fail": "open:23"})
        with self.desk.scan() as helper:
            self.assertEqual(helper.done().outcome, hp.NOT_OPENED)

    def test_a_driver_that_crashes_is_told(self):
        for place in ("open", "middle:1"):
            with self.subTest(place=place):
                self.desk.script(Virtual={"crash": place, "rows": 5})
                with self.desk.scan() as helper:
                    if place != "open":
                        helper.until("O")
                        helper.say("a")
                    self.assertEqual(helper.done().outcome, hp.CRASHED)

    def test_a_driver_that_cannot_be_loaded_is_not_listed(self):
        self.desk.script({"crash": "load"}, Virtual={})
        self.assertEqual(self.listed(), [])


class Opening64(Opening, unittest.TestCase):
    bits = 64


class Opening32(Opening, unittest.TestCase):
    bits = 32


class WinesManager64(WinesManager, unittest.TestCase):
    bits = 64


class WinesManager32(WinesManager, unittest.TestCase):
    bits = 32


if __name__ == "__main__":
    unittest.main()
