#include "test_support.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

TEST(GuardConversion, DoubleAndFloatClampAtTheirLimits)
{
    EXPECT_EQ(bits(guarddouble(kL)), 0x7FD0000000000000u);
    EXPECT_EQ(bits(guarddouble(1.0e308)), 0x7FD0000000000000u);
    EXPECT_EQ(bits(guarddouble(-1.0e308)), 0xFFD0000000000000u);
    EXPECT_EQ(bits(guarddouble(-kInf)), 0xFFD0000000000000u);
    const double below = std::nextafter(kL, 0.0);
    EXPECT_EQ(guarddouble(below).value(), below);
    EXPECT_EQ(guarddouble(5e-324).value(), 5e-324); // a denormal is kept

    EXPECT_EQ(bits(guardfloat(0x1p126)), 0x7E800000u);
    EXPECT_EQ(bits(guardfloat(3.0e38)), 0x7E800000u);
    EXPECT_EQ(bits(guardfloat(-kInf)), 0xFE800000u);
    EXPECT_EQ(guardfloat(1.0e-50).value(), 0.0f); // no floor: what the rounding gives
    // The limit test is made in double: a double just under 2^126 rounds up to it in float.
    EXPECT_EQ(guardfloat(std::nextafter(0x1p126, 0.0)).value(), kLf);
    EXPECT_EQ(guardfloat(16777217).value(), 16777216.0f); // guardfloat(int) rounds by the format
}

TEST(GuardConversion, GuardintRoundsToNearestWithTiesTowardZero)
{
    struct Case { double in; int out; } cases[] = {
        {2147483647.0, kLi}, {2147483646.5, 2147483646}, {2147483646.75, kLi},
        {-2147483647.0, -kLi}, {-3.0e9, -kLi}, {0.5, 0}, {0.75, 1}, {-0.75, -1},
        {-1.75, -2}, {2.5, 2}, {-2.5, -2}, {kNaN, 0}, {kInf, kLi},
    };
    for (const auto& c : cases) EXPECT_EQ(guardint(c.in).value(), c.out) << c.in;
    EXPECT_EQ(bits(guardint(-3.0e9)), 0x80000001u);

    // From float the limits are 2^31: 2147483520 is the largest float below them.
    EXPECT_EQ(guardint(2147483520.0f).value(), 2147483520);
    EXPECT_EQ(guardint(2147483648.0f).value(), kLi);
    EXPECT_EQ(guardint(-2147483648.0f).value(), -kLi);
    EXPECT_EQ(guardint(2.5f).value(), 2);
    EXPECT_EQ(guardint(std::numeric_limits<float>::quiet_NaN()).value(), 0);

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
    EXPECT_EQ(guarddouble(0.4).nint(), 0);
    EXPECT_EQ(int(guarddouble(0.4)), 0);
    EXPECT_EQ(guarddouble(2.5).nint(), 3);
    EXPECT_EQ(guarddouble(-2.5).nint(), -3);
    EXPECT_EQ(guarddouble(-0.5).nint(), -1);
    EXPECT_EQ(guarddouble(kL).nint(), kLi);
    EXPECT_EQ(guarddouble(-3.0e9).nint(), -kLi);
    EXPECT_EQ(guarddouble(kNaN).nint(), 0);
    EXPECT_EQ(guardfloat(1.5).nint(), 2);
    EXPECT_EQ(guardfloat(-kLf).nint(), -kLi);
}

TEST(GuardAdd, FloatingSumsSaturateFromTheHalvedOperands)
{
    auto sum = [](double a, double b) { guarddouble x(a); x += guarddouble(b); return x.value(); };
    EXPECT_EQ(sum(1.0, kL), 1.0);           // a saturated right operand does not pass on
    EXPECT_EQ(sum(kL, -1.0), kL);           // a saturated left operand stays
    EXPECT_EQ(sum(0x1p1021, 0x1p1021), kL);
    EXPECT_EQ(sum(-0x1p1021, -0x1p1021), -kL);
    EXPECT_EQ(sum(0x1p1021, std::nextafter(0x1p1021, 0.0)), kL); // sum below L, h rounds up to H
    EXPECT_EQ(sum(0x1p-1021, 3.0), 3.0 + 0x1p-1021);             // at S: plain sum, no test
    EXPECT_EQ(sum(4.0e307, -1.0e307), 4.0e307 - 1.0e307);
    EXPECT_TRUE(std::isnan(sum(kNaN, 1.0)));

    auto fsum = [](float a, float b) { guardfloat x(a); x += guardfloat(b); return x.value(); };
    EXPECT_EQ(fsum(0x1p125f, 0x1p125f), kLf);
    EXPECT_EQ(fsum(1.0f, kLf), 1.0f);
    EXPECT_EQ(fsum(16777216.0f, 1.0f), 16777216.0f); // rounded to float once, at the store
    EXPECT_EQ(bits(fsum(-0x1p125f, -0x1p125f)), 0xFE800000u);
}

TEST(GuardAdd, IntegerSumsSaturateAtTheHalvedBound)
{
    auto sum = [](int a, int b) { guardint x(a); x += guardint(b); return x.value(); };
    EXPECT_EQ(sum(5, kLi), kLi);
    EXPECT_EQ(sum(5, -kLi), -kLi);
    EXPECT_EQ(sum(kLi, -kLi), kLi); // +L beats -L, in either order
    EXPECT_EQ(sum(-kLi, kLi), kLi);
    EXPECT_EQ(sum(0x40000000, 0x3FFFFFFE), kLi);          // h is 0x3FFFFFFF
    EXPECT_EQ(sum(0x3FFFFFFF, 0x3FFFFFFF), 0x7FFFFFFE);   // h is 0x3FFFFFFE
    EXPECT_EQ(sum(0x7FFFFFFE, 0), kLi);
    EXPECT_EQ(sum(0x7FFFFFFD, 1), 0x7FFFFFFE);
    EXPECT_EQ(sum(-0x7FFFFFFD, 0), -kLi); // the shift of an odd negative rounds down
    EXPECT_EQ(sum(INT32_MIN, 5), -kLi);   // -2147483648 reads as the negative limit
    EXPECT_EQ(sum(5, INT32_MIN), -kLi);
    EXPECT_EQ(sum(-7, 3), -4);
}

TEST(GuardDivide, FloatingQuotientsTestByScaledDivisor)
{
    auto quo = [](double a, double b) { guarddouble x(a); x /= guarddouble(b); return x.value(); };
    EXPECT_EQ(bits(quo(0.0, 0.0)), bits(0.0));
    EXPECT_EQ(quo(1.0, 0.0), kL);
    EXPECT_EQ(quo(-1.0, 0.0), -kL);
    EXPECT_EQ(quo(kL, -2.0), -kL);
    EXPECT_EQ(quo(-kL, -kL), kL);
    EXPECT_EQ(bits(quo(-1.0, kL)), bits(0.0)); // +0.0, whatever the signs
    EXPECT_EQ(quo(1.0, 0x1p-1022), kL);        // equality saturates
    EXPECT_EQ(quo(0x1p-1022, 1.0), 0x1p-1022);
    EXPECT_EQ(quo(1.0e-300, 1.0e300), 0x1p-1022);
    EXPECT_EQ(quo(-1.0e-300, 1.0e300), -0x1p-1022);
    EXPECT_EQ(quo(7.0, 2.0), 3.5);
    EXPECT_EQ((guarddouble(1.0) / guarddouble(4.0)).value(), 0.25);

    auto fquo = [](float a, float b) { guardfloat x(a); x /= guardfloat(b); return x.value(); };
    EXPECT_EQ(fquo(1.0f, 0.0f), kLf);
    EXPECT_EQ(fquo(1.0e-30f, 1.0e30f), 0x1p-126f);
    EXPECT_EQ(fquo(1.0f, 3.0f), 1.0f / 3.0f);
}

TEST(GuardDivide, IntegerQuotientsTruncateAndSaturate)
{
    auto quo = [](int a, int b) { guardint x(a); x /= guardint(b); return x.value(); };
    EXPECT_EQ(quo(7, 2), 3);
    EXPECT_EQ(quo(-7, 2), -3);
    EXPECT_EQ(quo(7, 0), kLi);
    EXPECT_EQ(quo(-7, 0), -kLi);
    EXPECT_EQ(quo(kLi, -3), -kLi);
    EXPECT_EQ(quo(7, -kLi), 0);
    EXPECT_EQ(quo(0, 0), 0);
    EXPECT_EQ(quo(INT32_MIN, -1), kLi); // the negative limit divided: no trap
    EXPECT_EQ(quo(5, INT32_MIN), 0);
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
    EXPECT_EQ((guarddouble(0x1p600) * guarddouble(0x1p600)).value(), kL);
    EXPECT_EQ((guarddouble(kL) * guarddouble(-0.5)).value(), -kL);
    EXPECT_EQ(bits(guarddouble(kL) * guarddouble(-0.0)), bits(-0.0));
    EXPECT_EQ((-3 * guarddouble(0.5)).value(), -1.5);
    EXPECT_EQ((guardfloat(0x1p100) * guardfloat(0x1p30)).value(), kLf);
    EXPECT_EQ((guardfloat(3.0f) * guardfloat(0.1f)).value(), static_cast<float>(3.0 * double(0.1f)));
    EXPECT_EQ((guardint(100000) * guardint(100000)).value(), kLi);
    EXPECT_EQ((guardint(-65536) * guardint(32768)).value(), -kLi); // exactly -2^31: limited
    EXPECT_EQ((guardint(kLi) * guardint(-1)).value(), -kLi);
    EXPECT_EQ((guardint(kLi) * guardint(0)).value(), 0);
    EXPECT_EQ((guardint(-46341) * guardint(46340)).value(), -2147441940);

    // Comparisons by stored value, IEEE for NaN; results are int.
    EXPECT_EQ(guarddouble(kNaN) == guarddouble(kNaN), 0);
    EXPECT_EQ(guarddouble(kNaN) != guarddouble(kNaN), 1);
    EXPECT_EQ(guarddouble(-0.0) == guarddouble(0.0), 1);
    EXPECT_EQ(guarddouble(1.0) > guarddouble(0.5), 1);
    EXPECT_EQ(guardfloat(1.0) < guardfloat(2.0), 1);
    EXPECT_EQ(guardint(-kLi) < guardint(INT32_MIN), 0);
}

} // namespace
