// SPDX-License-Identifier: MIT
// The union of many pieces made at once, and the region mapping built on it, against the same
// pieces joined one by one with CombineRgn: rectangle for rectangle the same, touching pairs of
// WINDING polygons included.
#include <quillon/Region>
#include <quillon/Transform>

#if !defined(_WIN32)

#include "../src/platform/RegionUnion.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace {

std::vector<std::uint32_t> dataOf(HRGN h)
{
    const DWORD size = GetRegionData(h, 0, nullptr);
    std::vector<std::uint32_t> store(size / 4 + 1, 0);
    if (size == 0 || GetRegionData(h, size, reinterpret_cast<RGNDATA*>(store.data())) != size) return {};
    return store;
}

// Piece after piece, as the platform's functions join them.
HRGN oneByOne(HRGN base, const std::vector<POINT>& points, const std::vector<INT>& counts, int mode)
{
    HRGN result = nullptr;
    if (base) {
        result = CreateRectRgn(0, 0, 0, 0);
        CombineRgn(result, base, nullptr, RGN_COPY);
    }
    const POINT* p = points.data();
    for (INT n : counts) {
        HRGN piece = CreatePolygonRgn(p, n, mode);
        p += n;
        if (!piece) continue;
        if (!result) {
            result = piece;
            continue;
        }
        CombineRgn(result, result, piece, RGN_OR);
        DeleteObject(piece);
    }
    return result;
}

// Bow ties and thin slivers: a WINDING self-crossing polygon keeps a span ending and one starting
// at the same x apart, which the union keeps only on rows that no other piece covers.
TEST(RegionUnion, ManyPiecesAtOnceAreWhatOneByOneGives)
{
    std::mt19937 rng(20261123);
    int withPairs = 0;
    for (int round = 0; round < 300; ++round) {
        const int mode = round % 2 ? WINDING : ALTERNATE;
        const int spread = round % 3 == 0 ? 12 : 60;
        std::uniform_int_distribution<int> coord(-spread, spread), size(0, 8), sides(1, 7);
        std::vector<POINT> points;
        std::vector<INT> counts;
        const int pieces = 1 + round % 17;
        for (int k = 0; k < pieces; ++k) {
            const int n = sides(rng);
            const LONG cx = coord(rng), cy = coord(rng);
            if (n == 7) { // a rectangle, which a polygon call takes whole: corners in any order, or flat
                const LONG x2 = cx + size(rng) - 4, y2 = cy + size(rng) - 4;
                if (k % 2)
                    points.insert(points.end(), {{cx, cy}, {x2, cy}, {x2, y2}, {cx, y2}});
                else
                    points.insert(points.end(), {{cx, cy}, {cx, y2}, {x2, y2}, {x2, cy}});
                counts.push_back(4);
                continue;
            }
            for (int i = 0; i < n; ++i) points.push_back({cx + size(rng) - 4, cy + size(rng) - 4});
            counts.push_back(n);
        }
        HRGN base = round % 5 == 0 ? CreateRectRgn(-3, -3, 4, 2 + round % 7) : nullptr;
        HRGN want = oneByOne(base, points, counts, mode);
        HRGN got = quillon_region_union_polygons(base, points.data(), counts.data(),
                                                 static_cast<int>(counts.size()), mode);
        ASSERT_EQ(want == nullptr, got == nullptr) << "round " << round;
        if (want) {
            const std::vector<std::uint32_t> w = dataOf(want);
            EXPECT_EQ(dataOf(got), w) << "round " << round;
            // Rectangles that touch in a band: a pair the union kept.
            const auto* r = reinterpret_cast<const RECT*>(w.data() + 8);
            for (std::uint32_t i = 1; i < w[2]; ++i)
                withPairs += r[i].top == r[i - 1].top && r[i].left == r[i - 1].right;
            DeleteObject(want);
            DeleteObject(got);
        }
        if (base) DeleteObject(base);
    }
    EXPECT_GT(withPairs, 0) << "no case kept a touching pair: the battery misses the one rule "
                               "that depends on the order of the unions";
}

TEST(RegionUnion, MappingIsTheOneByOneUnionOfTheMappedQuadrilaterals)
{
    std::mt19937 rng(7);
    std::uniform_int_distribution<int> coord(-200, 200), extent(1, 40);
    for (int round = 0; round < 60; ++round) {
        HRGN region = CreateRectRgn(0, 0, 0, 0);
        for (int k = 0; k < 1 + round * 2; ++k) {
            const int l = coord(rng), t = coord(rng);
            HRGN r = CreateRectRgn(l, t, l + extent(rng), t + extent(rng));
            CombineRgn(region, region, r, round % 4 == 0 ? RGN_XOR : RGN_OR);
            DeleteObject(r);
        }
        Transform<double> t;
        t.Function_2424(0.05 + 0.37 * round);
        if (round % 3 == 1) t.Function_2425(round % 2 ? 0.3 : -2.5);
        if (round % 5 == 2) t.Function_2426(0.01);
        t.Function_2428('x', 0.5 * round);
        // What the platform's functions do with the same corners, one piece after another.
        std::vector<POINT> points;
        std::vector<INT> counts;
        const std::vector<std::uint32_t> d = dataOf(region);
        const auto* rects = reinterpret_cast<const RECT*>(d.empty() ? nullptr : d.data() + 8);
        for (std::uint32_t i = 0; !d.empty() && i < d[2]; ++i) {
            const RECT& r = rects[i];
            const ThreeDVector<double> c[4] = {t * ThreeDVector<double>(r.left, r.top, 0.0),
                                               t * ThreeDVector<double>(r.right, r.top, 0.0),
                                               t * ThreeDVector<double>(r.right, r.bottom, 0.0),
                                               t * ThreeDVector<double>(r.left, r.bottom, 0.0)};
            for (const auto& v : c) points.push_back({LONG(v.GetX()), LONG(v.GetY())});
            counts.push_back(4);
        }
        HRGN want = oneByOne(nullptr, points, counts, WINDING);
        HRGN got = t * region;
        ASSERT_EQ(want == nullptr, got == nullptr) << "round " << round;
        if (want) {
            EXPECT_EQ(dataOf(got), dataOf(want)) << "round " << round;
            DeleteObject(want);
            DeleteObject(got);
        }
        DeleteObject(region);
    }
}

} // namespace

#endif
