// SPDX-License-Identifier: MIT
// The region layer against a hostile caller: byte counts that do not hold what a header claims,
// polygons whose edges cancel over millions of rows, results past the rectangle limit, handle
// slots used until their generations run out, and counts whose sum no allocation could hold.
#include <quillon/Region>
#include <quillon/Transform>

#if !defined(_WIN32) // on Windows these are the platform's own functions

#include "region_support.h"

#include "../src/platform/HandleTable.h"

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <set>
#include <vector>

namespace {

DWORD liveRegions() { return GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS); }

// Two pages, the second unreadable: what ends at the first page's end is followed by nothing.
class GuardedPage {
public:
    GuardedPage()
    {
        page_ = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        void* m = mmap(nullptr, 2 * page_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        base_ = m == MAP_FAILED ? nullptr : static_cast<char*>(m);
        if (base_) mprotect(base_ + page_, page_, PROT_NONE);
    }
    ~GuardedPage()
    {
        if (base_) munmap(base_, 2 * page_);
    }
    // The last n bytes of the readable page.
    char* tail(std::size_t n) const { return base_ ? base_ + page_ - n : nullptr; }

private:
    char* base_ = nullptr;
    std::size_t page_ = 0;
};

TEST(RegionHostile, ExtCreateRegionReadsNoFurtherThanTheByteCount)
{
    GuardedPage page;
    char* at = page.tail(sizeof(RGNDATAHEADER));
    ASSERT_NE(at, nullptr);
    const DWORD before = liveRegions();
    for (DWORD claimed : {1u, 1000u, 1u << 24}) {
        RGNDATAHEADER h{sizeof(RGNDATAHEADER), RDH_RECTANGLES, claimed, 16 * claimed, {0, 0, 10, 10}};
        std::memcpy(at, &h, sizeof h);
        EXPECT_EQ(ExtCreateRegion(nullptr, 32, reinterpret_cast<const RGNDATA*>(at)), nullptr)
            << claimed << " rectangles claimed in a 32-byte buffer";
    }
    // A size that holds all but the last byte of the rectangle fails too; the whole one is read.
    char* full = page.tail(48);
    RGNDATAHEADER h{sizeof(RGNDATAHEADER), RDH_RECTANGLES, 1, 16, {0, 0, 0, 0}};
    const RECT r{3, 4, 7, 9};
    std::memcpy(full, &h, sizeof h);
    std::memcpy(full + 32, &r, sizeof r);
    EXPECT_EQ(ExtCreateRegion(nullptr, 47, reinterpret_cast<const RGNDATA*>(full)), nullptr);
    HRGN made = ExtCreateRegion(nullptr, 48, reinterpret_cast<const RGNDATA*>(full));
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(rectsOf(made), (std::vector<Rect>{{3, 4, 7, 9}}));
    // A buffer too short for the header itself is not read at all.
    EXPECT_EQ(ExtCreateRegion(nullptr, 31, reinterpret_cast<const RGNDATA*>(page.tail(31))), nullptr);
    EXPECT_EQ(DeleteObject(made), TRUE);
    EXPECT_EQ(liveRegions(), before);
}

// A needle: down a slanted line and straight back up. Its two edges fill nothing on any row.
std::vector<POINT> needle(LONG x0, LONG y0, LONG x1, LONG y1) { return {{x0, y0}, {x1, y1}, {x0, y0}}; }

TEST(RegionHostile, NeedlesCostNothingPerRow)
{
    // The inputs of the report: one needle of 2^26 rows, and 64 of them in one call.
    const std::vector<POINT> one = needle(0, 0, INT_MAX - 1, 1 << 26);
    HRGN h = CreatePolygonRgn(one.data(), 3, WINDING);
    ASSERT_NE(h, nullptr);
    EXPECT_TRUE(rectsOf(h).empty());
    DeleteObject(h);
    // 64 of them in one call: their rows add up past 32 bits, and the platform's sum of rows,
    // which wraps, leaves the region empty.
    std::vector<POINT> points;
    std::vector<INT> counts;
    for (int k = 0; k < 64; ++k) {
        const std::vector<POINT> n = needle(k, k, INT_MAX - 64 + k, (1 << 26) + k);
        points.insert(points.end(), n.begin(), n.end());
        counts.push_back(3);
    }
    h = CreatePolyPolygonRgn(points.data(), counts.data(), 64, WINDING);
    ASSERT_NE(h, nullptr);
    EXPECT_TRUE(rectsOf(h).empty());
    DeleteObject(h);
    // 2^27 - 1 rows, just short of the count that fails: one needle, and 64 sharing them.
    for (int mode : {ALTERNATE, WINDING}) {
        const std::vector<POINT> tall = needle(0, 0, INT_MAX, (1 << 27) - 1);
        h = CreatePolygonRgn(tall.data(), 3, mode);
        ASSERT_NE(h, nullptr) << "mode " << mode;
        EXPECT_TRUE(rectsOf(h).empty());
        DeleteObject(h);
        points.clear();
        for (int k = 0; k < 64; ++k) {
            const std::vector<POINT> n = needle(k, k, INT_MAX - 64 + k, k + (1 << 21) - 1);
            points.insert(points.end(), n.begin(), n.end());
        }
        h = CreatePolyPolygonRgn(points.data(), counts.data(), 64, mode);
        ASSERT_NE(h, nullptr) << "mode " << mode;
        EXPECT_TRUE(rectsOf(h).empty());
        DeleteObject(h);
    }
    // A polygon of no area: out along a line in two steps and back in one.
    const POINT flat[3] = {{0, 0}, {3 << 20, 1 << 25}, {6 << 20, 1 << 26}};
    h = CreatePolygonRgn(flat, 3, ALTERNATE);
    ASSERT_NE(h, nullptr);
    EXPECT_TRUE(rectsOf(h).empty());
    DeleteObject(h);
}

// The needle's x on a row where it meets a rectangle shows in the result: with WINDING, its two
// edges taken in the order up, down take the sum through zero and split the rectangle's span
// there. The rows between the rectangles are passed over at once; the x must be the one the row
// by row walk reaches, which for a line in range is the exact x rounded up.
TEST(RegionHostile, ANeedlePassedOverAtOnceIsWhereTheWalkPutsIt)
{
    // The needle's rows and the rectangles' rows stay under the 2^27 that the platform allows.
    const std::int64_t X = 1234567891, H = (1 << 27) - 8;
    std::vector<POINT> points = {{LONG(X), LONG(H)}, {0, 0}, {LONG(X), LONG(H)}};
    std::vector<INT> counts = {3};
    const std::vector<std::int64_t> rows = {1, 7, 999983, 33554431, 67108864, 100000007, H - 1};
    for (std::int64_t y : rows) {
        // A rectangle of one row wide enough to hold the needle, turning so that the needle's
        // upward edge takes the sum to zero.
        const LONG left = -10, right = INT_MAX - 1;
        const POINT q[4] = {{left, LONG(y)}, {left, LONG(y + 1)}, {right, LONG(y + 1)}, {right, LONG(y)}};
        points.insert(points.end(), q, q + 4);
        counts.push_back(4);
    }
    HRGN h = CreatePolyPolygonRgn(points.data(), counts.data(), static_cast<int>(counts.size()), WINDING);
    ASSERT_NE(h, nullptr);
    std::vector<Rect> want;
    for (std::int64_t y : rows) {
        const LONG split = LONG((X * y + H - 1) / H); // x on row y, rounded up
        want.push_back({-10, LONG(y), split, LONG(y + 1)});
        want.push_back({split, LONG(y), INT_MAX - 1, LONG(y + 1)});
    }
    EXPECT_EQ(rectsOf(h), want);
    DeleteObject(h);
}

TEST(RegionHostile, PolygonHeightsAsThePlatformMeasuresThem)
{
    const int T = 1 << 27;
    auto make = [](std::vector<POINT> p, std::vector<INT> c) {
        return CreatePolyPolygonRgn(p.data(), c.data(), static_cast<int>(c.size()), ALTERNATE);
    };
    auto count = [](HRGN h) {
        const std::size_t n = h ? rectsOf(h).size() : std::size_t(-1);
        if (h) DeleteObject(h);
        return n;
    };
    // The heights of the polygons of two or more points add up; 2^27 rows or more: null, also
    // when each edge is shorter, and lone points are not measured.
    EXPECT_EQ(make({{0, 0}, {10, T}, {20, 0}}, {3}), nullptr);
    EXPECT_EQ(make({{0, 0}, {10, T / 2 + 10}, {0, T + 10}, {20, T / 2}}, {4}), nullptr);
    EXPECT_EQ(make({{0, INT_MIN}, {10, INT_MIN + T}, {20, INT_MIN}}, {3}), nullptr);
    EXPECT_EQ(make({{0, 0}, {10, 0}, {0, 10}, {5, 0}, {5, 1 << 28}}, {3, 2}), nullptr);
    EXPECT_EQ(make({{0, 0}, {5, T / 2}, {10, 0}, {20, 0}, {25, T / 2}, {30, 0}}, {3, 3}), nullptr);
    EXPECT_EQ(count(make({{0, 0}, {5, T / 2}, {10, 0}, {20, 0}, {25, T / 2 - 1}, {30, 0}}, {3, 3})), 17u);
    EXPECT_EQ(count(make({{0, 0}, {10, T - 1}, {20, 0}}, {3})), 11u);
    EXPECT_EQ(count(make({{0, 0}, {10, 0}, {0, 10}, {0, T}, {10, T}, {0, T + 10}}, {3, 3})), 20u);
    EXPECT_EQ(count(make({{0, 0}, {10, 0}, {0, 10}, {5, 1 << 28}}, {3, 1})), 10u);
    // A height whose difference wraps past 32 bits, or a sum that does, empties the whole region.
    const std::vector<std::pair<std::vector<POINT>, std::vector<INT>>> emptied = {
        {{{0, INT_MIN}, {10, 0}, {20, INT_MIN}}, {3}},
        {{{0, -5}, {10, INT_MAX}, {20, -5}}, {3}},
        {{{0, 0}, {10, 0}, {0, 10}, {0, INT_MIN}, {10, 0}, {20, INT_MIN}}, {3, 3}},
        {{{0, 0}, {5, T}, {10, 0}, {0, INT_MIN}, {10, 0}, {20, INT_MIN}}, {3, 3}},
        {{{0, 0}, {5, INT_MAX}, {10, 0}, {20, 0}, {25, INT_MAX}, {30, 0}}, {3, 3}},
        {{{0, 0}, {5, 1 << 30}, {10, 0}, {20, 0}, {25, 1 << 30}, {30, 0}, {40, 0}, {45, 1 << 30}, {50, 0},
          {60, 0}, {65, 1 << 30}, {70, 0}}, {3, 3, 3, 3}}};
    for (const auto& [p, c] : emptied) EXPECT_EQ(count(make(p, c)), 0u);
    // A rectangle given as one polygon is taken whole, whatever its height.
    HRGN rect = make({{0, INT_MIN}, {10, INT_MIN}, {10, 0}, {0, 0}}, {4});
    ASSERT_NE(rect, nullptr);
    EXPECT_EQ(rectsOf(rect), (std::vector<Rect>{{0, INT_MIN, 10, 0}}));
    DeleteObject(rect);
}

// The rows of polygons scanned one at a time, as the walk's rule states them: an edge from its
// upper end (x1, y1) covers rows y1 to y2 - 1 at x = x1 + ceil((y - y1) dx / dy); a row's spans
// come from its crossings in x order (ALTERNATE: first to second, third to fourth, joined where
// they touch; WINDING: from where the sum of directions leaves zero to where it returns); rows with
// the same spans make one band.
std::vector<Rect> rowByRow(const std::vector<POINT>& p, const std::vector<int>& counts, bool winding)
{
    struct Crossing {
        std::int64_t y1, y2, x1, dx, dy;
        int direction;
    };
    std::vector<Crossing> edges;
    std::int64_t top = INT64_MAX, bottom = INT64_MIN;
    std::size_t first = 0;
    for (const int n : counts) {
        for (int k = 0; k < n; ++k) {
            const POINT a = p[first + (k + n - 1) % n], b = p[first + k];
            if (a.y == b.y) continue;
            const POINT& up = a.y < b.y ? a : b;
            const POINT& down = a.y < b.y ? b : a;
            edges.push_back({up.y, down.y, up.x, std::int64_t(down.x) - up.x, std::int64_t(down.y) - up.y, a.y < b.y ? 1 : -1});
            top = std::min<std::int64_t>(top, up.y), bottom = std::max<std::int64_t>(bottom, down.y);
        }
        first += static_cast<std::size_t>(n);
    }
    std::vector<Rect> out;
    std::vector<std::pair<LONG, LONG>> last;
    std::size_t bandStart = 0;
    for (std::int64_t y = top; y < bottom; ++y) {
        std::vector<std::pair<std::int64_t, int>> xs;
        for (const Crossing& e : edges) {
            if (y < e.y1 || y >= e.y2) continue;
            const std::int64_t n = (y - e.y1) * e.dx; // ceil(n / dy), dy > 0
            xs.push_back({e.x1 + (n >= 0 ? (n + e.dy - 1) / e.dy : -((-n) / e.dy)), e.direction});
        }
        std::sort(xs.begin(), xs.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
        std::vector<std::pair<LONG, LONG>> spans;
        if (!winding) {
            for (std::size_t i = 0; i + 1 < xs.size(); i += 2) {
                const LONG a = LONG(xs[i].first), b = LONG(xs[i + 1].first);
                if (a >= b) continue;
                if (!spans.empty() && spans.back().second >= a)
                    spans.back().second = std::max(spans.back().second, b);
                else
                    spans.push_back({a, b});
            }
        } else {
            int sum = 0;
            LONG start = 0;
            for (const auto& [x, direction] : xs) {
                const int before = sum;
                sum += direction;
                if (before == 0 && sum != 0) start = LONG(x);
                else if (before != 0 && sum == 0 && start < x) spans.push_back({start, LONG(x)});
            }
        }
        if (!spans.empty() && spans == last && !out.empty() && out.back().b == LONG(y)) {
            for (std::size_t i = bandStart; i < out.size(); ++i) out[i].b = LONG(y + 1);
        } else if (!spans.empty()) {
            bandStart = out.size();
            for (const auto& [a, b] : spans) out.push_back({a, LONG(y), b, LONG(y + 1)});
        }
        last = spans;
    }
    return out;
}

// Each row's pixels as spans, touching ones joined.
std::map<LONG, std::vector<std::pair<LONG, LONG>>> pixelRows(const std::vector<Rect>& rects)
{
    std::map<LONG, std::vector<std::pair<LONG, LONG>>> rows;
    for (const Rect& r : rects)
        for (LONG y = r.t; y < r.b; ++y) rows[y].push_back({r.l, r.r});
    for (auto& [y, spans] : rows) {
        std::sort(spans.begin(), spans.end());
        std::vector<std::pair<LONG, LONG>> joined;
        for (const auto& sp : spans) {
            if (!joined.empty() && joined.back().second >= sp.first)
                joined.back().second = std::max(joined.back().second, sp.second);
            else
                joined.push_back(sp);
        }
        spans = joined;
    }
    return rows;
}

// Slivers thinner than a pixel, their long edges leaning alike or nearly so: most rows hold no
// span while both edges move, and those rows are passed over together. Every row must still be
// what a row-by-row scan gives, where the slivers touch, cross and part.
TEST(RegionHostile, ThinSliversAreWhatARowByRowScanGives)
{
    std::uint64_t seed = 0x5eed5eedULL;
    auto next = [&](std::int64_t lo, std::int64_t hi) {
        seed = seed * 6364136223846793005ULL + 1442695040888963407ULL;
        return lo + std::int64_t((seed >> 33) % std::uint64_t(hi - lo + 1));
    };
    for (int round = 0; round < 2000; ++round) {
        std::vector<POINT> points;
        std::vector<int> counts;
        const int slivers = int(next(1, 3));
        for (int s = 0; s < slivers; ++s) {
            // A parallelogram from (x, y) down H rows and across A columns, its other side u
            // columns and v rows away: thinner than a pixel across, mostly.
            const LONG x = LONG(next(-20, 20)), y = LONG(next(-10, 10)), H = LONG(next(20, 600));
            const LONG A = LONG(next(-3, 3) * H + next(-2, 2)), u = LONG(next(-2, 2)), v = LONG(next(-2, 2));
            points.insert(points.end(), {{x, y}, {x + A, y + H}, {x + A + u, y + H + v}, {x + u, y + v}});
            counts.push_back(4);
        }
        for (const int mode : {ALTERNATE, WINDING}) {
            HRGN h = CreatePolyPolygonRgn(points.data(), counts.data(), int(counts.size()), mode);
            ASSERT_NE(h, nullptr);
            const std::vector<Rect> want = rowByRow(points, counts, mode == WINDING);
            if (mode == ALTERNATE)
                EXPECT_EQ(rectsOf(h), want) << "round " << round;
            else // which of two touching spans a row keeps apart follows the edges' order on earlier rows
                EXPECT_EQ(pixelRows(rectsOf(h)), pixelRows(want)) << "round " << round;
            DeleteObject(h);
        }
    }
}

// Polygons whose rows would each start a band of their own, over more rows than the rectangle
// limit: the result would pass the limit, and the call fails as an allocation failure would. An
// edge alone at the left or right end of its rows shows this from the edges alone: its x moves on
// every row when it leans a column a row or more, and once per column crossed when steeper.
TEST(RegionHostile, PolygonsPastTheLimitFromTheirEdges)
{
    const LONG H = (1 << 27) - 2;
    for (int mode : {ALTERNATE, WINDING}) {
        // A parallelogram ten columns wide, leaning 8 columns per row.
        const POINT leaning[4] = {{0, 0}, {10, 0}, {(1 << 30) + 10, H}, {1 << 30, H}};
        EXPECT_EQ(CreatePolygonRgn(leaning, 4, mode), nullptr) << "mode " << mode;
        // Leaning left, one column wide, across the 32-bit wrap of x: its edges' differences wrap
        // and their x wraps partway down.
        const LONG far = 3 << 29;
        const POINT wrapping[4] = {{-far, 0}, {-far + 1, 0}, {far + 1, H}, {far, H}};
        EXPECT_EQ(CreatePolygonRgn(wrapping, 4, mode), nullptr) << "mode " << mode;
        // Crossed: two triangles meeting at a point, both edges leaning.
        const POINT crossed[4] = {{0, 0}, {1 << 30, 0}, {0, H}, {1 << 30, H}};
        EXPECT_EQ(CreatePolygonRgn(crossed, 4, mode), nullptr) << "mode " << mode;
        // A sliver 632 columns wide along a diagonal, its long edges a hair steeper than one
        // column a row: their x moves on all but one row in 14,000 of 36 million.
        const POINT sliver[4] = {
            {816440962, 814208046}, {825487500, 823254584}, {852626514, 850395495}, {843579976, 841348956}};
        EXPECT_EQ(CreatePolygonRgn(sliver, 4, mode), nullptr) << "mode " << mode;
        // A sliver of 18 million rows, bent in the middle: each half alone is under the limit.
        const POINT bent[4] = {
            {305320636, 329705055}, {314367174, 338751609}, {323413711, 347798147}, {314367173, 338751593}};
        EXPECT_EQ(CreatePolygonRgn(bent, 4, mode), nullptr) << "mode " << mode;
        // Two edges each moving on every other row, one on the rows the other keeps: every one of
        // 18 million rows starts a band, though each edge alone moves on 9 million. Leaning
        // right and leaning left.
        const LONG N = 9000000;
        for (const LONG s : {1, -1}) {
            const POINT alternating[4] = {{0, 0}, {s * 10, 1}, {s * (N + 10), 2 * N + 1}, {s * N, 2 * N}};
            EXPECT_EQ(CreatePolygonRgn(alternating, 4, mode), nullptr) << "mode " << mode << " lean " << s;
        }
    }
    // 2^26 rows whose right edge moves one column every 64 rows: 2^20 + 1 bands, under the limit,
    // and the polygon is made.
    const LONG W = 1 << 20, R = 1 << 26;
    const POINT steep[4] = {{0, 0}, {W, 0}, {2 * W, R}, {0, R}};
    std::vector<Rect> want = {{0, 0, W, 1}};
    for (LONG k = 1; k <= W; ++k) want.push_back({0, 64 * (k - 1) + 1, W + k, std::min(64 * k + 1, R)});
    for (int mode : {ALTERNATE, WINDING}) {
        HRGN h = CreatePolygonRgn(steep, 4, mode);
        ASSERT_NE(h, nullptr) << "mode " << mode;
        EXPECT_EQ(rectsOf(h), want) << "mode " << mode;
        DeleteObject(h);
    }
}

// A region mapped through a stretch that makes one rectangle's image a parallelogram of 10 * 2^23
// rows, each a band of its own: the mapping fails, and nothing is left behind.
TEST(RegionHostile, AMappingPastTheLimitGivesNull)
{
    const DWORD before = liveRegions();
    HRGN square = CreateRectRgn(0, 0, 10, 10);
    double e[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    e[1] = 1 << 26; // x + 2^26 y
    e[5] = 1 << 23; // 2^23 y
    EXPECT_EQ(Transform<double>(e) * square, nullptr);
    // Leaning one column per 64 rows instead, it is made: 10 * 2^17 + 1 bands of one rectangle.
    e[1] = 1 << 17;
    HRGN made = Transform<double>(e) * square;
    ASSERT_NE(made, nullptr);
    const std::vector<Rect> rects = rectsOf(made);
    EXPECT_EQ(rects.size(), std::size_t(10 << 17) + 1);
    EXPECT_EQ(rects.front(), (Rect{0, 0, 10, 1}));
    EXPECT_EQ(rects[1], (Rect{1, 1, 11, 65}));
    EXPECT_EQ(rects.back(), (Rect{10 << 17, (10 << 23) - 63, (10 << 17) + 10, 10 << 23}));
    DeleteObject(made);
    DeleteObject(square);
    EXPECT_EQ(liveRegions(), before);
}

long peakKilobytes()
{
    rusage u{};
    getrusage(RUSAGE_SELF, &u);
    return u.ru_maxrss;
}

// 4096 columns in one band over 8192 rows, and 4096 one-row bands that each put one rectangle in
// a different gap between the columns: every row of the union holds over 4096 rectangles, and no
// two neighbouring rows are the same, so the union would pass 2^25 rectangles.
TEST(RegionHostile, OneRectangleLimitForEveryOperation)
{
    const int kColumns = 4096;
    std::vector<RECT> columns, dots;
    for (int i = 0; i < kColumns; ++i) columns.push_back(RECT{4 * i, 0, 4 * i + 2, 2 * kColumns});
    for (int j = 0; j < kColumns; ++j) dots.push_back(RECT{4 * j + 2, 2 * j, 4 * j + 3, 2 * j + 1});
    auto fromRects = [](const std::vector<RECT>& rects) {
        std::vector<std::uint64_t> store(4 + 2 * rects.size());
        auto* data = reinterpret_cast<RGNDATA*>(store.data());
        data->rdh = RGNDATAHEADER{sizeof(RGNDATAHEADER), RDH_RECTANGLES, DWORD(rects.size()),
                                  DWORD(16 * rects.size()), {0, 0, 0, 0}};
        std::memcpy(data->Buffer, rects.data(), 16 * rects.size());
        return ExtCreateRegion(nullptr, DWORD(32 + 16 * rects.size()), data);
    };
    HRGN a = fromRects(columns), b = fromRects(dots);
    ASSERT_NE(a, nullptr);
    ASSERT_NE(b, nullptr);
    const std::vector<Rect> aRects = rectsOf(a);
    ASSERT_EQ(aRects.size(), std::size_t(kColumns));
    const long peakBefore = peakKilobytes();

    HRGN dest = CreateRectRgn(1, 2, 3, 4);
    EXPECT_EQ(CombineRgn(dest, a, b, RGN_OR), ERROR);
    EXPECT_EQ(CombineRgn(dest, a, b, RGN_XOR), ERROR);
    EXPECT_EQ(rectsOf(dest), (std::vector<Rect>{{1, 2, 3, 4}})) << "the destination is unchanged";
    EXPECT_EQ(CombineRgn(a, a, b, RGN_OR), ERROR);
    EXPECT_EQ(rectsOf(a), aRects) << "a source that is the destination is unchanged";
    // What fits is still made: the dots lie between the columns, so they meet nothing.
    EXPECT_EQ(CombineRgn(dest, a, b, RGN_AND), NULLREGION);
    EXPECT_EQ(CombineRgn(dest, b, a, RGN_DIFF), COMPLEXREGION);
    EXPECT_EQ(rectsOf(dest).size(), std::size_t(kColumns));
    // 2^25 rectangles would take 512 MB; refusing them takes next to nothing.
    EXPECT_LT(peakKilobytes() - peakBefore, 64 * 1024) << "kilobytes of peak memory";
    for (HRGN h : {a, b, dest}) DeleteObject(h);
}

HRGN regionOf(const std::vector<RECT>& rects)
{
    std::vector<std::uint64_t> store(4 + 2 * rects.size());
    auto* data = reinterpret_cast<RGNDATA*>(store.data());
    data->rdh = RGNDATAHEADER{sizeof(RGNDATAHEADER), RDH_RECTANGLES, DWORD(rects.size()),
                              DWORD(16 * rects.size()), {0, 0, 0, 0}};
    if (!rects.empty()) std::memcpy(data->Buffer, rects.data(), 16 * rects.size());
    return ExtCreateRegion(nullptr, DWORD(32 + 16 * rects.size()), data);
}

std::vector<Rect> asRects(const std::vector<RECT>& rects)
{
    std::vector<Rect> out;
    for (const RECT& r : rects) out.push_back({r.left, r.top, r.right, r.bottom});
    return out;
}

// One band of many columns over many rows, met by bands of one row and one rectangle each: what
// each operation keeps of the wide band, row by row, joined where rows repeat.
TEST(RegionHostile, OneWideBandAgainstManyNarrowOnes)
{
    const LONG K = 256, R = 2048;
    std::vector<RECT> columns, gaps, inside;
    for (LONG c = 0; c < K; ++c) columns.push_back(RECT{4 * c, 0, 4 * c + 2, R});
    auto at = [&](LONG j) { return (j * 7) % K; }; // the column a row's rectangle goes with
    for (LONG j = 0; j < R; ++j) {
        gaps.push_back(RECT{4 * at(j) + 2, j, 4 * at(j) + 3, j + 1}); // touching the column's right
        inside.push_back(RECT{4 * at(j), j, 4 * at(j) + 1, j + 1});
    }
    HRGN a = regionOf(columns), g = regionOf(gaps), in = regionOf(inside), d = CreateRectRgn(0, 0, 0, 0);
    ASSERT_TRUE(a && g && in && d);
    EXPECT_EQ(CombineRgn(d, a, g, RGN_AND), NULLREGION);
    EXPECT_EQ(CombineRgn(d, g, a, RGN_AND), NULLREGION);
    EXPECT_EQ(CombineRgn(d, a, in, RGN_AND), COMPLEXREGION);
    EXPECT_EQ(rectsOf(d), asRects(inside));
    EXPECT_EQ(CombineRgn(d, a, g, RGN_DIFF), COMPLEXREGION);
    EXPECT_EQ(rectsOf(d), asRects(columns));
    EXPECT_EQ(CombineRgn(d, g, a, RGN_DIFF), COMPLEXREGION);
    EXPECT_EQ(rectsOf(d), asRects(gaps));
    EXPECT_EQ(CombineRgn(d, in, a, RGN_DIFF), NULLREGION);
    EXPECT_EQ(CombineRgn(d, a, in, RGN_OR), COMPLEXREGION);
    EXPECT_EQ(rectsOf(d), asRects(columns));
    EXPECT_EQ(CombineRgn(d, in, a, RGN_OR), COMPLEXREGION);
    EXPECT_EQ(rectsOf(d), asRects(columns));
    // Each row differs from the next: the columns, one of them notched (less the rectangle inside
    // it) or widened (joined with the one touching it).
    std::vector<Rect> notched, widened;
    for (LONG j = 0; j < R; ++j)
        for (LONG c = 0; c < K; ++c) {
            notched.push_back({c == at(j) ? 4 * c + 1 : 4 * c, j, 4 * c + 2, j + 1});
            widened.push_back({4 * c, j, c == at(j) ? 4 * c + 3 : 4 * c + 2, j + 1});
        }
    EXPECT_EQ(CombineRgn(d, a, in, RGN_DIFF), COMPLEXREGION);
    EXPECT_EQ(rectsOf(d), notched);
    EXPECT_EQ(CombineRgn(d, a, g, RGN_XOR), COMPLEXREGION);
    EXPECT_EQ(rectsOf(d), widened);
    EXPECT_EQ(CombineRgn(d, g, a, RGN_OR), COMPLEXREGION);
    EXPECT_EQ(rectsOf(d), widened);

    // A wide band whose rectangles touch in pairs, as a polygon filled with WINDING keeps them:
    // 128 rectangles side by side, turning one way and the other. Where a row's rectangle meets
    // it, the union joins the whole row into one; a row it does not meet keeps the band as it is.
    const LONG P = 128;
    std::vector<POINT> points;
    std::vector<INT> counts;
    for (LONG i = 0; i < P; ++i) {
        const POINT q[4] = {{2 * i, 0}, {2 * i + 2, 0}, {2 * i + 2, R}, {2 * i, R}};
        if (i % 2)
            points.insert(points.end(), {q[0], q[3], q[2], q[1]});
        else
            points.insert(points.end(), q, q + 4);
        counts.push_back(4);
    }
    HRGN t = CreatePolyPolygonRgn(points.data(), counts.data(), static_cast<int>(P), WINDING);
    ASSERT_NE(t, nullptr);
    std::vector<Rect> band;
    for (LONG i = 0; i < P; ++i) band.push_back({2 * i, 0, 2 * i + 2, R});
    ASSERT_EQ(rectsOf(t), band);
    std::vector<RECT> dots; // on even rows, in the left half of a rectangle
    for (LONG j = 0; j < R; j += 2) dots.push_back(RECT{2 * ((j * 5) % P), j, 2 * ((j * 5) % P) + 1, j + 1});
    HRGN e = regionOf(dots);
    ASSERT_NE(e, nullptr);
    std::vector<Rect> joined, cut;
    for (LONG j = 0; j < R; ++j) {
        if (j % 2 == 0) joined.push_back({0, j, 2 * P, j + 1});
        for (LONG i = 0; i < P; ++i) {
            if (j % 2) joined.push_back({2 * i, j, 2 * i + 2, j + 1});
            const bool hit = j % 2 == 0 && i == (j * 5) % P;
            cut.push_back({hit ? 2 * i + 1 : 2 * i, j, 2 * i + 2, j + 1});
        }
    }
    EXPECT_EQ(CombineRgn(d, t, e, RGN_OR), COMPLEXREGION);
    EXPECT_EQ(rectsOf(d), joined);
    EXPECT_EQ(CombineRgn(d, e, t, RGN_OR), COMPLEXREGION);
    EXPECT_EQ(rectsOf(d), joined);
    EXPECT_EQ(CombineRgn(d, t, e, RGN_DIFF), COMPLEXREGION);
    EXPECT_EQ(rectsOf(d), cut);
    EXPECT_EQ(CombineRgn(d, t, e, RGN_AND), COMPLEXREGION);
    EXPECT_EQ(rectsOf(d), asRects(dots));
    for (HRGN h : {a, g, in, d, t, e}) DeleteObject(h);
}

// A slot handed out and freed until its generation counter is spent is retired: every handle the
// table gives is new, and no stale handle ever names the object a later one names.
TEST(RegionHostile, ASlotWhoseGenerationWouldWrapIsRetired)
{
    using Table = quillon::region_detail::HandleTable<int, 4>; // generations 1 to 15
    Table table;
    std::set<void*> issued;
    std::vector<void*> stale;
    for (int round = 0; round < 40; ++round) {
        void* h = table.insert(std::make_unique<int>(round));
        ASSERT_NE(h, nullptr);
        EXPECT_TRUE(issued.insert(h).second) << "handle issued twice in round " << round;
        for (void* old : stale) {
            EXPECT_FALSE(table.read(old, [](const int&) {})) << "a stale handle came back";
        }
        int seen = -1;
        EXPECT_TRUE(table.read(h, [&](const int& v) { seen = v; }));
        EXPECT_EQ(seen, round);
        EXPECT_TRUE(table.erase(h));
        EXPECT_FALSE(table.erase(h));
        stale.push_back(h);
    }
    EXPECT_EQ(table.live(), 0u);
    EXPECT_EQ(table.retired(), 2u); // 40 rounds of 15 generations: two slots spent, a third in use
}

// Counts whose sum passes what a vector can hold: 2^28 counts of INT_MAX, a gigabyte of them,
// all read from one megabyte mapped again and again.
TEST(RegionHostile, CountsNoAllocationCouldHoldFailWithoutAnException)
{
    const std::size_t chunk = std::size_t(1) << 20, total = std::size_t(1) << 30;
    const int fd = memfd_create("counts", 0);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(ftruncate(fd, static_cast<off_t>(chunk)), 0);
    void* first = mmap(nullptr, chunk, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    ASSERT_NE(first, MAP_FAILED);
    std::vector<INT> fill(chunk / sizeof(INT), INT_MAX);
    std::memcpy(first, fill.data(), chunk);
    munmap(first, chunk);
    char* base = static_cast<char*>(mmap(nullptr, total, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(base, MAP_FAILED);
    bool mapped = true;
    for (std::size_t at = 0; at < total && mapped; at += chunk)
        mapped = mmap(base + at, chunk, PROT_READ, MAP_SHARED | MAP_FIXED, fd, 0) != MAP_FAILED;
    ASSERT_TRUE(mapped);
    const POINT points[3] = {{0, 0}, {10, 0}, {0, 10}};
    const int polygons = static_cast<int>(total / sizeof(INT));
    EXPECT_EQ(CreatePolyPolygonRgn(points, reinterpret_cast<const INT*>(base), polygons, WINDING), nullptr);
    EXPECT_EQ(CreatePolyPolygonRgn(points, reinterpret_cast<const INT*>(base), polygons, ALTERNATE), nullptr);
    munmap(base, total);
    close(fd);
}

} // namespace

#endif
