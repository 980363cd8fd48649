# SPDX-License-Identifier: MIT
# The test suites: whole programs, one CTest test each, because starting a program is dear under Wine. Every .cpp
# file of a suite's folder belongs to it.

# The undefined-behaviour sanitizer looks at the library; in the tests it would more than double the time to compile.
function(vlt_test_code target)
    target_compile_options(${target} PRIVATE -fno-sanitize=undefined)
endfunction()

# Built from source where it can be: the sanitizers and the cross build need it compiled as our own code is.
if(EXISTS /usr/src/googletest/CMakeLists.txt)
    set(INSTALL_GTEST OFF)
    set(BUILD_GMOCK OFF)
    set(gtest_disable_pthreads OFF)
    add_subdirectory(/usr/src/googletest googletest EXCLUDE_FROM_ALL SYSTEM)
    vlt_test_code(gtest)
    vlt_test_code(gtest_main)
else()
    find_package(GTest REQUIRED)
endif()

# What several suites share; a suite links those parts of it that it uses.
file(GLOB support_sources CONFIGURE_DEPENDS support/*.cpp)
add_library(test_support STATIC ${support_sources})
target_include_directories(test_support PUBLIC ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(test_support PUBLIC vlt_inspect GTest::gtest)
vlt_warnings(test_support)
vlt_test_code(test_support)

# A suite named `name` from the files of `folder`, linked with `library`: `vlt` for tests of the interface,
# `vlt_objects` for tests of inner functions.
function(vlt_suite name folder library)
    file(GLOB sources CONFIGURE_DEPENDS ${folder}/*.cpp)
    add_executable(${name} ${sources})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
    target_compile_definitions(${name} PRIVATE TEST_SOURCE_DIR="${PROJECT_SOURCE_DIR}/tests")
    target_link_libraries(${name} PRIVATE test_support ${library} GTest::gtest_main)
    vlt_warnings(${name})
    vlt_test_code(${name})
    vlt_beside_library(${name})
    set(scratch ${PROJECT_BINARY_DIR}/scratch/${name})
    file(MAKE_DIRECTORY ${scratch})
    add_test(NAME ${name} COMMAND ${name} --gtest_brief=1 WORKING_DIRECTORY ${scratch})
    set_tests_properties(${name} PROPERTIES LABELS suite TIMEOUT 1200)
endfunction()

vlt_suite(store_tests vlt vlt)
vlt_suite(offline_tests offline vlt)
vlt_suite(inner_tests inner vlt_objects)
target_link_options(inner_tests PRIVATE LINKER:--wrap=clock_seconds LINKER:--wrap=clock_local)
if(TARGET vlt_exchange)
    vlt_suite(exchange_tests exchange vlt_exchange)
endif()

# Tests that make host calls and allocations fail.
vlt_suite(fault_tests faults vlt_objects)
include(support/host_faults.cmake)
vlt_host_faults(fault_tests)
# The sweeps through every failing call and every damaged byte take the same ways whatever the width of a pointer:
# Linux and 32-bit Windows make them.
if(WIN32 AND CMAKE_SIZEOF_VOID_P EQUAL 8)
    set_tests_properties(fault_tests PROPERTIES ENVIRONMENT
        "GTEST_FILTER=-Damage.OfEveryByteIsSafe:*CutOff.*:*MeetsFaults.*:*OperationOnADatabase.*")
endif()
# Under the thread sanitizer only what threads do side by side is of interest; the rest would take minutes.
if(VLT_SANITIZE STREQUAL "thread")
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/scratch/threads)
    add_test(NAME threads COMMAND fault_tests --gtest_brief=1 --gtest_filter=Threads.*
        WORKING_DIRECTORY ${PROJECT_BINARY_DIR}/scratch/threads)
    # Without TZ the C library frees and copies the name of its time zone at every call, under a lock of its own that
    # the sanitizer does not see, and is reported now and then for it.
    set_tests_properties(threads PROPERTIES ENVIRONMENT TZ=UTC LABELS suite TIMEOUT 300)
endif()
