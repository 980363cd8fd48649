# SPDX-License-Identifier: MIT
# Installs the library into an empty folder and builds a project outside the tree on it, once through the CMake
# package and once through pkg-config; both programs must run.

function(run)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
set(ENV{WINEPATH} ${prefix}/bin)
set(ENV{LD_LIBRARY_PATH} ${prefix}/lib:${prefix}/lib64)

# find_package
set(options -G Ninja -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_FIND_ROOT_PATH=${prefix} -DWANTED_VERSION=${VERSION})
if(TOOLCHAIN)
    list(APPEND options -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN})
endif()
run(${CMAKE_COMMAND} -S ${OUTSIDE_DIR} -B ${WORK_DIR}/cmake ${options})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/cmake)
file(GLOB program ${WORK_DIR}/cmake/outside ${WORK_DIR}/cmake/outside.exe)
run(${EMULATOR} ${program})

# pkg-config
find_program(PKG_CONFIG NAMES pkg-config pkgconf)
if(NOT PKG_CONFIG)
    message(FATAL_ERROR "pkg-config is not installed")
endif()
file(GLOB pc_folder ${prefix}/lib*/pkgconfig ${prefix}/lib/*/pkgconfig)
set(ENV{PKG_CONFIG_LIBDIR} ${pc_folder})
run(${PKG_CONFIG} --exact-version=${VERSION} vlt)
execute_process(COMMAND ${PKG_CONFIG} --cflags --libs vlt OUTPUT_VARIABLE flags COMMAND_ERROR_IS_FATAL ANY
    OUTPUT_STRIP_TRAILING_WHITESPACE)
separate_arguments(flags)
run(${COMPILER} ${OUTSIDE_DIR}/main.c -o ${WORK_DIR}/by_pkg_config.exe ${flags})
run(${EMULATOR} ${WORK_DIR}/by_pkg_config.exe)

# Taken away again, to the last file.
run(${CMAKE_COMMAND} -DBUILD_DIR=${BUILD_DIR} -P ${CMAKE_CURRENT_LIST_DIR}/../../cmake/uninstall.cmake)
file(GLOB_RECURSE left ${prefix}/*)
if(left)
    message(FATAL_ERROR "Left behind: ${left}")
endif()
