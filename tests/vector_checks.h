// ThreeDVector test helpers: a component's stored number, whatever its element type, so a whole
// vector compares exactly against three doubles.
#pragma once

#include <quillon/ThreeDVector>

#include <array>

#include <gtest/gtest.h>

namespace vector_checks {
inline double num(double v) { return v; } // int and float widen exactly
inline double num(const guardint& v) { return v.value(); }
inline double num(const guardfloat& v) { return v.value(); }
inline double num(const guarddouble& v) { return v.value(); }

using Triple = std::array<double, 3>;
template <class T>
Triple comps(const ThreeDVector<T>& v) { return {num(v.GetX()), num(v.GetY()), num(v.GetZ())}; }

using AllElementTypes = ::testing::Types<int, float, double, guardint, guardfloat, guarddouble>;
} // namespace vector_checks
