# 32-bit big-endian PowerPC.
set(processor powerpc)
set(emulator qemu-ppc)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
