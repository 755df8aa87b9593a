# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
#
# Cross build for 32-bit Windows, for the scanning helper that loads 32-bit drivers.

set(folidex_triplet i686-w64-mingw32)
set(CMAKE_SYSTEM_PROCESSOR X86)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
