// SPDX-License-Identifier: MIT
// The ABI battery built against the library's own headers: on Linux and, with mingw-w64, against
// the static GCC-ABI libraries under Wine. Its digests are what the MSVC-ABI caller must print.
#include <quillon/Region>
#include <quillon/Transform>

#include <cstdio>

struct BatteryAccess {
    template <class T>
    static T cofactor(const Transform<T>& t, unsigned row, unsigned col) { return quillon::detail::PrivateAccess::cofactor(t, row, col); }
};
inline unsigned long regionBytes(HRGN region, unsigned long size, void* buffer)
{
    return GetRegionData(region, size, static_cast<RGNDATA*>(buffer));
}

#include "battery.h"

int main(int argc, char** argv) { return battery::runAll(argc, argv); }
