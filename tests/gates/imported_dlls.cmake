# SPDX-License-Identifier: MIT
# The DLL needs nothing that a bare Windows does not have.
execute_process(COMMAND ${OBJDUMP} -p ${LIBRARY} OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "DLL Name: [^\n]*" lines "${listing}")
string(REPLACE "DLL Name: " "" dlls "${lines}")
list(SORT dlls)
message(STATUS "Imported: ${dlls}")
if(NOT dlls STREQUAL "KERNEL32.dll;msvcrt.dll")
    message(FATAL_ERROR "Expected KERNEL32.dll and msvcrt.dll alone")
endif()
