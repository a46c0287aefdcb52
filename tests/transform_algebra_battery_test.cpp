// SPDX-License-Identifier: MIT
// The fast forms of adjoint, inverse and composition (the lanes, the minors that share their 2x2
// determinants) against the plain ones: each cofactor the det3 of its minor gathered element by
// element, the product one element at a time with the element as accumulator. A
// seeded battery of matrices (small integers, wide exponents, zeros of both signs, infinities,
// NaN, guard limits, last rows that take the short form) must give the same bits for float,
// double and guarddouble; NaN payloads are not compared.
#include "test_support.h"

#include <cmath>
#include <limits>
#include <random>

namespace {

// The plain forms are the header's own: the cofactor as the det3 of its minor gathered element
// by element (the private member), the determinant from its six 2x2 determinants (the member).
template <class T>
T plainCofactor(const std::array<T, 16>& e, int row, int col)
{
    return quillon::detail::PrivateAccess::cofactor(Transform<T>(e.data()), row, col);
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
    const T d = Transform<T>(e.data()).Function_2414();
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

TYPED_TEST(AlgebraBattery, AdjointInverseAndProductMatchThePlainFormulas)
{
    using T = TypeParam;
    std::mt19937_64 rng(20261123);
    const int count = std::is_same_v<T, guarddouble> ? 3000 : 20000;
    for (int n = 0; n < count; ++n) {
        const std::array<T, 16> e = randomMatrix<T>(rng), f = randomMatrix<T>(rng);
        const Transform<T> m(e.data()), other(f.data());
        expectSame(elementsOf(m.Function_2412()), plainAdjoint(e), "adjoint", n);
        expectSame(elementsOf(m.Function_2415()), plainInverse(e), "inverse", n);
        expectSame(elementsOf(m * other), plainProduct(e, f), "product", n);
    }
}

} // namespace
