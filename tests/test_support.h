// SPDX-License-Identifier: MIT
// Helpers shared by the tests: exact bit patterns and values of stored elements, matrices built
// from plain numbers and read back, vectors read back as three doubles.
#pragma once

#include <quillon/Transform>

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <type_traits>

constexpr double kL = 0x1p1022;  // guarddouble limit
constexpr float kLf = 0x1p126f;  // guardfloat limit
constexpr int kLi = 2147483647;  // guardint limit

inline std::uint64_t bits(double v) { return std::bit_cast<std::uint64_t>(v); }
inline std::uint32_t bits(float v) { return std::bit_cast<std::uint32_t>(v); }
inline std::uint32_t bits(int v) { return static_cast<std::uint32_t>(v); }
template <class G>
auto bits(const G& g) -> decltype(bits(g.value())) { return bits(g.value()); }

// The stored value as a double, with nothing rounded (int and float widen exactly).
inline double val(double v) { return v; }
template <class G>
auto val(const G& g) -> decltype(double(g.value())) { return g.value(); }

// Equal values compared in the element's own type (so +0 equals -0). Results are compared as
// T, never widened to double first: GCC 12 at -O2 can fold a narrowing to float followed by a
// widening back to double into nothing when it vectorises two of them, which would make a test
// read an unrounded value.
template <class T>
bool same(const T& a, const T& b)
{
    if constexpr (std::is_arithmetic_v<T>) return a == b;
    else return a.value() == b.value();
}

// A number as an element of type T: rounded for float and int, stored by the class's own
// conversion for the guard types.
template <class T>
T make(double v)
{
    if constexpr (std::is_same_v<T, int>) return static_cast<int>(v);
    else if constexpr (std::is_same_v<T, float>) return static_cast<float>(v);
    else if constexpr (std::is_same_v<T, guardint>) return guardint(static_cast<int>(v));
    else return T(v); // double, guardfloat, guarddouble
}

using TransformTypes = ::testing::Types<float, double, guarddouble>;

// ---- Vectors ----

using Triple = std::array<double, 3>;
template <class T>
Triple comps(const ThreeDVector<T>& v) { return {val(v.GetX()), val(v.GetY()), val(v.GetZ())}; }

// ---- Matrices ----

using Elements16 = std::array<double, 16>;
constexpr Elements16 kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

// The identity with element k (linear index) replaced.
inline Elements16 identityWith(int k, double v)
{
    Elements16 e = kIdentity;
    e[k] = v;
    return e;
}

template <class T>
Transform<T> matrix(const Elements16& e)
{
    T a[16];
    for (int k = 0; k < 16; ++k) a[k] = make<T>(e[k]);
    return Transform<T>(a);
}

template <class T>
std::array<T, 16> elementsOf(const Transform<T>& m)
{
    std::array<T, 16> out{};
    m.Function_2416(out.data());
    return out;
}

template <class T>
Elements16 values(const Transform<T>& m)
{
    const auto e = elementsOf(m);
    Elements16 out;
    for (int k = 0; k < 16; ++k) out[k] = val(e[k]);
    return out;
}

// Element by element, stored bits equal.
template <class T>
void expectSameBits(const Transform<T>& a, const Transform<T>& b)
{
    const auto x = elementsOf(a), y = elementsOf(b);
    for (int k = 0; k < 16; ++k) EXPECT_EQ(bits(x[k]), bits(y[k])) << "element " << k;
}
