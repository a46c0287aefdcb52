// SPDX-License-Identifier: MIT
// ThreeDVector: AddToAxis's letters and sums, assignment's reference, comparison by value.
#include "test_support.h"

#include <climits>
#include <limits>

// Only the six axis letters count; a negative char ('x' with its top bit set) is no letter. The
// sum is the type's own: int wraps, guardint saturates, a saturated guarddouble amount does not
// reach a finite component.
TEST(VectorCore, AddToAxisLettersAndSums)
{
    const struct { char axis; Triple expected; } cases[] = {
        {'x', {3, 2, 3}}, {'X', {3, 2, 3}}, {'y', {1, 4, 3}}, {'Y', {1, 4, 3}}, {'z', {1, 2, 5}},
        {'Z', {1, 2, 5}}, {'W', {1, 2, 3}}, {'[', {1, 2, 3}}, {'{', {1, 2, 3}}, {'\0', {1, 2, 3}},
        {static_cast<char>('x' | 0x80), {1, 2, 3}}};
    for (const auto& k : cases) {
        ThreeDVector<float> v(1, 2, 3);
        v.AddToAxis(k.axis, 2.0f);
        EXPECT_EQ(comps(v), k.expected) << "axis " << static_cast<int>(k.axis);
    }
    ThreeDVector<int> i(INT_MAX, 0, 0);
    i.AddToAxis('X', 1);
    EXPECT_EQ(i.GetX(), INT_MIN);
    ThreeDVector<guardint> g(INT_MAX, 5, 0);
    g.AddToAxis('X', 1);
    g.AddToAxis('y', guardint(INT_MAX));
    EXPECT_EQ(comps(g), (Triple{INT_MAX, INT_MAX, 0}));
    ThreeDVector<guarddouble> d(5.0, 0.0, 0.0);
    d.AddToAxis('x', guarddouble(0x1p1022));
    EXPECT_EQ(d.GetX().value(), 5.0);
}

TEST(VectorCore, AssignmentReturnsAReferenceAndComparisonIsByValue)
{
    using V = ThreeDVector<double>;
    V c(9, 9, 9);
    (c = V(1, 2, 3)) = V(4, 6, 8); // a reference to c, unlike Transform's copy
    EXPECT_EQ(comps(c), (Triple{4, 6, 8}));
    EXPECT_EQ(1, ThreeDVector<float>(0.0f, 1, 2) == ThreeDVector<float>(-0.0f, 1, 2));
    EXPECT_EQ(1, V(0.1 + 0.2, 0, 0) != V(0.3, 0, 0));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(0, V(nan, 0, 0) == V(nan, 0, 0));
    EXPECT_EQ(1, V(nan, 0, 0) != V(nan, 0, 0));
}
