# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""Drives the real program from outside: a display of its own, the accessibility bus, key and mouse.

station.py makes the display stack and starts the program, tree.py finds widgets on the
accessibility bus, robot.py types and presses, camera.py photographs. Everything waits on
conditions, and for so long that no machine is too slow; a wait that ends without its condition
fails with a picture of the screen and the widget tree.
"""

from .robot import Robot
from .station import Station
from .widget import DriverError

__all__ = ["DriverError", "Robot", "Station"]
