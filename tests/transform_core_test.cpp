// Transform<T>: construction, copying, assignment and the three column-0 readers.
#include "transform_checks.h"

#include <bit>
#include <cstdint>
#include <limits>
#include <numeric>

namespace {

template <class T>
class TransformCore : public ::testing::Test {};
TYPED_TEST_SUITE(TransformCore, TransformTypes);

TYPED_TEST(TransformCore, ConstructorsFillElementsInLinearOrder)
{
    using T = TypeParam;
    Elements16 ramp;
    std::iota(ramp.begin(), ramp.end(), 0.0);

    const Transform<T> identity, fromNull(static_cast<const T*>(nullptr));
    for (const auto* m : {&identity, &fromNull}) {
        const Elements16 e = values(*m);
        for (int k = 0; k < 16; ++k) EXPECT_EQ(bits(e[k]), bits(kIdentity[k])) << k; // +0, not -0
        EXPECT_EQ(val(m->Function_2418()), 0.0);
        EXPECT_EQ(val(m->Function_2419()), 0.0);
        EXPECT_EQ(val(m->Function_2420()), 0.0);
    }

    // Row 0 is the first four values, not every fourth; row 3 may hold anything.
    const Transform<T> fromArray = matrix<T>(ramp);
    const Transform<T> fromScalars(make<T>(0), make<T>(1), make<T>(2), make<T>(3), make<T>(4),
                                   make<T>(5), make<T>(6), make<T>(7), make<T>(8), make<T>(9),
                                   make<T>(10), make<T>(11), make<T>(12), make<T>(13),
                                   make<T>(14), make<T>(15));
    for (const auto* m : {&fromArray, &fromScalars}) {
        EXPECT_EQ(values(*m), ramp);
        EXPECT_EQ(val(m->Function_2418()), 4.0); // column 0 of rows 1, 2, 3
        EXPECT_EQ(val(m->Function_2419()), 8.0);
        EXPECT_EQ(val(m->Function_2420()), 12.0);
    }
}

// Values no arithmetic may touch: a signed zero, a NaN with a payload, the ends of the range,
// a denormal. Each copying path must move them bit for bit.
template <class T>
std::array<T, 16> oddValues()
{
    using P = std::conditional_t<std::is_same_v<T, float>, float, double>;
    const P nan = std::is_same_v<P, float> ? P(std::bit_cast<float>(0x7FC01234u))
                                           : P(std::bit_cast<double>(0x7FF8000000001234ull));
    const P top = std::is_same_v<T, guarddouble> ? P(kL) : std::numeric_limits<P>::max();
    const P denormal = std::numeric_limits<P>::denorm_min();
    const P list[16] = {-0.0f, nan, top, -top, denormal, -denormal, P(0.1), 1, 2, 3, 4, 5, 6, 7, -0.0f, 1};
    std::array<T, 16> out;
    for (int k = 0; k < 16; ++k) out[k] = T(list[k]);
    return out;
}

TYPED_TEST(TransformCore, EveryCopyKeepsTheStoredBits)
{
    using T = TypeParam;
    const auto odd = oddValues<T>();
    const Transform<T> source(odd.data());
    const auto e = elementsOf(source);
    for (int k = 0; k < 16; ++k) EXPECT_EQ(bits(e[k]), bits(odd[k])) << k;

    const Transform<T> copied(source);
    const Transform<T> scalars(odd[0], odd[1], odd[2], odd[3], odd[4], odd[5], odd[6], odd[7],
                               odd[8], odd[9], odd[10], odd[11], odd[12], odd[13], odd[14], odd[15]);
    Transform<T> assigned;
    const Transform<T> returned = (assigned = source);
    for (const Transform<T>* m : {&copied, &scalars, &returned}) expectSameBits(*m, source);
    expectSameBits(assigned, source);

    // The copy-out writes over whatever the array held.
    std::array<T, 16> out;
    out.fill(T(99.0));
    source.Function_2416(out.data());
    for (int k = 0; k < 16; ++k) EXPECT_EQ(bits(out[k]), bits(odd[k])) << k;
}

TYPED_TEST(TransformCore, AssignmentCopiesInAndReturnsASeparateValue)
{
    using T = TypeParam;
    const Elements16 bValues = identityWith(3, 7), cValues = identityWith(4, -2);
    Transform<T> a, b = matrix<T>(bValues);
    const Transform<T> c = matrix<T>(cValues);

    Transform<T> result = (a = b);
    EXPECT_EQ(values(a), bValues);
    EXPECT_EQ(values(b), bValues); // the argument is left alone
    EXPECT_EQ(values(result), bValues);
    result.Function_2431();
    EXPECT_EQ(values(a), bValues); // the result is a copy, not a reference to a

    (a = b) = c; // the second assignment goes to the returned copy
    EXPECT_EQ(values(a), bValues);
    a = b = c;
    EXPECT_EQ(values(b), cValues);
    EXPECT_EQ(values(a), cValues);

    const auto odd = oddValues<T>();
    Transform<T> self(odd.data());
    self = self;
    expectSameBits(self, Transform<T>(odd.data()));
}

} // namespace
