#!/usr/bin/python3
# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""What a start finds on disk, and what it does about it."""

import station_case
from driver import road
from driver.clerk import USE_EXISTING
from driver.robot import RADIO, TEXT


class FirstStart(road.Starts, station_case.StationCase):
    def test_a_clean_machine_gets_an_empty_preferences_file_and_is_asked_for_its_folder(self):
        self.assertFalse(self.station.app_folder.exists())
        self.cancel(self.begin_on_a_clean_machine())
        self.assertIsNone(self.preferences().find("dblocation"))

    def test_a_folder_that_exists_is_refused_and_left_alone(self):
        self.data.mkdir()
        self.robot.start()
        window = self.clerk.location_window()
        self.clerk.name_data_folder(window, self.data.parent, self.data.name)
        self.clerk.press(window, "OK")
        self.assertEqual(self.read_box("Error"), "Folder already exists. Please choose another "
                                                 "location or folder name.")
        self.assertEqual(list(self.data.iterdir()), [])
        self.cancel(window)
        self.assertIsNone(self.preferences().find("dblocation"))

    def test_empty_fields_are_asked_for_one_by_one(self):
        self.robot.start()
        window = self.clerk.location_window()
        self.clerk.press(window, "OK")
        self.assertEqual(self.read_box("Error"), "Please enter or select a valid location")
        self.robot.type_text(self.robot.find(TEXT, "Location", window), "/nowhere at all/")
        self.clerk.press(window, "OK")
        self.assertEqual(self.read_box("Error"), "Please enter a valid folder name")
        self.robot.type_text(self.robot.find(TEXT, "Folder name", window), "Documents")
        self.clerk.press(window, "OK")
        self.assertEqual(self.read_box("Error"),
                         "Cannot find the following location: /nowhere at all")
        self.cancel(window)

    def test_a_folder_in_use_elsewhere_can_be_pointed_to(self):
        self.given_data_folder("insert into tags values (1, 'Taxes');"
                               "update comp set NewLink = 2;")
        self.station.preferences_file.unlink()
        self.robot.start()
        window = self.clerk.location_window()
        self.robot.press(self.robot.find(RADIO, USE_EXISTING, window))
        main = self.point_to_the_data_folder(window)
        self.clerk.choose_tag(main, "taxes")
        self.end_program(main)
        self.assertEqual(self.rows("select * from tags"), [(1, "Taxes")])
        self.assertEqual(self.preferences().findtext("dblocation"), str(self.data))

    def test_a_data_folder_that_is_gone_is_told_and_can_be_corrected(self):
        self.given_data_folder()
        gone = self.station.home / "unplugged"
        self.cancel(self.begin_with_a_data_folder_that_is_gone(gone))
        self.assertEqual(self.preferences().findtext("dblocation"), str(gone))
        window = self.begin_with_a_data_folder_that_is_gone(gone)
        self.end_program(self.point_to_the_data_folder(window))
        self.assertEqual(self.preferences().findtext("dblocation"), str(self.data))

    def test_a_bad_preferences_file_is_kept_and_told(self):
        self.station.app_folder.mkdir()
        file = self.station.preferences_file
        for number, content in enumerate((b"<folidex><dblocation>", b"", b"\xff\xfe\0junk")):
            with self.subTest(content=content):
                file.write_bytes(content)
                self.robot.start()
                text = self.read_box("Folidex").replace(" ", "")
                kept = file.with_name(file.name + (".bad" if number == 0 else
                                                   f".{number + 1}.bad"))
                self.assertIn(str(file).replace(" ", ""), text)
                self.assertIn(str(kept), text)
                self.cancel(self.clerk.location_window())
                self.assertEqual(kept.read_bytes(), content)
                self.assertEqual(len(self.preferences()), 0)


if __name__ == "__main__":
    station_case.main()
