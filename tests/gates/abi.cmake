# SPDX-License-Identifier: MIT
# The library keeps the binary interface of the last release, whose dump lies beside this file. It takes debug
# information to see it.
find_program(VLT_ABIDIFF abidiff)
if(VLT_ABIDIFF AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_BUILD_TYPE STREQUAL "Debug" AND NOT WIN32)
    add_test(NAME binary_interface COMMAND ${VLT_ABIDIFF} --exported-interfaces-only --no-added-syms
        ${CMAKE_CURRENT_LIST_DIR}/libvlt.so.1.abi $<TARGET_FILE:vlt>)
    set_tests_properties(binary_interface PROPERTIES LABELS gate TIMEOUT 120)
endif()
