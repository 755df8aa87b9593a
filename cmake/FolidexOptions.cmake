# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
#
# What every target of the project is compiled with, and the two helpers that declare targets.

set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTOUIC ON)
set(CMAKE_AUTORCC ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
# Executables too are compiled with -fPIC, so that they share one precompiled header per kind.
set(CMAKE_CXX_COMPILE_OPTIONS_PIE -fPIC)

add_library(folidex_options INTERFACE)
target_compile_features(folidex_options INTERFACE cxx_std_20)
target_include_directories(folidex_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_definitions(folidex_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING
    QT_NO_FOREACH QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_STRICT_ITERATORS
    FOLIDEX_VERSION_MAJOR=${PROJECT_VERSION_MAJOR}
    FOLIDEX_VERSION_MINOR=${PROJECT_VERSION_MINOR}
    FOLIDEX_VERSION_REVISION=${PROJECT_VERSION_PATCH})
include(${CMAKE_CURRENT_LIST_DIR}/FolidexWarnings.cmake)
target_link_libraries(folidex_options INTERFACE folidex_warnings)
target_compile_options(folidex_options INTERFACE
    # A processor fault must be able to leave the faulting function as an error.
    $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fnon-call-exceptions>)
foreach(sanitizer IN LISTS FOLIDEX_SANITIZE)
    target_compile_options(folidex_options INTERFACE -fsanitize=${sanitizer} -fno-omit-frame-pointer)
    target_link_options(folidex_options INTERFACE -fsanitize=${sanitizer})
endforeach()

find_program(FOLIDEX_CCACHE ccache)
if(FOLIDEX_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
        ${FOLIDEX_CCACHE})
    target_compile_options(folidex_options INTERFACE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fpch-preprocess>)
endif()

# Two precompiled headers, one for code without windows and one for code with them.
function(folidex_precompile target kind)
    if(NOT TARGET folidex_pch_${kind})
        file(WRITE ${PROJECT_BINARY_DIR}/pch/pch_${kind}.cpp "")
        add_library(folidex_pch_${kind} OBJECT ${PROJECT_BINARY_DIR}/pch/pch_${kind}.cpp)
        set_target_properties(folidex_pch_${kind} PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
        target_link_libraries(folidex_pch_${kind} PRIVATE folidex_options Qt6::Core)
        if(kind STREQUAL "core")
            target_precompile_headers(folidex_pch_core PRIVATE <QtCore/QtCore>)
        else()
            target_link_libraries(folidex_pch_widgets PRIVATE Qt6::Gui Qt6::Widgets)
            target_precompile_headers(folidex_pch_widgets PRIVATE
                <QtCore/QtCore> <QtGui/QtGui> <QtWidgets/QtWidgets>)
        endif()
    endif()
    target_precompile_headers(${target} REUSE_FROM folidex_pch_${kind})
endfunction()

# folidex_library(<name> core|widgets SOURCES ... [LINK ...] [PRIVATE ...])
# One static library of the tree. LINK is what its headers need, PRIVATE only its sources.
function(folidex_library name kind)
    cmake_parse_arguments(arg "" "" "SOURCES;LINK;PRIVATE" ${ARGN})
    add_library(${name} STATIC ${arg_SOURCES})
    target_link_libraries(${name} PUBLIC folidex_options Qt6::Core ${arg_LINK} PRIVATE ${arg_PRIVATE})
    if(kind STREQUAL "widgets")
        target_link_libraries(${name} PUBLIC Qt6::Gui Qt6::Widgets)
    endif()
    folidex_precompile(${name} ${kind})
endfunction()
