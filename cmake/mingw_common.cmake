# SPDX-License-Identifier: MIT
# Windows, built with MinGW-w64 (posix threads flavour) for the processor named by the file that includes this one.
# Everything is linked statically, so that programs and the DLL need nothing but the system's own DLLs.
set(CMAKE_SYSTEM_NAME Windows)
set(mingw ${CMAKE_SYSTEM_PROCESSOR}-w64-mingw32)

set(CMAKE_C_COMPILER ${mingw}-gcc-posix)
set(CMAKE_CXX_COMPILER ${mingw}-g++-posix)
set(CMAKE_RC_COMPILER ${mingw}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${mingw})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine.sh)
