// Transform<T>: rotations, the small in-place members, determinant/adjoint/inverse and
// composition.
#include "transform_checks.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

namespace {

template <class T>
class TransformAlgebra : public ::testing::Test {};
TYPED_TEST_SUITE(TransformAlgebra, TransformTypes);

Elements16 ramp(double first)
{
    Elements16 e;
    std::iota(e.begin(), e.end(), first);
    return e;
}

// ---- Rotations ----

TYPED_TEST(TransformAlgebra, EulerConstructorAtZeroIsTheIdentityWithTwoNegativeZeros)
{
    Elements16 want = kIdentity;
    want[1] = want[6] = -0.0; // (-cy) * sz and (-sx) * cy
    const Elements16 got = values(Transform<TypeParam>(0.0, 0.0, 0.0));
    for (int k = 0; k < 16; ++k) EXPECT_EQ(bits(got[k]), bits(want[k])) << k;
}

TYPED_TEST(TransformAlgebra, EulerConstructorWithOneAngleIsThatElementaryRotation)
{
    using T = TypeParam;
    for (double t : {0.7, -2.2}) {
        const double c = std::cos(t), s = std::sin(t);
        const Elements16 rx = {1, 0, 0, 0, 0, c, -s, 0, 0, s, c, 0, 0, 0, 0, 1};
        const Elements16 ry = {c, 0, s, 0, 0, 1, 0, 0, -s, 0, c, 0, 0, 0, 0, 1};
        const Elements16 rz = {c, -s, 0, 0, s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
        expectElements(Transform<T>(t, 0.0, 0.0), rx);
        expectElements(Transform<T>(0.0, t, 0.0), ry);
        expectElements(Transform<T>(0.0, 0.0, t), rz);
    }
}

TEST(TransformAlgebra, EulerConstructorWorksInDoubleForEveryElementType)
{
    const Elements16 d = values(Transform<double>(0.3, -1.1, 2.5));
    const Elements16 f = values(Transform<float>(0.3, -1.1, 2.5));
    const Elements16 g = values(Transform<guarddouble>(0.3, -1.1, 2.5));
    for (int k = 0; k < 16; ++k) {
        EXPECT_EQ(bits(static_cast<float>(f[k])), bits(static_cast<float>(d[k]))) << k;
        EXPECT_EQ(bits(g[k]), bits(d[k])) << k; // reads no element, so no nint
    }
}

TEST(TransformAlgebra, EulerConstructorIsTheTurnsAboutZThenYThenX)
{
    std::mt19937 rng(20240611);
    std::uniform_real_distribution<double> angle(-3.2, 3.2);
    for (int n = 0; n < 20; ++n) {
        const double ax = angle(rng), ay = angle(rng), az = angle(rng);
        const Elements16 euler = values(Transform<double>(ax, ay, az));
        Transform<double> turned;
        turned.Function_2424(az);
        turned.Function_2423(ay);
        turned.Function_2422(ax);
        const Elements16 t = values(turned);
        for (int k = 0; k < 16; ++k) EXPECT_NEAR(t[k], euler[k], 1e-12) << n << ' ' << k;
        for (int i = 0; i < 3; ++i) // rows orthonormal
            for (int j = 0; j < 3; ++j) {
                double dot = 0;
                for (int c = 0; c < 3; ++c) dot += euler[4 * i + c] * euler[4 * j + c];
                EXPECT_NEAR(dot, i == j ? 1.0 : 0.0, 1e-12);
            }
    }
    // The order of two turns matters: e[0][2] is 0 one way and sin^2 t the other.
    Transform<double> zx, xz;
    zx.Function_2424(0.8);
    zx.Function_2422(0.8);
    xz.Function_2422(0.8);
    xz.Function_2424(0.8);
    EXPECT_EQ(values(zx)[2], 0.0);
    EXPECT_NEAR(values(xz)[2], std::sin(0.8) * std::sin(0.8), 1e-15);
}

// Each rotation member rewrites two rows from their old values, read as doubles (a guarddouble
// through its nearest integer), and must leave the other two rows exactly as they were.
TYPED_TEST(TransformAlgebra, RotationMembersRewriteTwoRowsFromTheOldValues)
{
    using T = TypeParam;
    const Elements16 start = {0.25, -0.0, 0.75, -1.25, 2.75, -0.25, 1.0, 0.125,
                              -0.75, 3.25, -0.0, 2.0, 0.375, -0.0, 5.0, 0.625};
    const Elements16 nearest = {0, 0, 1, -1, 3, 0, 1, 0, -1, 3, 0, 2, 0, 0, 5, 1};
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

TEST(TransformAlgebra, TwoEighthTurnsDifferWhenElementsAreReadAsWholeNumbers)
{
    Transform<double> d;
    Transform<guarddouble> g;
    for (int n = 0; n < 2; ++n) d.Function_2424(std::atan(1.0)), g.Function_2424(std::atan(1.0));
    const double r2 = std::sqrt(2.0), dWant[] = {0, -1, 1, 0}, gWant[] = {0, -r2, r2, 0};
    const int at[] = {0, 1, 4, 5};
    for (int i = 0; i < 4; ++i) {
        EXPECT_NEAR(values(d)[at[i]], dWant[i], 1e-15);
        EXPECT_NEAR(values(g)[at[i]], gWant[i], 1e-15); // about 0.7071 was read back as 1
    }
}

// ---- Translation, scaling, transpose, reset, clear ----

TYPED_TEST(TransformAlgebra, TranslationAddsToTheElementTheLetterNames)
{
    using T = TypeParam;
    const Elements16 start = ramp(1);
    for (int code = -128; code < 128; ++code) {
        const char axis = static_cast<char>(code);
        Transform<T> m = matrix<T>(start);
        m.Function_2428(axis, make<T>(0.5));
        Elements16 want = start;
        const int k = (axis == 'x' || axis == 'X') ? 3 : (axis == 'y' || axis == 'Y') ? 7
                    : (axis == 'z' || axis == 'Z') ? 11 : -1;
        if (k >= 0) want[k] += 0.5;
        EXPECT_EQ(values(m), want) << code;
    }
}

TEST(TransformAlgebra, GuardTranslationAddsByTheSaturatingSum)
{
    const double justUnderHalfLimit = std::nextafter(0x1p1021, 0.0);
    const struct { double element, amount, want; } cases[] = {
        {1.0, kL, 1.0}, {kL, -1.0, kL}, {-kL, 5.0, -kL},
        {0x1p1021, justUnderHalfLimit, kL}, // the sum is below the limit, its halves are not
    };
    for (const auto& c : cases) {
        Transform<guarddouble> m = matrix<guarddouble>(identityWith(11, c.element));
        m.Function_2428('z', guarddouble(c.amount));
        EXPECT_EQ(values(m), identityWith(11, c.want)) << c.element << ' ' << c.amount;
    }
}

TYPED_TEST(TransformAlgebra, ScalingMultipliesOneDiagonalElement)
{
    using T = TypeParam;
    const struct { void (Transform<T>::*member)(T); int k; } members[] = {
        {&Transform<T>::Function_2425, 0}, {&Transform<T>::Function_2426, 5}, {&Transform<T>::Function_2427, 10}};
    for (const auto& s : members) {
        Transform<T> m = matrix<T>(ramp(1));
        (m.*s.member)(make<T>(3));
        (m.*s.member)(make<T>(-3)); // calls accumulate
        Elements16 want = ramp(1);
        want[s.k] *= -9;
        EXPECT_EQ(values(m), want) << s.k;
    }
}

TYPED_TEST(TransformAlgebra, TransposeResetAndClear)
{
    using T = TypeParam;
    Elements16 start = ramp(1);
    start[3] = 7;
    start[12] = -0.0;
    const Transform<T> original = matrix<T>(start);

    Transform<T> m = original;
    EXPECT_EQ(&m.Function_2429(), &m);
    const Elements16 t = values(m);
    const Transform<T> copy = original.Function_2417();
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) EXPECT_EQ(bits(t[4 * r + c]), bits(start[4 * c + r]));
    expectSameBits(copy, m);
    expectSameBits(original, matrix<T>(start)); // Function_2417 leaves its object alone
    m.Function_2429().Function_2429();           // both act on m
    expectSameBits(m, copy);
    expectSameBits(copy.Function_2417(), original);

    m.Function_2431();
    for (double e : values(m)) EXPECT_EQ(bits(e), bits(0.0));
    EXPECT_EQ(val(m.Function_2414()), 0.0);
    m.Function_2430();
    expectSameBits(m, Transform<T>());
}

TYPED_TEST(TransformAlgebra, CopyWithoutTranslationKeepsRowThree)
{
    using T = TypeParam;
    const Transform<T> m = matrix<T>(ramp(1));
    const Elements16 want = {1, 2, 3, 0, 5, 6, 7, 0, 9, 10, 11, 0, 13, 14, 15, 1};
    EXPECT_EQ(values(m.Function_2421()), want);
    EXPECT_EQ(values(m), ramp(1));
}

// ---- Determinant, adjoint, inverse ----

// Exact integer references: determinant by permutations, cofactor from the minor.
long long exactDeterminant(const std::vector<long long>& m, int n)
{
    std::vector<int> p(n);
    std::iota(p.begin(), p.end(), 0);
    long long sum = 0;
    do {
        long long term = 1;
        for (int i = 0; i < n; ++i) {
            term *= m[i * n + p[i]];
            for (int j = i + 1; j < n; ++j) term *= p[i] > p[j] ? -1 : 1;
        }
        sum += term;
    } while (std::next_permutation(p.begin(), p.end()));
    return sum;
}

long long exactCofactor(const Elements16& e, int row, int col)
{
    std::vector<long long> minor;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            if (r != row && c != col) minor.push_back(static_cast<long long>(e[4 * r + c]));
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
        std::vector<long long> whole(e.begin(), e.end());
        const long long det = exactDeterminant(whole, 4);
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
}

TYPED_TEST(TransformAlgebra, IdentityCofactorsWithOddIndexSumAreNegativeZero)
{
    using T = TypeParam;
    if constexpr (!std::is_same_v<T, guarddouble>) {
        const Transform<T> identity;
        for (const Elements16& e : {values(identity.Function_2412()), values(identity.Function_2415())})
            for (int k = 0; k < 16; ++k)
                EXPECT_EQ(bits(e[k]), bits(k % 5 == 0 ? 1.0 : (k / 4 + k % 4) % 2 ? -0.0 : 0.0)) << k;
    }
}

TEST(TransformAlgebra, DeterminantTakesTheShortFormOnlyForAnExactLastRow)
{
    const double inf = std::numeric_limits<double>::infinity();
    // The short form never reads the translation; the full expansion would make inf * 0 = NaN.
    EXPECT_EQ(matrix<double>(identityWith(3, inf)).Function_2414(), 1.0);
    EXPECT_EQ(matrix<float>(identityWith(7, inf)).Function_2414(), 1.0f);
    const double nearOne = 1.0 + 0x1p-52;
    EXPECT_EQ(matrix<double>(identityWith(15, nearOne)).Function_2414(), nearOne);
}

TEST(TransformAlgebra, FloatDeterminantIsRoundedOnlyAtTheEnd)
{
    // A value of 1e-60 is not zero in double but rounds to 0 as a float: singular.
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
    // Determinant 2^1022: 1 / L is +0 and L / L stays L by the guard quotient.
    const Elements16 inverse = values(matrix<guarddouble>(identityWith(0, kL)).Function_2415());
    const Elements16 want = {0, 0, 0, 0, 0, kL, 0, 0, 0, 0, kL, 0, 0, 0, 0, kL};
    EXPECT_EQ(inverse, want);
    EXPECT_EQ(bits(inverse[0]), bits(0.0));
}

TEST(TransformAlgebra, InverseTimesMatrixIsTheIdentityForWellConditionedMatrices)
{
    std::mt19937 rng(77031);
    std::uniform_real_distribution<double> entry(-1.0, 1.0);
    for (int n = 0; n < 40; ++n) {
        Elements16 e;
        for (double& x : e) x = entry(rng);
        for (int i = 0; i < 4; ++i) e[5 * i] += 4.0;
        if (n % 2) { e[12] = e[13] = e[14] = 0; e[15] = 1; } // short form
        const Elements16 inv = values(matrix<double>(e).Function_2415());
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c) {
                long double sum = 0;
                for (int k = 0; k < 4; ++k) sum += (long double)inv[4 * r + k] * e[4 * k + c];
                EXPECT_NEAR(double(sum), r == c ? 1.0 : 0.0, 1e-12) << n;
            }
    }
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

Elements16 exactProduct(const Elements16& a, const Elements16& b)
{
    Elements16 p{};
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            long long s = 0;
            for (int k = 0; k < 4; ++k) s += (long long)a[4 * i + k] * (long long)b[4 * k + j];
            p[4 * i + j] = double(s);
        }
    return p;
}

TYPED_TEST(TransformAlgebra, CompositionIsTheFullRowByColumnProduct)
{
    using T = TypeParam;
    const Elements16 a = {1, 2, 0, -1, 0, 3, 1, 2, -2, 0, 1, 4, 0, 0, 0, 2}; // row 3 doubles B's
    const Elements16 b = {2, 0, 1, 3, 1, 3, 0, 2, 0, 1, 4, 1, 1, -1, 2, 5};
    const Transform<T> ma = matrix<T>(a), mb = matrix<T>(b), identity;
    EXPECT_EQ(values(ma * mb), exactProduct(a, b));
    EXPECT_EQ(values(mb * ma), exactProduct(b, a));
    EXPECT_EQ(values(ma * ma), exactProduct(a, a));
    EXPECT_EQ(values(ma), a); // a * a leaves a alone
    expectSameBits(mb * identity, mb);
    expectSameBits(identity * mb, mb);
}

TEST(TransformAlgebra, CompositionRoundsTheAccumulatorAtEachStep)
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
    const Elements16 right = identityWith(4, u);
    EXPECT_EQ(values(matrix<double>(left) * matrix<double>(right))[0], 0.0);
    EXPECT_EQ(values(matrix<guarddouble>(left) * matrix<guarddouble>(right))[0], 0.0);
}

TEST(TransformAlgebra, GuardCompositionDropsAProductAtTheLimit)
{
    Elements16 e = identityWith(0, kL);
    e[1] = 0.5, e[7] = -3;
    const Transform<guarddouble> m = matrix<guarddouble>(e), identity;
    Elements16 want = e;
    want[0] = 0; // 0 + 2^1022 keeps the accumulator's 0
    EXPECT_EQ(values(m * identity), want);
    EXPECT_EQ(values(identity * m), want);
}

} // namespace
