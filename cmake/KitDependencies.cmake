# What the kit is built with, as targets of one name on every machine: tarn_json (nlohmann-json) and tarn_cli11 (CLI11), both
# headers only. A cross compiler must not see the build machine's /usr/include, so it gets them through links of their own.
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

# Programs for another processor are linked statically: the emulator then needs nothing of the target's file system.
if(CMAKE_CROSSCOMPILING)
    string(APPEND CMAKE_EXE_LINKER_FLAGS " -static")
endif()
