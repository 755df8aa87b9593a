# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
#
# What Windows reads from a program's file.

include(${CMAKE_CURRENT_LIST_DIR}/FolidexVersion.cmake)
set(folidex_windows_packaging ${CMAKE_CURRENT_LIST_DIR}/../packaging/windows)

# folidex_windows_resources(<target> DESCRIPTION <text> [ICON <file>] [MANIFEST <name>])
# Gives a program its version, its manifest (packaging/windows/<name>.manifest.in) and, when named,
# its icon.
function(folidex_windows_resources target)
    cmake_parse_arguments(arg "" "DESCRIPTION;ICON;MANIFEST" "" ${ARGN})
    if(NOT arg_DESCRIPTION OR arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "folidex_windows_resources(${target}): DESCRIPTION and ICON are wanted")
    endif()
    if(NOT arg_MANIFEST)
        set(arg_MANIFEST program)
    endif()
    string(REPLACE "." "," version_numbers ${FOLIDEX_VERSION},0)
    set(version ${FOLIDEX_VERSION})
    set(program ${target})
    set(description ${arg_DESCRIPTION})
    set(icon_line)
    if(arg_ICON)
        set(icon_line "1 ICON \"${arg_ICON}\"")
    endif()
    set(manifest ${CMAKE_CURRENT_BINARY_DIR}/${target}.manifest)
    set(resources ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
    configure_file(${folidex_windows_packaging}/${arg_MANIFEST}.manifest.in ${manifest} @ONLY)
    configure_file(${folidex_windows_packaging}/program.rc.in ${resources} @ONLY)
    set_source_files_properties(${resources} PROPERTIES OBJECT_DEPENDS "${manifest};${arg_ICON}")
    # A library of its own: the resource compiler knows none of the compiler's options.
    add_library(${target}_resources OBJECT ${resources})
    set_target_properties(${target}_resources PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
    target_sources(${target} PRIVATE $<TARGET_OBJECTS:${target}_resources>)
endfunction()
