// SPDX-License-Identifier: MIT
// ThreeDVector sums and the five products, one test per element type's row. Expected values are
// worked out by hand from where each product rounds, truncates or passes through nint.
#include "test_support.h"

#include <climits>

TEST(VectorProducts, IntRow)
{
    using V = ThreeDVector<int>;
    EXPECT_EQ(comps(V(INT_MAX, INT_MIN, 0) + V(1, -1, 0)), (Triple{INT_MIN, INT_MAX, 0})); // wraps
    const V v(5, -5, 7);                                        // products 2.9, -2.9, 4.06
    EXPECT_EQ(comps(v * 0.58), (Triple{2, -2, 4}));             // truncated toward zero
    EXPECT_EQ(comps(v * 0.58f), (Triple{2, -2, 4}));
    EXPECT_EQ(comps(v * guardfloat(0.58)), (Triple{3, -3, 4})); // nearest, through nint
    EXPECT_EQ(comps(v * guarddouble(0.58)), (Triple{3, -3, 4}));
    EXPECT_EQ(comps(V(3, 3, 3) * 0.6), (Triple{1, 1, 1}));
    // 2^24 + 1 is no float: only a guardfloat scalar rounds p to float on the way in.
    const V big(16777217, 0, 0);
    EXPECT_EQ((big * 1.0f).GetX(), 16777217);
    EXPECT_EQ((big * guardfloat(1.0)).GetX(), 16777216);
    EXPECT_EQ((big * guarddouble(1.0)).GetX(), 16777217);
    // Multiplied as doubles, 2^32 does not wrap to 0: it leaves the range, and truncation gives
    // 0x80000000.
    EXPECT_EQ((V(65536, 0, 0) * V(65536, 0, 0)).GetX(), INT_MIN);
}

TEST(VectorProducts, FloatAndDoubleRows)
{
    const ThreeDVector<float> f(0.3f, 1.2f, -0.8f);
    const ThreeDVector<double> d(0.3, 1.2, -0.8);
    EXPECT_EQ(comps(f * 2.0), (Triple{0.6f, 2.4f, -1.6f}));
    EXPECT_EQ(comps(d * 2.0), (Triple{0.6, 2.4, -1.6}));
    for (const Triple& r : {comps(f * guarddouble(2.0)), comps(f * guardfloat(2.0)),
                            comps(d * guarddouble(2.0)), comps(d * guardfloat(2.0))})
        EXPECT_EQ(r, (Triple{1, 2, -2})); // whole numbers, through nint
    EXPECT_EQ((ThreeDVector<double>(0.1, 0, 0) * 1.0f).GetX(), 0.1); // p is not rounded to float
    // 3.0e38 is over 2^126, so it enters a guardfloat product as the saturated limit, the product
    // stays at the limit and nint holds it at 2147483647. Unlimited it would give 236658272.
    EXPECT_EQ((ThreeDVector<float>(3.0e38f, 0, 0) * guardfloat(0x1p-100)).GetX(), 2147483648.0f);
    EXPECT_EQ((ThreeDVector<double>(3.0e38, 0, 0) * guardfloat(0x1p-100)).GetX(), 2147483647.0);
}

TEST(VectorProducts, GuardintRow)
{
    using G = ThreeDVector<guardint>;
    EXPECT_EQ(comps(G(INT_MAX, -INT_MAX, 0) + G(1, -1, 0)), (Triple{INT_MAX, -INT_MAX, 0}));
    const G v(3, -3, 5); // products 1.5, -1.5, 2.5: every tie goes toward zero
    for (const Triple& r : {comps(v * 0.5), comps(v * 0.5f), comps(v * guardfloat(0.5)),
                            comps(v * guarddouble(0.5))})
        EXPECT_EQ(r, (Triple{1, -1, 2}));
    EXPECT_EQ(comps(G(3, 3, 3) * 0.6), (Triple{2, 2, 2}));
    // A float scalar rounds p to float, then the product to float, then limits at 2^31.
    const G w(16777217, 16777215, -INT_MAX);
    EXPECT_EQ(comps(w * 3.0f), (Triple{50331648, 50331644, -INT_MAX}));
    EXPECT_EQ(comps(w * 3.0), (Triple{50331651, 50331645, -INT_MAX}));
    EXPECT_EQ(comps(G(100000, 3, -100000) * G(100000, 5, 100000)), (Triple{INT_MAX, 15, -INT_MAX}));
}

TEST(VectorProducts, GuardfloatAndGuarddoubleRows)
{
    // Seen through nint the components are 1, 3, -1; only the class's own scalar keeps fractions.
    const ThreeDVector<guardfloat> f(1.4, 2.6, -1.4);
    const ThreeDVector<guarddouble> d(1.4, 2.6, -1.4);
    EXPECT_EQ(comps(f * guardfloat(2.0)), (Triple{2.8f, 5.2f, -2.8f}));
    EXPECT_EQ(comps(d * guarddouble(2.0)), (Triple{2.8, 5.2, -2.8}));
    for (const Triple& r : {comps(f * 2.0), comps(f * guarddouble(2.0)), comps(d * 2.0), comps(d * guardfloat(2.0))})
        EXPECT_EQ(r, (Triple{2, 6, -2}));
    for (const Triple& r : {comps(f * 0.25), comps(f * 0.25f), comps(d * 0.25), comps(d * 0.25f)})
        EXPECT_EQ(r, (Triple{0.25, 0.75, -0.25})); // the fraction of a plain scalar stays
    // Products 0.6, 1.8, -0.6 go back through nint.
    EXPECT_EQ(comps(f * guarddouble(0.6)), (Triple{1, 2, -1}));
    EXPECT_EQ(comps(d * guardfloat(0.6)), (Triple{1, 2, -1}));
    EXPECT_EQ(comps(f * f), (Triple{1, 9, 1}));
    EXPECT_EQ(comps(ThreeDVector<guarddouble>(1.4, 2.6, 0.4) * ThreeDVector<guarddouble>(1.4, 2.6, 100.0)),
              (Triple{1, 9, 0}));
    EXPECT_EQ(comps(ThreeDVector<guardfloat>(0.4, 0.4, 0.4) * 10.0), (Triple{0, 0, 0}));
}
