# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
"""A stack with the program on it, on whatever system."""

import pathlib

from .stack import Stack


class Workplace(Stack):
    """A kind of workplace gives program (its file), all_users_folder, as_told(), as_picker_writes()
    and _program_command()."""

    @property
    def program_folder(self):
        return pathlib.Path(self.program).parent

    @property
    def app_folder(self):
        return self.all_users_folder / "Brightmoor"

    @property
    def preferences_file(self):
        return self.app_folder / "folidex_Preferences.xml"

    @property
    def temporary_scan(self):
        return self.app_folder / "current_scan.pdf"

    def start_program(self, environment=None):
        """Starts the program; its output goes to the log."""
        return self._start("program", self._program_command(),
                           env=self.environment | (environment or {}))
