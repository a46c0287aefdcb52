// SPDX-License-Identifier: MIT
// Transform<T>: the rules of rotation, translation, determinant, inverse and composition on
// hand-picked matrices, with exact integer references (the battery holds every member's bits; the
// fast forms are held to the plain formulas in transform_algebra_battery_test.cpp).
#include "test_support.h"

#include <cmath>
#include <limits>
#include <vector>

namespace {

template <class T>
class TransformAlgebra : public ::testing::Test {};
TYPED_TEST_SUITE(TransformAlgebra, TransformTypes);

const Elements16 kRamp = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};

// ---- Rotations ----

// The Euler constructor works each element in double and rounds it once to T (so a float
// element is the double one rounded, and a guarddouble reads no element through nint). At zero,
// (-cy) * sz and (-sx) * cy are -0. The battery holds the turn members and other angles.
TEST(TransformAlgebra, EulerConstructorRoundsTheDoubleElementsOnceAndKeepsItsNegativeZeros)
{
    for (const double a : {0.0, 0.7, -2.9}) {
        const Elements16 d = values(Transform<double>(a, a / 3, a / 2));
        const Elements16 f = values(Transform<float>(a, a / 3, a / 2));
        const Elements16 g = values(Transform<guarddouble>(a, a / 3, a / 2));
        for (int k = 0; k < 16; ++k) {
            if (a == 0.0) {
                EXPECT_EQ(bits(d[k]), bits(k == 1 || k == 6 ? -0.0 : kIdentity[k])) << k;
            }
            EXPECT_EQ(bits(static_cast<float>(f[k])), bits(static_cast<float>(d[k]))) << a << ' ' << k;
            EXPECT_EQ(bits(g[k]), bits(d[k])) << a << ' ' << k;
        }
    }
}

// ---- The in-place edits where a rule bites ----

// Only the six axis letters name a row (a char with its top bit set is no letter); under
// guarddouble a saturated amount leaves a finite element alone; withoutTranslation keeps row 3's
// first three elements and sets only e[3][3] to 1.
TYPED_TEST(TransformAlgebra, TranslationLettersSaturationAndWithoutTranslation)
{
    using T = TypeParam;
    const struct { char axis; int k; } letters[] = {
        {'x', 3}, {'X', 3}, {'y', 7}, {'Y', 7}, {'z', 11}, {'Z', 11}, {'w', -1}, {'W', -1}, {'[', -1},
        {'{', -1}, {'\0', -1}, {static_cast<char>('y' | 0x80), -1}};
    for (const auto& l : letters) {
        Transform<T> m = matrix<T>(kRamp);
        m.Function_2428(l.axis, make<T>(0.5));
        Elements16 want = kRamp;
        if (l.k >= 0) want[l.k] += 0.5;
        EXPECT_EQ(values(m), want) << static_cast<int>(l.axis);
    }
    if constexpr (std::is_same_v<T, guarddouble>) {
        Transform<T> g = matrix<T>(identityWith(11, 1.0));
        g.Function_2428('z', T(kL));
        EXPECT_EQ(values(g), identityWith(11, 1.0));
    }
    const Elements16 cut = {1, 2, 3, 0, 5, 6, 7, 0, 9, 10, 11, 0, 13, 14, 15, 1};
    EXPECT_EQ(values(matrix<T>(kRamp).Function_2421()), cut);
}

// ---- Determinant, adjoint, inverse ----

// Exact integer references: the determinant by expansion along row 0, a cofactor from its minor.
long long exactDeterminant(const std::vector<long long>& m, int n)
{
    if (n == 1) return m[0];
    long long sum = 0;
    for (int c = 0; c < n; ++c) {
        std::vector<long long> minor;
        for (int k = n; k < n * n; ++k)
            if (k % n != c) minor.push_back(m[k]);
        sum += (c % 2 ? -1 : 1) * m[c] * exactDeterminant(minor, n - 1);
    }
    return sum;
}

long long exactCofactor(const Elements16& e, int row, int col)
{
    std::vector<long long> minor;
    for (int k = 0; k < 16; ++k)
        if (k / 4 != row && k % 4 != col) minor.push_back(static_cast<long long>(e[k]));
    return ((row + col) % 2 ? -1 : 1) * exactDeterminant(minor, 3);
}

TYPED_TEST(TransformAlgebra, DeterminantAdjointAndInverseOfIntegerMatrices)
{
    using T = TypeParam;
    const Elements16 cases[] = {
        kIdentity,
        {0, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 0},   // exchange: full expansion, own inverse
        {2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 0, 0, 0, 2},   // last element 2: the short form would give 24
        {1, 0, 0, 2, 0, 1, 0, -3, 0, 0, 1, 5, 0, 0, 0, 1},  // translation only
        {1, 0, 0, 0, 0, 49, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1},  // 49 * (1 / 49) is not 1 in double
        {2, -1, 0, 3, 1, 3, 2, -2, 0, 1, 4, 1, 0, 0, 0, 1}, // short form
        {2, 0, 1, 3, 1, 3, 0, 2, 0, 1, 4, 1, 1, -1, 2, 5},  // full expansion
        {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
        {0, 0, 0, 5, 0, 1, 0, 6, 0, 0, 1, 7, 0, 0, 0, 1},   // singular, translated
        {1, 0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 1},   // row 3 repeats row 0, 1 or 2
        {1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 1, 0, 0, 1, 0, 1},
        {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 1, 0, 0, 1, 1},
    };
    for (const Elements16& e : cases) {
        const long long det = exactDeterminant(std::vector<long long>(e.begin(), e.end()), 4);
        const Transform<T> m = matrix<T>(e);
        EXPECT_EQ(val(m.Function_2414()), static_cast<double>(det));
        const Elements16 adjoint = values(m.Function_2412());
        const auto inverse = elementsOf(m.Function_2415());
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c) {
                const long long cof = exactCofactor(e, r, c);
                EXPECT_EQ(adjoint[4 * c + r], static_cast<double>(cof)) << r << c;
                const double quotient = det ? double(cof) / double(det) : kIdentity[4 * c + r];
                EXPECT_TRUE(same(inverse[4 * c + r], make<T>(quotient))) << r << c;
            }
    }
    // The identity's cofactors with an odd index sum are -0 in float and double.
    if constexpr (!std::is_same_v<T, guarddouble>) {
        for (const Elements16& e : {values(Transform<T>().Function_2412()), values(Transform<T>().Function_2415())})
            for (int k = 0; k < 16; ++k)
                EXPECT_EQ(bits(e[k]), bits(k % 5 == 0 ? 1.0 : (k / 4 + k % 4) % 2 ? -0.0 : 0.0)) << k;
    }
}

TEST(TransformAlgebra, DeterminantTakesTheShortFormOnlyForAnExactLastRowAndRoundsFloatAtTheEnd)
{
    const double inf = std::numeric_limits<double>::infinity();
    // The short form never reads the translation; the full expansion would make inf * 0 = NaN.
    EXPECT_EQ(matrix<double>(identityWith(3, inf)).Function_2414(), 1.0);
    EXPECT_EQ(matrix<float>(identityWith(7, inf)).Function_2414(), 1.0f);
    const double nearOne = 1.0 + 0x1p-52;
    EXPECT_EQ(matrix<double>(identityWith(15, nearOne)).Function_2414(), nearOne);

    // Float is rounded only at the end: 1e-60 is not zero in double but rounds to 0 as a float,
    // so the matrix is singular.
    const Transform<float> tiny = matrix<float>({1e-20, 0, 0, 0, 0, 1e-20, 0, 0, 0, 0, 1e-20, 0, 0, 0, 0, 1});
    EXPECT_EQ(bits(tiny.Function_2414()), bits(0.0f));
    expectSameBits(tiny.Function_2415(), Transform<float>());
    // Intermediate products beyond the float range (1e60, 1e-60) must not be rounded to float.
    for (const float a : {1e-30f, 1e30f}) {
        const float b = 1 / a;
        const Transform<float> m = matrix<float>({a, 0, 0, 0, 0, b, 0, 0, 0, 0, b, 0, 0, 0, 0, 1});
        EXPECT_EQ(m.Function_2414(), static_cast<float>(double(a) * (double(b) * double(b)))) << a;
    }
}

TEST(TransformAlgebra, GuardDeterminantAndInverseUseTheGuardOperators)
{
    // 1 + 2^1022 keeps the finite left operand: the determinant is 1, not the limit.
    const Transform<guarddouble> m = matrix<guarddouble>({1, 0, kL, 0, 0, 1, 0, 0, -1, 0, 1, 0, 0, 0, 0, 1});
    EXPECT_EQ(m.Function_2414().value(), 1.0);
    // Determinant 2^1022: 1 / L is 0 and L / L stays L by the guard quotient.
    const Elements16 want = {0, 0, 0, 0, 0, kL, 0, 0, 0, 0, kL, 0, 0, 0, 0, kL};
    EXPECT_EQ(values(matrix<guarddouble>(identityWith(0, kL)).Function_2415()), want);
}

TEST(TransformAlgebra, CofactorBeyondRowOrColumnThreeIsZero)
{
    const Elements16 e = {2, 0, 1, 3, 1, 3, 0, 2, 0, 1, 4, 1, 1, -1, 2, 5};
    const Transform<double> m = matrix<double>(e);
    using Access = quillon::detail::PrivateAccess;
    EXPECT_EQ(Access::cofactor(m, 1, 2), double(exactCofactor(e, 1, 2)));
    const unsigned beyond[][2] = {{4, 0}, {0, 4}, {4, 4}, {0xFFFFFFFF, 1}};
    for (const auto& rc : beyond) EXPECT_EQ(Access::cofactor(m, rc[0], rc[1]), 0.0) << rc[0] << ' ' << rc[1];
}

// ---- Composition ----

TEST(TransformAlgebra, CompositionRoundsTheAccumulatorAtEachStepAndDropsAProductAtTheLimit)
{
    // Row (2^p, 1, -2^p, 0) times column (1, 1, 1, 0): 2^p + 1 rounds back to 2^p, so 0, not 1.
    const Elements16 column = {1, 0, 0, 0, 1, 1, 0, 0, 1, 0, 1, 0, 0, 0, 0, 1};
    Elements16 row = kIdentity;
    row[0] = 0x1p24, row[1] = 1, row[2] = -0x1p24;
    EXPECT_EQ(values(matrix<float>(row) * matrix<float>(column))[0], 0.0);
    row[0] = 0x1p53, row[2] = -0x1p53;
    EXPECT_EQ(values(matrix<double>(row) * matrix<double>(column))[0], 0.0);

    // -(1 + 2^-29) + (1 + 2^-30)^2: the product rounds to 1 + 2^-29 before the sum; fused it
    // would leave 2^-60.
    const double u = 1 + 0x1p-30;
    const Elements16 left = {-(1 + 0x1p-29), u, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    EXPECT_EQ(values(matrix<double>(left) * matrix<double>(identityWith(4, u)))[0], 0.0);
    EXPECT_EQ(values(matrix<guarddouble>(left) * matrix<guarddouble>(identityWith(4, u)))[0], 0.0);

    // guarddouble: a product at the limit does not enter the sum.
    Elements16 e = identityWith(0, kL);
    e[1] = 0.5, e[7] = -3;
    const Transform<guarddouble> m = matrix<guarddouble>(e), identity;
    Elements16 want = e;
    want[0] = 0; // 0 + 2^1022 keeps the accumulator's 0
    EXPECT_EQ(values(m * identity), want);
    EXPECT_EQ(values(identity * m), want);
}

} // namespace
