// ThreeDVector Cross, Dot, Length, Unit, Normalise and Project.
#include "vector_checks.h"

#include <climits>
#include <cmath>

using vector_checks::comps;
using vector_checks::num;
using vector_checks::Triple;

template <class T>
class VectorGeometry : public ::testing::Test {};
TYPED_TEST_SUITE(VectorGeometry, vector_checks::AllElementTypes);

TYPED_TEST(VectorGeometry, WholeVectors)
{
    using V = ThreeDVector<TypeParam>;
    const V ex(1, 0, 0), ey(0, 1, 0), a(1, 2, 3), b(4, -5, 6), v(3, 4, 0), zero;
    EXPECT_EQ(comps(ex.Cross(ey)), (Triple{0, 0, 1}));
    EXPECT_EQ(comps(ey.Cross(ex)), (Triple{0, 0, -1}));
    EXPECT_EQ(comps(a.Cross(b)), (Triple{27, 6, -13}));
    EXPECT_EQ(comps(a.Cross(a)), (Triple{0, 0, 0}));
    EXPECT_EQ(num(a.Dot(b)), 12);
    EXPECT_EQ(num(a.Dot(&b)), 12);
    EXPECT_EQ(num(a.Dot(static_cast<const V*>(nullptr))), 0);
    EXPECT_EQ(num(v.Length()), 5);
    EXPECT_EQ(comps(v.Unit()), (Triple{0.6, 0.8, 0}));
    EXPECT_EQ(comps(v.Unit(guarddouble(1.0))), (Triple{0.6, 0.8, 0}));
    EXPECT_EQ(comps(zero.Unit()), (Triple{0, 0, 0}));
    EXPECT_EQ(comps(zero.Unit(guarddouble(1.0))), (Triple{0, 0, 0}));
    V n = zero;
    EXPECT_EQ(&n.Normalise(), &n);
    n = V(5, 0, 0);
    EXPECT_EQ(&n.Normalise(), &n);
    EXPECT_EQ(comps(n), (Triple{1, 0, 0}));
}

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

    EXPECT_EQ(ThreeDVector<int>(1, 1, 1).Length(), 1);             // root 1.73 cut down
    EXPECT_EQ(ThreeDVector<guardint>(1, 1, 1).Length().value(), 2); // to the nearest
    EXPECT_EQ(ThreeDVector<guardint>(1, 1, 0).Length().value(), 1);
    EXPECT_EQ(ThreeDVector<double>(1, 1, 0).Length(), 1.4142135623730951);
    EXPECT_EQ(ThreeDVector<float>(1, 1, 0).Length(), 1.4142135623730951f);
    EXPECT_EQ(ThreeDVector<int>(100000, 100000, 100000).Length(), 173205); // squares in double
    EXPECT_EQ(ThreeDVector<guardint>(0, 16777217, 0).Length().value(), 16777217); // no float on the way
    EXPECT_EQ(ThreeDVector<guarddouble>(0.4, 0.4, 0.4).Length().value(), 0.0);
    EXPECT_EQ(ThreeDVector<guarddouble>(3.2, 4.3, 0).Length().value(), 5.0);
    EXPECT_EQ(ThreeDVector<guardfloat>(3.2, 4.3, 0).Length().value(), 5.0f);
}

TEST(VectorGeometryEdges, Unit)
{
    const double h = 1.0 / std::sqrt(2.0);
    const guarddouble g(1.0);
    const ThreeDVector<float> f(1, 1, 0); // divides by the double root, not the root as a float
    const ThreeDVector<guarddouble> gd(1, 1, 0), gd2(3.2, 4.3, 0);
    const ThreeDVector<double> half(0.3, 0.4, 0); // length 0.5, which Normalise would not divide by
    const struct { Triple got, expected; } cases[] = {
        {comps(ThreeDVector<int>(1, 1, 0).Unit()), {1, 1, 0}},
        {comps(ThreeDVector<int>(1, 1, 0).Unit(g)), {1, 1, 0}},
        {comps(ThreeDVector<guardint>(1, 1, 1).Unit()), {0.5, 0.5, 0.5}},
        {comps(ThreeDVector<guardint>(1, 1, 1).Unit(g)), {0.5, 0.5, 0.5}},
        {comps(f.Unit()), {h, h, 0}}, {comps(f.Unit(g)), {h, h, 0}},
        {comps(gd.Unit()), {1, 1, 0}}, {comps(gd.Unit(g)), {h, h, 0}},
        {comps(gd2.Unit()), {0.6, 0.8, 0}}, {comps(gd2.Unit(g)), {0.64, 0.86, 0}},
        {comps(ThreeDVector<guardfloat>(1, 1, 0).Unit(g)), {1, 1, 0}},
        {comps(ThreeDVector<guardfloat>(0.4, -0.4, 0.4).Unit()), {0, 0, 0}},
        {comps(ThreeDVector<guarddouble>(0.4, -0.4, 0.4).Unit(g)), {0, 0, 0}},
        {comps(half.Unit()), {0.6, 0.8, 0}}, {comps(half.Unit(g)), {0.6, 0.8, 0}},
    };
    for (size_t i = 0; i < std::size(cases); ++i) EXPECT_EQ(cases[i].got, cases[i].expected) << "case " << i;
}

TEST(VectorGeometryEdges, Normalise)
{
    const struct { ThreeDVector<int> v; Triple expected; } ints[] = {
        {{3, 4, 0}, {0, 0, 0}}, {{-5, 0, 0}, {-1, 0, 0}}, {{7, 1, 0}, {1, 0, 0}}, {{1, 1, 1}, {1, 1, 1}}};
    for (auto c : ints) EXPECT_EQ(comps(c.v.Normalise()), c.expected);
    ThreeDVector<guardint> g(1, 1, 1); // length 2, and 1 / 2 truncates
    ThreeDVector<double> d1(0.3, 0.4, 0), d2(3, 4, 0); // length 0.5 is 0 as an int
    ThreeDVector<float> f1(0.6f, 0, 0), f2(3, 4, 0);
    ThreeDVector<guarddouble> gd(3.2, 4.3, 0.0); // divides by nint's 3 and 4 root, 5
    ThreeDVector<guardfloat> gf(0.4, 0.4, 0.4);
    EXPECT_EQ(comps(g.Normalise()), (Triple{0, 0, 0}));
    EXPECT_EQ(comps(d1.Normalise()), (Triple{0.3, 0.4, 0}));
    EXPECT_EQ(comps(d2.Normalise()), (Triple{0.6, 0.8, 0}));
    EXPECT_EQ(comps(f1.Normalise()), (Triple{0.6f, 0, 0}));
    EXPECT_EQ(comps(f2.Normalise()), (Triple{0.6f, 0.8f, 0}));
    EXPECT_EQ(comps(gd.Normalise()), (Triple{0.64, 0.86, 0}));
    EXPECT_EQ(comps(gf.Normalise()), (Triple{0.4f, 0.4f, 0.4f}));
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
