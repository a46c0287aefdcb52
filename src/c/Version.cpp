// SPDX-License-Identifier: MIT
// The C interface's version: the library's own, from the build.
#include <quillon/quillon.h>

extern "C" {

const char* quillon_version(void) { return QUILLON_C_VERSION; }
uint32_t quillon_version_number(void)
{
    return (uint32_t{QUILLON_C_VERSION_MAJOR} << 24) | (uint32_t{QUILLON_C_VERSION_MINOR} << 16) |
           (uint32_t{QUILLON_C_VERSION_PATCH} << 8) | uint32_t{QUILLON_C_VERSION_TWEAK};
}

} // extern "C"
