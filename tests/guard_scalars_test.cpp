// SPDX-License-Identifier: MIT
// The guard scalars: conversions, nint, the compound rules, RoundToWhole and the free operators.
#include "test_support.h"

#include <cmath>
#include <limits>

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();
const auto add = [](auto a, auto b) { return a += b; };
const auto divide = [](auto a, auto b) { return a /= b; };
const auto multiply = [](auto a, auto b) { return a * b; };

// Each case {a, b, want}: op on a and b, both made class G, stores exactly G(want), sign of a zero
// included.
template <class G, class N, class Op>
void expectEach(Op op, std::initializer_list<std::array<N, 3>> cases)
{
    for (const auto& c : cases) EXPECT_EQ(bits(G(op(G(c[0]), G(c[1])))), bits(G(c[2]))) << c[0] << ' ' << c[1];
}

TEST(GuardConversion, DoubleAndFloatClampAtTheirLimits)
{
    const double below = std::nextafter(kL, 0.0);
    const struct { double in; std::uint64_t want; } doubles[] = {
        {1.0e308, 0x7FD0000000000000u}, {-kInf, 0xFFD0000000000000u}, {below, bits(below)},
        {5e-324, bits(5e-324)}}; // a denormal is kept
    for (const auto& c : doubles) EXPECT_EQ(bits(guarddouble(c.in)), c.want) << c.in;
    const struct { double in; std::uint32_t want; } floats[] = {
        {3.0e38, 0x7E800000u}, {-kInf, 0xFE800000u}, {1.0e-50, 0u}}; // no floor: what the rounding gives
    for (const auto& c : floats) EXPECT_EQ(bits(guardfloat(c.in)), c.want) << c.in;
}

TEST(GuardConversion, GuardintRoundsToNearestWithTiesTowardZero)
{
    struct Case { double in; int out; } cases[] = {
        {2147483647.0, kLi}, {2147483646.5, 2147483646}, {2147483646.75, kLi}, {-2147483647.0, -kLi},
        {-3.0e9, -kLi}, {0.5, 0}, {0.75, 1}, {-0.75, -1}, {-1.75, -2}, {2.5, 2}, {-2.5, -2}, {kNaN, 0}, {kInf, kLi},
    };
    for (const auto& c : cases) EXPECT_EQ(guardint(c.in).value(), c.out) << c.in;
    EXPECT_EQ(bits(guardint(-3.0e9)), 0x80000001u);

    // From float the limits are 2^31: 2147483520 is the largest float below them.
    struct FloatCase { float in; int out; } floatCases[] = {
        {2147483520.0f, 2147483520}, {2147483648.0f, kLi}, {-2147483648.0f, -kLi}, {2.5f, 2}, {-2.5f, -2}};
    for (const auto& c : floatCases) EXPECT_EQ(guardint(c.in).value(), c.out) << c.in;

    // Between the classes: Rule 3 on a guarddouble, Rule 4 on a guardfloat, no sentinel mapping back.
    EXPECT_EQ(guardint(guarddouble(-2.5)).value(), -2);
    EXPECT_EQ(guardint(guarddouble(kL)).value(), kLi);
    EXPECT_EQ(guardint(guardfloat(0x1p31)).value(), kLi);
    guardint saturated(kLi);
    EXPECT_EQ(guarddouble(saturated).value(), 2147483647.0);
    EXPECT_EQ(guardfloat(saturated).value(), 2147483648.0f);
    EXPECT_EQ(static_cast<double>(guardint(-kLi)), -2147483647.0);
}

TEST(GuardConversion, NintIsNearestWithTiesAwayAndLimited)
{
    const struct { double in; int out; } cases[] = {
        {0.4, 0}, {2.5, 3}, {-2.5, -3}, {-0.5, -1}, {kL, kLi}, {-3.0e9, -kLi}, {kNaN, 0}};
    for (const auto& c : cases) EXPECT_EQ(guarddouble(c.in).nint(), c.out) << c.in;
    EXPECT_EQ(int(guarddouble(0.4)), 0);
    EXPECT_EQ(guardfloat(1.5).nint(), 2);
    EXPECT_EQ(guardfloat(-kLf).nint(), -kLi);
}

TEST(GuardAdd, FloatingSumsSaturateFromTheHalvedOperands)
{
    const double h = 0x1p1021;
    expectEach<guarddouble, double>(add, {
        {1.0, kL, 1.0}, {kL, -1.0, kL}, {h, h, kL}, {-h, -h, -kL}, // a saturated operand does not pass on
        {h, std::nextafter(h, 0.0), kL},                             // sum below L, the halves round up to H
        {0x1p-1021, 3.0, 3.0 + 0x1p-1021},                           // at S: plain sum, no test
        {4.0e307, -1.0e307, 4.0e307 - 1.0e307}});
    guarddouble nan(kNaN);
    EXPECT_TRUE(std::isnan((nan += guarddouble(1.0)).value()));
    expectEach<guardfloat, float>(add, {{0x1p125f, 0x1p125f, kLf}, {-0x1p125f, -0x1p125f, -kLf}, {1.0f, kLf, 1.0f},
                                        {16777216.0f, 1.0f, 16777216.0f}}); // rounded to float once, at the store
}

TEST(GuardAdd, IntegerSumsSaturateAtTheHalvedBound)
{
    expectEach<guardint, int>(add, {
        {5, kLi, kLi}, {5, -kLi, -kLi}, {kLi, -kLi, kLi}, {-kLi, kLi, kLi}, // +L beats -L, in either order
        {0x40000000, 0x3FFFFFFE, kLi},        // h is 0x3FFFFFFF
        {0x3FFFFFFF, 0x3FFFFFFF, 0x7FFFFFFE}, // h is 0x3FFFFFFE
        {0x7FFFFFFE, 0, kLi}, {0x7FFFFFFD, 1, 0x7FFFFFFE},
        {-0x7FFFFFFD, 0, -kLi},                    // the shift of an odd negative rounds down
        {INT32_MIN, 5, -kLi}, {5, INT32_MIN, -kLi}, // -2147483648 reads as the negative limit
        {-7, 3, -4}});
}

TEST(GuardDivide, QuotientsTestByScaledDivisorTruncateAndSaturate)
{
    expectEach<guarddouble, double>(divide, {
        {0.0, 0.0, 0.0}, {1.0, 0.0, kL}, {-1.0, 0.0, -kL}, {kL, -2.0, -kL}, {-kL, -kL, kL},
        {-1.0, kL, 0.0},                                   // +0.0, whatever the signs
        {1.0, 0x1p-1022, kL}, {0x1p-1022, 1.0, 0x1p-1022}, // equality saturates
        {1.0e-300, 1.0e300, 0x1p-1022}, {-1.0e-300, 1.0e300, -0x1p-1022}, {7.0, 2.0, 3.5}});
    EXPECT_EQ((guarddouble(1.0) / guarddouble(4.0)).value(), 0.25);
    expectEach<guardfloat, float>(divide, {{1.0f, 0.0f, kLf}, {1.0e-30f, 1.0e30f, 0x1p-126f}, {1.0f, 3.0f, 1.0f / 3.0f}});
    expectEach<guardint, int>(divide, {
        {7, 2, 3}, {-7, 2, -3}, {7, 0, kLi}, {-7, 0, -kLi}, {kLi, -3, -kLi}, {7, -kLi, 0}, {0, 0, 0},
        {INT32_MIN, -1, kLi}, {5, INT32_MIN, 0}}); // the negative limit divided: no trap
}

TEST(GuardRoundToWhole, TiesGoDownward)
{
    struct Case { double in, out; } cases[] = {
        {2.5, 2.0}, {2.51, 3.0}, {-2.5, -3.0}, {-2.51, -3.0}, {-2.49, -2.0}, {kL, kL}, {-kL, -kL}, {7.0, 7.0},
    };
    for (const auto& c : cases) {
        guarddouble g(c.in);
        g.RoundToWhole();
        EXPECT_EQ(g.value(), c.out) << c.in;
    }
}

TEST(GuardOperators, FreeOperatorsFollowTheCompoundRulesAndTheProductLimits)
{
    // Sums and differences are the compound rule on a copy; a - b adds the negated b.
    EXPECT_EQ((guarddouble(1.0) + guarddouble(kL)).value(), 1.0);
    EXPECT_EQ((guarddouble(-0x1p1021) - guarddouble(0x1p1021)).value(), -kL);
    EXPECT_EQ((guarddouble(5.0) - 1.0e308).value(), 5.0); // the double is limited first
    EXPECT_EQ((guardint(5) - guardint(INT32_MIN)).value(), kLi);
    EXPECT_EQ((guardint(-5) - guardint(kLi)).value(), -kLi);
    EXPECT_EQ((guardfloat(3.0) - guardfloat(0.5)).value(), 2.5f);

    // Products: formed wide, limited as the class converts, a saturated factor keeps the limit.
    expectEach<guarddouble, double>(multiply, {{0x1p600, 0x1p600, kL}, {kL, -0.5, -kL}, {kL, -0.0, -0.0}});
    EXPECT_EQ((-3 * guarddouble(0.5)).value(), -1.5);
    expectEach<guardfloat, float>(multiply, {{0x1p100f, 0x1p30f, kLf}, {3.0f, 0.1f, float(3.0 * double(0.1f))}});
    expectEach<guardint, int>(multiply, {{100000, 100000, kLi}, {-65536, 32768, -kLi}, // exactly -2^31: limited
                                         {kLi, -1, -kLi}, {kLi, 0, 0}, {-46341, 46340, -2147441940}});

    // Comparisons by stored value, IEEE for NaN; results are int.
    EXPECT_EQ(guarddouble(kNaN) == guarddouble(kNaN), 0);
    EXPECT_EQ(guarddouble(kNaN) != guarddouble(kNaN), 1);
    EXPECT_EQ(guarddouble(-0.0) == guarddouble(0.0), 1);
    EXPECT_EQ(guarddouble(1.0) > guarddouble(0.5), 1);
    EXPECT_EQ(guardfloat(1.0) < guardfloat(2.0), 1);
    EXPECT_EQ(guardint(-kLi) < guardint(INT32_MIN), 0);
}

} // namespace
