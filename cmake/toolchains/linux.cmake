# SPDX-License-Identifier: MIT
# Cross build for Linux on another architecture with Debian's cross compilers; the libraries the
# build links (pixman) are Debian's multiarch packages of that architecture, in /usr/lib/<triplet>.
# Programs run under qemu's user-mode emulator with the multiarch C library (-L /).
# Set before inclusion: QUILLON_LINUX_PROCESSOR (CMAKE_SYSTEM_PROCESSOR), QUILLON_LINUX_COMPILER
# (the compilers' prefix), QUILLON_LINUX_MULTIARCH (the multiarch triplet), QUILLON_LINUX_QEMU.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${QUILLON_LINUX_PROCESSOR})
set(CMAKE_C_COMPILER ${QUILLON_LINUX_COMPILER}-gcc)
set(CMAKE_CXX_COMPILER ${QUILLON_LINUX_COMPILER}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${QUILLON_LINUX_MULTIARCH})
set(CMAKE_CROSSCOMPILING_EMULATOR ${QUILLON_LINUX_QEMU} -L /)
# pkg-config reads the other architecture's .pc files only.
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/${QUILLON_LINUX_MULTIARCH}/pkgconfig:/usr/share/pkgconfig)
set(ENV{PKG_CONFIG_PATH} "")
# The C++ runtime is linked in: the multiarch libstdc++ need not be installed, nor of the cross
# compiler's version.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static-libstdc++ -static-libgcc")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static-libstdc++ -static-libgcc")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
