// SPDX-License-Identifier: MIT
// Transform<float> * ThreeDVector<B> against the formula written out here, one operation at a
// time in double: each component entered as float and widened, each row
// ((e[r][0] x + e[r][1] y) + e[r][2] z) + e[r][3], the sum stored by B's single-precision exit.
// The matrices and points come from a seeded generator over values where a mapping that strays
// shows: ties at 2^24 once a translation of 1 or 0.5 is added, values that round differently to
// float and to double, float overflow and underflow, signed zeros, infinities, NaN, the guard
// limits, and a last row of NaN that must never be read.
#pragma once

#include "test_support.h"

#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>

namespace float_battery {

inline double pick(std::uint64_t& state, bool element)
{
    static const double edges[] = {0.0, -0.0, 1.0, -1.0, 0.5, 0.1, 1.0 / 3.0, 0x1p24, 0x1p24 + 1, 0x1p24 + 2,
                                   -0x1p24 - 1, 0x1p-30, 1.0 + 0x1p-23, 3.4e38, -3.4e38, 1e39, 1e-45, 0x1p-149,
                                   0x1p-126, std::numeric_limits<double>::infinity(),
                                   -std::numeric_limits<double>::infinity(),
                                   std::numeric_limits<double>::quiet_NaN(), 2147483647.0, -2147483648.0, 3.0e9,
                                   kL, 0x1p126, 1.5, 2.5, -2.5, 1e20};
    state = state * 6364136223846793005u + 1442695040888963407u;
    const std::uint64_t r = state >> 20;
    switch (r % 4) {
    case 0: return edges[(r >> 3) % std::size(edges)];
    case 1: return static_cast<double>(static_cast<std::int64_t>((r >> 3) % 4001) - 2000) / (element ? 8 : 2);
    default: {
        // A value with a full double mantissa, scaled: rounding it to float loses bits.
        const double unit = static_cast<double>((r >> 11) & ((1ull << 52) - 1)) * 0x1p-52;
        return std::ldexp(((r >> 3) & 1) ? -unit - 0.5 : unit + 0.5, static_cast<int>((r >> 4) % 40) - 12);
    }
    }
}

template <class B>
B component(double v)
{
    if constexpr (std::is_same_v<B, int> || std::is_same_v<B, guardint>) {
        // In int range, then as the type holds it.
        const double c = std::isnan(v) ? 7.0 : std::fmax(-2147483648.0, std::fmin(2147483647.0, std::trunc(v)));
        return make<B>(c);
    } else {
        return quillon::Element<B>::fromDouble(v);
    }
}

// The formula, as plain scalar code.
template <class B>
ThreeDVector<B> expected(const float (&e)[16], const ThreeDVector<B>& v)
{
    using E = quillon::Element<B>;
    const double x = static_cast<double>(E::toFloat(v.GetX()));
    const double y = static_cast<double>(E::toFloat(v.GetY()));
    const double z = static_cast<double>(E::toFloat(v.GetZ()));
    B out[3];
    for (int r = 0; r < 3; ++r) {
        double s = static_cast<double>(e[4 * r]) * x;
        s = s + static_cast<double>(e[4 * r + 1]) * y;
        s = s + static_cast<double>(e[4 * r + 2]) * z;
        s = s + static_cast<double>(e[4 * r + 3]);
        out[r] = E::fromSingle(s);
    }
    return ThreeDVector<B>(out[0], out[1], out[2]);
}

template <class B>
bool sameComponent(const B& a, const B& b)
{
    if constexpr (!std::is_same_v<B, int> && !std::is_same_v<B, guardint>) {
        if (std::isnan(val(a)) || std::isnan(val(b))) return std::isnan(val(a)) && std::isnan(val(b));
    }
    return bits(a) == bits(b);
}

// Runs `cases` seeded mappings through map(elements, transform, point) and counts the components
// that differ from the formula (each reported through gtest as it is found).
template <class B, class Map>
int run(std::uint64_t seed, int cases, const char* what, Map map)
{
    std::uint64_t state = seed;
    int wrong = 0;
    for (int i = 0; i < cases; ++i) {
        float e[16];
        for (int k = 0; k < 16; ++k) e[k] = static_cast<float>(pick(state, true));
        if (i % 3 == 0)
            for (int k = 12; k < 16; ++k) e[k] = std::numeric_limits<float>::quiet_NaN(); // never read
        if (i % 5 == 0) e[3] = e[7] = e[11] = (i % 10 == 0) ? 1.0f : 0.5f; // ties once translated
        const Transform<float> t(e);
        const ThreeDVector<B> v(component<B>(pick(state, false)), component<B>(pick(state, false)),
                                component<B>(pick(state, false)));
        const ThreeDVector<B> got = map(e, t, v), want = expected(e, v);
        const B g[3] = {got.GetX(), got.GetY(), got.GetZ()}, w[3] = {want.GetX(), want.GetY(), want.GetZ()};
        for (int c = 0; c < 3; ++c) {
            if (sameComponent(g[c], w[c])) continue;
            ++wrong;
            ADD_FAILURE() << what << ": case " << i << " component " << c << std::hexfloat << ": " << val(g[c])
                          << ", not " << val(w[c]);
        }
    }
    return wrong;
}

// The same battery for each vector type a float transform maps.
template <class Map>
void everyVectorType(std::uint64_t seed, int cases, const char* what, Map map)
{
    run<int>(seed + 1, cases, what, map);
    run<float>(seed + 2, cases, what, map);
    run<double>(seed + 3, cases, what, map);
    run<guardint>(seed + 4, cases, what, map);
    run<guardfloat>(seed + 5, cases, what, map);
    run<guarddouble>(seed + 6, cases, what, map);
}

} // namespace float_battery
