# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""What every workstation for the program stands on: a display, a window manager, tools, logs."""

import ctypes
import os
import pathlib
import re
import shutil
import signal
import subprocess
import tempfile
import time

from .widget import DriverError

_LIBC = ctypes.CDLL(None)
_PR_SET_PDEATHSIG = 1
# Seconds between two looks at what is waited for.
_PAUSE = 0.02
# Seconds; how long the busiest machine may take for anything that must happen. Nobody waits for it
# as long as all is well.
PATIENCE = 240


def _end_with_parent():
    """In the child: a driver that is killed takes its display and its program along."""
    _LIBC.prctl(_PR_SET_PDEATHSIG, signal.SIGKILL)


def wait_until(condition, what, timeout=PATIENCE):
    """Returns the first true result of condition(); DriverError naming what when time runs out."""
    end = time.monotonic() + timeout
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > end:
            raise DriverError(f"waited {timeout:.0f} seconds in vain for {what}")
        time.sleep(_PAUSE)


class Stack:
    """Starts its processes when entered, ends every one of them when left. A kind of station gives
    _make_folders(), _environment() and _connect() to the widgets (sets bus).

    home is the station's folder; it goes with the station when the station made it. A screen is
    wide enough for the program at the given scale.
    """

    def __init__(self, home, scale, name):
        self.scale = scale
        self._own_home = home is None
        self.home = pathlib.Path(home or tempfile.mkdtemp(prefix=name)).resolve()
        self._started = []
        self.bus = None
        self.environment = {}

    def __enter__(self):
        try:
            self._make_folders()
            self.environment = self._environment()
            self._start_display()
            self._connect()
            self._start_window_manager()
        except BaseException:
            self._end_processes()
            raise
        return self

    def __exit__(self, failure, _value, _trace):
        if self.bus:
            self.bus.close()
        self._end_processes()
        if self._own_home and failure is None:
            shutil.rmtree(self.home, ignore_errors=True)

    @property
    def log_folder(self):
        return self.home / "log"

    # -- the stack

    def _log(self, name):
        return open(self.log_folder / f"{name}.log", "ab")

    def _start(self, name, command, **options):
        with self._log(name) as log:
            options = {"stdout": log, "env": self.environment} | options
            process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stderr=log,
                                       start_new_session=True, preexec_fn=_end_with_parent,
                                       **options)
        self._started.append((name, process))
        return process

    def _start_display(self):
        size = "2800x1900x24" if self.scale != 1 else "1400x950x24"
        reader, writer = os.pipe()
        # -r: on a busy machine a key is held long enough to repeat itself.
        with os.fdopen(reader) as number:
            self._start("xvfb", ["Xvfb", "-displayfd", str(writer), "-screen", "0", size, "-dpi",
                                 "96", "-nolisten", "tcp", "-noreset", "-r"], pass_fds=[writer])
            os.close(writer)
            # The end of the stream comes too when the server could not start.
            display = number.readline().strip()
        if not display:
            raise DriverError(f"Xvfb did not start: {self._read_log('xvfb')}")
        self.environment["DISPLAY"] = f":{display}"

    def _start_window_manager(self):
        self._start("openbox", ["openbox", "--sm-disable"])
        wait_until(lambda: "window id" in self.output(
            "xprop", "-root", "_NET_SUPPORTING_WM_CHECK"), "the window manager")
        # It gives its name before it looks after windows, and one that comes in between may
        # never be shown. It is ready when it has taken a window and let it go again.
        for patience in (1, 4, 16, PATIENCE):
            if self._manages_a_window(patience):
                break
        else:
            raise DriverError("the window manager takes no window")
        wait_until(lambda: not self._managed_windows(), "the window manager to let a window go")

    def _managed_windows(self):
        return re.findall(r"0x[0-9a-f]+", self.output("xprop", "-root", "_NET_CLIENT_LIST"))

    def _manages_a_window(self, patience):
        probe = subprocess.Popen(["xev", "-event", "property"], env=self.environment,
                                 stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                 stderr=subprocess.DEVNULL, preexec_fn=_end_with_parent)
        try:
            wait_until(self._managed_windows, "a window to be taken", patience)
            return True
        except DriverError:
            return False
        finally:
            probe.kill()
            probe.wait()

    def _read_log(self, name):
        return (self.log_folder / f"{name}.log").read_text(errors="replace").strip()

    def output(self, *command):
        """What a tool of the stack prints; empty when it fails."""
        done = subprocess.run(command, env=self.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                              check=False)
        return done.stdout if done.returncode == 0 else ""

    def run(self, *command):
        """Runs a tool of the stack; DriverError with its words when it fails."""
        done = subprocess.run(command, env=self.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              check=False)
        if done.returncode != 0:
            raise DriverError(f"{' '.join(command)} failed: {done.stdout.strip()}")
        return done.stdout

    def active_window(self):
        """The number of the window that is active and gets what is typed. Programs that set the
        focus themselves, as wine's do, do so when the window manager has long called it active."""
        active, focus = (self.output("xdotool", *question).strip() for question in (
            ("getactivewindow",), ("getwindowfocus", "-f")))
        return active if active == focus else None

    def active_title(self):
        """The title of that window."""
        number = self.active_window()
        return self.output("xdotool", "getwindowname", number).strip() if number else None

    def _end_processes(self):
        for _name, process in reversed(self._started):
            for number in (signal.SIGTERM, signal.SIGKILL):
                if process.poll() is not None:
                    break
                try:
                    os.killpg(process.pid, number)
                    process.wait(timeout=10)
                except (ProcessLookupError, subprocess.TimeoutExpired):
                    continue
            # What a process of the stack started itself (the accessibility bus) shares its group.
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
        self._started.clear()

    def start_tool(self, name, command):
        """Starts a program on the display; it ends with the station."""
        return self._start(name, command)

    def program_log(self):
        """What the program wrote so far; nothing before its first start."""
        return self._read_log("program") if (self.log_folder / "program.log").exists() else ""

    def wait_for_end(self, process):
        """The program's exit code."""
        try:
            return process.wait(timeout=PATIENCE)
        except subprocess.TimeoutExpired:
            raise DriverError(f"the program did not end within {PATIENCE} seconds") from None
