// Out-of-line members of the guard scalars: the operations callers reach through libguardscalars.
#include <quillon/GuardScalars>

#include <cmath>
#include <cstdint>

namespace {

using namespace quillon::guard;

// Nearest integer with ties away from zero, held to +-2147483647; NaN gives 0.
int nearestInt(double x) noexcept
{
    if (x != x) return 0;
    const double r = std::round(x);
    if (r >= 2147483647.0) return kIntLimit;
    if (r <= -2147483647.0) return -kIntLimit;
    return static_cast<int>(r);
}

// Zero with the sign the IEEE product would have.
double signedZero(double a, double b) noexcept
{
    return std::signbit(a) != std::signbit(b) ? -0.0 : 0.0;
}

// The product rule shared by both floating classes; `limit` is the class's L and `clamp`
// the class's conversion from double.
template <class G>
G floatingProduct(double a, double b, double limit) noexcept
{
    if (a == 0.0 || b == 0.0) return G(signedZero(a, b));
    const double p = a * b; // exact for two floats; correctly rounded for two doubles
    if (p != p) return G(p);
    if (std::fabs(a) == limit || std::fabs(b) == limit) return G((a < 0.0) != (b < 0.0) ? -limit : limit);
    return G(p);
}

} // namespace

// Conversions between the classes.
guarddouble::guarddouble(guardint& source) noexcept : value_(source.value()) {}
guardfloat::guardfloat(guardint& source) noexcept : value_(static_cast<float>(source.value())) {}
guardint::guardint(const guarddouble& source) noexcept : value_(nearestIntLimited(source.value())) {}
guardint::guardint(const guardfloat& source) noexcept : guardint(source.value()) {}

int guarddouble::nint() const noexcept { return nearestInt(value_); }
int guardfloat::nint() const noexcept { return nearestInt(value_); }

// guarddouble
guarddouble operator+(const guarddouble& a, const guarddouble& b) noexcept
{
    guarddouble sum = a;
    return sum += b;
}
guarddouble operator-(const guarddouble& a, const guarddouble& b) noexcept
{
    return a + guarddouble(-b.value());
}
guarddouble operator-(const guarddouble& a, const double& b) noexcept
{
    return a - guarddouble(b);
}
guarddouble operator*(const guarddouble& a, const guarddouble& b) noexcept
{
    return floatingProduct<guarddouble>(a.value(), b.value(), kDoubleLimit);
}
guarddouble operator*(const int& a, const guarddouble& b) noexcept
{
    return guarddouble(a) * b;
}
guarddouble operator/(const guarddouble& a, const guarddouble& b) noexcept
{
    guarddouble quotient = a;
    return quotient /= b;
}
int operator==(const guarddouble& a, const guarddouble& b) noexcept { return a.value() == b.value(); }
int operator!=(const guarddouble& a, const guarddouble& b) noexcept { return a.value() != b.value(); }
int operator<(const guarddouble& a, const guarddouble& b) noexcept { return a.value() < b.value(); }
int operator>(const guarddouble& a, const guarddouble& b) noexcept { return a.value() > b.value(); }

// guardfloat: every rule runs on the operands widened to double.
guardfloat operator+(const guardfloat& a, const guardfloat& b) noexcept
{
    guardfloat sum = a;
    return sum += b;
}
guardfloat operator-(const guardfloat& a, const guardfloat& b) noexcept
{
    return a + guardfloat(-static_cast<double>(b.value()));
}
guardfloat operator*(const guardfloat& a, const guardfloat& b) noexcept
{
    return floatingProduct<guardfloat>(a.value(), b.value(), kFloatLimit);
}
int operator==(const guardfloat& a, const guardfloat& b) noexcept { return a.value() == b.value(); }
int operator!=(const guardfloat& a, const guardfloat& b) noexcept { return a.value() != b.value(); }
int operator<(const guardfloat& a, const guardfloat& b) noexcept { return a.value() < b.value(); }

// guardint
guardint operator+(const guardint& a, const guardint& b) noexcept
{
    guardint sum = a;
    return sum += b;
}
guardint operator-(const guardint& a, const guardint& b) noexcept
{
    // -2147483648 is the negative limit here too, so its negation is the positive limit.
    return a + guardint(-asRange(b.value()));
}
guardint operator*(const guardint& a, const guardint& b) noexcept
{
    const std::int64_t p = std::int64_t{a.value()} * std::int64_t{b.value()};
    if (p == 0) return guardint(0);
    const bool saturated = asRange(a.value()) == kIntLimit || asRange(a.value()) == -kIntLimit ||
                           asRange(b.value()) == kIntLimit || asRange(b.value()) == -kIntLimit;
    if (saturated || p >= kIntLimit) return guardint(p > 0 ? kIntLimit : -kIntLimit);
    if (p <= -kIntLimit) return guardint(-kIntLimit);
    return guardint(static_cast<int>(p));
}
int operator==(const guardint& a, const guardint& b) noexcept { return a.value() == b.value(); }
int operator!=(const guardint& a, const guardint& b) noexcept { return a.value() != b.value(); }
int operator<(const guardint& a, const guardint& b) noexcept { return a.value() < b.value(); }
