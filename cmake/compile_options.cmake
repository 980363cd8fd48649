# SPDX-License-Identifier: MIT
# What every target is compiled with.

if(VLT_SANITIZE)
    add_compile_options(-fsanitize=${VLT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${VLT_SANITIZE})
endif()

# Host files may be longer than a 32-bit offset tells.
if(NOT WIN32)
    add_compile_definitions(_FILE_OFFSET_BITS=64)
endif()

# The warnings that our own code is free of; code that we only build along is not asked.
function(vlt_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
    if(VLT_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()

# Windows looks for a DLL beside the program that needs it.
function(vlt_beside_library target)
    if(WIN32)
        set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
    endif()
endfunction()
