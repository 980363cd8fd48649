# SPDX-License-Identifier: MIT
# What an installation holds: the library, its headers, what CMake and pkg-config need to find them, and the pages to
# read. The component `runtime` is what programs need to run, `devel` what it takes to build them.
include(CMakePackageConfigHelpers)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME devel)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vlt)

install(TARGETS vlt EXPORT vlt_targets
    RUNTIME COMPONENT runtime LIBRARY COMPONENT runtime NAMELINK_COMPONENT devel ARCHIVE COMPONENT devel)
install(FILES include/vlt.h include/offline.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(WIN32)
    install(FILES ${PROJECT_BINARY_DIR}/vlt.def ${PROJECT_BINARY_DIR}/vlt.lib DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()

# The exported file includes every file named as it is with a further word, so the version file, which sets variables
# of the caller, must not be one of them.
install(EXPORT vlt_targets NAMESPACE vlt:: FILE vlt-targets.cmake DESTINATION ${package_dir})
write_basic_package_version_file(vlt-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES cmake/vlt-config.cmake ${PROJECT_BINARY_DIR}/vlt-config-version.cmake DESTINATION ${package_dir})

# For pkg-config, folders relative to the file itself, so that an installation may be moved; absolute ones as they are.
set(VLT_PC_PREFIX ${CMAKE_INSTALL_PREFIX})
if(NOT IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    file(RELATIVE_PATH to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
    string(REGEX REPLACE "(.*)/$" "\${pcfiledir}/\\1" VLT_PC_PREFIX "${to_prefix}")
endif()
foreach(folder LIBDIR INCLUDEDIR)
    cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_${folder} BASE_DIRECTORY "\${prefix}" OUTPUT_VARIABLE VLT_PC_${folder})
endforeach()
configure_file(cmake/vlt.pc.in vlt.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vlt.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

file(GLOB pages docs/*.md docs/*.png)
install(FILES LICENSE README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${pages} DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)

if(NOT TARGET uninstall)
    add_custom_target(uninstall VERBATIM COMMAND ${CMAKE_COMMAND} -DBUILD_DIR=${PROJECT_BINARY_DIR}
        -P ${PROJECT_SOURCE_DIR}/cmake/uninstall.cmake)
endif()
