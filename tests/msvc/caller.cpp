// SPDX-License-Identifier: MIT
// A program built for the MSVC ABI (clang for the *-pc-windows-msvc targets, no C++ standard
// library, no C runtime start-up of its own) that uses Quillon.dll and "Guard Scalars.dll" by the
// test's own declaration of them, and runs the battery's families that the DLLs export
// (tests/battery/families.h). Linked with Quillon.lib, "Guard Scalars.lib" and the system's
// msvcrt.dll and GDI32.dll.
#include "interface.h"

#define QB_FILE void
#define QB_DLL_ONLY
#include "../battery/battery.h"

struct BatteryAccess {
    template <class T>
    static T cofactor(const Transform<T>& t, unsigned row, unsigned col) { return t.Function_2413(row, col); }
};
template <class T>
T cofactorOf(const Transform<T>& t, unsigned row, unsigned col) { return BatteryAccess::cofactor(t, row, col); }

// A guard value's stored value: the one member of the class.
inline double rawOf(const guarddouble& g) { double v; __builtin_memcpy(&v, &g, 8); return v; }
inline float rawOf(const guardfloat& g) { float v; __builtin_memcpy(&v, &g, 4); return v; }
inline int rawOf(const guardint& g) { int v; __builtin_memcpy(&v, &g, 4); return v; }

// The image's rectangles, count first; no image counts as -1 (RGNDATA: dwSize, iType, nCount...).
template <class T>
void putRegion(qb_family& f, const Transform<T>& t, const int* ltrb, int n)
{
    static unsigned char buffer[1 << 16];
    HRGN region = CreateRectRgn(0, 0, 0, 0);
    for (int k = 0; k < n; ++k) {
        HRGN piece = CreateRectRgn(ltrb[4 * k], ltrb[4 * k + 1], ltrb[4 * k + 2], ltrb[4 * k + 3]);
        CombineRgn(region, region, piece, 2); // RGN_OR
        DeleteObject(piece);
    }
    HRGN image = t * region;
    DeleteObject(region);
    const unsigned long size = image ? GetRegionData(image, sizeof buffer, buffer) : 0;
    if (image) DeleteObject(image);
    if (size == 0 || size > sizeof buffer) return qb_put_int(&f, -1);
    unsigned header, count;
    __builtin_memcpy(&header, buffer, 4);
    __builtin_memcpy(&count, buffer + 8, 4);
    qb_put_int(&f, static_cast<int>(count));
    for (unsigned k = 0; k < 4 * count; ++k) {
        int v;
        __builtin_memcpy(&v, buffer + header + 4 * k, 4);
        qb_put_int(&f, v);
    }
}

#include "../battery/families.h"

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
    battery::dllFamilies(battery::dumpFolder(argc, argv));
    exit(0);
}
