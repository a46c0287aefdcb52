// SPDX-License-Identifier: MIT
// ThreeDVector Cross, Dot, Length, Unit, Normalise and Project.
#include "test_support.h"

#include <climits>
#include <cmath>

TEST(VectorGeometryEdges, DotCrossAndLength)
{
    // 2^53 + 1 rounds back to 2^53, so only the order (x*bx + y*by) + z*bz gives 0.
    const double big = 0x1p53;
    EXPECT_EQ(ThreeDVector<double>(big, 1, -big).Dot(ThreeDVector<double>(1, 1, 1)), 0.0);
    EXPECT_EQ(ThreeDVector<guarddouble>(big, 1, -big).Dot(ThreeDVector<guarddouble>(1, 1, 1)).value(), 0.0);
    const ThreeDVector<float> f(4097, 1, 0); // in double, rounded once: 16785409 + 1 is a float
    EXPECT_EQ(f.Dot(f), 16785410.0f);
    EXPECT_EQ(ThreeDVector<int>(65536, 0, 0).Dot(ThreeDVector<int>(65536, 0, 0)), 0); // wraps
    EXPECT_EQ(ThreeDVector<guardint>(65536, 0, 0).Dot(ThreeDVector<guardint>(65536, 0, 0)).value(), INT_MAX);
    EXPECT_EQ(comps(ThreeDVector<guardint>(100000, 0, 0).Cross(ThreeDVector<guardint>(0, -100000, 0))),
              (Triple{0, 0, -INT_MAX}));
    EXPECT_EQ(comps(ThreeDVector<int>(1, 2, 3).Cross(ThreeDVector<int>(4, -5, 6))), (Triple{27, 6, -13}));
    EXPECT_EQ(ThreeDVector<int>(1, 2, 3).Dot(static_cast<const ThreeDVector<int>*>(nullptr)), 0); // not read

    EXPECT_EQ(ThreeDVector<int>(1, 1, 1).Length(), 1);             // root 1.73 cut down
    EXPECT_EQ(ThreeDVector<guardint>(1, 1, 1).Length().value(), 2); // to the nearest
    EXPECT_EQ(ThreeDVector<int>(100000, 100000, 100000).Length(), 173205); // squares in double
    EXPECT_EQ(ThreeDVector<guardint>(0, 16777217, 0).Length().value(), 16777217); // no float on the way
    EXPECT_EQ(ThreeDVector<guarddouble>(0.4, 0.4, 0.4).Length().value(), 0.0);
    EXPECT_EQ(ThreeDVector<guarddouble>(3.2, 4.3, 0).Length().value(), 5.0);
    EXPECT_EQ(ThreeDVector<guardfloat>(3.2, 4.3, 0).Length().value(), 5.0f);
}

// Unit and Normalise divide by the length as each type reads it back.
TEST(VectorGeometryEdges, UnitAndNormalise)
{
    using I = ThreeDVector<int>;
    using GI = ThreeDVector<guardint>;
    using F = ThreeDVector<float>;
    using D = ThreeDVector<double>;
    using GF = ThreeDVector<guardfloat>;
    using GD = ThreeDVector<guarddouble>;
    const double h = 1.0 / std::sqrt(2.0);
    const guarddouble g(1.0);
    const struct { Triple got, expected; } cases[] = {
        {comps(I(1, 1, 0).Unit()), {1, 1, 0}}, {comps(I(1, 1, 0).Unit(g)), {1, 1, 0}},
        {comps(GI(1, 1, 1).Unit()), {0.5, 0.5, 0.5}}, {comps(GI(1, 1, 1).Unit(g)), {0.5, 0.5, 0.5}},
        // float divides by the double root, not the root as a float
        {comps(F(1, 1, 0).Unit()), {h, h, 0}}, {comps(F(1, 1, 0).Unit(g)), {h, h, 0}},
        {comps(GD(1, 1, 0).Unit()), {1, 1, 0}}, {comps(GD(1, 1, 0).Unit(g)), {h, h, 0}},
        {comps(GD(3.2, 4.3, 0).Unit()), {0.6, 0.8, 0}}, {comps(GD(3.2, 4.3, 0).Unit(g)), {0.64, 0.86, 0}},
        {comps(GF(1, 1, 0).Unit(g)), {1, 1, 0}}, {comps(GF(0.4, -0.4, 0.4).Unit()), {0, 0, 0}},
        {comps(GD(0.4, -0.4, 0.4).Unit(g)), {0, 0, 0}}, {comps(D(0, 0, 0).Unit()), {0, 0, 0}},
        {comps(D(0, 0, 0).Unit(g)), {0, 0, 0}},
        // length 0.5, which Normalise would not divide by
        {comps(D(0.3, 0.4, 0).Unit()), {0.6, 0.8, 0}}, {comps(D(0.3, 0.4, 0).Unit(g)), {0.6, 0.8, 0}},
        {comps(D(0.3, 0.4, 0).Normalise()), {0.3, 0.4, 0}}, {comps(D(3, 4, 0).Normalise()), {0.6, 0.8, 0}},
        {comps(I(3, 4, 0).Normalise()), {0, 0, 0}}, {comps(I(-5, 0, 0).Normalise()), {-1, 0, 0}},
        {comps(I(7, 1, 0).Normalise()), {1, 0, 0}}, {comps(I(1, 1, 1).Normalise()), {1, 1, 1}},
        {comps(GI(1, 1, 1).Normalise()), {0, 0, 0}}, // length 2, and 1 / 2 truncates
        {comps(F(0.6f, 0, 0).Normalise()), {0.6f, 0, 0}}, {comps(F(3, 4, 0).Normalise()), {0.6f, 0.8f, 0}},
        {comps(GD(3.2, 4.3, 0.0).Normalise()), {0.64, 0.86, 0}}, // divides by nint's 3 and 4 root, 5
        {comps(GF(0.4, 0.4, 0.4).Normalise()), {0.4f, 0.4f, 0.4f}},
    };
    for (size_t i = 0; i < std::size(cases); ++i) EXPECT_EQ(cases[i].got, cases[i].expected) << "case " << i;
    D n(3, 4, 0);
    EXPECT_EQ(&n.Normalise(), &n); // the vector itself, not a copy
}

using Screen = std::array<int, 2>;
static Screen at(ScreenPoint p) { return {p.x, p.y}; }

TEST(VectorProject, IntVectors)
{
    const struct { ThreeDVector<int> v; int d; ScreenPoint origin; Screen expected; } cases[] = {
        {{10, 20, 30}, 10, {100, 200}, {105, 215}},
        {{7, 10, -3}, 10, {0, 0}, {7, -3}},    // on the screen plane
        {{10, 5, 30}, 10, {100, 200}, {0, 0}}, // nearer than the plane: no origin either
        {{1, 5, 1}, 0, {100, 200}, {0, 0}},    // d == 0
        {{1, 0, 1}, -2, {100, 200}, {0, 0}},   // y == 0 although y >= d
        {{4, -1, 4}, -2, {0, 0}, {8, 8}},      // negative depth, r = 2
        {{4, -3, 4}, -2, {0, 0}, {0, 0}},      // y < d
        {{5, 20, 5}, 10, {0, 0}, {2, 2}},      // 2.5 rounds down
        {{-5, 20, -5}, 10, {0, 0}, {-3, -3}},  // -2.5 rounds down
        {{11, 30, 0}, 10, {0, 0}, {4, 0}},     // 3.67 rounds up
        {{2, 10, 0}, 10, {INT_MAX, INT_MIN}, {INT_MIN + 1, INT_MIN}}, // origin added with wrap
    };
    for (size_t i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(at(cases[i].v.Project(cases[i].d, cases[i].origin)), cases[i].expected) << "case " << i;
}

TEST(VectorProject, OtherElementTypes)
{
    const ScreenPoint o{100, 200}, none{0, 0};
    EXPECT_EQ(at(ThreeDVector<double>(2.5, 2.0, 0.0).Project(1.0, none)), (Screen{1, 0}));      // 1.25
    EXPECT_EQ(at(ThreeDVector<guardfloat>(3.4, 2.0, 0.0).Project(1.0, none)), (Screen{1, 0}));  // 3 * 0.5
    EXPECT_EQ(at(ThreeDVector<guarddouble>(3.4, 2.0, 0.0).Project(1.0, none)), (Screen{2, 0})); // 1.7
    // guardfloat tests the whole d = 0.4, then divides its nint, 0: the origin alone.
    EXPECT_EQ(at(ThreeDVector<guardfloat>(30, 5, 30).Project(0.4, o)), (Screen{100, 200}));
    EXPECT_EQ(at(ThreeDVector<guardfloat>(1, 0.6, 1).Project(0.4, o)), (Screen{100, 200}));
    EXPECT_EQ(at(ThreeDVector<guarddouble>(30, 5, 30).Project(0.4, o)), (Screen{102, 202}));   // 2.4
    EXPECT_EQ(at(ThreeDVector<float>(1, 0.5f, 1).Project(0.6f, o)), (Screen{0, 0}));           // y < d
    EXPECT_EQ(at(ThreeDVector<double>(1, -0.0, 1).Project(-1.0, o)), (Screen{0, 0}));          // y == 0
    EXPECT_EQ(at(ThreeDVector<guardint>(4, -1, 4).Project(-2, o)), (Screen{108, 208}));
    EXPECT_EQ(at(ThreeDVector<guardint>(4, 0, 4).Project(-2, o)), (Screen{0, 0}));
}
