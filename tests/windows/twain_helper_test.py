#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""The scanning helpers of both word sizes under wine, with virtual scanners that play a script.

Both must have been built; helper_process.py tells where they are looked for.
"""

import queue
import shutil
import tempfile
import unittest

import helper_process as hp
from driver.stack import wait_until

WORKSTATION = hp.Workstation()
JAM, DOUBLE_FEED, INTERLOCK, NO_MEDIA = 20, 21, 24, 29
SMALL = "rgb100@60x40"


def setUpModule():
    unittest.enterModuleContext(WORKSTATION)


class Scanning:
    """A desk of one word size, and what is asked of a scan."""

    bits = None

    def setUp(self):
        self.program = hp.builds()[self.bits]
        self.desk = self.new_desk()

    def new_desk(self, library="TWAINDSM.dll", drivers=None):
        folder = tempfile.mkdtemp(prefix="desk-")
        self.addCleanup(shutil.rmtree, folder)
        return hp.Desk(WORKSTATION, folder, self.program, library, drivers)

    def scan(self, **keys):
        """Lets the one virtual scanner play; returns the helper and how it ended."""
        self.desk.script(Virtual=keys)
        with self.desk.scan() as helper:
            helper.until("O")
            helper.say("a")
            ending = helper.done()
            helper.exit_code = helper.ended()
        return helper, ending

    def assert_outcome(self, ending, outcome, step=hp.NO_STEP, condition=0, pages=0):
        self.assertEqual((ending.outcome, ending.step, ending.condition, ending.pages),
                         (outcome, step, condition, pages), ending)

    def assert_page(self, page, kind, width, height, number, resolution=100):
        wanted = {"bw": hp.BILEVEL, "vanilla": hp.BILEVEL, "gray": hp.GRAY, "gray4": hp.GRAY,
                  "gray16": hp.GRAY}.get(kind, hp.RGB)
        self.assertEqual((page.kind, page.width, page.rows), (wanted, width, height))
        self.assertAlmostEqual(page.x_resolution, resolution, places=2)
        self.assertAlmostEqual(page.y_resolution, resolution, places=2)
        self.assertEqual(bytes(page.data), hp.picture(kind, width, height, number))

    def listed(self, desk=None, **options):
        """The names of the sources."""
        names = []
        with (desk or self.desk).list(**options) as helper:
            while (frame := helper.frame())[0] == "S":
                names.append(frame[1][4:].decode())
            self.assert_outcome(hp.Ending(frame[1]), hp.GOOD)
        return names

    def steps(self):
        """What the source was told after it was opened, without its settings."""
        return [line.removeprefix("Virtual ") for line in self.desk.log()
                if " set " not in line]

    def assert_released(self):
        """The whole ladder down, each rung in its state."""
        steps = self.steps()
        self.assertEqual(steps[-3:], ["disable", "close", "manager close"], steps)
        self.assertFalse([line for line in steps if "out of order" in line], steps)

    def wait_for_log(self, line):
        wait_until(lambda: line in self.desk.log(), f"\"{line}\" in the log")


class HelperRoads(Scanning):
    """Every road through a helper, with a source manager of our own."""

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
            self.wait_for_log("hang at load:0")
            self.assertTrue(helper.frames.empty())
            self.assertIsNone(helper.process.poll())

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
        with self.desk.scan(index=1) as helper:
            helper.until("O")
            helper.say("a")
            self.assert_outcome(helper.done(), hp.GOOD, pages=1)

    def test_a_list_that_has_changed_is_searched_by_name(self):
        self.desk.script(New={"fail": "open:5"}, Virtual={"pages": SMALL})
        with self.desk.scan(index=0) as helper:
            helper.until("O")
            helper.say("a")
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
        with self.desk.scan(owner=987654321) as helper:
            helper.until("O")
            helper.say("a")
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
        with self.desk.scan(wishes=0) as helper:
            helper.until("O")
            helper.say("a")
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

    # Pages

    def test_pages_of_each_kind_come_through_memory_as_they_are(self):
        kinds = ("bw", "vanilla", "gray", "gray4", "gray16", "rgb", "rgb48", "palette", "palette4")
        helper, ending = self.scan(pages=",".join(f"{kind}100@61x43" for kind in kinds),
                                   strip=2000)
        self.assert_outcome(ending, hp.GOOD, pages=len(kinds))
        for number, kind in enumerate(kinds):
            with self.subTest(kind=kind):
                self.assert_page(helper.pages[number], kind, 61, 43, number)
                self.assertEqual(helper.pages[number].height, 43)
        self.assertEqual(helper.exit_code, 0)
        self.assert_released()

    def test_pages_of_each_kind_come_as_whole_bitmaps(self):
        kinds = ("bw", "vanilla", "gray", "gray4", "rgb", "rgb32", "palette", "palette4")
        for top_down in (0, 1):
            helper, ending = self.scan(pages=",".join(f"{kind}100@61x43" for kind in kinds),
                                       transfers="native", top_down=top_down)
            self.assert_outcome(ending, hp.GOOD, pages=len(kinds))
            for number, kind in enumerate(kinds):
                with self.subTest(kind=kind, top_down=top_down):
                    self.assert_page(helper.pages[number], kind, 61, 43, number)

    def test_rows_with_padding_that_changes_are_packed(self):
        helper, ending = self.scan(pages="rgb100@60x40,bw100@60x40", padding=3, rows=7)
        self.assert_outcome(ending, hp.GOOD, pages=2)
        self.assert_page(helper.pages[0], "rgb", 60, 40, 0)
        self.assert_page(helper.pages[1], "bw", 60, 40, 1)

    def test_a_page_whose_size_is_not_known_before_its_end(self):
        helper, ending = self.scan(pages="gray100@60x400", unknown_height=1, unknown_width=1)
        self.assert_outcome(ending, hp.GOOD, pages=1)
        self.assertEqual(helper.pages[0].height, 0)
        self.assert_page(helper.pages[0], "gray", 60, 400, 0)

    def test_the_resolution_is_found_wherever_the_source_hides_it(self):
        for keys, resolution in (
                ({"unknown_resolution": 1, "resolution": 200}, 200),
                ({"unknown_resolution": 1, "resolution": 79, "units": 1}, 79 * 2.54),
                ({"units": 1}, 254),
                ({"unknown_resolution": 1, "transfers": "native"}, 99.9998),
                ({"unknown_resolution": 2, "transfers": "native"}, 0)):
            with self.subTest(**keys):
                helper, ending = self.scan(pages=SMALL, **keys)
                self.assert_outcome(ending, hp.GOOD, pages=1)
                self.assert_page(helper.pages[0], "rgb", 60, 40, 0, resolution)

    def test_a_large_page_comes_in_pieces(self):
        helper, ending = self.scan(pages="rgb300@2480x1000", strip=3 << 20)
        self.assert_outcome(ending, hp.GOOD, pages=1)
        page = helper.pages[0]
        self.assertTrue(all(size % page.row_bytes() == 0 for size in page.pieces))
        self.assertLess(max(page.pieces), 300 << 10)
        self.assert_page(page, "rgb", 2480, 1000, 0, 300)

    def test_a_jpeg_comes_byte_for_byte(self):
        jpeg = bytes.fromhex("ffd8ffe0") + bytes(range(256)) * 40 + bytes.fromhex("ffd9")
        (self.desk.folder / "page.jpg").write_bytes(jpeg)
        file = WORKSTATION.machine.as_told(self.desk.folder / "page.jpg")
        helper, ending = self.scan(pages="jpeg200@60x40*2", compression="jpeg", jpeg_file=file,
                                   strip=4000)
        self.assert_outcome(ending, hp.GOOD, pages=2)
        self.assertIn("Virtual set 0100 to 6", self.desk.log())
        for page in helper.pages:
            self.assertEqual((page.kind, page.width, page.height, page.rows, page.x_resolution),
                             (hp.JPEG, 60, 40, 0, 200))
            self.assertEqual(bytes(page.data), jpeg)

    def test_black_and_white_is_not_asked_for_as_a_jpeg(self):
        self.scan(pages="bw100@60x40", compression="jpeg", pixel_type=0)
        self.assertIn("Virtual set 0100 to 0", self.desk.log())

    def test_many_pages_come_in_order_until_the_feeder_is_empty(self):
        # The last one cannot count: it announces a sixth page and then finds no paper.
        for keys in ({}, {"counts": 1},
                     {"pages": "gray100@30x20*6", "trouble": "29:6", "trouble_first": 1}):
            with self.subTest(**keys):
                helper, ending = self.scan(**{"pages": "gray100@30x20*5", **keys})
                self.assert_outcome(ending, hp.GOOD, pages=5)
                for number, page in enumerate(helper.pages):
                    self.assert_page(page, "gray", 30, 20, number)
                self.assert_released()

    def test_a_page_of_each_old_and_new_way_of_calling(self):
        for manager, keys in (({}, {"notify": "call"}), ({}, {"notify": "thread"}),
                              ({}, {"notify": "event"}), ({}, {"notify": "both"}),
                              ({"callback": 2}, {"notify": "call"}),
                              ({"old": 1}, {"protocol": 1}), ({}, {"protocol": 1}),
                              ({"old": 1}, {"protocol": 2}), ({}, {"ready_at_once": 1}),
                              ({"old": 1}, {"ready_at_once": 1})):
            with self.subTest(manager=manager, **keys):
                self.desk.script(manager, Virtual={"pages": SMALL + "*2", **keys})
                with self.desk.scan() as helper:
                    helper.until("O")
                    helper.say("a")
                    helper.until("W")
                    self.assert_outcome(helper.done(), hp.GOOD, pages=2)
                    helper.ended()
                self.assert_released()

    # Endings

    def test_closing_the_sources_window_is_a_cancel_without_pages(self):
        for answer in ("cancel", "cancel_at_once"):
            with self.subTest(answer=answer):
                helper, ending = self.scan(pages=SMALL, answer=answer)
                self.assert_outcome(ending, hp.CANCELLED)
                self.assertEqual(helper.pages, [])
                self.assertEqual(self.steps()[-2:], ["close", "manager close"])

    def test_a_source_without_pages_ends_as_a_cancel(self):
        _, ending = self.scan(pages=",")
        self.assert_outcome(ending, hp.CANCELLED)

    def test_closing_the_sources_window_after_pages_keeps_them(self):
        helper, ending = self.scan(pages="gray100@30x20*4", close_during=2)
        self.assert_outcome(ending, hp.GOOD, pages=2)
        self.assertEqual(len(helper.pages), 2)
        self.assert_released()

    def test_cancelling_a_page_in_the_source_cancels_the_scan(self):
        for transfers in ("memory", "native"):
            with self.subTest(transfers=transfers):
                helper, ending = self.scan(pages="gray100@30x20*3", cancel=2, rows=5,
                                           transfers=transfers)
                self.assert_outcome(ending, hp.CANCELLED, pages=1)
                self.assertEqual(helper.dropped, 1 if transfers == "memory" else 0)
                self.assertIn("reset", self.steps())
                self.assert_released()

    def test_the_program_cancels_before_the_source_is_opened_by_its_user(self):
        self.desk.script(Virtual={"pages": SMALL, "answer": "wait"})
        with self.desk.scan() as helper:
            helper.until("O")
            helper.say("a")
            helper.until("W")
            helper.say("c")
            self.assert_outcome(helper.done(), hp.CANCELLED)
            self.assertEqual(helper.ended(), 0)
        self.assert_released()

    def test_the_program_cancels_in_the_middle_of_a_page(self):
        self.desk.script(Virtual={"pages": "gray100@100x2000*3", "rows": 2, "strip_ms": 20})
        with self.desk.scan() as helper:
            helper.until("O")
            helper.say("a")
            helper.until("R")
            helper.say("c")
            self.assert_outcome(helper.done(), hp.CANCELLED)
            self.assertEqual((helper.pages, helper.dropped), ([], 1))
            self.assertEqual(helper.ended(), 0)
        self.assertEqual(self.steps()[-5:], ["endxfer", "reset", "disable", "close",
                                             "manager close"])

    def test_a_feeder_that_cannot_be_reset_is_stopped(self):
        self.desk.script(Virtual={"pages": "gray100@100x2000*3", "rows": 2, "strip_ms": 20,
                                     "fail": "reset:5"})
        with self.desk.scan() as helper:
            helper.until("O")
            helper.say("a")
            helper.until("R")
            helper.say("c")
            self.assert_outcome(helper.done(), hp.CANCELLED)
            helper.ended()
        self.assertIn("stopfeeder", self.steps())

    def test_a_program_that_dies_while_pages_come_leaves_no_open_source(self):
        self.desk.script(Virtual={"pages": "gray100@1000x2000*3", "rows": 20, "strip_ms": 5})
        with self.desk.scan() as helper:
            helper.until("O")
            helper.say("a")
            helper.until("R")
            helper.process.stdin.close()
            helper.until("D")
            self.assertEqual(helper.ended(), 0)
        self.assert_released()

    def test_signs_of_life_come_while_the_user_decides(self):
        self.desk.script(Virtual={"pages": SMALL, "ready_ms": 2500})
        with self.desk.scan() as helper:
            helper.until("O")
            helper.say("a")
            helper.until("W")
            before = helper.alive
            self.assert_outcome(helper.done(), hp.GOOD, pages=1)
        self.assertGreaterEqual(helper.alive - before, 2)

    @staticmethod
    def brings_up_its_window():
        WORKSTATION.output("xdotool", "search", "--onlyvisible", "--name", "^Virtual$",
                           "windowactivate", "--sync")
        return "Virtual" in WORKSTATION.output("xdotool", "getactivewindow", "getwindowname")

    def in_its_window(self, *keys):
        """What the user presses in the source's own window."""
        self.desk.script(Virtual={"pages": SMALL + "*2", "window": 1})
        with self.desk.scan() as helper:
            helper.until("O")
            helper.say("a")
            helper.until("W")
            wait_until(self.brings_up_its_window, "the source's window")
            WORKSTATION.run("xdotool", "key", *keys)
            ending = helper.done()
            self.assertEqual(helper.ended(), 0)
        self.assertIn("enable with its window", self.steps())
        self.assert_released()
        return ending

    def test_the_user_scans_in_the_sources_own_window(self):
        self.assert_outcome(self.in_its_window("Return"), hp.GOOD, pages=2)

    def test_the_user_cancels_in_the_sources_own_window(self):
        self.assert_outcome(self.in_its_window("Escape"), hp.CANCELLED)

    def test_the_user_closes_the_sources_own_window(self):
        self.assert_outcome(self.in_its_window("alt+F4"), hp.CANCELLED)

    # Trouble

    def trouble(self, answer, **keys):
        self.desk.script(Virtual={"pages": "gray100@30x20*4", "rows": 5, **keys})
        with self.desk.scan() as helper:
            helper.until("O")
            helper.say("a")
            told = hp.Ending(helper.until("T")[1])
            helper.say(answer)
            ending = helper.done()
            self.assertEqual(helper.ended(), 0)
        return helper, told, ending

    def test_after_a_jam_the_scan_goes_on_with_the_page_that_jammed(self):
        for condition in (JAM, DOUBLE_FEED, INTERLOCK):
            for keys in ({}, {"trouble_first": 1}, {"transfers": "native"}, {"trouble_stops": 1},
                         {"trouble_stops": 1, "notify": "both"}):
                with self.subTest(condition=condition, **keys):
                    helper, told, ending = self.trouble("g", trouble=f"{condition}:3", **keys)
                    self.assert_outcome(told, hp.FAILED, hp.TRANSFER, condition, 2)
                    self.assert_outcome(ending, hp.GOOD, pages=4)
                    whole = "transfers" in keys or "trouble_first" in keys
                    self.assertEqual(helper.dropped, 0 if whole else 1)
                    for number, page in enumerate(helper.pages):
                        self.assert_page(page, "gray", 30, 20, number)
                    self.assert_released()

    def test_after_a_jam_the_pages_can_be_kept(self):
        helper, _, ending = self.trouble("k", trouble=f"{JAM}:3")
        self.assert_outcome(ending, hp.GOOD, pages=2)
        self.assertEqual(len(helper.pages), 2)
        self.assert_released()

    def test_after_a_jam_the_scan_can_be_cancelled(self):
        _, _, ending = self.trouble("c", trouble=f"{JAM}:3")
        self.assert_outcome(ending, hp.CANCELLED, pages=2)
        self.assert_released()

    def test_a_source_that_cannot_go_on_after_a_jam_says_so(self):
        _, _, ending = self.trouble("g", trouble=f"{JAM}:3", fail="endxfer_in_trouble:5")
        self.assert_outcome(ending, hp.FAILED, hp.END_PAGE, 5, pages=2)

    def test_a_jam_of_the_first_page_is_a_failure(self):
        helper, ending = self.scan(pages="gray100@30x20*4", trouble=f"{JAM}:1", rows=5)
        self.assert_outcome(ending, hp.FAILED, hp.TRANSFER, JAM)
        self.assertEqual((ending.return_code, helper.dropped, helper.pages), (1, 1, []))
        self.assert_released()

    def test_an_empty_feeder_is_a_failure_without_pages(self):
        _, ending = self.scan(pages=SMALL, trouble=f"{NO_MEDIA}:1", trouble_first=1)
        self.assert_outcome(ending, hp.FAILED, hp.TRANSFER, NO_MEDIA)

    def test_other_failures_are_told_with_their_step_and_codes(self):
        for keys, step, condition, pages in (
                ({"fail": "enable:23"}, hp.ENABLE, 23, 0),
                ({"fail": "info:5"}, hp.PAGE_INFO, 5, 0),
                ({"trouble": "2:2", "rows": 5}, hp.TRANSFER, 2, 1),
                ({"trouble": "2:2", "transfers": "native"}, hp.TRANSFER, 2, 1),
                ({"fail": "endxfer:1"}, hp.END_PAGE, 1, 1)):
            with self.subTest(**keys):
                _, ending = self.scan(pages=SMALL + "*3", **keys)
                self.assert_outcome(ending, hp.FAILED, step, condition, pages)
                self.assertEqual(ending.return_code, 1)
                self.assertIn("close", self.steps())
                self.assertEqual(self.steps()[-1], "manager close")

    def test_sizes_that_cannot_be_are_refused(self):
        for nonsense in ("rows", "written", "stride", "columns", "narrow", "tiles", "endless",
                         "length", "buffer"):
            with self.subTest(nonsense=nonsense):
                helper, ending = self.scan(pages="rgb100@60x40", rows=10, nonsense=nonsense)
                self.assert_outcome(ending, hp.FAILED, hp.BAD_PAGE)
                self.assertEqual((helper.pages, helper.open_page), ([], None))
                self.assert_released()

    def test_bitmaps_that_cannot_be_are_refused(self):
        for nonsense in ("height", "header", "colours", "nothing"):
            with self.subTest(nonsense=nonsense):
                helper, ending = self.scan(pages=SMALL, transfers="native", nonsense=nonsense)
                self.assert_outcome(ending, hp.FAILED, hp.BAD_PAGE)
                self.assertEqual((helper.pages, helper.open_page), ([], None))
                self.assert_released()

    def test_pages_in_forms_that_nobody_asked_for_are_refused(self):
        for keys, detail in (({"nonsense": "compression"}, 0x10005), ({"nonsense": "type"}, 5),
                             ({"nonsense": "planar"}, 2),
                             ({"nonsense": "packed", "transfers": "native"}, 0x20001)):
            with self.subTest(**keys):
                _, ending = self.scan(pages=SMALL, **keys)
                self.assert_outcome(ending, hp.FAILED, hp.FOREIGN_PAGE)
                self.assertEqual(ending.detail, detail)
                self.assert_released()

    def test_a_source_that_never_delivers_a_row_is_given_up(self):
        helper, ending = self.scan(pages=SMALL, nonsense="empty")
        self.assert_outcome(ending, hp.FAILED, hp.BAD_PAGE)
        self.assertEqual(helper.dropped, 0)

    # Drivers that crash, hang and chatter

    def test_a_crash_of_the_driver_anywhere_is_told(self):
        for kind, code in (("crash", 0xC0000005), ("raise", 0xE06D7363),
                           ("overflow", 0xC00000FD), ("abort", 0x40000015), ("throw", None),
                           ("crash_thread", 0xC0000005)):
            with self.subTest(kind=kind):
                helper, ending = self.scan(pages=SMALL + "*2", rows=5, **{kind: "middle:2"})
                self.assertEqual(ending.outcome, hp.CRASHED)
                self.assertEqual(len(helper.pages), 1)
                self.assertEqual(helper.exit_code, 3)
                if code:
                    self.assertEqual(hex(ending.detail), hex(code))

    def test_a_crash_at_any_place_is_told(self):
        for place in ("open", "capability", "enable", "window", "info:1", "transfer:1",
                      "endxfer:1"):
            with self.subTest(place=place):
                self.desk.script(Virtual={"pages": SMALL, "crash": place})
                with self.desk.scan() as helper:
                    if place not in ("open",):
                        helper.until("O")
                        helper.say("a")
                    self.assertEqual(helper.done().outcome, hp.CRASHED)
                    self.assertEqual(helper.ended(), 3)

    def test_a_crash_is_told_though_the_driver_has_a_filter_of_its_own(self):
        _, ending = self.scan(pages=SMALL, filter="open", crash="transfer:1")
        self.assertEqual(ending.outcome, hp.CRASHED)

    def test_a_driver_that_hangs_gives_no_sign_of_life(self):
        self.desk.script(Virtual={"pages": SMALL, "hang": "transfer:1"})
        with self.desk.scan() as helper:
            helper.until("O")
            helper.say("a")
            helper.until("W")
            self.wait_for_log("hang at transfer:1")
            self.assertRaises(queue.Empty, helper.frames.get, timeout=3)
            self.assertIsNone(helper.process.poll())

    def test_a_driver_that_hangs_does_not_outlive_the_program_for_long(self):
        self.desk.script(Virtual={"pages": SMALL, "hang": "transfer:1"})
        with self.desk.scan() as helper:
            helper.until("O")
            helper.say("a")
            helper.until("W")
            self.wait_for_log("hang at transfer:1")
            helper.process.stdin.close()
            self.assertEqual(helper.ended(), 4)

    def test_a_crash_on_the_way_out_loses_nothing(self):
        for place in ("disable", "close"):
            with self.subTest(place=place):
                helper, ending = self.scan(pages=SMALL + "*2", crash=place)
                self.assert_outcome(ending, hp.GOOD, pages=2)
                self.assertEqual(len(helper.pages), 2)

    def test_a_hang_on_the_way_out_loses_nothing(self):
        self.desk.script(Virtual={"pages": SMALL, "hang": "close"})
        with self.desk.scan() as helper:
            helper.until("O")
            helper.say("a")
            self.assert_outcome(helper.done(), hp.GOOD, pages=1)
            self.wait_for_log("hang at close:0")
            self.assertIsNone(helper.process.poll())

    def test_a_driver_that_ends_the_process_leaves_no_last_frame(self):
        self.desk.script(Virtual={"pages": SMALL, "exit": "transfer:1"})
        with self.desk.scan() as helper:
            helper.until("O")
            helper.say("a")
            helper.until("W")
            self.assertEqual(helper.ended(), 9)

    def test_what_a_driver_prints_does_not_reach_the_frames(self):
        helper, ending = self.scan(pages=SMALL + "*2", chatter="transfer:2")
        self.assert_outcome(ending, hp.GOOD, pages=2)
        self.assert_page(helper.pages[1], "rgb", 60, 40, 1)


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


class Helper64Test(HelperRoads, unittest.TestCase):
    bits = 64


class Helper32Test(HelperRoads, unittest.TestCase):
    bits = 32


class WinesManager64Test(WinesManager, unittest.TestCase):
    bits = 64


class WinesManager32Test(WinesManager, unittest.TestCase):
    bits = 32


if __name__ == "__main__":
    unittest.main()
