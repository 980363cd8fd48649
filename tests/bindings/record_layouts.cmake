# SPDX-License-Identifier: MIT
# PROGRAM prints the record layouts of its compiler; they are those of the file EXPECTED.
string(REPLACE "|" ";" EMULATOR "${EMULATOR}")
execute_process(COMMAND ${EMULATOR} ${PROGRAM} OUTPUT_VARIABLE printed COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\r\n" "\n" printed "${printed}")
file(READ ${EXPECTED} expected)
if(NOT printed STREQUAL expected)
    message(FATAL_ERROR "The compiler lays records out otherwise than ${EXPECTED} says:\n${printed}")
endif()
