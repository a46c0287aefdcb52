# SPDX-License-Identifier: MIT
# Cross build for i686 Windows with mingw-w64.
set(QUILLON_MINGW_ARCH i686)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
