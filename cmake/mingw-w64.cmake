# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
#
# Cross build for 64-bit Windows with Debian's compilers. FOLIDEX_WINDOWS_KIT is the folder that
# holds Qt and SQLite for Windows, qt/ and sqlite/; tools/windows-kit makes it in build/.

set(folidex_triplet x86_64-w64-mingw32)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

if(NOT FOLIDEX_WINDOWS_KIT)
    set(FOLIDEX_WINDOWS_KIT ${CMAKE_CURRENT_LIST_DIR}/../build/windows-kit)
endif()
# CMake's own trial builds read this file too.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES FOLIDEX_WINDOWS_KIT)
set(CMAKE_FIND_ROOT_PATH ${FOLIDEX_WINDOWS_KIT}/qt ${FOLIDEX_WINDOWS_KIT}/sqlite)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)

# moc, rcc and uic are those of the machine that builds.
set(QT_HOST_PATH /usr CACHE PATH "Where the Qt of the machine that builds is installed")
file(GLOB folidex_host_qt /usr/lib/*/cmake/Qt6CoreTools)
foreach(folder IN LISTS folidex_host_qt)
    cmake_path(GET folder PARENT_PATH folder)
    set(QT_HOST_PATH_CMAKE_DIR ${folder} CACHE PATH "Where its CMake files are")
endforeach()
