// SPDX-License-Identifier: MIT
// Conformance battery: every family of tests/battery/families.h through the library's headers,
// one digest of all result bits per family (tools/conformance/compare.py holds builds, surfaces
// and the recorded digests against each other). Two builds that print the same digests computed
// the same bits. Families fed by sin and cos have "trig" in their name: they differ where
// rotations take the C library's sin and cos (Quillon.dll, or QUILLON_PLATFORM_TRIG).
#include <quillon/Region>
#include <quillon/ThreeDVector>
#include <quillon/Transform>

#include <cstdio>
#include <cstring>
#include <vector>

#include "../../tests/battery/battery.h"

namespace {
double rawOf(const guarddouble& v) { return v.value(); }
float rawOf(const guardfloat& v) { return v.value(); }
int rawOf(const guardint& v) { return v.value(); }

template <class T>
T cofactorOf(const Transform<T>& t, unsigned row, unsigned col) { return quillon::detail::PrivateAccess::cofactor(t, row, col); }

// The image's rectangles, count first; no image counts as -1.
template <class T>
void putRegion(qb_family& f, const Transform<T>& t, const int* ltrb, int n)
{
    HRGN region = CreateRectRgn(0, 0, 0, 0);
    for (int k = 0; k < n; ++k) {
        HRGN piece = CreateRectRgn(ltrb[4 * k], ltrb[4 * k + 1], ltrb[4 * k + 2], ltrb[4 * k + 3]);
        CombineRgn(region, region, piece, RGN_OR);
        DeleteObject(piece);
    }
    HRGN image = t * region;
    DeleteObject(region);
    if (!image) return qb_put_int(&f, -1);
    std::vector<char> data(GetRegionData(image, 0, nullptr));
    GetRegionData(image, static_cast<DWORD>(data.size()), reinterpret_cast<RGNDATA*>(data.data()));
    DeleteObject(image);
    RGNDATAHEADER header;
    std::memcpy(&header, data.data(), sizeof header);
    qb_put_int(&f, static_cast<int>(header.nCount));
    for (DWORD k = 0; k < header.nCount; ++k) {
        RECT rc;
        std::memcpy(&rc, data.data() + header.dwSize + k * sizeof(RECT), sizeof rc);
        for (const LONG v : {rc.left, rc.top, rc.right, rc.bottom}) qb_put_int(&f, static_cast<int>(v));
    }
}
} // namespace

#include "../../tests/battery/families.h"

int main(int argc, char** argv)
{
    const char* dump = battery::dumpFolder(argc, argv);
    battery::dllFamilies(dump);
    battery::beyondDllFamilies(dump);
    return 0;
}
