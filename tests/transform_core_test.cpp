// SPDX-License-Identifier: MIT
// Transform<T>: what construction, copying and assignment keep, bit for bit (the battery hashes
// every NaN as one, so payloads are checked here), and assignment's copy.
#include "test_support.h"

#include <limits>

namespace {

template <class T>
class TransformCore : public ::testing::Test {};
TYPED_TEST_SUITE(TransformCore, TransformTypes);

// Values no arithmetic may touch: a signed zero, a NaN with a payload, the ends of the range,
// a denormal. Both constructors and every copy keep them bit for bit, in linear order.
TYPED_TEST(TransformCore, ConstructorsAndCopiesKeepTheStoredBitsAndAssignmentReturnsACopy)
{
    using T = TypeParam;
    using P = std::conditional_t<std::is_same_v<T, float>, float, double>;
    const P nan = std::is_same_v<P, float> ? P(std::bit_cast<float>(0x7FC01234u))
                                           : P(std::bit_cast<double>(0x7FF8000000001234ull));
    const P top = std::is_same_v<T, guarddouble> ? P(kL) : std::numeric_limits<P>::max();
    const P denormal = std::numeric_limits<P>::denorm_min();
    const P list[16] = {-0.0f, nan, top, -top, denormal, -denormal, P(0.1), 1, 2, 3, 4, 5, 6, 7, -0.0f, 8};
    T odd[16];
    for (int k = 0; k < 16; ++k) odd[k] = T(list[k]);
    const Transform<T> source(odd), copied(source);
    const Transform<T> scalars(odd[0], odd[1], odd[2], odd[3], odd[4], odd[5], odd[6], odd[7],
                               odd[8], odd[9], odd[10], odd[11], odd[12], odd[13], odd[14], odd[15]);
    Transform<T> assigned, chained;
    chained = assigned = source;
    assigned = *&assigned; // self-assignment
    for (const Transform<T>* m : std::array<const Transform<T>*, 5>{&source, &copied, &scalars, &assigned, &chained}) {
        const auto e = elementsOf(*m);
        for (int k = 0; k < 16; ++k) EXPECT_EQ(bits(e[k]), bits(odd[k])) << k;
    }
    // Assignment returns a copy, not a reference: (a = b) = c leaves a equal to b.
    (assigned = matrix<T>(identityWith(3, 7))) = source;
    EXPECT_EQ(values(assigned), identityWith(3, 7));
    (assigned = source).Function_2431();
    expectSameBits(assigned, source);
}

} // namespace
