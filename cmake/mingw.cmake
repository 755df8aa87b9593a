# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
#
# What both word sizes of the cross build share; included by mingw-w64.cmake and mingw-i686.cmake,
# which set folidex_triplet and CMAKE_SYSTEM_PROCESSOR.

set(CMAKE_SYSTEM_NAME Windows)
# Windows 10.
set(CMAKE_SYSTEM_VERSION 10)

# The compilers whose standard library has threads.
set(CMAKE_C_COMPILER ${folidex_triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${folidex_triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${folidex_triplet}-windres)

list(APPEND CMAKE_FIND_ROOT_PATH /usr/${folidex_triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)
