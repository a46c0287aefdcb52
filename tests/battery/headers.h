// SPDX-License-Identifier: MIT
// The battery's hooks for the surface of the library's headers (the conformance tool and the
// MSVC-ABI caller's twin): stored values, the private cofactor, and a mapped region's rectangles.
#ifndef QUILLON_TEST_BATTERY_HEADERS_H
#define QUILLON_TEST_BATTERY_HEADERS_H

#include <quillon/Region>
#include <quillon/ThreeDVector>
#include <quillon/Transform>

#include <cstdio>
#include <cstring>
#include <vector>

#include "battery.h"

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

#include "families.h"

#endif
