// SPDX-License-Identifier: MIT
// Quillon element types: how a value of each of the six element types enters and leaves the
// arithmetic of another type.
//
// Every member of ThreeDVector<T> and Transform<T> is written once; what differs between element
// types is looked up here. One function is one cell of a conversion table:
//
//   toFloat, toDouble       the value as a plain float or double client sees it. A guardfloat or
//                           guarddouble has no conversion but operator int, so it gives up its
//                           nint (the fraction is lost); a guardint has its own operator double/float.
//   toGuardfloat,           the value entering a guard product of that class.
//   toGuarddouble
//   fromDouble              a double-precision result stored as T: truncated (int), rounded (float),
//                           clamped (guard classes, guardint to nearest with ties toward zero).
//   fromSingle              a result of single-precision work stored as T: as fromDouble, except that
//                           guardint takes the value rounded to float first, then guardint(float).
//   fromGuardfloat,         a guard product stored as T: through nint for every plain type.
//   fromGuarddouble
//   Work, work, fromWork    the type one expression is evaluated in: wrapping 32-bit for int, double
//                           for float (rounded once when stored), the class itself for guard types.
//   toFloatProduct          the value as it meets a float scalar, as a double: exact for int,
//                           float and double, rounded to float first for guardint, nint for the
//                           floating guard types. The product is stored with fromSingle.
//   lengthAsDouble,         the root of a sum of squares as a vector's length is read back: the
//   lengthAsGuarddouble     length stored as T and converted again, except float, which keeps the
//                           unrounded double root.
//   toInt                   the value tested as a plain int: truncated for float and double, nint
//                           for the floating guard types.
//   divideInPlace           p divided by n and stored in p: truncating for int, in double rounded
//                           to float for float, the class's operator/= for guard types.
#ifndef QUILLON_ELEMENTS
#define QUILLON_ELEMENTS

#include <quillon/GuardScalars>

#include <cstdint>

namespace quillon {

using guard::truncate;

// 32-bit integer arithmetic that wraps, as the int element type's working type.
struct WrapInt {
    std::int32_t v;
    friend constexpr WrapInt operator+(WrapInt a, WrapInt b) noexcept { return {guard::wrapAdd(a.v, b.v)}; }
    friend constexpr WrapInt operator-(WrapInt a, WrapInt b) noexcept { return {guard::wrapSub(a.v, b.v)}; }
    friend constexpr WrapInt operator*(WrapInt a, WrapInt b) noexcept { return {guard::wrapMul(a.v, b.v)}; }
    constexpr WrapInt& operator+=(WrapInt b) noexcept { return *this = *this + b; }
};

template <class T>
struct Element; // one specialisation per element type, below

template <>
struct Element<int> {
    using Work = WrapInt;
    static constexpr Work work(int p) noexcept { return {p}; }
    static constexpr int fromWork(Work w) noexcept { return w.v; }
    static float toFloat(int p) noexcept { return static_cast<float>(p); }
    static double toDouble(int p) noexcept { return p; }
    static guardfloat toGuardfloat(int p) noexcept { return guardfloat(p); }
    static guarddouble toGuarddouble(int p) noexcept { return guarddouble(p); }
    static int fromDouble(double s) noexcept { return truncate(s); }
    static int fromSingle(double s) noexcept { return truncate(s); }
    static int fromGuardfloat(const guardfloat& g) noexcept { return g.nint(); }
    static int fromGuarddouble(const guarddouble& g) noexcept { return g.nint(); }
    static double toFloatProduct(int p) noexcept { return p; }
    static double lengthAsDouble(double root) noexcept { return toDouble(fromDouble(root)); }
    static guarddouble lengthAsGuarddouble(double root) noexcept { return toGuarddouble(fromDouble(root)); }
    static int toInt(int n) noexcept { return n; }
    static void divideInPlace(int& p, int n) noexcept { p = guard::wrapDiv(p, n); }
};

template <>
struct Element<float> {
    using Work = double;
    static constexpr Work work(float p) noexcept { return p; }
    static constexpr float fromWork(Work w) noexcept { return static_cast<float>(w); }
    static float toFloat(float p) noexcept { return p; }
    static double toDouble(float p) noexcept { return p; }
    static guardfloat toGuardfloat(float p) noexcept { return guardfloat(static_cast<double>(p)); }
    static guarddouble toGuarddouble(float p) noexcept { return guarddouble(static_cast<double>(p)); }
    static float fromDouble(double s) noexcept { return static_cast<float>(s); }
    static float fromSingle(double s) noexcept { return static_cast<float>(s); }
    static float fromGuardfloat(const guardfloat& g) noexcept { return static_cast<float>(g.nint()); }
    static float fromGuarddouble(const guarddouble& g) noexcept { return static_cast<float>(g.nint()); }
    static double toFloatProduct(float p) noexcept { return p; }
    static double lengthAsDouble(double root) noexcept { return root; } // not rounded to float
    static guarddouble lengthAsGuarddouble(double root) noexcept { return guarddouble(root); }
    static int toInt(float n) noexcept { return truncate(static_cast<double>(n)); }
    static void divideInPlace(float& p, float n) noexcept { p = static_cast<float>(static_cast<double>(p) / static_cast<double>(n)); }
};

template <>
struct Element<double> {
    using Work = double;
    static constexpr Work work(double p) noexcept { return p; }
    static constexpr double fromWork(Work w) noexcept { return w; }
    static float toFloat(double p) noexcept { return static_cast<float>(p); }
    static double toDouble(double p) noexcept { return p; }
    static guardfloat toGuardfloat(double p) noexcept { return guardfloat(p); }
    static guarddouble toGuarddouble(double p) noexcept { return guarddouble(p); }
    static double fromDouble(double s) noexcept { return s; }
    static double fromSingle(double s) noexcept { return s; }
    static double fromGuardfloat(const guardfloat& g) noexcept { return g.nint(); }
    static double fromGuarddouble(const guarddouble& g) noexcept { return g.nint(); }
    static double toFloatProduct(double p) noexcept { return p; }
    static double lengthAsDouble(double root) noexcept { return root; }
    static guarddouble lengthAsGuarddouble(double root) noexcept { return guarddouble(root); }
    static int toInt(double n) noexcept { return truncate(n); }
    static void divideInPlace(double& p, double n) noexcept { p = p / n; }
};

template <>
struct Element<guardint> {
    using Work = guardint;
    static Work work(const guardint& p) noexcept { return p; }
    static guardint fromWork(const Work& w) noexcept { return w; }
    static float toFloat(const guardint& p) noexcept { return p.operator float(); }
    static double toDouble(const guardint& p) noexcept { return p.operator double(); }
    static guardfloat toGuardfloat(guardint p) noexcept { return guardfloat(p); }
    static guarddouble toGuarddouble(guardint p) noexcept { return guarddouble(p); }
    static guardint fromDouble(double s) noexcept { return guardint(s); }
    static guardint fromSingle(double s) noexcept { return guardint(static_cast<float>(s)); }
    static guardint fromGuardfloat(const guardfloat& g) noexcept { return guardint(g); }
    static guardint fromGuarddouble(const guarddouble& g) noexcept { return guardint(g); }
    static double toFloatProduct(const guardint& p) noexcept { return static_cast<double>(toFloat(p)); }
    static double lengthAsDouble(double root) noexcept { return toDouble(fromDouble(root)); }
    static guarddouble lengthAsGuarddouble(double root) noexcept { return toGuarddouble(fromDouble(root)); }
    static int toInt(const guardint& n) noexcept { return n.value(); }
    static void divideInPlace(guardint& p, const guardint& n) noexcept { p /= n; }
};

template <>
struct Element<guardfloat> {
    using Work = guardfloat;
    static Work work(const guardfloat& p) noexcept { return p; }
    static guardfloat fromWork(const Work& w) noexcept { return w; }
    static float toFloat(const guardfloat& p) noexcept { return static_cast<float>(p.nint()); }
    static double toDouble(const guardfloat& p) noexcept { return p.nint(); }
    static guardfloat toGuardfloat(const guardfloat& p) noexcept { return p; }
    static guarddouble toGuarddouble(const guardfloat& p) noexcept { return guarddouble(p.nint()); }
    static guardfloat fromDouble(double s) noexcept { return guardfloat(s); }
    static guardfloat fromSingle(double s) noexcept { return guardfloat(s); }
    static guardfloat fromGuardfloat(const guardfloat& g) noexcept { return g; }
    static guardfloat fromGuarddouble(const guarddouble& g) noexcept { return guardfloat(g.nint()); }
    static double toFloatProduct(const guardfloat& p) noexcept { return toDouble(p); }
    static double lengthAsDouble(double root) noexcept { return toDouble(fromDouble(root)); }
    static guarddouble lengthAsGuarddouble(double root) noexcept { return toGuarddouble(fromDouble(root)); }
    static int toInt(const guardfloat& n) noexcept { return n.nint(); }
    static void divideInPlace(guardfloat& p, const guardfloat& n) noexcept { p /= n; }
};

template <>
struct Element<guarddouble> {
    using Work = guarddouble;
    static Work work(const guarddouble& p) noexcept { return p; }
    static guarddouble fromWork(const Work& w) noexcept { return w; }
    static float toFloat(const guarddouble& p) noexcept { return static_cast<float>(p.nint()); }
    static double toDouble(const guarddouble& p) noexcept { return p.nint(); }
    static guardfloat toGuardfloat(const guarddouble& p) noexcept { return guardfloat(p.nint()); }
    static guarddouble toGuarddouble(const guarddouble& p) noexcept { return p; }
    static guarddouble fromDouble(double s) noexcept { return guarddouble(s); }
    static guarddouble fromSingle(double s) noexcept { return guarddouble(s); }
    static guarddouble fromGuardfloat(const guardfloat& g) noexcept { return guarddouble(g.nint()); }
    static guarddouble fromGuarddouble(const guarddouble& g) noexcept { return g; }
    static double toFloatProduct(const guarddouble& p) noexcept { return toDouble(p); }
    static double lengthAsDouble(double root) noexcept { return toDouble(fromDouble(root)); }
    static guarddouble lengthAsGuarddouble(double root) noexcept { return fromDouble(root); }
    static int toInt(const guarddouble& n) noexcept { return n.nint(); }
    static void divideInPlace(guarddouble& p, const guarddouble& n) noexcept { p /= n; }
};

// The plain value an element holds, as the C interface hands it out and the command prints it:
// the number itself for int, float and double, the stored value (saturated or not) for the guard
// classes.
template <class T>
struct Stored {
    using Plain = T;
    static constexpr T of(T v) noexcept { return v; }
};
template <>
struct Stored<guardint> {
    using Plain = int;
    static constexpr int of(const guardint& v) noexcept { return v.value(); }
};
template <>
struct Stored<guardfloat> {
    using Plain = float;
    static constexpr float of(const guardfloat& v) noexcept { return v.value(); }
};
template <>
struct Stored<guarddouble> {
    using Plain = double;
    static constexpr double of(const guarddouble& v) noexcept { return v.value(); }
};

} // namespace quillon

#endif
