# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""Clicks that the display takes in at one go.

Between the two clicks of a tool that waits for its turn on a busy machine so much time may pass that
they are no double click any more.
"""

import ctypes

from .widget import DriverError

_X11 = ctypes.CDLL("libX11.so.6")
_TEST = ctypes.CDLL("libXtst.so.6")
_X11.XOpenDisplay.restype = ctypes.c_void_p
_X11.XSync.argtypes = (ctypes.c_void_p, ctypes.c_int)
_X11.XCloseDisplay.argtypes = (ctypes.c_void_p,)
_TEST.XTestFakeMotionEvent.argtypes = (ctypes.c_void_p, *3 * (ctypes.c_int,), ctypes.c_ulong)
_TEST.XTestFakeButtonEvent.argtypes = (ctypes.c_void_p, ctypes.c_uint, ctypes.c_int, ctypes.c_ulong)
_SAME_SCREEN, _LEFT, _AT_ONCE = -1, 1, 0


def click(display, x, y, times=1):
    """Moves the pointer of a display (":1") there, and clicks that many times."""
    connection = _X11.XOpenDisplay(display.encode())
    if not connection:
        raise DriverError(f"the display {display} has gone")
    _TEST.XTestFakeMotionEvent(connection, _SAME_SCREEN, x, y, _AT_ONCE)
    for _ in range(times):
        for pressed in (True, False):
            _TEST.XTestFakeButtonEvent(connection, _LEFT, pressed, _AT_ONCE)
    # Only now they leave together.
    _X11.XSync(connection, False)
    _X11.XCloseDisplay(connection)
