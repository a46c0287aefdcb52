// SPDX-License-Identifier: MIT
// Quillon guard scalars: saturating 32-bit integer, 32-bit float and 64-bit double.
//
// Each class wraps one plain value and keeps every result inside a closed, symmetric range whose
// two ends are sentinels:
//
//   class        stored   limit L     +L bits              -L bits
//   guarddouble  double   2^1022      0x7FD0000000000000   0xFFD0000000000000
//   guardfloat   float    2^126       0x7E800000           0xFE800000
//   guardint     int32    2147483647  0x7FFFFFFF           0x80000001
//
// A value is saturated when its magnitude equals L exactly; there is no flag. No operation reports
// an error, throws or traps. Every operation is defined in this header, so that callers' compilers
// inline it; libguardscalars exports a copy of each one all the same (the library's binary
// interface), and a caller gets the same bits from either.
#ifndef QUILLON_GUARDSCALARS
#define QUILLON_GUARDSCALARS

#include <cfloat>
#include <cmath>
#include <cstdint>

#if defined(_WIN32)
// On Windows the GCC-ABI guard classes are a static library; "Guard Scalars.dll" exports them
// under the platform compiler's names instead (see <quillon/msvc/Quillon.h>).
#  define QUILLON_GUARD_API
#else
#  define QUILLON_GUARD_API __attribute__((visibility("default")))
#endif

// Exact arithmetic needs every double and float operation to round as written.
static_assert(FLT_EVAL_METHOD == 0, "Quillon needs FLT_EVAL_METHOD 0 (SSE2 arithmetic, no x87 excess precision)");

class guardint;
class guardfloat;
class guarddouble;

namespace quillon::guard {

inline constexpr double kDoubleLimit = 0x1p1022;   // L of guarddouble
inline constexpr double kDoubleHalfSum = 0x1p1021; // H: bound on a/2 + b/2 in +=
inline constexpr double kDoubleSkip = 0x1p-1021;   // S: at or under it += skips its test
inline constexpr double kDoubleFloor = 0x1p-1022;  // U: floor of an underflowing quotient
inline constexpr float kFloatLimit = 0x1p126f;
inline constexpr double kFloatHalfSum = 0x1p125;   // guardfloat tests run in double
inline constexpr double kFloatSkip = 0x1p-125;
inline constexpr float kFloatFloor = 0x1p-126f;
inline constexpr std::int32_t kIntLimit = 0x7FFFFFFF;
inline constexpr std::int32_t kIntHalfSum = 0x3FFFFFFF;

// Truncation toward zero that is defined for every double: out of range or NaN gives
// 0x80000000, as the x86 conversion instruction does.
inline constexpr std::int32_t truncate(double x) noexcept
{
    return (x > -2147483649.0 && x < 2147483648.0) ? static_cast<std::int32_t>(x)
                                                   : INT32_MIN;
}

// Nearest integer with ties toward zero, the rounding of guardint(double) and guardint(float)
// once the limits are ruled out: |x| < 2^31 here, so t cannot leave the int range.
inline std::int32_t nearestTiesToZero(double x) noexcept
{
    std::int32_t t = static_cast<std::int32_t>(x); // truncation toward zero
    const double fraction = x - t; // exact: x and t share their exponent range
    if (std::fabs(fraction) > 0.5) t += (x < 0.0) ? -1 : 1;
    return t;
}

// nint: nearest integer with ties away from zero, held to +-2147483647; NaN gives 0. A rounded
// value reaches the limit exactly when |x| >= 2147483646.5, so below it the truncated integer and
// the exact fraction decide, with no call into the C library.
inline int nearestTiesAway(double x) noexcept
{
    if (x != x) return 0;
    if (x >= 2147483646.5) return kIntLimit;
    if (x <= -2147483646.5) return -kIntLimit;
    std::int32_t t = static_cast<std::int32_t>(x);
    const double fraction = x - t;
    if (fraction >= 0.5) ++t;
    if (fraction <= -0.5) --t;
    return t;
}

// Rule 3: limits at +-2147483647.0, then nearest with ties toward zero; NaN gives 0.
inline std::int32_t nearestIntLimited(double x) noexcept
{
    return x >= 2147483647.0    ? kIntLimit
           : x <= -2147483647.0 ? -kIntLimit
           : x != x             ? 0
                                : nearestTiesToZero(x);
}

// Wrapping 32-bit integer arithmetic without undefined behaviour.
inline constexpr std::int32_t wrapAdd(std::int32_t a, std::int32_t b) noexcept
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
inline constexpr std::int32_t wrapSub(std::int32_t a, std::int32_t b) noexcept
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}
inline constexpr std::int32_t wrapMul(std::int32_t a, std::int32_t b) noexcept
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}
// Integer quotient truncated toward zero; INT32_MIN / -1 wraps to INT32_MIN instead of trapping.
inline constexpr std::int32_t wrapDiv(std::int32_t a, std::int32_t b) noexcept
{
    return (b == -1) ? wrapSub(0, a) : a / b;
}

} // namespace quillon::guard

/// A saturating double: every result stays within +-2^1022, and nothing overflows, divides by zero
/// or traps.
class QUILLON_GUARD_API guarddouble {
public:
    constexpr guarddouble() noexcept = default;
    constexpr guarddouble(int i) noexcept : value_(i) {} ///< the integer's value, exactly
    /// Rule 1: magnitudes at or over 2^1022 (infinities too) give the limit; nothing else changes.
    /// A NaN is stored as it is.
    guarddouble(double x) noexcept
        : value_(std::fabs(x) >= quillon::guard::kDoubleLimit
                     ? (x < 0.0 ? -quillon::guard::kDoubleLimit : quillon::guard::kDoubleLimit)
                     : x) {}
    /// The integer's value, with no translation of the guardint sentinels.
    explicit guarddouble(guardint& source) noexcept;

    /// Nearest integer, ties away from zero; beyond +-2147483647 gives +-2147483647; NaN gives 0.
    int nint() const noexcept;
    /// The only conversion out of the class: through nint, so a fraction is lost.
    operator int() const noexcept { return nint(); }

    guarddouble& operator+=(const guarddouble& right) noexcept; ///< Rule 5
    guarddouble& operator/=(const guarddouble& right) noexcept; ///< Rule 7
    /// Rule 9: nearest whole number with ties downward (2.5 -> 2, -2.5 -> -3), held as guarddouble.
    void RoundToWhole() noexcept;

    /// The stored IEEE double, saturated or not.
    constexpr double value() const noexcept { return value_; }

private:
    double value_ = 0.0;
};

/// A saturating float: every result stays within +-2^126, worked in double.
class QUILLON_GUARD_API guardfloat {
public:
    constexpr guardfloat() noexcept = default;
    /// Rounded by the float format, with no limit test.
    constexpr guardfloat(int i) noexcept : value_(static_cast<float>(i)) {}
    /// Rule 2: the limit test runs in double; below it the value is rounded to float, tiny ones
    /// included (no floor). A float argument is widened exactly first.
    guardfloat(double x) noexcept
        : value_(std::fabs(x) >= static_cast<double>(quillon::guard::kFloatLimit)
                     ? (x < 0.0 ? -quillon::guard::kFloatLimit : quillon::guard::kFloatLimit)
                     : static_cast<float>(x)) {}
    /// The integer's value rounded to float, with no translation of the guardint sentinels.
    explicit guardfloat(guardint& source) noexcept;

    /// Nearest integer, ties away from zero; beyond +-2147483647 gives +-2147483647; NaN gives 0.
    int nint() const noexcept;
    operator int() const noexcept { return nint(); } ///< through nint, so a fraction is lost

    guardfloat& operator+=(const guardfloat& right) noexcept; ///< Rule 5, in double
    guardfloat& operator/=(const guardfloat& right) noexcept; ///< Rule 7, in double

    constexpr float value() const noexcept { return value_; } ///< the stored IEEE float, saturated or not

private:
    float value_ = 0.0f;
};

/// A saturating 32-bit integer: every result stays within +-2147483647.
class QUILLON_GUARD_API guardint {
public:
    constexpr guardint() noexcept = default;
    /// No test: -2147483648 can enter here, and += and /= then treat it as the negative limit.
    constexpr guardint(int i) noexcept : value_(i) {}
    /// Rule 3: limits at +-2147483647.0, nearest with ties toward zero; NaN gives 0.
    guardint(double x) noexcept : value_(quillon::guard::nearestIntLimited(x)) {}
    /// Rule 4: limits at +-2147483648.0f, then as Rule 3 on the widened value.
    guardint(float x) noexcept
        : value_(x >= 2147483648.0f    ? quillon::guard::kIntLimit
                 : x <= -2147483648.0f ? -quillon::guard::kIntLimit
                 : x != x              ? 0
                                       : quillon::guard::nearestTiesToZero(x)) {}
    guardint(const guarddouble& source) noexcept; ///< Rule 3 on the stored value
    guardint(const guardfloat& source) noexcept;  ///< Rule 4 on the stored value

    /// The integer widened; a sentinel is the plain number +-2147483647.
    operator double() const noexcept { return static_cast<double>(value_); }
    operator float() const noexcept { return static_cast<float>(value_); } ///< the integer rounded to float

    guardint& operator+=(const guardint& right) noexcept; ///< Rule 6
    guardint& operator/=(const guardint& right) noexcept; ///< Rule 8

    constexpr int value() const noexcept { return value_; } ///< the stored integer

private:
    int value_ = 0;
};

static_assert(sizeof(guardint) == 4 && sizeof(guardfloat) == 4 && sizeof(guarddouble) == 8);

// ---- The rules kept inline: every caller computes them the same way. ----

inline guarddouble& guarddouble::operator+=(const guarddouble& right) noexcept
{
    using namespace quillon::guard;
    const double a = value_, b = right.value_;
    if (std::fabs(a) == kDoubleLimit || std::fabs(b) == kDoubleLimit) return *this;
    if (std::fabs(a) <= kDoubleSkip || std::fabs(b) <= kDoubleSkip) { value_ = a + b; return *this; }
    const double h = a / 2 + b / 2; // halved first, so the test itself cannot overflow
    value_ = h >= kDoubleHalfSum ? kDoubleLimit : h <= -kDoubleHalfSum ? -kDoubleLimit : a + b;
    return *this;
}

inline guardfloat& guardfloat::operator+=(const guardfloat& right) noexcept
{
    using namespace quillon::guard;
    const double a = value_, b = right.value_;
    const double limit = kFloatLimit;
    if (std::fabs(a) == limit || std::fabs(b) == limit) return *this;
    if (std::fabs(a) <= kFloatSkip || std::fabs(b) <= kFloatSkip) {
        value_ = static_cast<float>(a + b);
        return *this;
    }
    const double h = a / 2 + b / 2;
    value_ = h >= kFloatHalfSum    ? kFloatLimit
             : h <= -kFloatHalfSum ? -kFloatLimit
                                   : static_cast<float>(a + b);
    return *this;
}

namespace quillon::guard {
// Rule 7 for both floating classes, in double; L and U are powers of two, so the scaled tests
// are exact and can neither overflow nor underflow.
inline double divideSaturating(double a, double b, double limit, double floor) noexcept
{
    if (a == 0.0) return a;
    const double s = ((a < 0.0) != (b < 0.0)) ? -1.0 : 1.0;
    if (std::fabs(a) == limit || b == 0.0) return s * limit;
    if (std::fabs(b) == limit) return 0.0;
    if (std::fabs(b) < 1.0 && limit * std::fabs(b) <= std::fabs(a)) return s * limit;
    if (std::fabs(b) >= 1.0 && std::fabs(b) * floor >= std::fabs(a)) return s * floor;
    return a / b;
}
// -2147483648 can only enter through guardint(int); += and /= read it as the negative limit.
inline constexpr std::int32_t asRange(std::int32_t v) noexcept
{
    return v == INT32_MIN ? -kIntLimit : v;
}
} // namespace quillon::guard

inline guarddouble& guarddouble::operator/=(const guarddouble& right) noexcept
{
    value_ = quillon::guard::divideSaturating(value_, right.value_, quillon::guard::kDoubleLimit,
                                              quillon::guard::kDoubleFloor);
    return *this;
}

inline guardfloat& guardfloat::operator/=(const guardfloat& right) noexcept
{
    value_ = static_cast<float>(quillon::guard::divideSaturating(
        value_, right.value_, quillon::guard::kFloatLimit, quillon::guard::kFloatFloor));
    return *this;
}

inline guardint& guardint::operator+=(const guardint& right) noexcept
{
    using namespace quillon::guard;
    const std::int32_t a = asRange(value_), b = asRange(right.value_);
    if (a == kIntLimit || b == kIntLimit) { value_ = kIntLimit; return *this; } // +L beats -L
    if (a == -kIntLimit || b == -kIntLimit) { value_ = -kIntLimit; return *this; }
    const std::int32_t h = (a >> 1) + (b >> 1); // arithmetic shifts: halves rounded downward
    value_ = h >= kIntHalfSum ? kIntLimit : h <= -kIntHalfSum ? -kIntLimit : a + b;
    return *this;
}

inline guardint& guardint::operator/=(const guardint& right) noexcept
{
    using namespace quillon::guard;
    const std::int32_t a = asRange(value_), b = asRange(right.value_);
    if (a == 0) { value_ = 0; return *this; }
    const std::int32_t s = ((a < 0) != (b < 0)) ? -1 : 1;
    if (a == kIntLimit || a == -kIntLimit || b == 0) { value_ = s * kIntLimit; return *this; }
    if (b == kIntLimit || b == -kIntLimit) { value_ = 0; return *this; }
    value_ = a / b; // |a| < 2^31 - 1 and b is not -1 with a = INT32_MIN: no trap
    return *this;
}

// ---- The free operators, comparisons, nint and the conversions between the classes ----
// Quillon.dll's own code is built with QUILLON_GUARD_OUT_OF_LINE: there these are declared only,
// and the module calls the copies that "Guard Scalars.dll" exports, by their MSVC names.
#if defined(QUILLON_GUARD_OUT_OF_LINE)
#  define QUILLON_GUARD_INLINE
#else
// The product is called many times in one mapping; inlined, its tests fold into the caller's.
#  if defined(__GNUC__)
#    define QUILLON_GUARD_HOT [[gnu::always_inline]] inline
#  else
#    define QUILLON_GUARD_HOT inline
#  endif
#  define QUILLON_GUARD_INLINE inline
#endif
// Sums and differences: the compound rule (+=) on a copy of the left operand; a - b is a plus
// the negated b. Products: formed in double (64-bit integer for guardint) and limited as the
// class's conversion; a saturated operand times a non-zero one gives the limit with the sign of
// the product; anything times zero is zero. Comparisons: by stored value, IEEE for NaN.
QUILLON_GUARD_API QUILLON_GUARD_INLINE guarddouble operator+(const guarddouble& a, const guarddouble& b) noexcept;
QUILLON_GUARD_API QUILLON_GUARD_INLINE guarddouble operator-(const guarddouble& a, const guarddouble& b) noexcept;
QUILLON_GUARD_API QUILLON_GUARD_INLINE guarddouble operator-(const guarddouble& a, const double& b) noexcept; // b through guarddouble(double)
QUILLON_GUARD_API QUILLON_GUARD_INLINE guarddouble operator*(const guarddouble& a, const guarddouble& b) noexcept;
QUILLON_GUARD_API QUILLON_GUARD_INLINE guarddouble operator*(const int& a, const guarddouble& b) noexcept;
QUILLON_GUARD_API QUILLON_GUARD_INLINE guarddouble operator/(const guarddouble& a, const guarddouble& b) noexcept; // Rule 7 on a copy
QUILLON_GUARD_API QUILLON_GUARD_INLINE int operator==(const guarddouble& a, const guarddouble& b) noexcept;
QUILLON_GUARD_API QUILLON_GUARD_INLINE int operator!=(const guarddouble& a, const guarddouble& b) noexcept;
QUILLON_GUARD_API QUILLON_GUARD_INLINE int operator<(const guarddouble& a, const guarddouble& b) noexcept;
QUILLON_GUARD_API QUILLON_GUARD_INLINE int operator>(const guarddouble& a, const guarddouble& b) noexcept;

QUILLON_GUARD_API QUILLON_GUARD_INLINE guardfloat operator+(const guardfloat& a, const guardfloat& b) noexcept;
QUILLON_GUARD_API QUILLON_GUARD_INLINE guardfloat operator-(const guardfloat& a, const guardfloat& b) noexcept;
QUILLON_GUARD_API QUILLON_GUARD_INLINE guardfloat operator*(const guardfloat& a, const guardfloat& b) noexcept;
QUILLON_GUARD_API QUILLON_GUARD_INLINE int operator==(const guardfloat& a, const guardfloat& b) noexcept;
QUILLON_GUARD_API QUILLON_GUARD_INLINE int operator!=(const guardfloat& a, const guardfloat& b) noexcept;
QUILLON_GUARD_API QUILLON_GUARD_INLINE int operator<(const guardfloat& a, const guardfloat& b) noexcept;

QUILLON_GUARD_API QUILLON_GUARD_INLINE guardint operator+(const guardint& a, const guardint& b) noexcept;
QUILLON_GUARD_API QUILLON_GUARD_INLINE guardint operator-(const guardint& a, const guardint& b) noexcept;
QUILLON_GUARD_API QUILLON_GUARD_INLINE guardint operator*(const guardint& a, const guardint& b) noexcept;
QUILLON_GUARD_API QUILLON_GUARD_INLINE int operator==(const guardint& a, const guardint& b) noexcept;
QUILLON_GUARD_API QUILLON_GUARD_INLINE int operator!=(const guardint& a, const guardint& b) noexcept;
QUILLON_GUARD_API QUILLON_GUARD_INLINE int operator<(const guardint& a, const guardint& b) noexcept;


#if !defined(QUILLON_GUARD_OUT_OF_LINE)
namespace quillon::guard {
// Zero with the sign the IEEE product would have.
inline double signedZero(double a, double b) noexcept
{
    return std::signbit(a) != std::signbit(b) ? -0.0 : 0.0;
}
// The product rule of both floating classes; `limit` is the class's L.
template <class G>
QUILLON_GUARD_HOT G floatingProduct(double a, double b, double limit) noexcept
{
    if (a == 0.0 || b == 0.0) return G(signedZero(a, b));
    const double p = a * b; // exact for two floats; correctly rounded for two doubles
    if (p != p) return G(p);
    if (std::fabs(a) == limit || std::fabs(b) == limit) return G((a < 0.0) != (b < 0.0) ? -limit : limit);
    return G(p);
}
} // namespace quillon::guard

inline guarddouble::guarddouble(guardint& source) noexcept : value_(source.value()) {}
inline guardfloat::guardfloat(guardint& source) noexcept : value_(static_cast<float>(source.value())) {}
inline guardint::guardint(const guarddouble& source) noexcept : value_(quillon::guard::nearestIntLimited(source.value())) {}
inline guardint::guardint(const guardfloat& source) noexcept : guardint(source.value()) {}
inline int guarddouble::nint() const noexcept { return quillon::guard::nearestTiesAway(value_); }
inline int guardfloat::nint() const noexcept { return quillon::guard::nearestTiesAway(value_); }

inline guarddouble operator+(const guarddouble& a, const guarddouble& b) noexcept
{
    guarddouble sum = a;
    return sum += b;
}
inline guarddouble operator-(const guarddouble& a, const guarddouble& b) noexcept { return a + guarddouble(-b.value()); }
inline guarddouble operator-(const guarddouble& a, const double& b) noexcept { return a - guarddouble(b); }
inline guarddouble operator*(const guarddouble& a, const guarddouble& b) noexcept
{
    return quillon::guard::floatingProduct<guarddouble>(a.value(), b.value(), quillon::guard::kDoubleLimit);
}
inline guarddouble operator*(const int& a, const guarddouble& b) noexcept { return guarddouble(a) * b; }
inline guarddouble operator/(const guarddouble& a, const guarddouble& b) noexcept
{
    guarddouble quotient = a;
    return quotient /= b;
}
inline int operator==(const guarddouble& a, const guarddouble& b) noexcept { return a.value() == b.value(); }
inline int operator!=(const guarddouble& a, const guarddouble& b) noexcept { return a.value() != b.value(); }
inline int operator<(const guarddouble& a, const guarddouble& b) noexcept { return a.value() < b.value(); }
inline int operator>(const guarddouble& a, const guarddouble& b) noexcept { return a.value() > b.value(); }

// guardfloat: every rule runs on the operands widened to double.
inline guardfloat operator+(const guardfloat& a, const guardfloat& b) noexcept
{
    guardfloat sum = a;
    return sum += b;
}
inline guardfloat operator-(const guardfloat& a, const guardfloat& b) noexcept
{
    return a + guardfloat(-static_cast<double>(b.value()));
}
inline guardfloat operator*(const guardfloat& a, const guardfloat& b) noexcept
{
    return quillon::guard::floatingProduct<guardfloat>(a.value(), b.value(), quillon::guard::kFloatLimit);
}
inline int operator==(const guardfloat& a, const guardfloat& b) noexcept { return a.value() == b.value(); }
inline int operator!=(const guardfloat& a, const guardfloat& b) noexcept { return a.value() != b.value(); }
inline int operator<(const guardfloat& a, const guardfloat& b) noexcept { return a.value() < b.value(); }

inline guardint operator+(const guardint& a, const guardint& b) noexcept
{
    guardint sum = a;
    return sum += b;
}
// -2147483648 is the negative limit here too, so its negation is the positive limit.
inline guardint operator-(const guardint& a, const guardint& b) noexcept
{
    return a + guardint(-quillon::guard::asRange(b.value()));
}
inline guardint operator*(const guardint& a, const guardint& b) noexcept
{
    using namespace quillon::guard;
    const std::int64_t p = std::int64_t{a.value()} * std::int64_t{b.value()};
    if (p == 0) return guardint(0);
    const bool saturated = asRange(a.value()) == kIntLimit || asRange(a.value()) == -kIntLimit ||
                           asRange(b.value()) == kIntLimit || asRange(b.value()) == -kIntLimit;
    if (saturated || p >= kIntLimit) return guardint(p > 0 ? kIntLimit : -kIntLimit);
    if (p <= -kIntLimit) return guardint(-kIntLimit);
    return guardint(static_cast<int>(p));
}
inline int operator==(const guardint& a, const guardint& b) noexcept { return a.value() == b.value(); }
inline int operator!=(const guardint& a, const guardint& b) noexcept { return a.value() != b.value(); }
inline int operator<(const guardint& a, const guardint& b) noexcept { return a.value() < b.value(); }
#endif

// Rule 9, kept inline. The difference goes through operator-(guarddouble, double), so a saturated
// value stays at its limit.
inline void guarddouble::RoundToWhole() noexcept
{
    const double below = std::floor(value_);
    const guarddouble fraction = *this - below;
    *this = (fraction > guarddouble(0.5)) ? guarddouble(std::ceil(value_)) : guarddouble(below);
}

#endif
