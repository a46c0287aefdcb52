// SPDX-License-Identifier: MIT
// The MSVC-ABI caller's twin: the families the DLLs export, built against the library's headers
// (on Windows, against the static GCC-ABI libraries).
#define QB_DLL_ONLY
#include "../battery/headers.h"

int main(int argc, char** argv)
{
    battery::dllFamilies(battery::dumpFolder(argc, argv));
    return 0;
}
