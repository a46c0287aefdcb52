// SPDX-License-Identifier: MIT
// Transform<T> * HRGN: the union of the images of the region's rectangles.
#include "test_support.h"

#include <quillon/Region>

#include <cmath>

namespace {

HRGN rectangleRegion(std::initializer_list<RECT> rects)
{
    HRGN result = CreateRectRgn(0, 0, 0, 0);
    for (const RECT& r : rects) {
        HRGN piece = CreateRectRgnIndirect(&r);
        CombineRgn(result, result, piece, RGN_OR);
        DeleteObject(piece);
    }
    return result;
}

// True when the region is exactly the given rectangles' union; deletes the region.
bool takeAndCompare(HRGN mapped, std::initializer_list<RECT> expected)
{
    if (!mapped) return false;
    HRGN want = rectangleRegion(expected);
    const bool equal = EqualRgn(mapped, want) != 0;
    DeleteObject(want);
    DeleteObject(mapped);
    return equal;
}

template <class T>
class RegionMapping : public ::testing::Test {};
TYPED_TEST_SUITE(RegionMapping, TransformTypes);

TYPED_TEST(RegionMapping, NullEmptyAndDeletedRegionsGiveNull)
{
    const Transform<TypeParam> identity;
    EXPECT_EQ(identity * HRGN(nullptr), nullptr);
    HRGN empty = CreateRectRgn(5, 5, 5, 5);
    EXPECT_EQ(identity * empty, nullptr);
    DeleteObject(empty);
    HRGN gone = CreateRectRgn(0, 0, 10, 10);
    DeleteObject(gone);
    EXPECT_EQ(identity * gone, nullptr); // the read fails; nothing is made
}

TYPED_TEST(RegionMapping, MovesTurnsAndJoinsPiecesWithoutTouchingTheArgument)
{
    // Moved by (3, -4): only the first two rows of the plane take part, and the argument is
    // still the caller's, unchanged.
    TypeParam e[16] = {1, 0, 0, 3, 0, 1, 0, -4, 7, 8, 9, 100, 5, 6, 7, 8};
    HRGN one = CreateRectRgn(10, 20, 30, 40);
    EXPECT_TRUE(takeAndCompare(Transform<TypeParam>(e) * one, {{13, 16, 33, 36}}));
    EXPECT_TRUE(takeAndCompare(one, {{10, 20, 30, 40}}));

    // The identity gives back the same pixels for a region of several bands.
    HRGN several = rectangleRegion({{0, 0, 10, 10}, {5, 5, 20, 15}, {-7, 30, -2, 31}});
    HRGN copy = Transform<TypeParam>() * several;
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, several);
    EXPECT_TRUE(EqualRgn(copy, several));
    DeleteObject(copy);

    // A quarter turn about z of a square gives a diamond, not the box around the turned corners.
    Transform<TypeParam> turn;
    turn.Function_2424(std::atan(1.0));
    HRGN square = CreateRectRgn(0, 0, 100, 100);
    HRGN diamond = turn * square;
    ASSERT_NE(diamond, nullptr);
    RECT box;
    GetRgnBox(diamond, &box);
    EXPECT_LT(box.left, -60);
    EXPECT_GT(box.bottom, 130);
    EXPECT_FALSE(PtInRegion(diamond, box.left + 2, box.top + 2)); // a corner of the box is outside
    EXPECT_TRUE(PtInRegion(diamond, 0, 70));                       // the middle of the diamond
    DeleteObject(diamond);
    DeleteObject(square);
    DeleteObject(several);
}

TEST(RegionMappingCorners, CornersTruncateTowardZeroWhileGuarddoubleExitsToNearest)
{
    HRGN r = CreateRectRgn(0, 0, 10, 10);
    // 2.9 and 12.9: truncated to 2 and 12; nearest 3 and 13 (guarddouble's exit through nint).
    EXPECT_TRUE(takeAndCompare(matrix<double>(identityWith(3, 2.9)) * r, {{2, 0, 12, 10}}));
    EXPECT_TRUE(takeAndCompare(matrix<guarddouble>(identityWith(3, 2.9)) * r, {{3, 0, 13, 10}}));
    // -2.9 and 7.1: toward zero -2 and 7; nearest -3 and 7.
    EXPECT_TRUE(takeAndCompare(matrix<double>(identityWith(3, -2.9)) * r, {{-2, 0, 7, 10}}));
    EXPECT_TRUE(takeAndCompare(matrix<guarddouble>(identityWith(3, -2.9)) * r, {{-3, 0, 7, 10}}));
    DeleteObject(r);
}

TEST(RegionMappingCorners, EveryRegionMadeOnTheWayIsReleased)
{
    const DWORD before = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    HRGN r = rectangleRegion({{0, 0, 10, 10}, {20, 0, 30, 5}, {0, 20, 40, 25}});
    Transform<double> t(0.1, 0.2, 0.3);
    for (int i = 0; i < 50; ++i) DeleteObject(t * r);
    Transform<double> flat;
    flat.Function_2431(); // every corner maps to (0, 0): degenerate pieces, whatever they make
    DeleteObject(flat * r);
    DeleteObject(r);
    EXPECT_EQ(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), before);
}

} // namespace
