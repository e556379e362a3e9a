# Debian's cross compiler for one processor; programs run under user-mode emulation.
#
# The caller sets `processor` (as in the compiler's name, PROCESSOR-linux-gnu-gcc) and `emulator`.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${processor})
set(CMAKE_C_COMPILER ${processor}-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER ${processor}-linux-gnu-g++)
list(APPEND CMAKE_FIND_ROOT_PATH /usr/${processor}-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR ${emulator};-L;/usr/${processor}-linux-gnu)
