# SPDX-License-Identifier: MIT
# Compares the names that LIBRARY exports, as the symbol reader lists them, with the functions that HEADERS declare.
include(${CMAKE_CURRENT_LIST_DIR}/../../cmake/exported_names.cmake)

string(REPLACE "|" ";" READER "${READER}")
string(REPLACE "|" ";" HEADERS "${HEADERS}")
vlt_read_exported_names(declared ${HEADERS})
execute_process(COMMAND ${READER} ${LIBRARY} OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)

# `nm` gives "address kind name"; `objdump` lists the names of a DLL under a heading, the last word of each line.
string(FIND "${listing}" "[Ordinal/Name Pointer] Table" heading)
if(heading GREATER -1)
    string(SUBSTRING "${listing}" ${heading} -1 listing)
    string(FIND "${listing}" "\n\n" table_end)
    string(SUBSTRING "${listing}" 0 ${table_end} listing)
    string(REGEX MATCHALL "\n\t[^\n]*\\][^\n]*" lines "${listing}")
else()
    string(REGEX MATCHALL "[0-9a-f]+ T [^\n]*@@VLT_1\n" lines "${listing}")
    string(REGEX MATCHALL "[0-9a-f]+ [A-Za-z] [^\n]*\n" all "${listing}")
    list(REMOVE_ITEM all ${lines})
    if(NOT all MATCHES "^[0-9a-f]+ A VLT_1\n$")  # the version itself
        message(FATAL_ERROR "Exported, but no function of version VLT_1: ${all}")
    endif()
    string(REGEX REPLACE "@@VLT_1\n" "" lines "${lines}")
endif()
string(REGEX REPLACE "[^;]*[ \t]([^; \t]+)" "\\1" exported "${lines}")
list(SORT exported)

list(LENGTH declared count)
if(NOT exported STREQUAL declared OR count LESS 27)
    set(missing ${declared})
    list(REMOVE_ITEM missing ${exported})
    set(surplus ${exported})
    list(REMOVE_ITEM surplus ${declared})
    message(FATAL_ERROR "${count} names declared.\nNot exported: ${missing}\nNot declared: ${surplus}")
endif()
message(STATUS "${count} names declared and exported")
