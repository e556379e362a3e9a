# What the kit is built with, as targets of one name on every machine:
#
#   tarn_json    nlohmann-json, headers only
#   tarn_cli11   CLI11, headers only
#   tarn_gtest   GoogleTest and GoogleMock with their main
#
# A cross compiler must not see the build machine's /usr/include. It gets the two header-only libraries through links of their own, and
# GoogleTest is built for the target from the source that Debian ships.
find_package(Threads REQUIRED)

function(tarn_header_only target directory header package)
    find_path(${target}_ROOT ${directory}/${header} PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH)
    if(NOT ${target}_ROOT)
        message(FATAL_ERROR "${directory}/${header} is missing: install ${package}")
    endif()
    set(include ${CMAKE_BINARY_DIR}/headers/${target})
    file(MAKE_DIRECTORY ${include})
    file(CREATE_LINK ${${target}_ROOT}/${directory} ${include}/${directory} SYMBOLIC)
    add_library(${target} INTERFACE)
    target_include_directories(${target} SYSTEM INTERFACE ${include})
endfunction()

tarn_header_only(tarn_json nlohmann json.hpp nlohmann-json3-dev)
tarn_header_only(tarn_cli11 CLI CLI.hpp libcli11-dev)

set(googletest /usr/src/googletest)
if(NOT EXISTS ${googletest}/googlemock/src/gmock-all.cc)
    message(FATAL_ERROR "${googletest} is missing: install libgtest-dev and libgmock-dev (googletest)")
endif()
add_library(tarn_gtest STATIC
    ${googletest}/googletest/src/gtest-all.cc
    ${googletest}/googlemock/src/gmock-all.cc
    ${googletest}/googlemock/src/gmock_main.cc)
target_include_directories(tarn_gtest SYSTEM
    PUBLIC ${googletest}/googletest/include ${googletest}/googlemock/include
    PRIVATE ${googletest}/googletest ${googletest}/googlemock)
target_link_libraries(tarn_gtest PUBLIC Threads::Threads)
