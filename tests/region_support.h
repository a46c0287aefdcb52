// SPDX-License-Identifier: MIT
// What the region tests share: a region's rectangles read back through GetRegionData, as plain
// left, top, right, bottom values that compare and print.
#pragma once

#include <quillon/Region>
#include <quillon/detail/RegionRectangles.h>

#include <cstdint>
#include <cstring>
#include <ostream>
#include <vector>

struct Rect {
    LONG l, t, r, b;
    bool operator==(const Rect& o) const { return l == o.l && t == o.t && r == o.r && b == o.b; }
};

inline std::ostream& operator<<(std::ostream& out, const Rect& r)
{
    return out << "(" << r.l << ", " << r.t << ", " << r.r << ", " << r.b << ")";
}

// The rectangles of h in the platform's order; none for a null, stale or empty handle.
inline std::vector<Rect> rectsOf(HRGN h)
{
    const quillon::RegionRectangles read(h);
    std::vector<Rect> out;
    for (std::size_t i = 0; i < read.size(); ++i) {
        const RECT r = read[i];
        out.push_back({r.left, r.top, r.right, r.bottom});
    }
    return out;
}
