// SPDX-License-Identifier: MIT
// quillon::sine and quillon::cosine: correctly rounded to nearest for every double, from IEEE
// double arithmetic and 64-bit integers only, so the same source gives the same bits everywhere.
// The fast path evaluates in double-double with a bound on its error; when the bound leaves the
// rounding open, the accurate path (Accurate.cpp) decides. README.md beside this file gives the
// error analysis.
#include "quillon/detail/Trigonometry.h"

#include "Accurate.h"
#include "Fast.h"
#include "Tables.h"

#include <cstdint>
#include <cstring>

// The steps of the fast path are inlined into each entry point: as calls, they pass their
// results through memory and cost a third of the time.
#if defined(__GNUC__)
#  define QUILLON_STEP [[gnu::always_inline]] inline
#  define QUILLON_APART [[gnu::noinline]]
#else
#  define QUILLON_STEP inline
#  define QUILLON_APART
#endif

namespace quillon::trig {
namespace {
constexpr double kTwoOverPiDouble = 0x1.45f306dc9c883p-1;
constexpr double kCodyLimit = 0x1.8p+22; // below it |x| 2/pi rounds to at most 2^22 + 1
constexpr double kRound = 0x1.8p+52;     // adding and taking it away rounds to an integer
constexpr double kRelative = 0x1p-66;    // the fast path's relative error bound (README.md)

QUILLON_STEP std::uint64_t bitsOf(double x)
{
    std::uint64_t b;
    std::memcpy(&b, &x, sizeof b);
    return b;
}

QUILLON_STEP double fromBits(std::uint64_t b)
{
    double x;
    std::memcpy(&x, &b, sizeof x);
    return x;
}

QUILLON_STEP double magnitude(double x) { return x < 0 ? -x : x; }

// a + b exactly as s + e.
QUILLON_STEP Pair twoSum(double a, double b)
{
    const double s = a + b, bb = s - a;
    return {s, (a - (s - bb)) + (b - bb)};
}

// a + b exactly as s + e, for |a| >= |b| or a = 0.
QUILLON_STEP Pair fastTwoSum(double a, double b)
{
    const double s = a + b;
    return {s, b - (s - a)};
}

// |x| = 4j + quadrant turns of pi/2 plus r = hi + lo (|r| <= pi/4 and a little), with `error`
// bounding |r - (hi + lo)| apart from the part relative to r that kRelative covers.
struct Reduction {
    double hi, lo;
    unsigned quadrant;
    double error;
};

// Beyond kCodyLimit, the bits of 2/pi in integers: 128 bits of r, of which hi + lo keep 106
// (2^-100 |r|). Apart, so the common path keeps no stack frame.
QUILLON_APART Reduction reduceLarge(double ax)
{
    constexpr int n = 4;
    Reduced red;
    reduce(ax, n, red);
    const Wide r = multiply(red.fraction, piOverTwo(n), n); // in [pi/4, pi/2)
    const std::uint64_t top = (std::uint64_t{r.w[0]} << 52) | (std::uint64_t{r.w[1]} << 20) | (r.w[2] >> 12);
    const std::uint64_t next = ((std::uint64_t{r.w[2]} & 0xfff) << 41) | (std::uint64_t{r.w[3]} << 9) | (r.w[4] >> 23);
    // r = (top 2^-52 + next 2^-105) 2^-shift: the products are exact, the scale a power of two
    // (the shift is below 200 for any double: r is at least 2^-62).
    const double scale = fromBits(static_cast<std::uint64_t>(1023 - red.shift) << 52);
    double hi = static_cast<double>(top) * 0x1p-52 * scale, lo = static_cast<double>(next) * 0x1p-105 * scale;
    if (red.negative) {
        hi = -hi;
        lo = -lo;
    }
    return {hi, lo, red.quadrant, magnitude(hi) * 0x1p-100};
}

QUILLON_STEP Reduction reduceFast(double ax)
{
    if (ax >= kCodyLimit)
        return reduceLarge(ax);
    // k pi/2 taken away in parts whose products with k are exact, and so is ax - k C[0] (the two
    // lie within a factor of two; below pi/4, k = 0 and r = ax exactly, with no branch for it).
    const double k = (ax * kTwoOverPiDouble + kRound) - kRound;
    const unsigned quadrant = static_cast<unsigned>(static_cast<std::int64_t>(k)) & 3;
    if (k < 256.0) {
        // 8 + 45 bits: one exact two-sum, then k kCodyShort[2] rounded (2^-138), k times what the
        // parts leave of pi/2 (2^-139), and lo's rounding (2^-138 + 2^-106 |r|).
        const double t = ax - k * kCodyShort[0];
        const Pair s = twoSum(t, -(k * kCodyShort[1]));
        return {s.hi, s.lo - k * kCodyShort[2], quadrant, 0x1p-132};
    }
    // 22 + 31 bits: two exact two-sums, then k kCody[3] rounded (2^-134), k times what the parts
    // leave (2^-137), and the two roundings of lo (2^-134 + 2^-104 |r|): 2^-132, the part
    // relative to r in kRelative.
    const double t = ax - k * kCody[0];
    const Pair s1 = twoSum(t, -(k * kCody[1]));
    const Pair s2 = twoSum(s1.hi, -(k * kCody[2]));
    return {s2.hi, (s1.lo + s2.lo) - k * kCody[3], quadrant, 0x1p-132};
}

// sin r and cos r for 0 <= r = hi + lo <= pi/4 (and a little), each as a pair within 2^-66 of
// the value relative to it: r = a + b + lo with a = i/256 from the table and |b| <= 2^-9,
//   sin(a + b + lo) = sin a + sin a (cos B - 1) + cos a sin B
//   cos(a + b + lo) = cos a + cos a (cos B - 1) - sin a sin B      (B = b + lo)
// with the leading product exact (26 bits of the table times 26 bits of b) and its sum with the
// table's value exact; the small terms in double. Split holds what both sums share.
struct Split {
    const double (*row)[4]; // kSinCos[i]
    double b, bLead, bRest, lo, cosMinusOne, sinTail;
};

QUILLON_STEP Split split(double hi, double lo)
{
    const double rounded = hi + 0x1.8p+44; // a = hi rounded to a multiple of 2^-8 = i/256, i in the low bits
    const double b = hi - (rounded - 0x1.8p+44); // exact: hi and a lie within a factor of two
    const double c = 134217729.0 * b, bLead = c - (c - b); // b's leading 26 bits (Dekker's split)
    // cos B - 1 = -z/2 + z^2/24 - z^3/720 and sin B - B = -B^3/6 + B^5/120 - B^7/5040, in pairs
    // of terms evaluated side by side (the chain is what the time goes on).
    const double bf = b + lo, z = bf * bf, z2 = z * z, b3 = bf * z;
    const double cosMinusOne = z * -0.5 + z2 * (0x1.5555555555555p-5 + z * -0x1.6c16c16c16c17p-10);
    const double sinTail = b3 * -0x1.5555555555555p-3 + (b3 * z) * (0x1.1111111111111p-7 + z * -0x1.a01a01a01a01ap-13);
    return {kSinCos[static_cast<unsigned>(bitsOf(rounded)) & 0xff], b, bLead, b - bLead, lo, cosMinusOne, sinTail};
}

// sin r (which = 0) or cos r (which = 1): the table's columns and the sign of the second term are
// picked by indexing, not by a branch, as the quadrant of a random argument is unpredictable.
// (x - y and x + (-1) y are the same double.)
QUILLON_STEP Pair sinOrCos(const Split& s, unsigned which)
{
    static constexpr double kSign[2] = {1.0, -1.0};
    const double* self = s.row[which];
    const double* other = s.row[which ^ 1];
    const double sign = kSign[which];
    // |self[kHi]| >= |the product| (sin a >= sin(1/256) > 2^-9 >= |b|, or sin a = 0; cos a > 0.7),
    // so the fast two-sum is exact.
    const Pair sum = fastTwoSum(self[kHi], sign * (other[kLead] * s.bLead));
    // The terms known early, then those that wait for the polynomials.
    const double early = (self[kLo] + sum.lo) + sign * (other[kLead] * s.bRest + (other[kRest] * s.b + other[kHi] * s.lo));
    const double late = self[kHi] * s.cosMinusOne + sign * (other[kHi] * s.sinTail);
    return {sum.hi, early + late}; // left unnormalized: the rounding test takes it as it is
}

// The reduced argument as |r| = hi + lo and the sign of r.
struct Folded {
    double hi, lo;
    bool negative;
};

QUILLON_STEP Folded fold(const Reduction& red)
{
    const bool negative = red.hi < 0;
    const double sign = negative ? -1.0 : 1.0;
    return {red.hi * sign, red.lo * sign, negative};
}

// sin |x| is sin r, cos r, -sin r, -cos r for quadrants 0 to 3, and cos |x| is sin(|x| + pi/2):
// whether the quadrant q (plus one for the cosine) asks for cos r, and the sign the result takes
// (sin x = -sin |x|; cos x = cos |x|), applied after the rounding test, off its chain.
QUILLON_STEP unsigned wantsCos(unsigned q) { return q & 1; }

QUILLON_STEP double signOf(unsigned q, bool negativeR, bool negativeX)
{
    const bool minus = (((q & 2) != 0) != (wantsCos(q) == 0 && negativeR)) != negativeX;
    return minus ? -1.0 : 1.0;
}

QUILLON_STEP Estimate bounded(Pair y, double error) { return {y.hi, y.lo, magnitude(y.hi) * kRelative + error}; }

// The double nearest the estimate when its bound leaves no doubt (rounding to nearest is
// monotonic, so both ends rounding alike settle it), with its sign; the accurate path's answer
// otherwise.
QUILLON_STEP double settle(const Estimate& y, double sign, double x, bool cosine)
{
    const double up = y.hi + (y.lo + y.bound), down = y.hi + (y.lo - y.bound);
    if (up != down) [[unlikely]]
        return accurate(x, cosine);
    return up * sign;
}

// Below 2^-26, sin x = x (1 - d) with 0 < d < x^2/6 < 2^-54, short of the midpoint below x
// (half a spacing is at least 2^-54 x); below 2^-27, cos x = 1 - d with 0 < d < x^2/2 < 2^-55,
// short of the midpoint 1 - 2^-54.
constexpr std::uint64_t kSineTiny = 0x3e50000000000000u, kCosineTiny = 0x3e40000000000000u;
constexpr std::uint64_t kNotFinite = 0x7ff0000000000000u;
constexpr std::uint64_t kMagnitudeBits = ~(std::uint64_t{1} << 63);

// The estimate of sin |x| or cos |x|, and the sign of the result.
struct Unsigned {
    Estimate estimate;
    double sign;
};

QUILLON_STEP Unsigned estimateInline(double x, bool cosine)
{
    const Reduction red = reduceFast(magnitude(x));
    const Folded r = fold(red);
    const unsigned q = red.quadrant + (cosine ? 1 : 0);
    const Split s = split(r.hi, r.lo);
    return {bounded(sinOrCos(s, wantsCos(q)), red.error), signOf(q, r.negative, !cosine && x < 0)};
}

QUILLON_STEP double sineOrCosine(double x, bool cosine)
{
    const std::uint64_t abits = bitsOf(x) & kMagnitudeBits;
    if (abits >= kNotFinite) // infinities and NaN
        return x - x;
    if (abits < (cosine ? kCosineTiny : kSineTiny))
        return cosine ? 1.0 : x;
    const Unsigned y = estimateInline(x, cosine);
    return settle(y.estimate, y.sign, x, cosine);
}

QUILLON_STEP SineCosine sineAndCosine(double x)
{
    const std::uint64_t abits = bitsOf(x) & kMagnitudeBits;
    if (abits >= kNotFinite)
        return {x - x, x - x};
    if (abits < kSineTiny)
        return {x, sineOrCosine(x, true)};
    const Reduction red = reduceFast(magnitude(x));
    const Folded r = fold(red);
    const Split s = split(r.hi, r.lo);
    const unsigned qs = red.quadrant, qc = red.quadrant + 1;
    return {settle(bounded(sinOrCos(s, wantsCos(qs)), red.error), signOf(qs, r.negative, x < 0), x, false),
            settle(bounded(sinOrCos(s, wantsCos(qc)), red.error), signOf(qc, r.negative, false), x, true)};
}
} // namespace

Estimate estimate(double x, bool cosine) noexcept
{
    const Unsigned y = estimateInline(x, cosine);
    return {y.estimate.hi * y.sign, y.estimate.lo * y.sign, y.estimate.bound};
}
} // namespace quillon::trig

namespace quillon {
double sine(double x) noexcept { return trig::sineOrCosine(x, false); }
double cosine(double x) noexcept { return trig::sineOrCosine(x, true); }
SineCosine sineCosine(double x) noexcept { return trig::sineAndCosine(x); }
} // namespace quillon
