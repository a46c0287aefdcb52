// SPDX-License-Identifier: MIT
// OffsetRgn at the edges of the platform's coordinate range, -2^27 to 2^27 - 1: a move that would
// put an edge of a non-empty region's bounding box outside it fails with ERROR and leaves the
// region where it was; an empty region moves by anything.
#include <quillon/Region>

#if !defined(_WIN32) // on Windows these are the platform's own functions

#include "region_support.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <vector>

namespace {

constexpr int K = 1 << 27;

// The union of the rectangles, as one region.
HRGN regionOf(const std::vector<Rect>& rects)
{
    HRGN h = CreateRectRgn(0, 0, 0, 0);
    for (const Rect& r : rects) {
        HRGN piece = CreateRectRgn(r.l, r.t, r.r, r.b);
        CombineRgn(h, h, piece, RGN_OR);
        DeleteObject(piece);
    }
    return h;
}

Rect boundOf(const std::vector<Rect>& rects)
{
    if (rects.empty()) return Rect{0, 0, 0, 0};
    Rect b = rects.front();
    for (const Rect& r : rects) {
        b.l = r.l < b.l ? r.l : b.l;
        b.t = r.t < b.t ? r.t : b.t;
        b.r = r.r > b.r ? r.r : b.r;
        b.b = r.b > b.b ? r.b : b.b;
    }
    return b;
}

struct Move {
    int dx, dy;
    int kind;                // what OffsetRgn returns
    std::vector<Rect> after; // the region's rectangles after the call
};

struct OffsetCase {
    const char* what;
    std::vector<Rect> start;
    std::vector<Move> moves; // made one after another on the same region
};

// Each edge is taken to the last coordinate the range holds and one past it, from both sides:
// the right and bottom edges, though exclusive, may reach 2^27 - 1 but not 2^27.
const std::vector<OffsetCase>& offsetCases()
{
    static const std::vector<OffsetCase> cases = {
        {"right edge",
         {{0, 0, 100, 100}},
         {{10, 10, SIMPLEREGION, {{10, 10, 110, 110}}},
          {K - 110, 10, ERROR, {{10, 10, 110, 110}}},
          {K - 111, 10, SIMPLEREGION, {{K - 101, 20, K - 1, 120}}},
          {1, 0, ERROR, {{K - 101, 20, K - 1, 120}}},
          {0, 0, SIMPLEREGION, {{K - 101, 20, K - 1, 120}}}}},
        {"left edge",
         {{0, 0, 100, 100}},
         {{-10, 10, SIMPLEREGION, {{-10, 10, 90, 110}}},
          {-(K - 9), 10, ERROR, {{-10, 10, 90, 110}}},
          {-(K - 10), 10, SIMPLEREGION, {{-K, 20, -K + 100, 120}}},
          {-1, 0, ERROR, {{-K, 20, -K + 100, 120}}}}},
        {"bottom edge",
         {{0, 0, 100, 100}},
         {{10, 10, SIMPLEREGION, {{10, 10, 110, 110}}},
          {10, K - 110, ERROR, {{10, 10, 110, 110}}},
          {10, K - 111, SIMPLEREGION, {{20, K - 101, 120, K - 1}}},
          {0, 1, ERROR, {{20, K - 101, 120, K - 1}}}}},
        {"top edge",
         {{0, 0, 100, 100}},
         {{10, -10, SIMPLEREGION, {{10, -10, 110, 90}}},
          {10, -(K - 9), ERROR, {{10, -10, 110, 90}}},
          {10, -(K - 10), SIMPLEREGION, {{20, -K, 120, -K + 100}}},
          {0, -1, ERROR, {{20, -K, 120, -K + 100}}}}},
        // The bounding box decides, not the first rectangle: the second reaches further on both
        // axes.
        {"two rectangles",
         {{0, 0, 10, 10}, {1000, 20, 1010, 30}},
         {{K - 100, 0, ERROR, {{0, 0, 10, 10}, {1000, 20, 1010, 30}}},
          {K - 1010, 0, ERROR, {{0, 0, 10, 10}, {1000, 20, 1010, 30}}},
          {0, K - 30, ERROR, {{0, 0, 10, 10}, {1000, 20, 1010, 30}}},
          {K - 1011, K - 31, COMPLEXREGION,
           {{K - 1011, K - 31, K - 1001, K - 21}, {K - 11, K - 11, K - 1, K - 1}}}}},
        {"both axes at once",
         {{0, 0, 100, 100}},
         {{-K, K - 100, ERROR, {{0, 0, 100, 100}}},
          {K - 100, -K, ERROR, {{0, 0, 100, 100}}},
          {-K, K - 101, SIMPLEREGION, {{-K, K - 101, -K + 100, K - 1}}}}},
        // Sums past 32 bits would wrap back into the range: 2^31 - 101 + 2^31 - 1 is -102 in 32 bits.
        {"made beyond the range",
         {{INT_MAX - 100, 0, INT_MAX, 10}},
         {{INT_MAX, 0, ERROR, {{INT_MAX - 100, 0, INT_MAX, 10}}},
          {0, 0, ERROR, {{INT_MAX - 100, 0, INT_MAX, 10}}},
          {INT_MIN, 0, SIMPLEREGION, {{-101, 0, -1, 10}}}}},
        {"empty",
         {},
         {{INT_MIN + 10, INT_MIN + 10, NULLREGION, {}},
          {INT_MAX, INT_MAX, NULLREGION, {}},
          {INT_MIN, 0, NULLREGION, {}}}},
    };
    return cases;
}

TEST(RegionOffset, MovesStayInsideThePlatformsRange)
{
    for (const OffsetCase& c : offsetCases()) {
        HRGN h = regionOf(c.start);
        ASSERT_NE(h, nullptr) << c.what;
        for (std::size_t i = 0; i < c.moves.size(); ++i) {
            const Move& m = c.moves[i];
            SCOPED_TRACE(testing::Message() << c.what << ", move " << i << " by " << m.dx << ", " << m.dy);
            EXPECT_EQ(OffsetRgn(h, m.dx, m.dy), m.kind);
            EXPECT_EQ(rectsOf(h), m.after);
            RECT box{-7, -7, -7, -7};
            const int kind = m.after.empty() ? NULLREGION : m.after.size() == 1 ? SIMPLEREGION : COMPLEXREGION;
            EXPECT_EQ(GetRgnBox(h, &box), kind);
            EXPECT_EQ((Rect{box.left, box.top, box.right, box.bottom}), boundOf(m.after));
        }
        DeleteObject(h);
    }
}

// A refused move leaves a region the other functions still treat as the one it was.
TEST(RegionOffset, ARefusedRegionCombinesAsBefore)
{
    HRGN h = CreateRectRgn(0, 0, 10, 10);
    HRGN second = CreateRectRgn(1000, 20, 1010, 30);
    ASSERT_EQ(CombineRgn(h, h, second, RGN_OR), COMPLEXREGION);
    EXPECT_EQ(OffsetRgn(h, K - 100, K - 100), ERROR);
    EXPECT_EQ(CombineRgn(h, h, second, RGN_XOR), SIMPLEREGION);
    EXPECT_EQ(rectsOf(h), (std::vector<Rect>{{0, 0, 10, 10}}));
    EXPECT_EQ(PtInRegion(h, 9, 9), TRUE);
    EXPECT_EQ(PtInRegion(h, 1000, 20), FALSE);
    DeleteObject(second);
    DeleteObject(h);
}

} // namespace

#endif
