# SPDX-License-Identifier: MIT
# Cross build for Linux on 32-bit x86 (SSE2 arithmetic, from cmake/Exactness.cmake), run under qemu-i386.
set(QUILLON_LINUX_PROCESSOR i686)
set(QUILLON_LINUX_COMPILER i686-linux-gnu)
set(QUILLON_LINUX_MULTIARCH i386-linux-gnu)
set(QUILLON_LINUX_QEMU qemu-i386)
include(${CMAKE_CURRENT_LIST_DIR}/linux.cmake)
