# SPDX-License-Identifier: MIT
# Cross build for Linux on aarch64 (char is unsigned), run under qemu-aarch64.
set(QUILLON_LINUX_PROCESSOR aarch64)
set(QUILLON_LINUX_COMPILER aarch64-linux-gnu)
set(QUILLON_LINUX_MULTIARCH aarch64-linux-gnu)
set(QUILLON_LINUX_QEMU qemu-aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/linux.cmake)
