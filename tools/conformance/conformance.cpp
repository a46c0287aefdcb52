// SPDX-License-Identifier: MIT
// Conformance battery: every family of tests/battery/families.h through the library's headers,
// one digest of all result bits per family (tools/conformance/compare.py holds builds, surfaces
// and the recorded digests against each other). Two builds that print the same digests computed
// the same bits. Families fed by sin and cos have "trig" in their name: they differ where
// rotations take the C library's sin and cos (Quillon.dll, or QUILLON_PLATFORM_TRIG).
#include "../../tests/battery/headers.h"

int main(int argc, char** argv)
{
    const char* dump = battery::dumpFolder(argc, argv);
    battery::dllFamilies(dump);
    battery::beyondDllFamilies(dump);
    return 0;
}
