// SPDX-License-Identifier: MIT
// The readable names of <quillon/Names>: each gives the bits of the member it stands for, and on
// the matrices chosen here every other member of its kind gives something else, so a name wired to
// the wrong member fails.
#include <quillon/Names>

#include "test_support.h"

#include <functional>
#include <string>
#include <vector>

namespace {

template <class T>
class Names : public ::testing::Test {};
TYPED_TEST_SUITE(Names, TransformTypes);

// No two elements alike, not symmetric, determinant 55/2 (not 1, so the inverse is not the
// adjoint), all values exact in float.
const Elements16 kUneven = {2, 3, 5, 7, 1, 4, 9, 6, 0, 8, 3, 2, 0.5, 0.25, 0.125, 1};

template <class T>
using Change = std::function<void(Transform<T>&)>;
template <class T>
struct Pair {
    std::string what;
    Change<T> name, member;
};

template <class T>
Transform<T> changed(Transform<T> t, const Change<T>& f)
{
    f(t);
    return t;
}

template <class T>
bool sameBits(const Transform<T>& a, const Transform<T>& b)
{
    const auto x = elementsOf(a), y = elementsOf(b);
    for (int k = 0; k < 16; ++k)
        if (bits(x[k]) != bits(y[k])) return false;
    return true;
}

// Each pair agrees, and no name agrees with another pair's member.
template <class T>
void expectEachNameIsItsMember(const std::vector<Pair<T>>& pairs, const Transform<T>& start)
{
    for (const auto& p : pairs) {
        const Transform<T> byName = changed(start, p.name);
        for (const auto& q : pairs) {
            const bool same = sameBits(byName, changed(start, q.member));
            if (&p == &q) {
                EXPECT_TRUE(same) << p.what;
            } else {
                EXPECT_FALSE(same) << p.what << " gives what " << q.what << " gives";
            }
        }
    }
}

TYPED_TEST(Names, InPlaceChangesCallTheirMembers)
{
    using T = TypeParam;
    const T three = make<T>(3), five = make<T>(5);
    const std::vector<Pair<T>> pairs = {
        {"turnX", [](auto& t) { quillon::turnX(t, 0.3); }, [](auto& t) { t.Function_2422(0.3); }},
        {"turnY", [](auto& t) { quillon::turnY(t, 0.3); }, [](auto& t) { t.Function_2423(0.3); }},
        {"turnZ", [](auto& t) { quillon::turnZ(t, 0.3); }, [](auto& t) { t.Function_2424(0.3); }},
        {"scaleX", [&](auto& t) { quillon::scaleX(t, three); }, [&](auto& t) { t.Function_2425(three); }},
        {"scaleY", [&](auto& t) { quillon::scaleY(t, three); }, [&](auto& t) { t.Function_2426(three); }},
        {"scaleZ", [&](auto& t) { quillon::scaleZ(t, three); }, [&](auto& t) { t.Function_2427(three); }},
        {"move x", [&](auto& t) { quillon::move(t, 'x', five); }, [&](auto& t) { t.Function_2428('x', five); }},
        {"move Y", [&](auto& t) { quillon::move(t, 'Y', five); }, [&](auto& t) { t.Function_2428('Y', five); }},
        {"move z", [&](auto& t) { quillon::move(t, 'z', five); }, [&](auto& t) { t.Function_2428('z', five); }},
        {"transposeInPlace", [](auto& t) { quillon::transposeInPlace(t); }, [](auto& t) { t.Function_2429(); }},
        {"reset", [](auto& t) { quillon::reset(t); }, [](auto& t) { t.Function_2430(); }},
        {"clear", [](auto& t) { quillon::clear(t); }, [](auto& t) { t.Function_2431(); }},
        // The readers, as changes that replace the transform with what they give.
        {"inverse", [](auto& t) { t = quillon::inverse(t); }, [](auto& t) { t = t.Function_2415(); }},
        {"adjoint", [](auto& t) { t = quillon::adjoint(t); }, [](auto& t) { t = t.Function_2412(); }},
        {"withoutTranslation", [](auto& t) { t = quillon::withoutTranslation(t); }, [](auto& t) { t = t.Function_2421(); }},
    };
    expectEachNameIsItsMember(pairs, matrix<T>(kUneven));
}

// The readers that give a value: determinant, elements (row by row, a null array ignored),
// transposed (a new value; transposeInPlace returns the transform itself) and rotation (the Euler
// constructor, angles in their order).
TYPED_TEST(Names, ReadersGiveTheMembersValues)
{
    using T = TypeParam;
    const Transform<T> t = matrix<T>(kUneven);
    EXPECT_EQ(val(quillon::determinant(t)), 27.5);
    T written[16];
    quillon::elements(t, written);
    quillon::elements(t, static_cast<T*>(nullptr));
    EXPECT_EQ(val(written[1]), 3.0);
    EXPECT_EQ(val(written[4]), 1.0);
    EXPECT_EQ(val(elementsOf(quillon::transposed(t))[1]), 1.0);
    EXPECT_EQ(val(elementsOf(t)[1]), 3.0);
    Transform<T> u = t;
    EXPECT_EQ(&quillon::transposeInPlace(u), &u);
    expectSameBits(quillon::rotation<T>(0.1, 0.7, -1.3), Transform<T>(0.1, 0.7, -1.3));
    EXPECT_FALSE(sameBits(quillon::rotation<T>(0.1, 0.7, -1.3), Transform<T>(-1.3, 0.7, 0.1)));
}

// A factor or an amount is converted to the element type as the member converts it: 0.1 becomes
// the float 0.1f for Transform<float>, not a double.
TEST(Names, PlainNumbersConvertAsForTheMember)
{
    Transform<float> byName, byMember;
    quillon::scaleY(byName, 0.1);
    quillon::move(byName, 'x', 0.1);
    byMember.Function_2426(0.1f);
    byMember.Function_2428('x', 0.1f);
    expectSameBits(byName, byMember);
    EXPECT_EQ(bits(elementsOf(byName)[3]), bits(0.1f));
}

} // namespace
