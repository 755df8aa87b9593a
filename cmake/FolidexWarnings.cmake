# SPDX-FileCopyrightText: The Folidex authors
# SPDX-License-Identifier: Apache-2.0
#
# folidex_warnings: what the compiler is asked to say of our sources, with Qt and without.
include_guard(GLOBAL)

add_library(folidex_warnings INTERFACE)
target_compile_options(folidex_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wold-style-cast -Wnon-virtual-dtor
    -Woverloaded-virtual $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wsuggest-override>)
if(FOLIDEX_WARNINGS_AS_ERRORS)
    target_compile_options(folidex_warnings INTERFACE -Werror)
endif()
