# SPDX-License-Identifier: MIT
# Debian packages, one a component: libvlt1 (to run programs), libvlt-dev (to build them), vlt (the program).
# scripts/release.sh builds and checks them.
set(CPACK_GENERATOR DEB)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "package store and offline product-data database")
set(CPACK_COMPONENTS_ALL runtime devel)
set(CPACK_PACKAGE_CONTACT "the vlt authors <vlt@localhost>")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${CPACK_PACKAGE_CONTACT})
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# What every Debian package brings: its copyright and its changes.
function(vlt_debian_package component name section description)
    string(TOUPPER ${component} key)
    set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name} PARENT_SCOPE)
    set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section} PARENT_SCOPE)
    set(CPACK_DEBIAN_${key}_DESCRIPTION "${description}" PARENT_SCOPE)
    set(folder ${PROJECT_BINARY_DIR}/debian/${name})
    set(version ${PROJECT_VERSION}-1)
    string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
    file(CONFIGURE OUTPUT ${folder}/changelog @ONLY CONTENT
        "@name@ (@version@) stable; urgency=medium\n\n  * See CHANGELOG.md.\n\n -- @CPACK_PACKAGE_CONTACT@  @date@\n")
    execute_process(COMMAND gzip -9nc ${folder}/changelog OUTPUT_FILE ${folder}/changelog.Debian.gz
        COMMAND_ERROR_IS_FATAL ANY)
    install(FILES ${folder}/changelog.Debian.gz COMPONENT ${component}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name})
    install(FILES LICENSE RENAME copyright COMPONENT ${component} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name})
endfunction()

set(about "A package is a small file system inside one ordinary file; a database of
items, bills of material, drawings and process plans can live in one.\n")
vlt_debian_package(runtime libvlt1 libs "${about}This is the shared library.")
vlt_debian_package(devel libvlt-dev libdevel "${about}These are the
headers, and what CMake and pkg-config need to find the library.")

# What programs that are linked with the library depend on, and the cache of libraries that is made anew.
set(control ${PROJECT_BINARY_DIR}/debian/control)
file(WRITE ${control}/shlibs "libvlt ${PROJECT_VERSION_MAJOR} libvlt1 (>= ${PROJECT_VERSION})\n")
file(WRITE ${control}/triggers "activate-noawait ldconfig\n")
file(CHMOD ${control}/shlibs ${control}/triggers PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${control}/shlibs;${control}/triggers")

set(CPACK_DEBIAN_DEVEL_PACKAGE_DEPENDS "libvlt1 (= ${PROJECT_VERSION}-1)")
if(TARGET vlt_tool)
    list(APPEND CPACK_COMPONENTS_ALL tool)
    vlt_debian_package(tool vlt utils "${about}This is the
program that works on both.")
    # What `vlt mount` loads, and fusermount3, with which others than root mount.
    set(CPACK_DEBIAN_TOOL_PACKAGE_RECOMMENDS "libfuse3-3, fuse3")
    set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "libvlt1 (= ${PROJECT_VERSION}-1)")
endif()
include(CPack)
