# SPDX-License-Identifier: MIT
# Programs that follow MSVC's conventions, made with clang and lld-link, and linked with vlt.lib.
find_program(VLT_CLANG NAMES clang clang-14 REQUIRED)
find_program(VLT_LLD_LINK NAMES lld-link lld-link-14 REQUIRED)

function(vlt_msvc_client language)
    set(name msvc_client_${language})
    set(object ${CMAKE_CURRENT_BINARY_DIR}/${name}.obj)
    set(program ${PROJECT_BINARY_DIR}/${name}.exe)
    add_custom_command(OUTPUT ${program} VERBATIM
        COMMAND ${VLT_CLANG} --target=${CMAKE_SYSTEM_PROCESSOR}-pc-windows-msvc -x ${language} -ffreestanding -fno-builtin
            -O1 -Wall -Wextra -Werror -I${PROJECT_SOURCE_DIR}/include -c ${CMAKE_CURRENT_SOURCE_DIR}/msvc_client.c
            -o ${object}
        COMMAND ${VLT_LLD_LINK} /entry:start /subsystem:console /nodefaultlib /safeseh:no /out:${program} ${object}
            ${PROJECT_BINARY_DIR}/vlt.lib
        DEPENDS msvc_client.c ${headers} vlt_msvc_import_library)
    add_custom_target(${name} ALL DEPENDS ${program})
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/scratch/${name})
    add_test(NAME ${name} COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} ${program}
        WORKING_DIRECTORY ${PROJECT_BINARY_DIR}/scratch/${name})
endfunction()

vlt_msvc_client(c)
vlt_msvc_client(c++)
