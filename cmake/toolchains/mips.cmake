# 32-bit big-endian MIPS.
set(processor mips)
set(emulator qemu-mips)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
