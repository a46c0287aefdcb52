// SPDX-License-Identifier: MIT
// The lane forms of Transform<T>'s composition, adjoint and inverse: four elements' work at once,
// each lane one element's formula in its order, so the same bits as the one-element formulas of
// Transform.h, which a test holds them to. LaneForms<T> says whether T has them and holds them; the
// members ask it. Included by Transform.h where it needs them; not a header of its own.
#pragma once

namespace quillon::detail {
// No lane forms: the members use the one-element formulas.
template <class T>
struct LaneForms {
    static constexpr bool present = false;
};
#if defined(__clang__) || (defined(__GNUC__) && __GNUC__ >= 12)
#  define QUILLON_LANES 1
// Four doubles side by side, as two pairs (the width every x86-64 processor has). The float and
// double members below use them to do four elements' work at once. Each lane is one element's own
// sequence of products, sums and quotients, in the order and grouping of the one-element formula:
// lanes never mix, and with contraction off no multiply and add fuse, so every lane has the bits
// of the formula.
typedef double LanePair __attribute__((vector_size(16)));
typedef float LanePairFloat __attribute__((vector_size(8)));
struct Quad {
    LanePair lo, hi;
    double operator[](int k) const noexcept { return k < 2 ? lo[k] : hi[k - 2]; }
};
inline Quad quad(double a, double b, double c, double d) noexcept { return {LanePair{a, b}, LanePair{c, d}}; }
inline Quad quad(double a) noexcept { return quad(a, a, a, a); }
inline Quad operator+(const Quad& a, const Quad& b) noexcept { return {a.lo + b.lo, a.hi + b.hi}; }
inline Quad operator-(const Quad& a, const Quad& b) noexcept { return {a.lo - b.lo, a.hi - b.hi}; }
inline Quad operator*(const Quad& a, const Quad& b) noexcept { return {a.lo * b.lo, a.hi * b.hi}; }
inline Quad operator/(const Quad& a, const Quad& b) noexcept { return {a.lo / b.lo, a.hi / b.hi}; }
// Each lane stored as T and read back: rounded to float for float, unchanged for double.
template <class T>
Quad stored(const Quad& a) noexcept
{
    if constexpr (std::is_same_v<T, float>)
        return {__builtin_convertvector(__builtin_convertvector(a.lo, LanePairFloat), LanePair),
                __builtin_convertvector(__builtin_convertvector(a.hi, LanePairFloat), LanePair)};
    else
        return a;
}
template <class T>
Quad row(const T (&r)[4]) noexcept { return quad(r[0], r[1], r[2], r[3]); }

template <class T>
Transform<T> fromLinear(const T (&a)[16]) noexcept
{
    return Transform<T>(a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9], a[10], a[11], a[12], a[13],
                        a[14], a[15]);
}

// The product, a row at a time: row i is the sum over k of l[i][k] times row k of m, from zero in
// the order k = 0, 1, 2, 3, each step stored as T.
template <class T>
Transform<T> composeInLanes(const T (&l)[4][4], const T (&m)[4][4]) noexcept
{
    const Quad rows[4] = {row(m[0]), row(m[1]), row(m[2]), row(m[3])};
    T out[16];
#  pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) {
        Quad acc = quad(0.0);
#  pragma GCC unroll 4
        for (int k = 0; k < 4; ++k) acc = stored<T>(acc + quad(static_cast<double>(l[i][k])) * rows[k]);
#  pragma GCC unroll 4
        for (int j = 0; j < 4; ++j) out[4 * i + j] = static_cast<T>(acc[j]);
    }
    return fromLinear(out);
}

// The unsigned minors of Minors, a row of four at a time. With c0 < c1 < c2 the columns other
// than c, lane c of minor row r is det3's (m_0 t0 - m_1 t1) + m_2 t2, where m_0, m_1, m_2 are
// the first row's elements in columns c0, c1, c2 and t0, t1, t2 the 2x2 determinants
// D(c1, c2), D(c0, c2), D(c0, c1) of the last two rows p < q. Across the lanes c = 0..3:
//   m_0 = first row at (1, 0, 0, 0)     t0 = (D23, D23, D13, D12)
//   m_1 = first row at (2, 2, 1, 1)     t1 = (D13, D03, D03, D02)
//   m_2 = first row at (3, 3, 3, 2)     t2 = (D12, D02, D01, D01)
// The six D(a, b) = p[a] q[b] - p[b] q[a] of a pair of rows are formed once, two at a time, with
// det3's operands, and then dealt out to the lanes that read them.
template <class T>
struct MinorsInLanes {
    Quad at[4];

    // Always inlined: called once per member, and the members' callers gain most from seeing it.
    __attribute__((always_inline)) explicit MinorsInLanes(const T (&e)[4][4]) noexcept
    {
        LanePair left[4], right[4]; // columns 0 and 1, columns 2 and 3
#  pragma GCC unroll 4
        for (int k = 0; k < 4; ++k) {
            left[k] = LanePair{static_cast<double>(e[k][0]), static_cast<double>(e[k][1])};
            right[k] = LanePair{static_cast<double>(e[k][2]), static_cast<double>(e[k][3])};
        }
        // Row k at columns (a, b), for the pairs the determinants need.
        const auto at20 = [&](int k) { return __builtin_shufflevector(right[k], left[k], 0, 2); };
        const auto at21 = [&](int k) { return __builtin_shufflevector(right[k], left[k], 0, 3); };
        const auto at10 = [&](int k) { return __builtin_shufflevector(left[k], left[k], 1, 0); };
        const auto at32 = [&](int k) { return __builtin_shufflevector(right[k], right[k], 1, 0); };
        const auto at33 = [&](int k) { return __builtin_shufflevector(right[k], right[k], 1, 1); };
        const auto minorRow = [&](int first, int p, int q) {
            const LanePair u = at20(p) * at33(q) - at33(p) * at20(q); // D23, D03
            const LanePair v = at10(p) * at32(q) - at32(p) * at10(q); // D13, D02
            const LanePair w = at10(p) * at21(q) - at21(p) * at10(q); // D12, D01
            const Quad t0 = {__builtin_shufflevector(u, u, 0, 0), __builtin_shufflevector(v, w, 0, 2)};
            const Quad t1 = {__builtin_shufflevector(v, u, 0, 3), __builtin_shufflevector(u, v, 1, 3)};
            const Quad t2 = {__builtin_shufflevector(w, v, 0, 3), __builtin_shufflevector(w, w, 1, 1)};
            const LanePair l = left[first], r = right[first];
            const Quad m0 = {__builtin_shufflevector(l, l, 1, 0), __builtin_shufflevector(l, l, 0, 0)};
            const Quad m1 = {__builtin_shufflevector(r, r, 0, 0), __builtin_shufflevector(l, l, 1, 1)};
            const Quad m2 = {__builtin_shufflevector(r, r, 1, 1), __builtin_shufflevector(r, r, 1, 0)};
            return (m0 * t0 - m1 * t1) + m2 * t2;
        };
        // The rows the determinant reads first (row 0 for the full expansion, the minor (3, 3)
        // for the short form), so that the inverse's divisions can start while the rest is formed.
        at[0] = minorRow(1, 2, 3);
        at[3] = minorRow(0, 1, 2);
        at[1] = minorRow(0, 2, 3);
        at[2] = minorRow(0, 1, 3);
    }

    // As Minors::determinant.
    double determinant(const T (&e)[4][4]) const noexcept
    {
        if (e[3][0] == T(0.0) && e[3][1] == T(0.0) && e[3][2] == T(0.0) && e[3][3] == T(1.0)) return at[3][3];
        const double w0 = e[0][0], w1 = e[0][1], w2 = e[0][2], w3 = e[0][3];
        return ((w0 * at[0][0] - w1 * at[0][1]) + w2 * at[0][2]) - w3 * at[0][3];
    }

    // Row r of signed cofactors, each stored as T: the integer sign, as a double, times the minor.
    Quad cofactors(int r) const noexcept
    {
        const double s = (r % 2) ? -1.0 : 1.0;
        return stored<T>(quad(s, -s, s, -s) * at[r]);
    }
};

// float and double: the members' lane forms.
template <class T>
struct FloatingLaneForms {
    static constexpr bool present = true;

    static Transform<T> compose(const T (&l)[4][4], const T (&m)[4][4]) noexcept { return composeInLanes(l, m); }

    static Transform<T> adjoint(const T (&elements)[4][4]) noexcept
    {
        const MinorsInLanes<T> minors(elements);
        T work[16];
        for (int r = 0; r < 4; ++r) {
            const Quad cofactors = minors.cofactors(r);
            for (int c = 0; c < 4; ++c) work[c * 4 + r] = static_cast<T>(cofactors[c]);
        }
        return fromLinear(work);
    }

    static Transform<T> inverse(const T (&elements)[4][4]) noexcept
    {
        const MinorsInLanes<T> minors(elements);
        const T d = static_cast<T>(minors.determinant(elements)); // float: rounded here
        if (!(d != T(0.0))) return Transform<T>();
        // The cofactor's sign moves to the divisor: (-m) / d and m / (-d) round alike, and a
        // float minor rounds to the negation of its negation's rounding, so each quotient keeps
        // its bits and four multiplications by -1 go.
        const double dd = static_cast<double>(d);
        const Quad divisors[2] = {quad(dd, -dd, dd, -dd), quad(-dd, dd, -dd, dd)};
        T work[16];
#  pragma GCC unroll 4
        for (int r = 0; r < 4; ++r) {
            // Quotients, never products with 1/d; for float, of the float cofactor and determinant.
            const Quad quotients = stored<T>(stored<T>(minors.at[r]) / divisors[r % 2]);
#  pragma GCC unroll 4
            for (int c = 0; c < 4; ++c) work[c * 4 + r] = static_cast<T>(quotients[c]);
        }
        return fromLinear(work);
    }
};
template <>
struct LaneForms<float> : FloatingLaneForms<float> {};
template <>
struct LaneForms<double> : FloatingLaneForms<double> {};
#endif
} // namespace quillon::detail
