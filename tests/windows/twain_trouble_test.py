#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""The scanning helpers of both word sizes under wine: paper in the way, and drivers that talk nonsense,
crash, hang and chatter.
"""

import unittest

import helper_process as hp
from driver.stack import wait_until
from twain_case import (DOUBLE_FEED, INTERLOCK, JAM, NO_MEDIA, SMALL, Scanning,
                        set_up_module)

setUpModule = set_up_module


class Trouble(Scanning):
    """What goes wrong, and that the helper says so."""

    # Trouble

    def trouble(self, answer, **keys):
        self.desk.script(Virtual={"pages": "gray100@30x20*4", "rows": 5, **keys})
        with self.desk.scanning() as helper:
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

    def nothing_comes(self, *options):
        """A scan whose source answers again and again that it has nothing yet."""
        self.desk.script(Virtual={"pages": SMALL, "nonsense": "empty"})
        helper = self.enterContext(self.desk.scanning(*options))
        self.desk.wait_for_log("Virtual gives nothing")
        return helper

    def test_a_source_that_never_delivers_a_row_is_given_up(self):
        helper = self.nothing_comes("--idle", 300)
        self.assert_outcome(helper.done(), hp.FAILED, hp.TRANSFER)
        self.assertEqual((helper.ended(), helper.pages, helper.dropped), (0, [], 0))
        self.assert_released()

    def test_a_source_that_delivers_nothing_yet_is_waited_for_and_can_be_cancelled(self):
        helper = self.nothing_comes("--idle", 600_000)
        # More often than a source would be asked that is given up after so many answers.
        wait_until(lambda: self.desk.log().count("Virtual gives nothing") > 600, "600 answers")
        helper.say("c")
        self.assert_outcome(helper.done(), hp.CANCELLED)
        self.assertEqual(helper.ended(), 0)
        self.assert_released()

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
        with self.desk.scanning() as helper:
            helper.until("A")
            self.desk.wait_for_log("hang at transfer:1")
            self.assert_stays_silent(helper)

    def test_a_driver_that_hangs_does_not_outlive_the_program_for_long(self):
        self.desk.script(Virtual={"pages": SMALL, "hang": "transfer:1"})
        with self.desk.scanning() as helper:
            helper.until("A")
            self.desk.wait_for_log("hang at transfer:1")
            helper.process.stdin.close()
            self.assertEqual(helper.ended(), 4)

    def test_a_manager_that_hangs_on_load_does_not_outlive_the_program_for_long(self):
        self.desk.script({"hang": "load"}, Virtual={})
        with self.desk.list() as helper:
            self.desk.wait_for_log("hang at load:0")
            helper.process.stdin.close()
            self.assertEqual(helper.ended(), 4)

    def test_a_driver_that_is_cancelled_in_a_slow_transfer_takes_the_whole_way_down(self):
        helper = self.paused("middle:1")
        helper.say("c")
        self.go_on()
        self.assert_outcome(helper.done(), hp.CANCELLED)
        self.assertEqual(helper.ended(), 0)
        self.assertEqual(self.steps()[-5:], ["endxfer", "reset", "disable", "close",
                                             "manager close"])

    def test_a_driver_that_is_slow_to_put_its_scanner_away_comes_to_its_end(self):
        for place in ("disable:0", "close:0"):
            with self.subTest(place=place):
                helper = self.paused(place)
                self.assert_outcome(helper.done(), hp.GOOD, pages=2)
                helper.process.stdin.close()
                self.go_on()
                self.assertEqual(helper.ended(), 0)
                self.assert_released()

    def test_a_crash_on_the_way_out_loses_nothing(self):
        for place in ("disable", "close"):
            with self.subTest(place=place):
                helper, ending = self.scan(pages=SMALL + "*2", crash=place)
                self.assert_outcome(ending, hp.GOOD, pages=2)
                self.assertEqual(len(helper.pages), 2)

    def test_a_hang_on_the_way_out_loses_nothing(self):
        self.desk.script(Virtual={"pages": SMALL, "hang": "close"})
        with self.desk.scanning() as helper:
            self.assert_outcome(helper.done(), hp.GOOD, pages=1)
            self.desk.wait_for_log("hang at close:0")
            self.assertIsNone(helper.process.poll())

    def test_a_driver_that_ends_the_process_leaves_no_last_frame(self):
        self.desk.script(Virtual={"pages": SMALL, "exit": "transfer:1"})
        with self.desk.scanning() as helper:
            helper.until("A")
            self.assertEqual(helper.ended(), 9)

    def test_what_a_driver_prints_does_not_reach_the_frames(self):
        helper, ending = self.scan(pages=SMALL + "*2", chatter="transfer:2")
        self.assert_outcome(ending, hp.GOOD, pages=2)
        self.assert_page(helper.pages[1], "rgb", 60, 40, 1)


class Trouble64(Trouble, unittest.TestCase):
    bits = 64


class Trouble32(Trouble, unittest.TestCase):
    bits = 32


if __name__ == "__main__":
    unittest.main()
