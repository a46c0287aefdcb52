// SPDX-License-Identifier: MIT
// How Transform<T> maps a point of each of the six vector types: the entry and exit rules, the rows
// summed in the element's working type, the plain-double form of a guarddouble mapping within
// 2^500, and the float mapping in lanes. Included at the end of Transform.h; not a header of its
// own.
#pragma once

// Transform<float> maps a point with rows 0 and 1 side by side in the two halves of one SSE2
// register (see mapInLanes below) where the compiler has GCC's vector extensions and SSE2 is the
// widest vector unit it may use. Where AVX is enabled the plain row sums are kept in callers'
// code: in a loop over many points the compiler's loop vectorizer maps four or eight points at
// once from them, which a point-at-a-time form would prevent. The module's own copy of the member
// is never in a caller's loop and always takes the lanes.
#if (defined(__clang__) || (defined(__GNUC__) && __GNUC__ >= 12)) && defined(__SSE2__) && \
    (!defined(__AVX__) || defined(QUILLON_BUILDING_MODULE))
#  define QUILLON_MAP_LANES 1
#  include <emmintrin.h>
#endif

// ---- Vector mapping ----

namespace quillon {
// How a Transform<A> takes a vector component of type B into its working local (enter) and
// stores a row's sum back as B (leave). The six cells of each row of the entry and exit tables
// are the six Element<B> functions named here.
template <class A>
struct MapRule;
template <>
struct MapRule<float> {
    template <class B> static float enter(const B& p) noexcept { return Element<B>::toFloat(p); }
    template <class B> static B leave(double s) noexcept { return Element<B>::fromSingle(s); }
};
template <>
struct MapRule<double> {
    template <class B> static double enter(const B& p) noexcept { return Element<B>::toDouble(p); }
    template <class B> static B leave(double s) noexcept { return Element<B>::fromDouble(s); }
};
template <>
struct MapRule<guarddouble> {
    template <class B> static guarddouble enter(const B& p) noexcept { return Element<B>::toGuarddouble(p); }
    template <class B> static B leave(const guarddouble& s) noexcept { return Element<B>::fromGuarddouble(s); }
};

namespace detail {
#if defined(__GNUC__)
#  define QUILLON_MAP_COLD __attribute__((noinline, cold, pure))
#else
#  define QUILLON_MAP_COLD
#endif
// Whether every operand of a guarddouble mapping lies within 2^500 in magnitude (so no infinity and
// no NaN). Then no product reaches 2^1000 and no sum 2^1002: no operand is at the limit, no sum or
// product saturates, and a zero product has the IEEE sign, so each guard operation of the rows
// gives exactly the IEEE result and the rows can be summed in plain double, in the same order.
// The elements are tested apart from the point, so that a caller's loop tests them once.
inline constexpr double kPlainBound = 0x1p500;
inline bool guardElementsArePlain(const guarddouble (&e)[4][4]) noexcept
{
    // Written out, with no loop, so that a caller's compiler sees twelve tests it can move out of
    // its own loop; a NaN compares false.
    const auto within = [](const guarddouble& g) { return std::fabs(g.value()) <= kPlainBound; };
    return within(e[0][0]) & within(e[0][1]) & within(e[0][2]) & within(e[0][3]) & within(e[1][0]) &
           within(e[1][1]) & within(e[1][2]) & within(e[1][3]) & within(e[2][0]) & within(e[2][1]) &
           within(e[2][2]) & within(e[2][3]);
}
// The point by the sum of its magnitudes: each is no larger than the sum as rounded (and a NaN or
// an infinity makes it fail), so a sum within the bound puts all three within it. A point whose
// components are within the bound but whose sum is not takes the guard rules, which give the same
// bits.
inline bool guardPointIsPlain(double x, double y, double z) noexcept
{
    return (std::fabs(x) + std::fabs(y)) + std::fabs(z) <= kPlainBound;
}

// s_r = (((e[r][0] x + e[r][1] y) + e[r][2] z) + e[r][3]): the element is the left operand of
// each product, the translation comes last, row 3 is never read. x, y and z are the components
// as the transform's work type holds them (double for float and double, guarddouble for guarddouble).
template <class A, class X>
inline X rowSum(const A (&e)[4][4], int r, const X& x, const X& y, const X& z) noexcept
{
    using W = Element<A>;
    return ((W::work(e[r][0]) * x + W::work(e[r][1]) * y) + W::work(e[r][2]) * z) + W::work(e[r][3]);
}

// The three row sums stored as B.
template <class A, class B, class S>
inline ThreeDVector<B> leaveRows(const S& s0, const S& s1, const S& s2) noexcept
{
    using R = MapRule<A>;
    ThreeDVector<B> result;
#if defined(__GNUC__) && defined(__x86_64__)
    if constexpr (std::is_same_v<B, float>) {
        // A ThreeDVector<float> is returned with x and y packed in one register. Written as two
        // components, x and y go to the stack one at a time and come back as one 8-byte load,
        // which cannot take its value from two 4-byte stores and waits for them to reach the
        // cache; packed here, the pair goes straight to the register. The values are the same.
        typedef float Pair __attribute__((vector_size(8)));
        const Pair xy = {R::template leave<B>(s0), R::template leave<B>(s1)};
        std::memcpy(static_cast<void*>(&result), &xy, sizeof xy);
        result.SetZ(R::template leave<B>(s2));
        return result;
    }
#endif
    result.SetX(R::template leave<B>(s0));
    result.SetY(R::template leave<B>(s1));
    result.SetZ(R::template leave<B>(s2));
    return result;
}

// A guarddouble mapping with an operand beyond 2^500: every operation by the guard rules. Kept out
// of line, so that the plain path of the caller's loop stays small; it reads and writes nothing
// but its arguments and result.
template <class B>
QUILLON_MAP_COLD ThreeDVector<B> mapGuarded(const guarddouble (&e)[4][4], guarddouble x, guarddouble y,
                                            guarddouble z) noexcept
{
    return leaveRows<guarddouble, B>(rowSum(e, 0, x, y, z), rowSum(e, 1, x, y, z), rowSum(e, 2, x, y, z));
}

#if defined(QUILLON_MAP_LANES)
// Transform<float> on one point, with the row sums of rowSum and the exits of leaveRows: rows 0
// and 1 side by side, lane r of each step being row r's own product or sum in rowSum's order and
// grouping, and row 2 alone in plain doubles. Lanes never mix and nothing fuses, so every row has
// the bits of rowSum; what changes is the number of instructions. Widening a float to double is
// exact, so two floats at a time are widened by one cvtps2pd (the components of a
// ThreeDVector<float> straight from memory, x with y and y with z), and the elements of rows 0
// and 1 are paired column by column before they are widened. Rows 0 and 1 leave through
// leaveRows, where the compiler rounds both lanes of a float result with one cvtpd2ps, which also
// leaves x and y packed in the register a ThreeDVector<float> is returned in. (SSE2 intrinsics:
// GCC 12 splits a conversion of its own two-float vectors into two scalar ones.)
template <class B>
inline ThreeDVector<B> mapInLanes(const float (&e)[4][4], const ThreeDVector<B>& v) noexcept
{
    using R = MapRule<float>;
    // (x, y) and (y, z) in double.
    LanePair xy, yz;
    if constexpr (std::is_same_v<B, float>) {
        static_assert(std::is_standard_layout_v<ThreeDVector<float>> && sizeof(ThreeDVector<float>) == 12);
        const char* at = reinterpret_cast<const char*>(&v);
        xy = LanePair(_mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(at)))));
        yz = LanePair(_mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(at + 4)))));
    } else {
        const double x = R::enter(v.GetX()), y = R::enter(v.GetY()), z = R::enter(v.GetZ());
        xy = LanePair{x, y};
        yz = LanePair{y, z};
    }
    // Column c of rows 0 and 1 as (e[0][c], e[1][c]); row 2 as (e[2][0], e[2][1]), (e[2][2], e[2][3]).
    __m128 r0, r1, r2;
    std::memcpy(&r0, e[0], sizeof r0);
    std::memcpy(&r1, e[1], sizeof r1);
    std::memcpy(&r2, e[2], sizeof r2);
    const __m128 left = _mm_unpacklo_ps(r0, r1), right = _mm_unpackhi_ps(r0, r1);
    const LanePair c0 = LanePair(_mm_cvtps_pd(left)), c1 = LanePair(_mm_cvtps_pd(_mm_movehl_ps(left, left)));
    const LanePair c2 = LanePair(_mm_cvtps_pd(right)), c3 = LanePair(_mm_cvtps_pd(_mm_movehl_ps(right, right)));
    const LanePair d01 = LanePair(_mm_cvtps_pd(r2)), d23 = LanePair(_mm_cvtps_pd(_mm_movehl_ps(r2, r2)));
    const LanePair x = __builtin_shufflevector(xy, xy, 0, 0);
    const LanePair y = __builtin_shufflevector(yz, yz, 0, 0);
    const LanePair z = __builtin_shufflevector(yz, yz, 1, 1);
    const LanePair rows01 = ((c0 * x + c1 * y) + c2 * z) + c3;
    const double row2 = ((d01[0] * x[0] + d01[1] * y[0]) + d23[0] * z[0]) + d23[1];
    return leaveRows<float, B>(rows01[0], rows01[1], row2);
}
#endif

template <class A, class B>
inline ThreeDVector<B> mapPoint(const A (&e)[4][4], const ThreeDVector<B>& v) noexcept
{
    using W = Element<A>;
    using R = MapRule<A>;
    const auto x = W::work(R::enter(v.GetX()));
    const auto y = W::work(R::enter(v.GetY()));
    const auto z = W::work(R::enter(v.GetZ()));
    if constexpr (std::is_same_v<A, guarddouble>) {
        const double px = x.value(), py = y.value(), pz = z.value();
        if (!(guardElementsArePlain(e) && guardPointIsPlain(px, py, pz))) return mapGuarded<B>(e, x, y, z);
        // The same sums in plain double: every guard operation would give the IEEE result. No sum
        // comes near the limit, so each is kept as it is, as guarddouble(double) would keep it.
        const auto kept = [](double sum) {
            guarddouble g;
            static_assert(std::is_trivially_copyable_v<guarddouble> && sizeof(guarddouble) == sizeof(double));
            std::memcpy(static_cast<void*>(&g), &sum, sizeof sum);
            return g;
        };
        const auto plain = [&](int r) {
            return ((e[r][0].value() * px + e[r][1].value() * py) + e[r][2].value() * pz) + e[r][3].value();
        };
#if defined(QUILLON_LANES)
        // Rows 0 and 1 side by side, each lane its own row's products and sums in plain's order.
        const auto column = [&](int c) { return LanePair{e[0][c].value(), e[1][c].value()}; };
        const LanePair rows01 = ((column(0) * LanePair{px, px} + column(1) * LanePair{py, py}) +
                                 column(2) * LanePair{pz, pz}) + column(3);
        return leaveRows<A, B>(kept(rows01[0]), kept(rows01[1]), kept(plain(2)));
#else
        return leaveRows<A, B>(kept(plain(0)), kept(plain(1)), kept(plain(2)));
#endif
    } else {
#if defined(QUILLON_MAP_LANES)
        if constexpr (std::is_same_v<A, float>) return mapInLanes(e, v);
#endif
        return leaveRows<A, B>(rowSum(e, 0, x, y, z), rowSum(e, 1, x, y, z), rowSum(e, 2, x, y, z));
    }
}
} // namespace detail
} // namespace quillon
