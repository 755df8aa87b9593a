# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0

# folidex_test(<name> unit|forms SOURCES ... LINK ... [LABELS ...] [TIMEOUT seconds])
# One test program, run by ctest as <name>. Unit tests see no display; form tests run on Qt's
# offscreen platform at a fixed locale.
function(folidex_test name kind)
    cmake_parse_arguments(arg "" "TIMEOUT" "SOURCES;LINK;LABELS" ${ARGN})
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 120)
    endif()
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE folidex_options Qt6::Test ${arg_LINK})
    if(kind STREQUAL "unit")
        folidex_precompile(${name} core)
    else()
        target_link_libraries(${name} PRIVATE Qt6::Widgets)
        folidex_precompile(${name} widgets)
    endif()
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES
        TIMEOUT ${arg_TIMEOUT}
        LABELS "${kind};${arg_LABELS}"
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;LANG=C.UTF-8;QT_LOGGING_RULES=*.debug=false;ASAN_OPTIONS=detect_leaks=0")
endfunction()
