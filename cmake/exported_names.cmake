# SPDX-License-Identifier: MIT
# The public headers are the one list of exported names: every function declared `VLT_API type VLT_CALL name(` is
# exported under that name, and nothing else is.

# Stores the sorted names of the functions that the given headers declare.
function(vlt_read_exported_names result)
    set(names "")
    foreach(header IN LISTS ARGN)
        file(READ ${header} text)
        string(REGEX MATCHALL "VLT_API[^;({]*VLT_CALL[ \n]+[A-Za-z0-9_]+\\(" declarations "${text}")
        foreach(declaration IN LISTS declarations)
            string(REGEX REPLACE ".*[ \n]([A-Za-z0-9_]+)\\($" "\\1" name "${declaration}")
            list(APPEND names ${name})
        endforeach()
    endforeach()
    list(SORT names)
    set(${result} ${names} PARENT_SCOPE)
endfunction()

# Windows: a .def file without ordinals and with the DLL's name, which the linker's own would lack, and from it an
# import library for linkers that refuse the MinGW one.
function(vlt_export_by_def target names)
    list(JOIN names "\n    " lines)
    set(def ${PROJECT_BINARY_DIR}/vlt.def)
    file(CONFIGURE OUTPUT ${def} CONTENT "LIBRARY vlt.dll\nEXPORTS\n    @lines@\n" @ONLY)
    target_sources(${target} PRIVATE ${def})
    set_target_properties(${target} PROPERTIES PREFIX "")
    set(machine $<IF:$<EQUAL:${CMAKE_SIZEOF_VOID_P},8>,i386:x86-64,i386>)
    find_program(VLT_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14 REQUIRED)
    add_custom_command(OUTPUT vlt.lib DEPENDS ${def} VERBATIM
        COMMAND ${VLT_DLLTOOL} -m ${machine} -d ${def} -D vlt.dll -l ${PROJECT_BINARY_DIR}/vlt.lib)
    add_custom_target(vlt_msvc_import_library ALL DEPENDS vlt.lib)
endfunction()

# Elsewhere: a version script, because templates of the standard library would be visible without one. The names bear
# the version VLT_1, so that a later, incompatible library can be told from this one in the same process.
function(vlt_export_by_version_script target names)
    list(JOIN names "; " lines)
    set(script ${PROJECT_BINARY_DIR}/vlt.map)
    file(CONFIGURE OUTPUT ${script} CONTENT "VLT_1 { global: @lines@; local: *; };\n" @ONLY)
    target_link_options(${target} PRIVATE LINKER:--version-script=${script} LINKER:-Bsymbolic-functions
        LINKER:--as-needed)
    if(NOT VLT_SANITIZE)  # a sanitizer's own functions come from the program
        target_link_options(${target} PRIVATE LINKER:--no-undefined)
    endif()
    set_target_properties(${target} PROPERTIES
        LINK_DEPENDS ${script} VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
endfunction()

# Makes `target` export the functions that the given headers declare.
function(vlt_export_names target)
    set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${ARGN})
    vlt_read_exported_names(names ${ARGN})
    if(WIN32)
        vlt_export_by_def(${target} "${names}")
    else()
        vlt_export_by_version_script(${target} "${names}")
    endif()
endfunction()
