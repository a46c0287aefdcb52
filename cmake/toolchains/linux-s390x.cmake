# SPDX-License-Identifier: MIT
# Cross build for Linux on s390x (big-endian, char is unsigned), run under qemu-s390x.
set(QUILLON_LINUX_PROCESSOR s390x)
set(QUILLON_LINUX_COMPILER s390x-linux-gnu)
set(QUILLON_LINUX_MULTIARCH s390x-linux-gnu)
set(QUILLON_LINUX_QEMU qemu-s390x)
include(${CMAKE_CURRENT_LIST_DIR}/linux.cmake)
