# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""What is done to documents on file and to the tags, as whoever keeps them does it."""

from .clerk import USE_EXISTING, Clerk
from .robot import BUTTON, COMBO, DATE, RADIO, TABLE, TEXT
from .widget import DriverError


class Archivist(Clerk):
    """A clerk who also edits, opens, locates and deletes documents and maintains the tags."""

    # -- the documents of the browser

    def document_cell(self, main, description):
        """The cell that shows a document's description."""
        listed = [each[1] for each in self.results(main)]
        if listed.count(description) != 1:
            raise DriverError(f"\"{description}\" is not listed once: {listed}")
        table = self.robot.find(TABLE, "Documents", main)
        return table.table_cell(listed.index(description), 1)

    def select_document(self, main, description):
        robot, cell = self.robot, self.document_cell(main, description)
        robot.press(cell)
        robot.wait(lambda: "selected" in cell.states, f"\"{description}\" to be selected")

    def double_click(self, main, description):
        self.robot.press(self.document_cell(main, description), 2)

    def command(self, main, name):
        """Presses a command of the toolbar."""
        self.press(main, name)

    def menu_of(self, window, button):
        """Opens the pop-up menu of a button; the menu."""
        return self.robot.open_menu(self.robot.find(BUTTON, button, window))

    def close_menu(self, menu):
        self.robot.keys("Escape")
        self.robot.wait_gone(menu)

    def item_texts(self, menu):
        return [item.name for item in self.robot.items(menu) if item.name]

    def choose(self, menu, caption):
        items = [item for item in self.robot.items(menu) if item.name == caption]
        if len(items) != 1:
            raise DriverError(f"the menu has not one \"{caption}\": {self.item_texts(menu)}")
        self.robot.choose(menu, items[0])

    def maintenance(self, main, caption):
        """Chooses an item of the Maintenance menu, which is photographed with its window."""
        menu = self.menu_of(main, "Maintenance")
        self._picture("maintenance-menu", main, (menu,))
        self.choose(menu, caption)

    def delete_document(self, main, answer="Yes"):
        """Deletes the selected document; the question that was asked."""
        self.command(main, "Delete")
        return self.read_message("IMPORTANT !", answer, "message-delete-document")

    def read_message(self, title, button="OK", picture=None):
        """Waits for a message box, photographs and answers it; its text on one line."""
        box, text = self.robot.message(title)
        if picture:
            self._picture(picture, box)
        self.robot.answer(box, button)
        return " ".join(text.split())

    # -- the capture form

    def save_and_new(self, window):
        """Saves, and waits until the form is ready for the next document."""
        robot = self.robot
        self.press(window, "Save & New")
        entry, view = robot.find(TEXT, "Description", window), robot.find(BUTTON, "View", window)
        robot.wait(lambda: entry.text == "" and "enabled" not in view.states,
                   "the form to be empty again")

    def edit_document(self, main, description):
        """Opens the selected document in the capture form; the form, once it has loaded."""
        self.command(main, "Edit")
        return self.editing_window(description)

    def editing_window(self, description):
        robot = self.robot
        window = robot.window_with(BUTTON, "Save")
        entry = robot.find(TEXT, "Description", window)
        robot.wait(lambda: entry.text == description, f"\"{description}\" to be loaded")
        return window

    def assigned_tags(self, window):
        return [row[1] for row in self._grid(window, "Assigned tags")]

    def document_date(self, window):
        return self.robot.find(DATE, "Date", window).text

    def change_date(self, window, date):
        self.robot.set_date(self.robot.find(DATE, "Date", window), date)

    def assign_tag(self, window, tag):
        self.robot.enter_tag(self.robot.find(COMBO, None, window), tag)
        self.robot.wait(lambda: tag in self.assigned_tags(window), f"\"{tag}\" to be assigned")

    def take_tag_off(self, window, tag):
        """Clicks the mark in front of an assigned tag."""
        row = self.assigned_tags(window).index(tag)
        self.robot.press(self.robot.find(TABLE, "Assigned tags", window).table_cell(row, 0))
        self.robot.wait(lambda: tag not in self.assigned_tags(window), f"\"{tag}\" to be gone")

    def view(self, window, which):
        """Presses "View" while there are two scans, and chooses which one to open."""
        menu = self.menu_of(window, "View")
        self._picture("view-menu", window, (menu,))
        self.choose(menu, which)

    # -- the tags

    def tag_window(self):
        return self.robot.window_with(TABLE, "Tags")

    def open_tags(self, main):
        self.maintenance(main, "Tag Maintenance")
        return self.tag_window()

    def catalogue(self, window):
        return [row[0] for row in self._grid(window, "Tags")]

    def select_tag(self, window, tag):
        row = self.catalogue(window).index(tag)
        cell = self.robot.find(TABLE, "Tags", window).table_cell(row, 0)
        self.robot.press(cell)
        self.robot.wait(lambda: "selected" in cell.states, f"\"{tag}\" to be selected")

    def rename_tag(self, window, tag, name):
        robot = self.robot
        self.select_tag(window, tag)
        self.press(window, "Edit")
        entry = robot.find(TEXT, "Tag", window)
        robot.wait(lambda: entry.text == tag, f"\"{tag}\" to be loaded")
        self._picture("tags-editing", window)
        robot.type_text(entry, name)
        self.press(window, "Save")
        robot.wait(lambda: name in self.catalogue(window), f"\"{name}\" in the catalogue")

    def try_to_delete_tag(self, window, tag):
        """Deletes a tag in use; the question and the refusal."""
        self.select_tag(window, tag)
        self.press(window, "Delete")
        question = self.read_message("Confirm", "Yes", "message-delete-tag")
        return question, self.read_message("Error", "OK", "message-tag-in-use")

    def delete_tag(self, window, tag):
        """Deletes a tag that no document carries."""
        self.select_tag(window, tag)
        self.press(window, "Delete")
        self.read_message("Confirm", "Yes")
        self.robot.wait(lambda: tag not in self.catalogue(window), f"\"{tag}\" to be gone")

    def close_tags(self, window):
        self.press(window, "Close")
        self.robot.wait_gone(window)

    # -- help and data location

    def help(self, main, caption):
        menu = self.menu_of(main, "Help")
        self._picture("help-menu", main, (menu,))
        self.choose(menu, caption)

    def about(self, main):
        """Opens and closes the about box; its texts."""
        self.help(main, "About Folidex")
        box = self.robot.wait(lambda: self.robot.box("About Folidex"), "the about box")
        self._picture("about", box)
        texts = self.label_texts(box)
        self.robot.answer(box, "OK")
        return texts

    def data_location(self, main):
        """Closes the main window for the data location form; the form."""
        self.maintenance(main, "Data Location")
        window = self.robot.window_with(RADIO, USE_EXISTING)
        self._picture("location-existing", window)
        return window
