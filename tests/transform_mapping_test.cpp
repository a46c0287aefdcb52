// SPDX-License-Identifier: MIT
// Transform<A> * ThreeDVector<B>: the 18 pairs of element types, each with its own entry and
// exit conversions.
#include "test_support.h"

#include <limits>

namespace {

enum Ty { I, F, D, GI, GF, GD }; // int, float, double, guardint, guardfloat, guarddouble

struct Case { Ty a, b; Elements16 m; Triple v, want; };

// The result is compared in its own element type B (see same() for why).
template <class A, class B>
void checkPair(const Case& c)
{
    const ThreeDVector<B> in(make<B>(c.v[0]), make<B>(c.v[1]), make<B>(c.v[2]));
    const ThreeDVector<B> out = matrix<A>(c.m) * in;
    const B got[3] = {out.GetX(), out.GetY(), out.GetZ()};
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(same(got[i], make<B>(c.want[i])))
            << "A " << c.a << " B " << c.b << " component " << i << " of (" << c.v[0] << ", " << c.v[1]
            << ", " << c.v[2] << "): " << std::hexfloat << val(got[i]) << ", not " << c.want[i];
}

template <class A>
void checkFrom(const Case& c)
{
    switch (c.b) {
    case I: return checkPair<A, int>(c);
    case F: return checkPair<A, float>(c);
    case D: return checkPair<A, double>(c);
    case GI: return checkPair<A, guardint>(c);
    case GF: return checkPair<A, guardfloat>(c);
    case GD: return checkPair<A, guarddouble>(c);
    }
}

void check(const Case& c)
{
    c.a == F ? checkFrom<float>(c) : c.a == D ? checkFrom<double>(c) : checkFrom<guarddouble>(c);
}

// Translation (0.75, -0.75, 0.25) and components with fractions where B can hold them: which
// fractions survive the entry, and how each exit rounds.
TEST(TransformMapping, EntryAndExitConversionsOfEachPair)
{
    Elements16 m = kIdentity;
    m[3] = 0.75, m[7] = -0.75, m[11] = 0.25;
    const Triple whole = {1, -1, 2}, fine = {1.5, -1.5, 0.125}, quarter = {1.25, -1.75, 0.75};
    const Case cases[] = {
        // int: truncated for A = float or double, nint for A = guarddouble.
        {F, I, m, whole, {1, -1, 2}}, {D, I, m, whole, {1, -1, 2}}, {GD, I, m, whole, {2, -2, 2}},
        // float and double: fractions in and out, except that A = guarddouble gives a whole number.
        {F, F, m, fine, {2.25, -2.25, 0.375}}, {D, F, m, fine, {2.25, -2.25, 0.375}}, {GD, F, m, fine, {2, -2, 0}},
        {F, D, m, fine, {2.25, -2.25, 0.375}}, {D, D, m, fine, {2.25, -2.25, 0.375}}, {GD, D, m, fine, {2, -2, 0}},
        // guardint: nearest, not truncated.
        {F, GI, m, whole, {2, -2, 2}}, {D, GI, m, whole, {2, -2, 2}}, {GD, GI, m, whole, {2, -2, 2}},
        // guardfloat enters through nint as (1, -2, 1) for every A.
        {F, GF, m, quarter, {1.75, -2.75, 1.25}}, {D, GF, m, quarter, {1.75, -2.75, 1.25}}, {GD, GF, m, quarter, {2, -3, 1}},
        // guarddouble keeps its fractions only under A = guarddouble.
        {F, GD, m, quarter, {1.75, -2.75, 1.25}}, {D, GD, m, quarter, {1.75, -2.75, 1.25}}, {GD, GD, m, quarter, {2, -2.5, 1}},
        // With the identity: (0.25, 0.75, -0.75) loses its fractions on entry unless A = guarddouble.
        // (The battery holds the rows, their order and the unread row 3 for every pair.)
        {F, GD, kIdentity, {0.25, 0.75, -0.75}, {0, 1, -1}}, {D, GD, kIdentity, {0.25, 0.75, -0.75}, {0, 1, -1}},
        {GD, GD, kIdentity, {0.25, 0.75, -0.75}, {0.25, 0.75, -0.75}}, {GD, GF, kIdentity, {0.25, 0.75, -0.75}, {0, 1, -1}},
    };
    for (const Case& c : cases) check(c);
}

TEST(TransformMapping, RoundingAtTheEdgesOfPrecisionAndLimitsOnlyForGuardTypes)
{
    const double p24 = 0x1p24, inf = std::numeric_limits<double>::infinity();
    const Elements16 fine = identityWith(3, 0x1p-30);
    const Case cases[] = {
        // Ties of guardint go toward zero: 1.5 gives 1, -1.5 gives -1.
        {D, GI, identityWith(3, 0.5), {1, 0, 0}, {1, 0, 0}}, {D, GI, identityWith(3, -0.5), {-1, 0, 0}, {-1, 0, 0}},
        {F, GI, identityWith(3, 0.5), {1, 0, 0}, {1, 0, 0}},
        // 2^24 + 1: the int exit truncates the double sum, guardint takes it rounded to float.
        {F, I, identityWith(3, 1), {p24, 0, 0}, {p24 + 1, 0, 0}}, {F, GI, identityWith(3, 1), {p24, 0, 0}, {p24, 0, 0}},
        // An int or guardint component above 2^24 is rounded to float on entry under A = float.
        {F, I, kIdentity, {p24 + 1, 0, 0}, {p24, 0, 0}}, {F, GI, kIdentity, {p24 + 1, 0, 0}, {p24, 0, 0}},
        {D, I, kIdentity, {p24 + 1, 0, 0}, {p24 + 1, 0, 0}},
        // The float transform sums in double: 1 + 2^-30 reaches a double or guarddouble result.
        {F, D, fine, {1, 0, 0}, {1 + 0x1p-30, 0, 0}}, {F, GD, fine, {1, 0, 0}, {1 + 0x1p-30, 0, 0}},
        {F, F, fine, {1, 0, 0}, {1, 0, 0}}, {F, GF, fine, {1, 0, 0}, {1, 0, 0}},
        // Products first, translation last: 2^53 + 1 rounds to 2^53 before -2^53 is added.
        {D, D, {1, 1, 0, -0x1p53, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, {0x1p53, 1, 0}, {0, 1, 0}},
        {F, D, {1, 1, 0, -0x1p24, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, {p24, 1, 0}, {1, 1, 0}},
        {GD, GD, {1, 1, 0, -0x1p53, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, {0x1p53, 1, 0}, {0, 1, 0}},
        // 0.1 enters a float transform rounded to float.
        {F, D, kIdentity, {0.1, 0, 0}, {double(0.1f), 0, 0}}, {D, D, kIdentity, {0.1, 0, 0}, {0.1, 0, 0}},
        // Limits apply only where a guard type is involved.
        {D, GF, identityWith(0, 1.0e39), {1, 0, 0}, {kLf, 0, 0}}, {D, F, identityWith(0, 1.0e39), {1, 0, 0}, {inf, 0, 0}},
        {D, GI, identityWith(0, 3.0e9), {1, 0, 0}, {kLi, 0, 0}}, {D, GI, identityWith(0, 3.0e9), {-1, 0, 0}, {-kLi, 0, 0}},
        {F, GI, identityWith(0, 3.0e9), {1, 0, 0}, {kLi, 0, 0}}, {D, GD, identityWith(0, 1.0e308), {1, 1, 0}, {kL, 1, 0}},
        // Under A = guarddouble the sum is the guard sum: 1 + 2^1022 keeps the 1.
        {GD, GD, identityWith(1, kL), {1, 1, 0}, {1, 1, 0}},
    };
    for (const Case& c : cases) check(c);
}

} // namespace

// Transform<guarddouble> sums its rows in plain double where every operand is within 2^500; the
// result must be the guard operators' own, bit for bit, on both sides of that bound: operands at
// and just past it, products that reach the limit, signed zeros, tiny values, infinities and NaN.
TEST(TransformMapping, GuardRowsInPlainDoubleGiveTheGuardOperatorsBits)
{
    // The first ten lie within the bound, the next three just past it.
    const double edges[] = {0x1p500, -0x1p500, 1.5, -0.0, 0.0, 0x1p-1074, -0x1p-1022, 3.25, 1.0e150, 0.1,
                            0x1.0000000000001p500, 0x1p511, -0x1p511, 0x1p1021, 1.0e300, 0x1p1022,
                            1.0 / 0.0, 0.0 / 0.0};
    std::uint64_t state = 12345;
    int within = 10;
    const auto draw = [&] {
        state = state * 6364136223846793005u + 1442695040888963407u;
        return edges[(state >> 33) % within];
    };
    for (int i = 0; i < 4000; ++i) {
        within = i % 4 == 0 ? sizeof edges / sizeof edges[0] : i % 4 == 1 ? 13 : 10; // 13: just past the bound too
        guarddouble e[16];
        for (guarddouble& g : e) g = guarddouble(draw());
        const Transform<guarddouble> t(e);
        const double px = draw(), py = draw(), pz = draw();
        const guarddouble x(px), y(py), z(pz);
        const ThreeDVector<guarddouble> got = t * ThreeDVector<guarddouble>(x, y, z);
        const guarddouble parts[3] = {got.GetX(), got.GetY(), got.GetZ()};
        for (int r = 0; r < 3; ++r) {
            // Each step a guard operator, in the mapping's order.
            const guarddouble want = ((e[4 * r] * x + e[4 * r + 1] * y) + e[4 * r + 2] * z) + e[4 * r + 3];
            const bool bothNaN = want.value() != want.value() && parts[r].value() != parts[r].value();
            EXPECT_TRUE(bothNaN || bits(want) == bits(parts[r]))
                << std::hexfloat << "row " << r << " of case " << i << ": " << parts[r].value() << ", not " << want.value();
        }
        // The same transform through a vector type with its own exit (nint).
        const ThreeDVector<int> whole = t * ThreeDVector<int>(1, -2, 3);
        const int wx = whole.GetX();
        EXPECT_EQ(wx, (((e[0] * guarddouble(1) + e[1] * guarddouble(-2)) + e[2] * guarddouble(3)) + e[3]).nint()) << i;
    }
}

// Transform<float>'s mapping against the formula spelled out in plain scalar code, for every vector
// type, as this program's compiler inlines it (the lanes of rows 0 and 1 where the build is for
// SSE2 without AVX, the plain row sums otherwise) and as the module exports it (always the lanes
// on x86). See float_mapping_battery.h for the values.
#include "float_mapping_battery.h"

#if defined(__GNUC__) && !defined(_WIN32)
#  include <dlfcn.h>
#endif

TEST(TransformMapping, FloatTransformInlineHasTheFormulasBits)
{
    float_battery::everyVectorType(0xf1'0a7, 4000, "inline",
                                   [](const float (&)[16], const Transform<float>& t, const auto& v) { return t * v; });
}

#if defined(__GNUC__) && !defined(_WIN32)
namespace {
// The module's copy of the member for vector type B, found by its exported name, and called the
// way the x86-64 and AArch64 conventions call a member: the object as the first argument.
template <class B>
const char* memberName()
{
    if constexpr (std::is_same_v<B, int>) return "_ZNK9TransformIfEmlERK12ThreeDVectorIiE";
    else if constexpr (std::is_same_v<B, float>) return "_ZNK9TransformIfEmlERK12ThreeDVectorIfE";
    else if constexpr (std::is_same_v<B, double>) return "_ZNK9TransformIfEmlERK12ThreeDVectorIdE";
    else if constexpr (std::is_same_v<B, guardint>) return "_ZNK9TransformIfEmlERK12ThreeDVectorI8guardintE";
    else if constexpr (std::is_same_v<B, guardfloat>) return "_ZNK9TransformIfEmlERK12ThreeDVectorI10guardfloatE";
    else return "_ZNK9TransformIfEmlERK12ThreeDVectorI11guarddoubleE";
}
} // namespace

TEST(TransformMapping, FloatTransformInTheModuleHasTheFormulasBits)
{
    void* module = dlopen("libquillon.so.1", RTLD_LAZY | RTLD_NOLOAD);
    if (!module) module = dlopen("libquillon.so.1", RTLD_LAZY);
    ASSERT_NE(module, nullptr) << dlerror();
    int found = 0;
    const auto viaModule = [&](const float (&)[16], const Transform<float>& t, const auto& v) {
        using V = std::decay_t<decltype(v)>;
        using Member = V (*)(const Transform<float>*, const V&);
        void* symbol = dlsym(module, memberName<decltype(v.GetX())>());
        if (!symbol) return V();
        ++found;
        return reinterpret_cast<Member>(symbol)(&t, v);
    };
    float_battery::everyVectorType(0xe4'9047, 4000, "module", viaModule);
    EXPECT_EQ(found, 6 * 4000); // every member was found and called
    dlclose(module);
}
#endif
