# SPDX-License-Identifier: MIT
# Cross build for x86_64 Windows with mingw-w64.
set(QUILLON_MINGW_ARCH x86_64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
