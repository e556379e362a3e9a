# How a test program is made.
include(GoogleTest)

option(TARN_DISCOVER_TEST_CASES "Make each GoogleTest case a test of CTest's own: quick where starting a program is" ON)

# Tests are compiled quickly: nothing is timed, and what they test keeps flags of its own.
set(tarn_test_options -O0 -g1)

# GoogleTest and GoogleMock with their main, built from the source that Debian ships, so that they are there for every target.
set(googletest /usr/src/googletest)
if(NOT EXISTS ${googletest}/googlemock/src/gmock-all.cc)
    message(FATAL_ERROR "${googletest} is missing: install googletest")
endif()
add_library(tarn_gtest STATIC
    ${googletest}/googletest/src/gtest-all.cc
    ${googletest}/googlemock/src/gmock-all.cc
    ${googletest}/googlemock/src/gmock_main.cc)
target_include_directories(tarn_gtest SYSTEM
    PUBLIC ${googletest}/googletest/include ${googletest}/googlemock/include
    PRIVATE ${googletest}/googletest ${googletest}/googlemock)
target_link_libraries(tarn_gtest PUBLIC Threads::Threads)
target_compile_options(tarn_gtest PRIVATE ${tarn_test_options})

# Tests include headers of the rooms, and what several of them need from tests/support.
add_library(tarn_test_headers INTERFACE)
target_include_directories(tarn_test_headers INTERFACE ${PROJECT_SOURCE_DIR}/tests)
target_link_libraries(tarn_test_headers INTERFACE tarn_rooms)

# GoogleTest's headers, which take most of a test's compilation, are compiled once for all programs.
add_library(tarn_test_precompiled OBJECT ${PROJECT_SOURCE_DIR}/tests/support/precompiled.cpp)
target_link_libraries(tarn_test_precompiled PRIVATE tarn_gtest tarn_json)
target_compile_options(tarn_test_precompiled PRIVATE ${tarn_test_options})
tarn_warnings(tarn_test_precompiled)
target_precompile_headers(tarn_test_precompiled PRIVATE <gmock/gmock.h> <gtest/gtest.h> <nlohmann/json.hpp>)

string(JOIN " " TARN_EMULATOR ${CMAKE_CROSSCOMPILING_EMULATOR})

# tarn_test(NAME [HOST_ONLY] [TIMEOUT SECONDS] SOURCES ... LIBRARIES ... [DEFINITIONS ...] [PROGRAMS TARGET...])
#
# HOST_ONLY: nothing in it depends on byte order or word size, so other targets leave it out.
# TIMEOUT: of a case, or of a process that runs some of them, if the usual one is too short.
# PROGRAMS are started by the tests: TARGET_PROGRAM, in upper case, is defined as the path of each, and EMULATOR as what runs
# them.
function(tarn_test name)
    cmake_parse_arguments(PARSE_ARGV 1 test "HOST_ONLY" "TIMEOUT" "SOURCES;LIBRARIES;DEFINITIONS;PROGRAMS")
    if(test_HOST_ONLY AND CMAKE_CROSSCOMPILING)
        return()
    endif()
    add_executable(${name} ${test_SOURCES})
    target_link_libraries(${name} PRIVATE ${test_LIBRARIES} tarn_test_headers tarn_gtest)
    target_compile_options(${name} PRIVATE ${tarn_test_options})
    target_compile_definitions(${name} PRIVATE ${test_DEFINITIONS})
    target_precompile_headers(${name} REUSE_FROM tarn_test_precompiled)
    tarn_warnings(${name})
    foreach(program IN LISTS test_PROGRAMS)
        string(MAKE_C_IDENTIFIER "${program}_PROGRAM" macro)
        string(TOUPPER "${macro}" macro)
        target_compile_definitions(${name} PRIVATE "${macro}=\"$<TARGET_FILE:${program}>\"")
        add_dependencies(${name} ${program})
    endforeach()
    if(test_PROGRAMS)
        target_compile_definitions(${name} PRIVATE "EMULATOR=\"${TARN_EMULATOR}\"")
    endif()
    if(test_HOST_ONLY)
        set(labels LABELS host_only)
    endif()
    if(TARN_DISCOVER_TEST_CASES)
        tarn_default(test_TIMEOUT 120)
        gtest_discover_tests(${name} TEST_PREFIX ${name}. DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT ${test_TIMEOUT} ${labels})
    else()
        tarn_default(test_TIMEOUT 600)
        tarn_test_shards(${name} ${test_TIMEOUT})
    endif()
endfunction()

macro(tarn_default variable value)
    if(NOT ${variable})
        set(${variable} ${value})
    endif()
endmacro()

# A few processes share the cases of a program among them; each leaves GoogleTest's results in the folder `cases`.
function(tarn_test_shards name timeout)
    set(shards 4)
    math(EXPR last "${shards} - 1")
    foreach(shard RANGE ${last})
        add_test(NAME ${name}.${shard} COMMAND ${name})
        set_tests_properties(${name}.${shard} PROPERTIES
            ENVIRONMENT "GTEST_TOTAL_SHARDS=${shards};GTEST_SHARD_INDEX=${shard}"
            ENVIRONMENT_MODIFICATION "GTEST_OUTPUT=set:xml:${CMAKE_BINARY_DIR}/cases/${name}.${shard}.xml"
            TIMEOUT ${timeout})
    endforeach()
endfunction()
