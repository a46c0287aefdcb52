// SPDX-License-Identifier: MIT
// Transform<T>: rotations, the small in-place members, determinant/adjoint/inverse and
// composition.
#include "test_support.h"

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

template <class T>
class TransformAlgebra : public ::testing::Test {};
TYPED_TEST_SUITE(TransformAlgebra, TransformTypes);

const Elements16 kRamp = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};

// ---- Rotations ----

// The turns about z, then y, then x, each element worked out in double and rounded once to T
// (a guarddouble reads no element, so no nint). At zero, (-cy) * sz and (-sx) * cy are -0.
TEST(TransformAlgebra, EulerConstructorIsTheTurnsAboutZThenYThenXWorkedInDouble)
{
    std::mt19937 rng(20240611);
    std::uniform_real_distribution<double> angle(-3.2, 3.2);
    for (int n = 0; n < 20; ++n) {
        const double ax = n ? angle(rng) : 0.0, ay = n ? angle(rng) : 0.0, az = n ? angle(rng) : 0.0;
        const Elements16 d = values(Transform<double>(ax, ay, az));
        const Elements16 f = values(Transform<float>(ax, ay, az)), g = values(Transform<guarddouble>(ax, ay, az));
        Transform<double> turned;
        turned.Function_2424(az), turned.Function_2423(ay), turned.Function_2422(ax);
        const Elements16 t = values(turned);
        for (int k = 0; k < 16; ++k) {
            if (n == 0) {
                EXPECT_EQ(bits(d[k]), bits(k == 1 || k == 6 ? -0.0 : kIdentity[k])) << k;
            }
            EXPECT_NEAR(t[k], d[k], 1e-12) << n << ' ' << k;
            EXPECT_EQ(bits(static_cast<float>(f[k])), bits(static_cast<float>(d[k]))) << n << ' ' << k;
            EXPECT_EQ(bits(g[k]), bits(d[k])) << n << ' ' << k;
        }
    }
}

// Each rotation member rewrites two rows from their old values, read as doubles (a guarddouble
// through its nearest integer, ties away from zero), and leaves the other two rows exactly as
// they were.
TYPED_TEST(TransformAlgebra, RotationMembersRewriteTwoRowsFromTheOldValues)
{
    using T = TypeParam;
    const Elements16 start = {0.25, -0.0, 0.75, -1.25, 2.5, -0.25, 1.0, 0.125,
                              -0.75, -2.5, -0.0, 2.0, 0.375, -0.0, 5.0, 0.625};
    const Elements16 nearest = {0, 0, 1, -1, 3, 0, 1, 0, -1, -3, 0, 2, 0, 0, 5, 1};
    const Elements16& read = std::is_same_v<T, guarddouble> ? nearest : start;
    struct Turn { void (Transform<T>::*member)(double); int first, second; double sign; };
    const Turn turns[] = {{&Transform<T>::Function_2422, 1, 2, -1}, // x: first = f c - g s
                          {&Transform<T>::Function_2423, 0, 2, +1}, // y: first = f c + g s
                          {&Transform<T>::Function_2424, 0, 1, -1}}; // z
    for (const Turn& turn : turns)
        for (double t : {0.6, 0.0, -2.0}) {
            Transform<T> m = matrix<T>(start);
            (m.*turn.member)(t);
            const double c = std::cos(t), s = std::sin(t);
            Elements16 want = start;
            for (int k = 0; k < 4; ++k) {
                const double f = read[4 * turn.first + k], g = read[4 * turn.second + k];
                want[4 * turn.first + k] = f * c + turn.sign * (g * s);
                want[4 * turn.second + k] = g * c - turn.sign * (f * s);
            }
            const auto got = elementsOf(m);
            for (int k = 0; k < 16; ++k)
                EXPECT_EQ(bits(got[k]), bits(make<T>(want[k]))) << turn.first << turn.second << ' ' << t << ' ' << k;
        }
}

// ---- Translation, scaling, transpose, reset, clear ----

TYPED_TEST(TransformAlgebra, TranslationAddsToTheElementTheLetterNames)
{
    using T = TypeParam;
    for (int code = -128; code < 128; ++code) {
        const char axis = static_cast<char>(code);
        Transform<T> m = matrix<T>(kRamp);
        m.Function_2428(axis, make<T>(0.5));
        Elements16 want = kRamp;
        const int k = (axis == 'x' || axis == 'X') ? 3 : (axis == 'y' || axis == 'Y') ? 7
                    : (axis == 'z' || axis == 'Z') ? 11 : -1;
        if (k >= 0) want[k] += 0.5;
        EXPECT_EQ(values(m), want) << code;
    }
    if constexpr (std::is_same_v<T, guarddouble>) { // the saturating sum: L does not reach a finite element
        Transform<T> g = matrix<T>(identityWith(11, 1.0));
        g.Function_2428('z', T(kL));
        EXPECT_EQ(values(g), identityWith(11, 1.0));
    }
}

TYPED_TEST(TransformAlgebra, ScalingMultipliesOneDiagonalElement)
{
    using T = TypeParam;
    const struct { void (Transform<T>::*member)(T); int k; } members[] = {
        {&Transform<T>::Function_2425, 0}, {&Transform<T>::Function_2426, 5}, {&Transform<T>::Function_2427, 10}};
    for (const auto& s : members) {
        Transform<T> m = matrix<T>(kRamp);
        (m.*s.member)(make<T>(3));
        (m.*s.member)(make<T>(-3)); // calls accumulate
        Elements16 want = kRamp;
        want[s.k] *= -9;
        EXPECT_EQ(values(m), want) << s.k;
    }
}

TYPED_TEST(TransformAlgebra, TransposeCopyWithoutTranslationResetAndClear)
{
    using T = TypeParam;
    Elements16 start = kRamp;
    start[12] = -0.0;
    Transform<T> m = matrix<T>(start);
    const Elements16 copy = values(m.Function_2417());
    EXPECT_EQ(&m.Function_2429(), &m);
    const Elements16 t = values(m);
    for (int k = 0; k < 16; ++k) {
        EXPECT_EQ(bits(t[k]), bits(start[4 * (k % 4) + k / 4])) << k;
        EXPECT_EQ(bits(copy[k]), bits(t[k])) << k;
    }
    // Row 3 keeps its first three elements; only e[3][3] becomes 1.
    const Elements16 cut = {1, 2, 3, 0, 5, 6, 7, 0, 9, 10, 11, 0, 13, 14, 15, 1};
    EXPECT_EQ(values(matrix<T>(kRamp).Function_2421()), cut);
    m.Function_2431();
    for (double e : values(m)) EXPECT_EQ(bits(e), bits(0.0));
    m.Function_2430();
    expectSameBits(m, Transform<T>());
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

// The cofactor member is private; an explicit instantiation may name it without access checks.
struct CofactorOfDouble {
    using type = double (Transform<double>::*)(unsigned, unsigned) const noexcept;
    friend type cofactorMember(CofactorOfDouble);
};
template <class Tag, typename Tag::type P>
struct Expose {
    friend typename Tag::type cofactorMember(Tag) { return P; }
};
template struct Expose<CofactorOfDouble, &Transform<double>::Function_2413>;

TEST(TransformAlgebra, CofactorBeyondRowOrColumnThreeIsZero)
{
    const Elements16 e = {2, 0, 1, 3, 1, 3, 0, 2, 0, 1, 4, 1, 1, -1, 2, 5};
    const Transform<double> m = matrix<double>(e);
    const auto cofactor = cofactorMember(CofactorOfDouble{});
    EXPECT_EQ((m.*cofactor)(1, 2), double(exactCofactor(e, 1, 2)));
    const unsigned beyond[][2] = {{4, 0}, {0, 4}, {4, 4}, {0xFFFFFFFF, 1}};
    for (const auto& rc : beyond) EXPECT_EQ((m.*cofactor)(rc[0], rc[1]), 0.0) << rc[0] << ' ' << rc[1];
}

// ---- Composition ----

TYPED_TEST(TransformAlgebra, CompositionIsTheFullRowByColumnProduct)
{
    using T = TypeParam;
    const Elements16 a = {1, 2, 0, -1, 0, 3, 1, 2, -2, 0, 1, 4, 0, 0, 0, 2}; // row 3 doubles B's
    const Elements16 b = {2, 0, 1, 3, 1, 3, 0, 2, 0, 1, 4, 1, 1, -1, 2, 5};
    const Elements16 ab = {3, 7, -1, 2, 5, 8, 8, 17, 0, -3, 10, 15, 2, -2, 4, 10};
    const Elements16 ba = {0, 4, 1, 8, 1, 11, 3, 9, -8, 3, 5, 20, -3, -1, 1, 15};
    const Elements16 aa = {1, 8, 2, 1, -2, 9, 4, 14, -4, -4, 1, 14, 0, 0, 0, 4};
    const Transform<T> ma = matrix<T>(a), mb = matrix<T>(b);
    EXPECT_EQ(values(ma * mb), ab);
    EXPECT_EQ(values(mb * ma), ba);
    EXPECT_EQ(values(ma * ma), aa);
}

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
