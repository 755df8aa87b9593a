# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
#
# The one place of the version: of the program, its helpers, the archive and the installer.

set(FOLIDEX_VERSION 1.0.0)
