# What the kit is built with, as targets of one name on every machine: tarn_json (nlohmann-json) and tarn_cli11 (CLI11), both
# headers only.
find_package(Threads REQUIRED)

# A cross compiler takes the header from the target's file system if it is there. If not, the build machine's does as well: it
# is the same text on every processor. As the compiler must not see all of the build machine's /usr/include, it gets a link to
# the one directory.
function(tarn_header_only target directory header package)
    find_path(${target}_ROOT ${directory}/${header})
    if(NOT ${target}_ROOT)
        find_path(${target}_ROOT ${directory}/${header} PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
    endif()
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
