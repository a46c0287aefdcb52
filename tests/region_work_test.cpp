// SPDX-License-Identifier: MIT
// What region calls cost, counted in the steps the region layer takes (quillon_region_steps), not
// timed: the slow inputs found by hostile fuzzing, each held to a generous multiple of its input and
// result. A call past the rectangle limit fails after steps for its points or rectangles, not for
// the limit's rectangles; one that succeeds takes steps for its input and its result.
#include <quillon/Region>
#include <quillon/Transform>

#if !defined(_WIN32) // the count is the region layer's own

#include "region_support.h"

#include "../src/platform/RegionUnion.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

// The steps a call takes, and what it returned.
template <class F>
unsigned long long stepsOf(F&& call)
{
    const unsigned long long before = quillon_region_steps();
    call();
    return quillon_region_steps() - before;
}

std::size_t rectangles(HRGN h) { return h ? rectsOf(h).size() : 0; }

HRGN fromRects(const std::vector<RECT>& rects)
{
    std::vector<std::uint64_t> store(4 + 2 * rects.size());
    auto* data = reinterpret_cast<RGNDATA*>(store.data());
    data->rdh = RGNDATAHEADER{sizeof(RGNDATAHEADER), RDH_RECTANGLES, DWORD(rects.size()), DWORD(16 * rects.size()),
                              {0, 0, 0, 0}};
    if (!rects.empty()) std::memcpy(data->Buffer, rects.data(), 16 * rects.size());
    return ExtCreateRegion(nullptr, DWORD(32 + 16 * rects.size()), data);
}

// Slivers whose rows would each start a band, past the limit: thin and slanted ones (the report's
// triangle, whose long edges lean 19 columns a row, wrapping past the 32-bit range of x), thin ones
// leaning less than a column a row, and 64 side by side. Each fails after steps for its points.
TEST(RegionWork, SliversPastTheLimitFailAfterStepsForTheirPoints)
{
    const LONG H = (1 << 27) - 1;
    const POINT slanted[3] = {{INT_MIN, -111848106}, {43, 0}, {44, 0}};
    const POINT steep[3] = {{0, 0}, {LONG(0.7 * H), H}, {LONG(0.7 * H) + 1, H}};
    for (const int mode : {ALTERNATE, WINDING}) {
        for (const POINT* p : {slanted, steep}) {
            HRGN h = nullptr;
            const auto steps = stepsOf([&] { h = CreatePolygonRgn(p, 3, mode); });
            EXPECT_EQ(h, nullptr) << "mode " << mode;
            EXPECT_LT(steps, 1000u) << "mode " << mode;
        }
        std::vector<POINT> comb;
        std::vector<INT> counts;
        for (LONG k = 0; k < 64; ++k) { // 2^19 rows of 64 spans, each row a band of its own
            const LONG x = 40 * k;
            comb.insert(comb.end(), {{x, 0}, {x + 3 * (1 << 19), 1 << 19}, {x + 3 * (1 << 19) + 9, 1 << 19}, {x + 9, 0}});
            counts.push_back(4);
        }
        HRGN h = nullptr;
        const auto steps = stepsOf([&] { h = CreatePolyPolygonRgn(comb.data(), counts.data(), 64, mode); });
        EXPECT_EQ(h, nullptr) << "mode " << mode;
        EXPECT_LT(steps, 64 * comb.size()) << "mode " << mode;
    }
}

// Upright edges and edges leaning three columns over 2^27 rows, at the left end of the 32-bit
// range, filled with WINDING: three rectangles. Where a leaning edge parts from an upright one is
// found in steps for the logarithm of the rows, though the terms searched for it nearly all miss.
TEST(RegionWork, EdgesThatBarelyLeanPartInFewSteps)
{
    const POINT p[7] = {{-2147483645, -2126577665}, {-2147483645, -2013265921}, {INT_MIN, INT_MIN},
                        {-2147483645, -2013265921}, {INT_MIN, INT_MIN},         {INT_MIN, -2049897228},
                        {INT_MIN, INT_MIN}};
    HRGN h = nullptr;
    const auto steps = stepsOf([&] { h = CreatePolygonRgn(p, 7, WINDING); });
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(rectangles(h), 3u);
    EXPECT_LT(steps, 5000u);
    DeleteObject(h);
}

// A needle (an edge out and the same edge back) crossing nearly upright WINDING spans for ten
// million rows leaning 43 columns a row: it changes no span, and the rows it crosses are passed
// over but where it passes another edge.
TEST(RegionWork, ANeedleAcrossSpansCostsNoStepsForItsRows)
{
    const POINT p[7] = {{1342177409, 1402798208}, {1342177409, 1342177408}, {1342177411, 1476395135},
                        {1756699229, 1466761343}, {1342177411, 1476395135}, {1342177152, 1342223232},
                        {1342177411, 1342177422}};
    for (const int mode : {ALTERNATE, WINDING}) {
        HRGN h = nullptr;
        const auto steps = stepsOf([&] { h = CreatePolygonRgn(p, 7, mode); });
        ASSERT_NE(h, nullptr);
        EXPECT_LT(steps, 64 * (rectangles(h) + 7)) << "mode " << mode;
        DeleteObject(h);
    }
}

// Two edges less than a column apart over 2^24 rows, parallel and one row apart: a column lies
// between them on one row in 64. The rows without a span are passed over to the next with one.
TEST(RegionWork, AThinSliverCostsItsRectanglesNotItsRows)
{
    const LONG H = (1 << 24) - 3, A = H + H / 64;
    const POINT sliver[4] = {{0, 0}, {1, 1}, {A + 1, H + 1}, {A, H}};
    for (const int mode : {ALTERNATE, WINDING}) {
        HRGN h = nullptr;
        const auto steps = stepsOf([&] { h = CreatePolygonRgn(sliver, 4, mode); });
        ASSERT_NE(h, nullptr);
        const std::size_t n = rectangles(h);
        EXPECT_GT(n, std::size_t(H / 65));
        EXPECT_LT(n, std::size_t(H / 63));
        EXPECT_LT(steps, 16 * n) << "mode " << mode;
        DeleteObject(h);
    }
}

// 40 squares mapped to slivers of 2^19 rows leaning three columns a row and one column wide: each
// piece holds about 2^19 rectangles, all of them together past the limit. The mapping fails once,
// having bounded each piece, none made. One square alone is made, for its rectangles' steps.
TEST(RegionWork, AMappingWhosePiecesPassTheLimitTogetherFailsOnce)
{
    std::vector<RECT> squares;
    for (LONG i = 0; i < 40; ++i) squares.push_back(RECT{i, 2 * i, i + 1, 2 * i + 1});
    HRGN region = fromRects(squares), one = CreateRectRgn(0, 0, 1, 1);
    double e[16] = {3.0 * (1 << 19), 1, 0, 0, double(1 << 19), 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const Transform<double> t(e);
    HRGN mapped = nullptr;
    auto steps = stepsOf([&] { mapped = t * region; });
    EXPECT_EQ(mapped, nullptr);
    EXPECT_LT(steps, 100u * squares.size());
    steps = stepsOf([&] { mapped = t * one; });
    ASSERT_NE(mapped, nullptr);
    const std::size_t n = rectangles(mapped);
    EXPECT_GT(n, std::size_t(1) << 18);
    EXPECT_LT(steps, 16 * n);
    for (HRGN h : {region, one, mapped}) DeleteObject(h);
}

// Rows of a region sheared into leaning pieces whose bands overlap those of many other pieces: the
// union keeps the spans that stay in order, band top after band top, instead of sorting them again.
TEST(RegionWork, TheUnionOfShearedRowsCostsItsPiecesAndResult)
{
    std::vector<RECT> rows;
    for (LONG i = 0; i < 300; ++i) rows.push_back(RECT{(i * 7) % 13, i, 300 + (i * 11) % 17, i + 1});
    HRGN region = fromRects(rows);
    double e[16] = {1, 0, 0, 0, 3, 7, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}; // y' = 3 x + 7 y
    const Transform<double> t(e);
    // The pieces' rectangles, each made alone.
    std::size_t pieces = 0;
    for (const RECT& r : rows) {
        const POINT c[4] = {{r.left, 3 * r.left + 7 * r.top}, {r.right, 3 * r.right + 7 * r.top},
                            {r.right, 3 * r.right + 7 * r.bottom}, {r.left, 3 * r.left + 7 * r.bottom}};
        HRGN piece = CreatePolygonRgn(c, 4, WINDING);
        pieces += rectangles(piece);
        DeleteObject(piece);
    }
    HRGN mapped = nullptr;
    const auto steps = stepsOf([&] { mapped = t * region; });
    ASSERT_NE(mapped, nullptr);
    EXPECT_LT(steps, 16 * (pieces + rectangles(mapped))) << pieces << " rectangles in the pieces";
    DeleteObject(mapped);
    DeleteObject(region);
}

// One band of 4096 columns over 8192 rows and 4096 one-row bands in its gaps: XOR would hold 2^25
// rectangles and fails; each row's narrow band is met where it lies, not along the wide band.
TEST(RegionWork, AnXorPastTheLimitCostsItsNarrowBands)
{
    std::vector<RECT> columns, dots;
    for (LONG i = 0; i < 4096; ++i) columns.push_back(RECT{4 * i, 0, 4 * i + 2, 8192});
    for (LONG j = 0; j < 4096; ++j) dots.push_back(RECT{4 * j + 2, 2 * j, 4 * j + 3, 2 * j + 1});
    HRGN a = fromRects(columns), b = fromRects(dots), d = CreateRectRgn(0, 0, 0, 0);
    int kind = 0;
    for (const int mode : {RGN_XOR, RGN_OR}) {
        const auto steps = stepsOf([&] { kind = CombineRgn(d, a, b, mode); });
        EXPECT_EQ(kind, ERROR) << "mode " << mode;
        EXPECT_LT(steps, 64u * 8192) << "mode " << mode;
    }
    for (HRGN h : {a, b, d}) DeleteObject(h);
}

// The report's second sliver, at a sixty-fourth of its height: a quarter of a million rectangles,
// combined with itself moved by a pixel each way. Every operation takes steps for its operands and
// result.
TEST(RegionWork, CombiningASliverCostsItsOperandsAndResult)
{
    const POINT p[3] = {{-4, -4}, {-786047, 262144}, {0, 0}};
    HRGN a = CreatePolygonRgn(p, 3, ALTERNATE), b = CreateRectRgn(0, 0, 0, 0), d = CreateRectRgn(0, 0, 0, 0);
    ASSERT_NE(a, nullptr);
    const std::size_t n = rectangles(a);
    EXPECT_GT(n, std::size_t(200000));
    CombineRgn(b, a, nullptr, RGN_COPY);
    OffsetRgn(b, 1, 1);
    for (const int mode : {RGN_AND, RGN_OR, RGN_XOR, RGN_DIFF}) {
        const auto steps = stepsOf([&] { CombineRgn(d, a, b, mode); });
        EXPECT_LT(steps, 8 * (2 * n + rectangles(d))) << "mode " << mode;
    }
    for (HRGN h : {a, b, d}) DeleteObject(h);
}

} // namespace

#endif
