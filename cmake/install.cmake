# SPDX-License-Identifier: MIT
# What an installation holds: the library, its headers, and what CMake and pkg-config need to find them.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vlt)

install(TARGETS vlt EXPORT vlt_targets)
install(FILES include/vlt.h include/offline.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(WIN32)
    install(FILES ${PROJECT_BINARY_DIR}/vlt.def DESTINATION ${CMAKE_INSTALL_LIBDIR})
    if(VLT_DLLTOOL)
        install(FILES ${PROJECT_BINARY_DIR}/vlt.lib DESTINATION ${CMAKE_INSTALL_LIBDIR})
    endif()
endif()

install(EXPORT vlt_targets NAMESPACE vlt:: FILE vlt-config.cmake DESTINATION ${package_dir})
write_basic_package_version_file(vlt-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vlt-config-version.cmake DESTINATION ${package_dir})

# Relative to the file itself, so that an installation may be moved.
file(RELATIVE_PATH VLT_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" VLT_PC_PREFIX "${VLT_PC_PREFIX}")
configure_file(cmake/vlt.pc.in vlt.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vlt.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
