# tarn_gtest: GoogleTest and GoogleMock with their main, built from the source that Debian ships, so that it is there for every
# target.
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
