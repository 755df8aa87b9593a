#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""The scanning helpers of both word sizes under wine: pages of every kind, and how a scan ends."""

import re
import unittest

import helper_process as hp
from driver.stack import wait_until
from twain_case import SLOW, SMALL, WORKSTATION, Scanning, set_up_module

setUpModule = set_up_module


class Pages(Scanning):
    """From the first page to the end of a scan."""

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

    def test_memory_of_the_managers_own_is_used_and_handed_back(self):
        for transfers in ("memory", "native"):
            with self.subTest(transfers=transfers):
                self.desk.script({"memory": 1}, Virtual={"pages": "rgb100@61x43*2",
                                                         "transfers": transfers})
                with self.desk.scanning() as helper:
                    self.assert_outcome(helper.done(), hp.GOOD, pages=2)
                    helper.ended()
                self.assert_page(helper.pages[1], "rgb", 61, 43, 1)
                (told,) = (line for line in self.desk.log() if line.startswith("manager memory: "))
                allocated, freed, locked, unlocked, misused = map(int, re.findall(r"\d+", told))
                # Containers of settings, and the bitmaps of two pages.
                self.assertGreater(allocated, 5)
                self.assertGreaterEqual(locked, allocated)
                self.assertEqual((freed, unlocked, misused), (allocated, locked, 0))

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
                with self.desk.scanning() as helper:
                    helper.until("W")
                    self.assert_outcome(helper.done(), hp.GOOD, pages=2)
                    helper.ended()
                self.assert_released()
                # Only the two of TWAIN 2 call.
                calls = "old" not in manager and keys.get("protocol", 2) == 2
                self.assertEqual("manager callback" in self.desk.log(), calls)

    def test_a_page_is_announced_before_it_comes(self):
        for transfers in ("memory", "native"):
            with self.subTest(transfers=transfers):
                helper = self.paused("transfer:2", transfers=transfers)
                helper.until("W")
                self.assertEqual([helper.frame()[0] for _ in range(2)], ["A", "B"])
                helper.until("E")
                self.assertEqual(helper.frame()[0], "A")
                self.assert_stays_silent(helper)
                self.go_on()
                self.assert_outcome(helper.done(), hp.GOOD, pages=2)

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
        with self.desk.scanning() as helper:
            helper.until("W")
            helper.say("c")
            self.assert_outcome(helper.done(), hp.CANCELLED)
            self.assertEqual(helper.ended(), 0)
        self.assert_released()

    def test_the_program_cancels_in_the_middle_of_a_page(self):
        self.desk.script(Virtual=SLOW)
        with self.desk.scanning() as helper:
            helper.until("R")
            helper.say("c")
            self.assert_outcome(helper.done(), hp.CANCELLED)
            self.assertEqual((helper.pages, helper.dropped), ([], 1))
            self.assertEqual(helper.ended(), 0)
        self.assertEqual(self.steps()[-5:], ["endxfer", "reset", "disable", "close",
                                             "manager close"])

    def test_a_feeder_that_cannot_be_reset_is_stopped(self):
        self.desk.script(Virtual=SLOW | {"fail": "reset:5"})
        with self.desk.scanning() as helper:
            helper.until("R")
            helper.say("c")
            self.assert_outcome(helper.done(), hp.CANCELLED)
            helper.ended()
        self.assertIn("stopfeeder", self.steps())

    def test_a_program_that_dies_while_pages_come_leaves_no_open_source(self):
        self.desk.script(Virtual=SLOW)
        with self.desk.scanning() as helper:
            helper.until("R")
            helper.process.stdin.close()
            self.assert_outcome(helper.done(), hp.CANCELLED)
            self.assertEqual(helper.ended(), 0)
        self.assert_released()

    def test_signs_of_life_come_while_the_user_decides(self):
        self.desk.script(Virtual={"pages": SMALL, "answer": "wait"})
        with self.desk.scanning() as helper:
            helper.until("W")
            for _ in range(3):
                helper.sign_of_life()

    @staticmethod
    def brings_up_its_window():
        if WORKSTATION.active_title() == "Virtual":
            return True
        WORKSTATION.output("xdotool", "search", "--onlyvisible", "--name", "^Virtual$",
                           "windowactivate")
        return False

    def in_its_window(self, *keys):
        """What the user presses in the source's own window."""
        self.desk.script(Virtual={"pages": SMALL + "*2", "window": 1})
        with self.desk.scanning() as helper:
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


class Pages64(Pages, unittest.TestCase):
    bits = 64


class Pages32(Pages, unittest.TestCase):
    bits = 32


if __name__ == "__main__":
    unittest.main()
