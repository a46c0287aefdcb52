// Helpers shared by the Transform tests: building a matrix from plain numbers and reading its
// sixteen elements back.
#pragma once

#include "test_support.h"

#include <quillon/Transform>

#include <gtest/gtest.h>

#include <array>
#include <type_traits>

using Elements16 = std::array<double, 16>;
using TransformTypes = ::testing::Types<float, double, guarddouble>;

constexpr Elements16 kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

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

// The stored value as a double, with nothing rounded.
inline double val(int v) { return v; }
inline double val(float v) { return v; }
inline double val(double v) { return v; }
inline double val(const guardint& v) { return v.value(); }
inline double val(const guardfloat& v) { return v.value(); }
inline double val(const guarddouble& v) { return v.value(); }

// Equal values compared in the element's own type (so +0 equals -0). Results are compared as
// T, never widened to double first: GCC 12 at -O2 can fold a narrowing to float followed by a
// widening back to double into nothing when it vectorises two of them, which would make a test
// read an unrounded value.
inline bool same(int a, int b) { return a == b; }
inline bool same(float a, float b) { return a == b; }
inline bool same(double a, double b) { return a == b; }
inline bool same(const guardint& a, const guardint& b) { return a.value() == b.value(); }
inline bool same(const guardfloat& a, const guardfloat& b) { return a.value() == b.value(); }
inline bool same(const guarddouble& a, const guarddouble& b) { return a.value() == b.value(); }

template <class T>
Transform<T> matrix(const Elements16& e)
{
    T a[16];
    for (int k = 0; k < 16; ++k) a[k] = make<T>(e[k]);
    return Transform<T>(a);
}

// The identity with element k (linear index) replaced.
inline Elements16 identityWith(int k, double v)
{
    Elements16 e = kIdentity;
    e[k] = v;
    return e;
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

// Each element equals the expected number stored as T.
template <class T>
void expectElements(const Transform<T>& m, const Elements16& want)
{
    const auto e = elementsOf(m);
    for (int k = 0; k < 16; ++k)
        EXPECT_TRUE(same(e[k], make<T>(want[k]))) << "element " << k << ": " << val(e[k]) << ", not " << want[k];
}

// Element by element, stored bits equal.
template <class T>
void expectSameBits(const Transform<T>& a, const Transform<T>& b)
{
    const auto x = elementsOf(a), y = elementsOf(b);
    for (int k = 0; k < 16; ++k) EXPECT_EQ(bits(x[k]), bits(y[k])) << "element " << k;
}
