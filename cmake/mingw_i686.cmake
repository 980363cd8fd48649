# SPDX-License-Identifier: MIT
# 32-bit Windows.
set(CMAKE_SYSTEM_PROCESSOR i686)
include(${CMAKE_CURRENT_LIST_DIR}/mingw_common.cmake)

# Time stamps are doubles that are compared: the x87 unit would keep more bits of them than memory does. Callers may
# have aligned the stack to 4 bytes only, which vector instructions do not bear.
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
