# SPDX-License-Identifier: MIT
# Programs that follow MSVC's conventions, made with clang and lld-link, and linked with vlt.lib.
find_program(VLT_CLANG NAMES clang clang-14 REQUIRED)
find_program(VLT_LLD_LINK NAMES lld-link lld-link-14 REQUIRED)

# The one function of the system that they call.
set(kernel32 ${CMAKE_CURRENT_BINARY_DIR}/kernel32)
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(machine i386:x86-64)
    set(exit_process ExitProcess)
else()
    set(machine i386)
    set(exit_process ExitProcess@4)
endif()
file(CONFIGURE OUTPUT ${kernel32}.def CONTENT "LIBRARY kernel32.dll\nEXPORTS\n    ${exit_process}\n")
add_custom_command(OUTPUT ${kernel32}.lib DEPENDS ${kernel32}.def VERBATIM
    COMMAND ${VLT_DLLTOOL} -k -m ${machine} -d ${kernel32}.def -D kernel32.dll -l ${kernel32}.lib)

function(vlt_msvc_client language)
    set(name msvc_client_${language})
    set(object ${CMAKE_CURRENT_BINARY_DIR}/${name}.obj)
    set(program ${PROJECT_BINARY_DIR}/${name}.exe)
    add_custom_command(OUTPUT ${program} VERBATIM
        COMMAND ${VLT_CLANG} --target=${CMAKE_SYSTEM_PROCESSOR}-pc-windows-msvc -x ${language}
            -ffreestanding -fno-builtin
            -O1 -Wall -Wextra -Werror -I${PROJECT_SOURCE_DIR}/include -c ${CMAKE_CURRENT_SOURCE_DIR}/msvc_client.c
            -o ${object}
        COMMAND ${VLT_LLD_LINK} /entry:start /subsystem:console /nodefaultlib /safeseh:no /out:${program} ${object}
            ${PROJECT_BINARY_DIR}/vlt.lib ${kernel32}.lib
        DEPENDS msvc_client.c ${headers} vlt_msvc_import_library ${kernel32}.lib)
    add_custom_target(${name} ALL DEPENDS ${program})
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/scratch/${name})
    add_test(NAME ${name} COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} ${program}
        WORKING_DIRECTORY ${PROJECT_BINARY_DIR}/scratch/${name})
endfunction()

vlt_msvc_client(c)
vlt_msvc_client(c++)
