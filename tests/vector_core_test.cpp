// SPDX-License-Identifier: MIT
// ThreeDVector construction, accessors, AddToAxis and comparison.
#include "test_support.h"

#include <climits>

template <class T>
class VectorCore : public ::testing::Test {};
TYPED_TEST_SUITE(VectorCore, AllElementTypes);

TYPED_TEST(VectorCore, ConstructAssignCompare)
{
    using V = ThreeDVector<TypeParam>;
    const V a(1, 2, 3), b(4, 6, 8);
    EXPECT_EQ(1, V() == V(0, 0, 0));
    EXPECT_EQ(comps(V(a, b)), (Triple{3, 4, 5}));
    V c(9, 9, 9);
    (c = a) = b; // a reference to c, unlike Transform's copy
    EXPECT_EQ(comps(c), comps(b));
    // One differing component, the last one compared and the first.
    EXPECT_EQ(0, a == V(1, 2, 4));
    EXPECT_EQ(1, a != V(1, 2, 4));
    EXPECT_EQ(0, a == V(0, 2, 3));
    EXPECT_EQ(0, a != V(1, 2, 3));
    EXPECT_EQ(val(c.SetZ(TypeParam(7))), 7);
    EXPECT_EQ(comps(c), (Triple{4, 6, 7}));

    // Only the six axis letters count; a negative char ('x' with its top bit set) is no letter.
    const struct { char axis; Triple expected; } cases[] = {
        {'x', {3, 2, 3}}, {'X', {3, 2, 3}}, {'y', {1, 4, 3}}, {'Y', {1, 4, 3}}, {'z', {1, 2, 5}},
        {'Z', {1, 2, 5}}, {'W', {1, 2, 3}}, {'[', {1, 2, 3}}, {'a', {1, 2, 3}}, {'w', {1, 2, 3}},
        {'{', {1, 2, 3}}, {'0', {1, 2, 3}}, {'\0', {1, 2, 3}}, {static_cast<char>('x' | 0x80), {1, 2, 3}}};
    for (const auto& k : cases) {
        V v = a;
        v.AddToAxis(k.axis, TypeParam(2));
        EXPECT_EQ(comps(v), k.expected) << "axis " << static_cast<int>(k.axis);
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
    d.AddToAxis('x', guarddouble(0x1p1022)); // a saturated amount does not reach a finite component
    EXPECT_EQ(d.GetX().value(), 5.0);
    EXPECT_EQ(1, ThreeDVector<float>(0.0f, 1, 2) == ThreeDVector<float>(-0.0f, 1, 2));
    EXPECT_EQ(1, ThreeDVector<double>(0.1 + 0.2, 0, 0) != ThreeDVector<double>(0.3, 0, 0));
}
