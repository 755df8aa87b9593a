# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""The tour: from the first start to the last menu, with a picture of each window and menu."""

import datetime
import shutil

from .robot import Robot
from .widget import DriverError

DESCRIPTION = "O'Brien's lease, signed"
CONTRACTS, LANDLORD, LEASES, RENAMED = "Contracts", "Landlord", "Leases", "Leases and rents"
# Filed after it: description, days from its date, tags.
OTHERS = (("Insurance of the delivery van", -33, (CONTRACTS, "Vehicles")),
          ("Caretaker's hours, summer", 11, (LANDLORD,)))
PAGES = 10


def other_month(today):
    """A day in the middle of the month before last."""
    first = today.replace(day=1)
    return (first - datetime.timedelta(days=40)).replace(day=14)


def expect(holds, what):
    if not holds:
        raise DriverError(f"not as expected: {what}")


class Tour:
    """Played at a station with its desktop and a scanner that delivers PAGES pages, by a kind of
    clerk."""

    def __init__(self, station, kind_of_clerk, desktop, shared, out):
        self.station, self.out = station, out
        self.pictures = {}
        self.robot = Robot(station, out)
        self.desktop = desktop
        self.clerk = kind_of_clerk(self.robot, self.picture)
        self.data = shared / "Documents"
        self.day = other_month(datetime.date.today())
        self.listed = {}
        self.pdf = None

    def picture(self, name, window, also=()):
        """One of each; the progress window does not come to rest while it works."""
        if name in self.pictures:
            return
        if name != "progress":
            self.robot.park_pointer() if not also else self.robot.settle()
        path = self.robot.photograph(f"{len(self.pictures) + 1:02}-{name}", window, also)
        self.pictures[name] = path
        print(f"  {path.name}", flush=True)

    def play(self):
        self.data.parent.mkdir()
        self.robot.start()
        with self.robot.evidence():
            main = self.file_and_find()
            self.edit(main)
            self.open_and_locate(main)
            self.maintain_tags(main)
            self.ask_for_help(main)
            self.be_refused(main)
            left = self.collect()
            self.delete(main)
            self.start_again()
        return left + [shutil.copy(path, self.out) for path in (
            self.data / "db.mdb", self.station.preferences_file)]

    def file_and_find(self):
        """From the first start to a document found; the main window."""
        clerk = self.clerk
        main = clerk.create_data_folder(self.station.as_told(self.data.parent),
                                        self.data.name)
        self.picture("main-empty", main)
        capture = clerk.new_scan(main)
        self.first_scan(capture)
        clerk.describe(capture, DESCRIPTION, self.as_picker_writes(self.day), (CONTRACTS, LANDLORD))
        self.picture("capture-filled", capture)
        clerk.save_and_new(capture)
        self.listed[DESCRIPTION] = self.day
        (self.pdf,) = self.pdfs()
        for number, (description, days, tags) in enumerate(OTHERS, 1):
            self.listed[description] = self.day + datetime.timedelta(days=days)
            clerk.scan(capture)
            clerk.describe(capture, description, self.as_picker_writes(self.listed[description]), tags)
            clerk.save(capture) if number == len(OTHERS) else clerk.save_and_new(capture)
        expect(len(self.pdfs()) == len(self.listed), f"a PDF of each document: {self.pdfs()}")
        clerk.all_dates(main, True)
        for tag in (CONTRACTS, LANDLORD):
            clerk.choose_tag(main, tag)
        self.wait_listed(main)
        clerk.select_document(main, DESCRIPTION)
        self.picture("main-found", main)
        return main

    def first_scan(self, capture):
        self.clerk.scan(capture)

    def as_picker_writes(self, day):
        return self.station.as_picker_writes(day)

    def wait_listed(self, main):
        """Waits for the documents on file, in the order of their dates."""
        wanted = [(self.as_picker_writes(day), description) for day, description
                  in sorted((day, description) for description, day in self.listed.items())]
        self.clerk.wait_results(main, lambda listed: listed == wanted, f"the results {wanted}")

    def edit(self, main):
        """Another date, a tag less, a tag more, and the paper scanned again."""
        clerk = self.clerk
        capture = clerk.edit_document(main, DESCRIPTION)
        self.picture("capture-editing", capture)
        self.listed[DESCRIPTION] = self.day + datetime.timedelta(days=1)
        clerk.change_date(capture, self.as_picker_writes(self.listed[DESCRIPTION]))
        clerk.take_tag_off(capture, LANDLORD)
        clerk.assign_tag(capture, LEASES)
        clerk.scan(capture)
        self.picture("capture-scanned-again", capture)
        clerk.view(capture, "My new scan")
        self.desktop.wait_opened(self.station.temporary_scan)
        clerk.view(capture, "The scan on file.")
        self.desktop.wait_opened(self.pdf)
        clerk.save(capture)
        self.wait_listed(main)
        expect(len(self.pdfs()) == len(self.listed) and self.pdf in self.pdfs(),
               f"the PDF stays at {self.pdf}")

    def open_and_locate(self, main):
        """Double click, then the toolbar; at last a PDF that is not there."""
        clerk = self.clerk
        clerk.maintenance(main, "-> Open PDF")
        clerk.double_click(main, DESCRIPTION)
        self.desktop.wait_opened(self.pdf, 2)
        clerk.command(main, "Open File")
        self.desktop.wait_opened(self.pdf, 3)
        clerk.command(main, "Locate File")
        self.desktop.wait_located(self.pdf)
        aside = self.pdf.with_suffix(".aside")
        self.pdf.rename(aside)
        clerk.command(main, "Locate File")
        clerk.read_message("Error", picture="message-no-file")
        aside.rename(self.pdf)

    def maintain_tags(self, main):
        clerk = self.clerk
        window = clerk.open_tags(main)
        self.picture("tags", window)
        clerk.rename_tag(window, LEASES, RENAMED)
        _question, refusal = clerk.try_to_delete_tag(window, RENAMED)
        expect(refusal == "There are documents linked to this tag. Cannot delete.", refusal)
        expect(RENAMED in clerk.catalogue(window), f"\"{RENAMED}\" is still there")
        clerk.close_tags(window)

    def ask_for_help(self, main):
        clerk = self.clerk
        clerk.help(main, "Online Help")
        pages = self.station.program_folder / "site"
        self.desktop.wait_opened(pages / "help/index.html")
        clerk.about(main)

    def be_refused(self, main):
        """What the capture form says to a document without a description."""
        clerk = self.clerk
        capture = clerk.new_scan(main)
        menu = clerk.menu_of(capture, "Retain tags menu")
        self.picture("retain-menu", capture, (menu,))
        clerk.close_menu(menu)
        clerk.press(capture, "Save")
        clerk.read_message("Error", picture="message-no-description")
        clerk.cancel_capture(capture)

    def delete(self, main):
        """The document goes, its PDF stays."""
        clerk = self.clerk
        clerk.select_document(main, DESCRIPTION)
        clerk.delete_document(main)
        del self.listed[DESCRIPTION]
        self.wait_listed(main)
        expect(self.pdf in self.pdfs(), f"the PDF stays at {self.pdf}")
        self.end(clerk.close_main(main))

    def start_again(self):
        clerk = self.clerk
        self.robot.start()
        main = clerk.main_window()
        self.robot.wait(lambda: clerk.chosen_tags(main) == [CONTRACTS, LANDLORD],
                        "the filter of before")
        self.wait_listed(main)
        self.picture("main-restored", main)
        location = clerk.data_location(main)
        clerk.press(location, "Cancel")
        self.end(self.robot.wait_for_end())

    def end(self, code):
        expect(code == 0, f"the program ends with code 0, not {code}: "
                          f"{self.station.program_log()}")

    def pdfs(self):
        return sorted((self.data / "scanned_files").glob("*/*.pdf"))

    def collect(self):
        """Looks into the PDF and takes it along."""
        expect(self.pdf.parent.name == self.day.strftime("%m%y"), f"the month of {self.pdf}")
        info = self.station.run("pdfinfo", str(self.pdf))
        expect(any(line.split() == ["Pages:", str(PAGES)] for line in info.splitlines()),
               f"{PAGES} pages in the PDF: {info}")
        return [shutil.copy(self.pdf, self.out)]
