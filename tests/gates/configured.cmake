# SPDX-License-Identifier: MIT
# What only has to be configured to show itself: the tree as a folder of a larger project, and absolute folders of an
# installation.

file(REMOVE_RECURSE ${WORK_DIR})
set(options -G Ninja -DCMAKE_C_COMPILER=${C_COMPILER} -DCMAKE_CXX_COMPILER=${CXX_COMPILER})

execute_process(COMMAND ${CMAKE_COMMAND} -S ${TREE}/tests/gates/larger -B ${WORK_DIR}/larger ${options}
    -DVLT_TREE=${TREE} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --install ${WORK_DIR}/larger --prefix ${WORK_DIR}/installed
    COMMAND_ERROR_IS_FATAL ANY)
if(EXISTS ${WORK_DIR}/installed)
    message(FATAL_ERROR "A larger project installs the library without being asked to")
endif()

function(expect_variable pc_folder name expected)
    set(ENV{PKG_CONFIG_LIBDIR} ${pc_folder})
    execute_process(COMMAND pkg-config --variable=${name} vlt OUTPUT_VARIABLE value COMMAND_ERROR_IS_FATAL ANY
        OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT value STREQUAL expected)
        message(FATAL_ERROR "pkg-config: ${name} is '${value}', not '${expected}'")
    endif()
endfunction()

execute_process(COMMAND ${CMAKE_COMMAND} -S ${TREE} -B ${WORK_DIR}/absolute ${options} -DVLT_BUILD_EXAMPLES=OFF
    -DCMAKE_INSTALL_PREFIX=/opt/vlt -DCMAKE_INSTALL_LIBDIR=/opt/libraries COMMAND_ERROR_IS_FATAL ANY)
expect_variable(${WORK_DIR}/absolute libdir /opt/libraries)
expect_variable(${WORK_DIR}/absolute includedir /opt/vlt/include)
