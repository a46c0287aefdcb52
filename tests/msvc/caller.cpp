// SPDX-License-Identifier: MIT
// A program built for the MSVC ABI (clang for the *-pc-windows-msvc targets, no C++ standard
// library, no C runtime start-up of its own) that uses Quillon.dll and "Guard Scalars.dll" by the
// test's own declaration of them, and runs the ABI battery. Linked with Quillon.lib,
// "Guard Scalars.lib" and the system's msvcrt.dll and GDI32.dll.
#include "interface.h"

struct BatteryAccess {
    template <class T>
    static T cofactor(const Transform<T>& t, unsigned row, unsigned col) { return t.Function_2413(row, col); }
};
inline unsigned long regionBytes(HRGN region, unsigned long size, void* buffer)
{
    return GetRegionData(region, size, buffer);
}

#include "battery.h"

extern "C" int _fltused = 0;
extern "C" IMPORT void __cdecl exit(int);
extern "C" IMPORT char* __stdcall GetCommandLineA();

namespace {
// The command line split at spaces (the battery takes "--dump DIR", DIR without spaces).
int splitArguments(char* line, char** argv, int most)
{
    int argc = 0;
    for (char* p = line; *p && argc < most;) {
        while (*p == ' ') *p++ = 0;
        if (!*p) break;
        argv[argc++] = p;
        while (*p && *p != ' ') ++p;
    }
    return argc;
}
} // namespace

extern "C" void start()
{
    char* argv[8];
    const int argc = splitArguments(GetCommandLineA(), argv, 8);
    exit(battery::runAll(argc, argv));
}
