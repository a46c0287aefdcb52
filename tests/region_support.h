// SPDX-License-Identifier: MIT
// What the region tests share: a region's rectangles read back through GetRegionData, as plain
// left, top, right, bottom values that compare and print.
#pragma once

#include <quillon/Region>

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
    const DWORD size = GetRegionData(h, 0, nullptr);
    std::vector<std::uint64_t> store(size / 8 + 1);
    auto* data = reinterpret_cast<RGNDATA*>(store.data());
    if (size == 0 || GetRegionData(h, size, data) != size) return {};
    std::vector<Rect> out(data->rdh.nCount);
    if (!out.empty()) std::memcpy(out.data(), data->Buffer, out.size() * sizeof(Rect));
    return out;
}
