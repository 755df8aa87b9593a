# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""A scanning helper under wine, spoken to in its frames, and the pages that virtual scanners make.

FOLIDEX_TWAIN_BUILDS names the folders in which helpers and virtual scanners were built, with colons
between (build/windows and build/windows32, where ./build-windows --tests makes those of both word
sizes).
"""

import contextlib
import os
import pathlib
import queue
import shutil
import struct
import subprocess
import sys
import threading
import time

TREE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TREE / "tests/support"))
sys.dont_write_bytecode = True

from driver.stack import PATIENCE, wait_until  # noqa: E402
from driver.wine_station import WineStack  # noqa: E402
from wine_case import bare_machine  # noqa: E402

FEEDER, AUTO_FEED, PROGRESS, DUPLEX, UNTIL_EMPTY = 1, 2, 4, 8, 16
ALL_WISHES = 31
GOOD, CANCELLED, FAILED, NOT_OPENED, NO_MANAGER, CRASHED = range(6)
(NO_STEP, LOAD_MANAGER, OPEN_MANAGER, FIND_SOURCE, OPEN_SOURCE, ENABLE, PAGE_INFO, TRANSFER,
 BAD_PAGE, END_PAGE, FOREIGN_PAGE) = range(11)
BILEVEL, GRAY, RGB, JPEG = range(4)


class Ending:
    def __init__(self, payload):
        (self.outcome, self.step, self.return_code, self.condition, _, self.pages,
         self.detail) = struct.unpack("<BBHHHII", payload)

    def __repr__(self):
        return f"Ending({vars(self)})"


class Page:
    def __init__(self, payload):
        (self.kind, _, self.width, self.height, self.x_resolution,
         self.y_resolution) = struct.unpack("<HHiidd", payload)
        self.data = bytearray()
        self.pieces = []
        self.rows = None

    def row_bytes(self):
        return {BILEVEL: (self.width + 7) // 8, GRAY: self.width, RGB: self.width * 3}[self.kind]


class Workstation(WineStack):
    """A bare machine with a display, on which helpers run."""

    def __init__(self):
        super().__init__(None, name="folidex-twain-")

    def _make_folders(self):
        self._origin = bare_machine()
        super()._make_folders()

    @staticmethod
    def command(program, *arguments):
        """With the loader of the program's word size, so that the process is the program itself."""
        loader = "wine64" if "64" in program.name else "wine"
        return [f"/usr/lib/wine/{loader}", str(program), *map(str, arguments)]


def builds():
    """The word sizes that were built: {64: folder, 32: folder}."""
    found = {}
    usual = f"{TREE}/build/windows/capture:{TREE}/build/windows32"
    for folder in os.environ.get("FOLIDEX_TWAIN_BUILDS", usual).split(":"):
        for bits in (64, 32):
            for program in pathlib.Path(folder).rglob(f"folidex-twain{bits}.exe"):
                # Not the copies that lie with the program.
                if (program.parent / "CMakeFiles").is_dir():
                    found[bits] = program
    return found


def virtual(program, name):
    """A virtual scanner's file of the program's own build."""
    folder = program.parent
    while not (files := sorted(folder.rglob(name))):
        if folder.parent == folder:
            raise FileNotFoundError(name)
        folder = folder.parent
    return files[0]


class Helper:
    """One helper process. Ends with it, whatever happened."""

    def __init__(self, workstation, program, *arguments, folder=None, environment=None):
        self.process = subprocess.Popen(
            workstation.command(program, *arguments), stdin=subprocess.PIPE,
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, cwd=folder,
            env=workstation.environment | (environment or {}))
        self.frames = queue.Queue()
        self.pages = []
        self.open_page = None
        self.dropped = 0
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        with contextlib.suppress(OSError):
            self.process.stdin.close()
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait(PATIENCE)
        self.reader.join(PATIENCE)
        self.process.stdout.close()

    def _read(self):
        stream = self.process.stdout
        while len(head := stream.read(8)) == 8:
            kind, length = struct.unpack("<c3xI", head)
            payload = stream.read(length)
            if len(payload) < length:
                break
            self.frames.put((kind.decode("ascii", "replace"), payload))
        self.frames.put((None, head))

    def say(self, command):
        self.process.stdin.write(command.encode())
        self.process.stdin.flush()

    def frame(self):
        """The next frame that is no sign of life; its pages are gathered on the way."""
        end = time.monotonic() + PATIENCE
        while (frame := self._next())[0] == "H":
            if time.monotonic() > end:
                raise AssertionError(f"nothing but signs of life for {PATIENCE} seconds")
        kind, payload = frame
        if kind == "B":
            self.open_page = Page(payload)
        elif kind == "R":
            self.open_page.data += payload
            self.open_page.pieces.append(len(payload))
        elif kind == "E":
            (self.open_page.rows,) = struct.unpack("<I", payload)
            self.pages.append(self.open_page)
            self.open_page = None
        elif kind == "X":
            self.open_page = None
            self.dropped += 1
        return kind, payload

    def _next(self):
        return self.frames.get(timeout=PATIENCE)

    def sign_of_life(self):
        """Waits for one more; nothing else may come meanwhile."""
        kind, payload = self._next()
        assert kind == "H", f"{kind} {payload!r} and no sign of life"

    def until(self, *kinds):
        """Skips to a frame of one of these kinds; the end of everything is one of kind None."""
        while True:
            kind, payload = self.frame()
            if kind in kinds:
                return kind, payload
            if kind is None:
                raise AssertionError(f"the helper ended ({payload!r}) before a frame of {kinds}")

    def done(self):
        """What it says last."""
        return Ending(self.until("D")[1])

    def ended(self):
        """The exit code, after the pipe was closed with nothing more in it."""
        kind, rest = self.frame()
        assert kind is None and rest == b"", f"a frame after the last one: {kind} {rest!r}"
        return self.process.wait(PATIENCE)


class Desk:
    """A folder with a helper, the virtual scanners beside it, and their script; drivers names the
    folder in which they lie when it is another one."""

    def __init__(self, workstation, folder, program, library="TWAINDSM.dll", drivers=None):
        self.workstation = workstation
        self.program = pathlib.Path(folder) / program.name
        self.folder = drivers or self.program.parent
        shutil.copy(program, self.program)
        if library:
            name = library if library.endswith(".ds") else "TWAINDSM.dll"
            # What lies there may be shared with other machines.
            (self.folder / name).unlink(missing_ok=True)
            shutil.copy(virtual(program, library), self.folder / name)

    def script(self, manager=None, **sources):
        """Sources by name; each its keys. Blanks stand where a name has an underscore."""
        names = [name.replace("_", " ") for name in sources]
        sections = {"manager": {"sources": "|".join(names), "log": 1, **(manager or {})}}
        sections.update(zip(names, sources.values()))
        self.write(sections)

    def write(self, sections, encoding="cp1252"):
        with contextlib.suppress(FileNotFoundError):
            (self.folder / "scanners.log").unlink()
        text = "".join(f"[{name}]\r\n" + "".join(f"{key}={value}\r\n" for key, value in keys.items())
                       for name, keys in sections.items())
        (self.folder / "scanners.ini").write_bytes(text.encode(encoding))

    def log(self):
        path = self.folder / "scanners.log"
        return path.read_text("cp1252").splitlines() if path.exists() else []

    def wait_for_log(self, line):
        wait_until(lambda: line in self.log(), f"\"{line}\" in the log")

    def run(self, *arguments, **options):
        return Helper(self.workstation, self.program, *arguments, **options)

    def list(self, **options):
        return self.run("list", **options)

    def scan(self, *options, name="Virtual", index=0, wishes=ALL_WISHES, owner=0):
        return self.run("scan", "--index", index, "--name", name, "--owner", owner, "--wishes",
                        wishes, *options)

    @contextlib.contextmanager
    def scanning(self, *arguments, **options):
        """A helper whose source was opened and told to scan."""
        with self.scan(*arguments, **options) as helper:
            helper.until("O")
            helper.say("a")
            yield helper


def level(x, y, page, colour=0):
    return (7 * x + 13 * y + 101 * page + 37 * colour) & 0xFF


def row(kind, width, y, page):
    """A row of a virtual page as the program wants it; `kind` as in a script."""
    if kind in ("bw", "vanilla"):
        bits = "".join("1" if level(x, y, page) & 0x40 else "0" for x in range(width))
        bits += "0" * (-width % 8)
        return int(bits, 2).to_bytes(len(bits) // 8, "big")
    if kind in ("gray", "gray16"):
        return bytes(level(x, y, page) for x in range(width))
    if kind == "gray4":
        return bytes((level(x, y, page) >> 4) * 17 for x in range(width))
    if kind in ("palette", "palette4"):
        small = kind == "palette4"
        values = [(level(x, y, page) >> 4) * 17 if small else level(x, y, page)
                  for x in range(width)]
        return b"".join(bytes((v, 255 - v, v ^ 0x55)) for v in values)
    return bytes(level(x, y, page, c) for x in range(width) for c in range(3))


def picture(kind, width, height, page):
    # Rows repeat after 256.
    rows = [row(kind, width, y, page) for y in range(min(height, 256))]
    return b"".join(rows[y % 256] for y in range(height))
