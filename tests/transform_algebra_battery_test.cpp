// SPDX-License-Identifier: MIT
// The fast determinant family and composition against the formulas written out the plain way:
// each cofactor a det3 of its minor gathered element by element, the determinant from its own
// six 2x2 determinants, the product one element at a time with the element as accumulator. A
// seeded battery of matrices (small integers, wide exponents, zeros of both signs, infinities,
// NaN, guard limits, last rows that take the short form) must give the same bits for float,
// double and guarddouble; NaN payloads are not compared.
#include "test_support.h"

#include <cmath>
#include <limits>
#include <random>

namespace {

template <class T>
using Work = typename quillon::Element<T>::Work;

template <class T>
Work<T> w(const std::array<T, 16>& e, int k) { return quillon::Element<T>::work(e[k]); }

template <class T>
Work<T> plainDet3(const T (&m)[9])
{
    using E = quillon::Element<T>;
    const auto t0 = E::work(m[4]) * E::work(m[8]) - E::work(m[5]) * E::work(m[7]);
    const auto t1 = E::work(m[3]) * E::work(m[8]) - E::work(m[5]) * E::work(m[6]);
    const auto t2 = E::work(m[3]) * E::work(m[7]) - E::work(m[4]) * E::work(m[6]);
    return (E::work(m[0]) * t0 - E::work(m[1]) * t1) + E::work(m[2]) * t2;
}

template <class T>
T plainCofactor(const std::array<T, 16>& e, int row, int col)
{
    T minor[9];
    int next = 0;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            if (r != row && c != col) minor[next++] = e[4 * r + c];
    const int sign = ((row + col) % 2) ? -1 : 1;
    return quillon::Element<T>::fromWork(sign * plainDet3(minor));
}

template <class T>
T plainDeterminant(const std::array<T, 16>& e)
{
    using E = quillon::Element<T>;
    if (e[12] == T(0.0) && e[13] == T(0.0) && e[14] == T(0.0) && e[15] == T(1.0))
        return E::fromWork((w(e, 0) * (w(e, 5) * w(e, 10) - w(e, 6) * w(e, 9)) -
                            w(e, 1) * (w(e, 4) * w(e, 10) - w(e, 6) * w(e, 8))) +
                           w(e, 2) * (w(e, 4) * w(e, 9) - w(e, 5) * w(e, 8)));
    const auto a = w(e, 10) * w(e, 15) - w(e, 11) * w(e, 14);
    const auto b = w(e, 9) * w(e, 15) - w(e, 11) * w(e, 13);
    const auto c = w(e, 9) * w(e, 14) - w(e, 10) * w(e, 13);
    const auto d = w(e, 8) * w(e, 15) - w(e, 11) * w(e, 12);
    const auto f = w(e, 8) * w(e, 14) - w(e, 10) * w(e, 12);
    const auto g = w(e, 8) * w(e, 13) - w(e, 9) * w(e, 12);
    const auto m0 = (w(e, 5) * a - w(e, 6) * b) + w(e, 7) * c;
    const auto m1 = (w(e, 4) * a - w(e, 6) * d) + w(e, 7) * f;
    const auto m2 = (w(e, 4) * b - w(e, 5) * d) + w(e, 7) * g;
    const auto m3 = (w(e, 4) * c - w(e, 5) * f) + w(e, 6) * g;
    return E::fromWork(((w(e, 0) * m0 - w(e, 1) * m1) + w(e, 2) * m2) - w(e, 3) * m3);
}

template <class T>
std::array<T, 16> plainAdjoint(const std::array<T, 16>& e)
{
    std::array<T, 16> out{};
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) out[4 * c + r] = plainCofactor(e, r, c);
    return out;
}

template <class T>
std::array<T, 16> plainInverse(const std::array<T, 16>& e)
{
    using E = quillon::Element<T>;
    const T d = plainDeterminant(e);
    std::array<T, 16> out{};
    if (!(d != T(0.0))) return elementsOf(Transform<T>());
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) out[4 * c + r] = E::fromWork(E::work(plainCofactor(e, r, c)) / E::work(d));
    return out;
}

template <class T>
std::array<T, 16> plainProduct(const std::array<T, 16>& l, const std::array<T, 16>& m)
{
    using E = quillon::Element<T>;
    std::array<T, 16> out{};
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            T acc = T(0.0);
            for (int k = 0; k < 4; ++k) {
                auto sum = E::work(acc);
                sum += E::work(l[4 * i + k]) * E::work(m[4 * k + j]);
                acc = E::fromWork(sum);
            }
            out[4 * i + j] = acc;
        }
    return out;
}

template <class T>
bool sameBitsOrBothNaN(const T& a, const T& b)
{
    const double x = val(a), y = val(b);
    if (std::isnan(x) || std::isnan(y)) return std::isnan(x) && std::isnan(y);
    return bits(a) == bits(b);
}

template <class T>
void expectSame(const std::array<T, 16>& got, const std::array<T, 16>& want, const char* what, int n)
{
    for (int k = 0; k < 16; ++k)
        ASSERT_TRUE(sameBitsOrBothNaN(got[k], want[k]))
            << what << " of matrix " << n << ", element " << k << ": " << val(got[k]) << " vs " << val(want[k]);
}

// Values where a slip shows: exact small integers (cancellation to +0 or -0), wide exponents,
// values that round differently in float, non-finite values and the guard limit.
double pick(std::mt19937_64& rng)
{
    static const double special[] = {0.0, -0.0, 1.0, -1.0, 0x1p24, 0x1p24 + 1, 1.0 + 0x1p-30, 0.1, 1e-40,
                                     1e300, -1e300, kL, -kL, std::numeric_limits<double>::infinity(),
                                     -std::numeric_limits<double>::infinity(),
                                     std::numeric_limits<double>::quiet_NaN(), 3.0e9, 0x1p-1074};
    switch (rng() % 8) {
    case 0: return special[rng() % std::size(special)];
    case 1:
    case 2: return static_cast<double>(static_cast<int>(rng() % 9) - 4);
    case 3: return std::ldexp(static_cast<double>(rng() % (1u << 30)) - 0x1p29, static_cast<int>(rng() % 200) - 100);
    default: return std::uniform_real_distribution<double>(-8.0, 8.0)(rng);
    }
}

template <class T>
std::array<T, 16> randomMatrix(std::mt19937_64& rng)
{
    std::array<T, 16> e{};
    for (int k = 0; k < 16; ++k) e[k] = make<T>(pick(rng));
    if (rng() % 3 == 0) { // the short form of the determinant
        e[12] = make<T>(0.0), e[13] = make<T>(0.0), e[14] = make<T>(0.0), e[15] = make<T>(1.0);
    }
    if (rng() % 4 == 0) e[4 * (rng() % 4) + rng() % 4] = e[4 * (rng() % 4) + rng() % 4]; // near-singular
    return e;
}

template <class T>
class AlgebraBattery : public ::testing::Test {};
TYPED_TEST_SUITE(AlgebraBattery, TransformTypes);

TYPED_TEST(AlgebraBattery, DeterminantAdjointInverseAndProductMatchThePlainFormulas)
{
    using T = TypeParam;
    std::mt19937_64 rng(20261123);
    const int count = std::is_same_v<T, guarddouble> ? 3000 : 20000;
    for (int n = 0; n < count; ++n) {
        const std::array<T, 16> e = randomMatrix<T>(rng), f = randomMatrix<T>(rng);
        const Transform<T> m(e.data()), other(f.data());
        const T d = m.Function_2414(), want = plainDeterminant(e);
        ASSERT_TRUE(sameBitsOrBothNaN(d, want)) << "determinant of matrix " << n;
        expectSame(elementsOf(m.Function_2412()), plainAdjoint(e), "adjoint", n);
        expectSame(elementsOf(m.Function_2415()), plainInverse(e), "inverse", n);
        expectSame(elementsOf(m * other), plainProduct(e, f), "product", n);
    }
}

} // namespace
