// ThreeDVector construction, accessors, AddToAxis and comparison.
#include "vector_checks.h"

#include <climits>

using vector_checks::comps;
using vector_checks::Triple;

template <class T>
class VectorCore : public ::testing::Test {};
TYPED_TEST_SUITE(VectorCore, vector_checks::AllElementTypes);

TYPED_TEST(VectorCore, ConstructAssignCompare)
{
    using V = ThreeDVector<TypeParam>;
    EXPECT_EQ(1, V() == V(0, 0, 0));
    const V a(1, 2, 3), b(4, 6, 8);
    EXPECT_EQ(comps(V(a, b)), (Triple{3, 4, 5}));
    EXPECT_EQ(comps(V(b, a)), (Triple{-3, -4, -5}));
    EXPECT_EQ(comps(V(a, a)), (Triple{0, 0, 0}));

    V c(9, 9, 9);
    EXPECT_EQ(&(c = a), &c);
    (c = a) = b;
    EXPECT_EQ(comps(c), comps(b));
    const V& same = c;
    c = same;
    EXPECT_EQ(comps(c), comps(b));

    // Differences in one component only, the last one checked and the first.
    EXPECT_EQ(0, V(1, 2, 3) == V(1, 2, 4));
    EXPECT_EQ(1, V(1, 2, 3) != V(1, 2, 4));
    EXPECT_EQ(0, V(0, 2, 3) == V(1, 2, 3));
    EXPECT_EQ(1, V(0, 2, 3) != V(1, 2, 3));
    EXPECT_EQ(0, a != V(1, 2, 3));

    V s(1, 2, 3);
    EXPECT_EQ(vector_checks::num(s.SetZ(TypeParam(7))), 7);
    EXPECT_EQ(vector_checks::num(s.SetX(TypeParam(5))), 5);
    EXPECT_EQ(comps(s), (Triple{5, 2, 7}));
    EXPECT_EQ(vector_checks::num(s.GetZ()), 7);
}

TYPED_TEST(VectorCore, AddToAxisLetters)
{
    using V = ThreeDVector<TypeParam>;
    const struct { char axis; Triple expected; } cases[] = {
        {'x', {3, 2, 3}}, {'X', {3, 2, 3}}, {'y', {1, 4, 3}}, {'Y', {1, 4, 3}},
        {'z', {1, 2, 5}}, {'Z', {1, 2, 5}},
        // Neighbours of the six letters, digits, NUL, negative chars ('x' with the top bit set).
        {'W', {1, 2, 3}}, {'[', {1, 2, 3}}, {'a', {1, 2, 3}}, {'w', {1, 2, 3}},
        {'{', {1, 2, 3}}, {'0', {1, 2, 3}}, {'\0', {1, 2, 3}}, {static_cast<char>(-1), {1, 2, 3}},
        {static_cast<char>('x' | 0x80), {1, 2, 3}},
    };
    for (const auto& c : cases) {
        V v(1, 2, 3);
        v.AddToAxis(c.axis, TypeParam(2));
        EXPECT_EQ(comps(v), c.expected) << "axis " << static_cast<int>(c.axis);
    }
}

TEST(VectorCoreEdges, AddToAxisOverflowAndSignedZero)
{
    ThreeDVector<int> i(INT_MAX, 0, 0);
    i.AddToAxis('X', 1);
    EXPECT_EQ(i.GetX(), INT_MIN);

    ThreeDVector<guardint> g(INT_MAX, 5, 0);
    g.AddToAxis('X', 1);
    g.AddToAxis('y', guardint(INT_MAX));
    EXPECT_EQ(comps(g), (Triple{INT_MAX, INT_MAX, 0}));

    ThreeDVector<guarddouble> d(5.0, 0.0, 0.0);
    d.AddToAxis('x', guarddouble(0x1p1022));
    EXPECT_EQ(d.GetX().value(), 5.0); // a saturated amount does not pass to a finite component

    EXPECT_EQ(1, ThreeDVector<float>(0.0f, 1.0f, 2.0f) == ThreeDVector<float>(-0.0f, 1.0f, 2.0f));
    EXPECT_EQ(1, ThreeDVector<double>(0.1 + 0.2, 0, 0) != ThreeDVector<double>(0.3, 0, 0));
}
