// SPDX-License-Identifier: MIT
// The exact lines of edges and the bound from them, against plain counts: sums, first hits and the
// rows where two lines part, row by row; and the bound on a polygon's rectangles, which must never
// pass what scan conversion makes, on seeded thin and wide slivers, triangles and mapped pieces of
// both leanings, where it should also come near that count. Built with the region layer's sources.
#define QUILLON_BUILDING_REGION
#include <quillon/Region>

#include "../src/platform/EdgeLines.h"
#include "../src/platform/PolygonBound.h"
#include "../src/platform/ScanConversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

namespace {

using namespace quillon::region_detail;

class Seeded {
public:
    explicit Seeded(std::uint64_t seed) : rng_(seed) {}
    std::int64_t pick(std::int64_t lo, std::int64_t hi)
    {
        return lo + static_cast<std::int64_t>(rng_() % static_cast<std::uint64_t>(hi - lo + 1));
    }

private:
    std::mt19937_64 rng_;
};

TEST(EdgeLines, FirstTermInRangeIsTheFirstFoundOneByOne)
{
    Seeded r(11);
    for (int round = 0; round < 40000; ++round) {
        const std::int64_t m = r.pick(1, round % 3 ? 60 : 5000), a = r.pick(0, m - 1), b = r.pick(0, m - 1);
        const std::int64_t lo = r.pick(0, m - 1), hi = r.pick(lo, m - 1);
        std::int64_t want = -1;
        for (std::int64_t j = 0; j <= m && want < 0; ++j)
            if ((a * j + b) % m >= lo && (a * j + b) % m <= hi) want = j;
        ASSERT_EQ(firstInRange(a, b, m, lo, hi), want) << a << " j + " << b << " mod " << m << " in [" << lo << ", " << hi << "]";
    }
}

// Lines from the same point or one row apart, parallel or nearly so, leaning any way: the runs
// less than a column apart, where the sums and searches do their work, are long.
Line randomLine(Seeded& r, std::int64_t height, std::int64_t slope)
{
    Line l;
    l.dy = height + r.pick(0, 3);
    l.dx = slope * l.dy + r.pick(-l.dy, l.dy);
    l.y1 = r.pick(-3, 0);
    l.first = 0;
    l.last = l.y1 + l.dy - 1;
    l.base = r.pick(-2, 2);
    l.direction = 1;
    return l;
}

TEST(EdgeLines, RowsApartAndFirstRowsAreWhatARowByRowLookFinds)
{
    Seeded r(12);
    for (int round = 0; round < 3000; ++round) {
        const std::int64_t height = round % 4 ? r.pick(1, 60) : r.pick(100, 20000), slope = r.pick(-20, 20);
        const Line p = randomLine(r, height, slope);
        Line q = round % 2 ? randomLine(r, height, slope) : p;
        if (round % 2 == 0) q.dx += r.pick(-2, 2), q.base += r.pick(-1, 1), q.y1 -= r.pick(0, 1);
        const std::int64_t last = std::min(p.last, q.last);
        if (last < 0) continue;
        const std::int64_t from = r.pick(0, last), to = r.pick(from, last);
        std::int64_t apart = 0, firstApartRow = to + 1, firstLeft = to + 1;
        std::uint64_t sum = 0;
        for (std::int64_t y = from; y <= to; ++y) {
            const std::int64_t xp = xAt(p, y), xq = xAt(q, y);
            sum += static_cast<std::uint64_t>(xp);
            if (xp != xq && apart++ == 0) firstApartRow = y;
            if (xq < xp && firstLeft > to) firstLeft = y;
        }
        ASSERT_EQ(sumX(p, from, to), sum) << "round " << round;
        ASSERT_EQ(rowsApart(p, q, from, to), apart) << "round " << round;
        ASSERT_EQ(firstApart(p, q, from, to), firstApartRow) << "round " << round;
        ASSERT_EQ(firstLeftOf(p, q, from, to), firstLeft) << "round " << round;
    }
}

// A line leaning three columns over 2^20 rows toward one standing upright, less than a column
// apart: the terms found for each row move with the bound they are held to, so that nearly every
// one misses. The row where they part is what a look at every row finds.
TEST(EdgeLines, LinesWhoseTermsMoveWithTheirBoundPartWhereTheRowsSay)
{
    const Line lean{0, (1 << 20) - 1, 0, 0, 3, 1 << 20, 1};
    for (const std::int64_t offset : {1, 2, 3}) {
        const Line upright{0, (1 << 20) - 1, offset, 0, 0, 1 << 20, 1};
        for (const std::int64_t from : {std::int64_t(0), std::int64_t(1000), std::int64_t(200000)}) {
            std::int64_t want = (1 << 20);
            for (std::int64_t y = (1 << 20) - 1; y >= from; --y)
                if (xAt(lean, y) != xAt(upright, y)) want = y;
            EXPECT_EQ(firstApart(lean, upright, from, (1 << 20) - 1), want) << offset << " columns, from " << from;
            EXPECT_EQ(firstApart(upright, lean, from, (1 << 20) - 1), want) << offset << " columns, from " << from;
        }
    }
}

TEST(EdgeLines, AnEdgeWrapsWhereItsXLeavesTheRange)
{
    // Rightward past 2^31 - 1 and leftward below -2^31, on the first row that goes out (x moves one
    // way, so the rows outside follow those inside: found by halving).
    const std::int32_t dy = 111848106;
    for (const std::int32_t dx : {-2147483605, 2000000000, -2000000000, 7, -7})
        for (const std::int32_t x1 : {2147483000, -2147483000, 0}) {
            auto outside = [&](std::int64_t k) {
                const std::int64_t x = x1 + ceilDiv(k * dx, dy);
                return x > 2147483647 || x < -2147483648LL;
            };
            std::int64_t in = 0, out = dy; // x is in range on row in, and none is out before row out
            if (outside(dy - 1)) {
                out = dy - 1;
                while (out - in > 1) (outside(in + (out - in) / 2) ? out : in) = in + (out - in) / 2;
            }
            std::int64_t shift = 0;
            EXPECT_EQ(wrapRow(x1, 5, dx, dy, shift), 5 + out) << x1 << " + " << dx;
            const std::int64_t wantShift = out == dy ? 0 : dx > 0 ? -(std::int64_t(1) << 32) : std::int64_t(1) << 32;
            EXPECT_EQ(shift, wantShift) << x1 << " + " << dx;
        }
}

std::int64_t rectanglesOf(const std::vector<POINT>& p, const std::vector<INT>& counts, int mode)
{
    Region made;
    if (!makePolygons(p.data(), counts.data(), static_cast<int>(counts.size()), mode, made)) return -1;
    return made.count();
}

// Slivers thin and wide, leaning right and left, steeper and flatter than a column a row, from one
// point or offset by a row, alone or side by side in one call, and polygons of many crossing edges
// (each edge twice, in some):
// the bound, walked or not, never passes the rectangles made, and comes within a small factor of
// them for most.
TEST(PolygonBound, NeverPassesTheRectanglesMadeAndComesNearThem)
{
    Seeded r(13);
    int near = 0, counted = 0;
    for (int round = 0; round < 600; ++round) {
        const std::int64_t H = r.pick(200, 12000);
        const std::int64_t lean = r.pick(-3, 3) * H + r.pick(-H, H) / r.pick(1, 8);
        const LONG x = LONG(r.pick(-5, 5)), y = LONG(r.pick(-5, 5));
        std::vector<POINT> p;
        std::vector<INT> counts;
        switch (round % 5) {
        case 0: // a parallelogram, one side short
            p = {{x, y}, {LONG(x + lean), LONG(y + H)}, {LONG(x + lean + r.pick(-2, 2)), LONG(y + H + r.pick(-2, 2))},
                 {LONG(x + r.pick(-2, 2)), LONG(y + r.pick(-2, 2))}};
            break;
        case 1: // a triangle with a short base
            p = {{x, y}, {LONG(x + lean), LONG(y + H)}, {LONG(x + lean + r.pick(1, 3)), LONG(y + H + r.pick(-1, 1))}};
            break;
        case 2: // a wider one
            p = {{x, y}, {LONG(x + lean), LONG(y + H)}, {LONG(x + lean + r.pick(5, 400)), LONG(y + H + r.pick(-40, 40))}};
            break;
        case 3: { // any polygon of up to a dozen points, its edges steeper or flatter, some gone round twice
            const std::int64_t spread = H * 8 / r.pick(1, 64);
            const int n = int(r.pick(4, 12));
            for (int k = 0; k < n; ++k) p.push_back({LONG(x + r.pick(-spread, spread)), LONG(y + r.pick(0, H))});
            if (r.pick(0, 2) == 0) p.insert(p.end(), p.begin(), p.begin() + n); // each edge twice, one way
            break;
        }
        default: // several side by side, some turning the other way
            for (LONG k = 0, at = 0, m = LONG(r.pick(2, 6)); k < m; ++k, at += LONG(r.pick(3, 60))) {
                const LONG w = LONG(r.pick(1, 30)), top = LONG(r.pick(-3, 3));
                const POINT q[4] = {{x + at, y + top}, {LONG(x + at + lean), LONG(y + H)}, {LONG(x + at + lean + w), LONG(y + H)},
                                    {x + at + w, y + top}};
                if (k % 2)
                    p.insert(p.end(), {q[0], q[3], q[2], q[1]});
                else
                    p.insert(p.end(), q, q + 4);
                counts.push_back(4);
                at += w;
            }
        }
        if (counts.empty()) counts.push_back(static_cast<INT>(p.size()));
        const int polygons = static_cast<int>(counts.size());
        for (const int mode : {ALTERNATE, WINDING}) {
            const std::int64_t made = rectanglesOf(p, counts, mode);
            ASSERT_GE(made, 0);
            const std::int64_t quick =
                provenRectangles(p.data(), counts.data(), polygons, mode == WINDING, std::int64_t(kMaxRects), false);
            const std::int64_t walked =
                provenRectangles(p.data(), counts.data(), polygons, mode == WINDING, std::int64_t(kMaxRects), true);
            ASSERT_LE(quick, made) << "round " << round << " mode " << mode;
            ASSERT_LE(walked, made) << "round " << round << " mode " << mode;
            if (made > 1000) {
                ++counted;
                near += 3 * quick >= made;
            }
        }
    }
    // The bound is of use only if it is near: most pieces of many bands are bounded within a third.
    EXPECT_GT(counted, 150);
    EXPECT_GT(near, counted * 9 / 10) << near << " of " << counted;
}

} // namespace
