// SPDX-License-Identifier: MIT
// The accurate path of quillon::sine and quillon::cosine. Each step's error, in units U of the
// last fraction word (2^(-32 n)), is stated where the step is; README.md adds them up.
#include "Accurate.h"

#include "Tables.h"

#include <cstring>

namespace quillon::trig {
namespace {
constexpr int kTableWords = 64;
constexpr double kQuarterPi = 0x1.921fb54442d18p-1; // just below pi/4

std::uint64_t bitsOf(double x)
{
    std::uint64_t b;
    std::memcpy(&b, &x, sizeof b);
    return b;
}

double fromBits(std::uint64_t b)
{
    double x;
    std::memcpy(&x, &b, sizeof x);
    return x;
}

// Bits [low, low + 32) of a little-endian array of `count` words; bits outside it are 0.
std::uint32_t window(const std::uint32_t* p, int count, int low)
{
    const int word = low >= 0 ? low / 32 : -((31 - low) / 32);
    const int bit = low - 32 * word;
    const auto at = [&](int i) -> std::uint64_t { return i >= 0 && i < count ? p[i] : 0; };
    return static_cast<std::uint32_t>((at(word) | (at(word + 1) << 32)) >> bit);
}

// The index of the highest set bit of a little-endian array, -1 when it is 0.
int topBit(const std::uint32_t* p, int count)
{
    for (int i = count - 1; i >= 0; --i)
        if (p[i] != 0) {
            int b = 31;
            while ((p[i] >> b) == 0)
                --b;
            return 32 * i + b;
        }
    return -1;
}

// -1, 0 or 1 as the little-endian array is below, at or above 2^bit.
int compareWithPowerOfTwo(const std::uint32_t* p, int count, int bit)
{
    const int top = topBit(p, count);
    if (top != bit)
        return top < bit ? -1 : 1;
    for (int i = 0; i < count; ++i) {
        const std::uint32_t rest = i == bit / 32 ? p[i] & ~(std::uint32_t{1} << (bit % 32)) : p[i];
        if (rest != 0)
            return 1;
    }
    return 0;
}

// v += s (or v -= s) over `count` little-endian words; false when it wraps past either end.
bool addSmall(std::uint32_t* p, int count, std::uint32_t s, bool subtract)
{
    std::uint64_t carry = s;
    for (int i = 0; i < count && carry != 0; ++i) {
        const std::uint64_t v = p[i];
        const std::uint64_t t = subtract ? v - carry : v + carry;
        p[i] = static_cast<std::uint32_t>(t);
        carry = subtract ? (v < carry ? 1 : 0) : t >> 32;
    }
    return carry == 0;
}

// a >>= bits, the bits shifted out dropped (error below 1 U).
void shiftRight(Wide& a, int bits, int n)
{
    const int words = bits / 32, rest = bits % 32;
    for (int k = n; k >= 0; --k) {
        const int from = k - words;
        const std::uint64_t hi = from >= 0 ? a.w[from] : 0, lo = from - 1 >= 0 ? a.w[from - 1] : 0;
        a.w[k] = rest == 0 ? static_cast<std::uint32_t>(hi)
                           : static_cast<std::uint32_t>((hi >> rest) | (lo << (32 - rest)));
    }
}

// a /= d, truncated (error below 1 U).
void divide(Wide& a, std::uint32_t d, int n)
{
    std::uint64_t rem = 0;
    for (int k = 0; k <= n; ++k) {
        const std::uint64_t t = (rem << 32) | a.w[k];
        a.w[k] = static_cast<std::uint32_t>(t / d);
        rem = t % d;
    }
}

// a = 1 - a, for 0 <= a <= 1 (exact).
void oneMinus(Wide& a, int n)
{
    std::uint32_t borrow = 0;
    for (int k = n; k >= 0; --k) {
        const std::uint64_t take = std::uint64_t{a.w[k]} + borrow;
        const std::uint64_t have = k == 0 ? 1 : 0;
        a.w[k] = static_cast<std::uint32_t>(have - take);
        borrow = have < take ? 1 : 0;
    }
}

// sin(r)/r = sum (-u)^k / (2k+1)!  or  cos(r) = sum (-u)^k / (2k)!, for u = r^2 <= 0.62, by
// Horner's rule t = 1 - u t / (2k (2k+1)) from k = 3n + 4 down to 1. The terms left out are below
// 0.62^(3n+5) / (6n+10)! < 1 U (2^-280 at n = 8, 2^-600 at n = 16). Each step truncates twice (2 U)
// and carries the error before it times u / (2k (2k+1)) <= 0.11: 2.3 U in all.
Wide series(const Wide& u, bool cosine, int n)
{
    Wide t{};
    t.w[0] = 1;
    for (std::uint32_t k = 3 * static_cast<std::uint32_t>(n) + 4; k >= 1; --k) {
        t = multiply(u, t, n);
        divide(t, cosine ? (2 * k - 1) * (2 * k) : (2 * k) * (2 * k + 1), n);
        oneMinus(t, n);
    }
    return t;
}
} // namespace

Wide multiply(const Wide& a, const Wide& b, int n) noexcept
{
    // q[c + 1] weighs 2^(-32 c); q[0] would hold a product of 2^32 or more.
    std::uint32_t q[2 * kMaxWords + 2] = {};
    for (int i = n; i >= 0; --i) {
        std::uint64_t carry = 0;
        for (int j = n; j >= 0; --j) {
            const std::uint64_t t = std::uint64_t{a.w[i]} * b.w[j] + q[i + j + 1] + carry;
            q[i + j + 1] = static_cast<std::uint32_t>(t);
            carry = t >> 32;
        }
        q[i] = static_cast<std::uint32_t>(carry);
    }
    Wide r{};
    for (int k = 0; k <= n; ++k)
        r.w[k] = q[k + 1];
    return r;
}

Wide piOverTwo(int n) noexcept
{
    Wide p{};
    for (int k = 0; k <= n; ++k)
        p.w[k] = kPiOverTwo[k];
    return p;
}

void reduce(double ax, int n, Reduced& out) noexcept
{
    // ax = m 2^e. Word i of 2/pi weighs 2^(-32 (i + 1)); times m 2^e it adds a multiple of 4
    // (a whole number of turns) while e - 32 (i + 1) >= 2, so the product starts at word `first`.
    const std::uint64_t bits = bitsOf(ax);
    const std::uint64_t m = (bits & ((std::uint64_t{1} << 52) - 1)) | (std::uint64_t{1} << 52);
    const int e = static_cast<int>(bits >> 52) - 1075;
    const int first = e >= 2 ? (e - 2) / 32 : 0;
    const int wanted = 54 + 32 * (n + 1); // fraction bits past f's leading zeros
    int need = wanted + 64;
    for (;;) {
        // P = m * (words first..last as one integer) holds |x| 2/pi with its binary point at bit s.
        // The words after `last` would add less than m 2^(e - 32 (last + 1)) < 2^(53 - s).
        int last = (need + e + 31) / 32 - 1;
        if (last > kTableWords - 1)
            last = kTableWords - 1;
        const int count = last - first + 1, words = count + 2;
        const int s = 32 * (last + 1) - e;
        std::uint32_t p[kTableWords + 2] = {};
        for (int j = 0; j < 2; ++j) {
            const std::uint64_t mj = j == 0 ? m & 0xffffffffu : m >> 32;
            std::uint64_t carry = 0;
            for (int k = 0; k < count; ++k) {
                const std::uint64_t t = kTwoOverPi[last - k] * mj + p[k + j] + carry;
                p[k + j] = static_cast<std::uint32_t>(t);
                carry = t >> 32;
            }
            p[count + j] = static_cast<std::uint32_t>(carry);
        }
        unsigned quadrant = window(p, words, s) & 3;
        const bool negative = (window(p, words, s - 1) & 1) != 0;
        if (negative) { // f = frac - 1: its magnitude is the two's complement of the fraction bits
            quadrant = (quadrant + 1) & 3;
            std::uint64_t carry = 1;
            for (int k = 0; k < words; ++k) {
                const std::uint64_t t = std::uint64_t{static_cast<std::uint32_t>(~p[k])} + carry;
                p[k] = static_cast<std::uint32_t>(t);
                carry = t >> 32;
            }
        }
        for (int k = 0; k < words; ++k) // keep the fraction bits only
            if (32 * k >= s)
                p[k] = 0;
            else if (32 * k + 32 > s)
                p[k] &= (std::uint32_t{1} << (s - 32 * k)) - 1;
        // |f| is never 0 (pi is irrational); its leading zeros number at most 62 for any double.
        const int top = topBit(p, words);
        const int zeros = s - 1 - top;
        // f is off by less than 2^(53 - s): relative to |f| >= 2^(-zeros - 1), at most 2^-(32 (n + 1))
        // once s >= zeros + wanted. Otherwise take more words of 2/pi (never past the table).
        if (s < zeros + wanted && last < kTableWords - 1) {
            need = zeros + wanted + 32;
            continue;
        }
        out.fraction = Wide{};
        for (int k = 1; k <= n; ++k)
            out.fraction.w[k] = window(p, words, top + 1 - 32 * k);
        out.shift = zeros;
        out.quadrant = quadrant;
        out.negative = negative;
        return;
    }
}

bool accurate(double x, bool cosine, int n, double& result) noexcept
{
    const std::uint64_t xbits = bitsOf(x);
    const double ax = fromBits(xbits & ~(std::uint64_t{1} << 63));
    // r = R 2^-shift, R below 2 (|r| <= pi/4 within the reduction's error).
    Wide r{};
    int shift;
    unsigned quadrant = 0;
    bool negative = false;
    if (ax < kQuarterPi) { // r = |x| exactly: R is its significand
        const std::uint64_t bits = bitsOf(ax);
        const std::uint64_t frac = bits & ((std::uint64_t{1} << 52) - 1);
        r.w[0] = 1;
        r.w[1] = static_cast<std::uint32_t>(frac >> 20);
        r.w[2] = static_cast<std::uint32_t>((frac & 0xfffff) << 12);
        shift = 1075 - static_cast<int>(bits >> 52) - 52;
    } else { // R = fraction * pi/2 in [pi/4, pi/2): 2 U from the fraction, 1 U from pi/2, 1 U here
        Reduced red;
        reduce(ax, n, red);
        r = multiply(red.fraction, piOverTwo(n), n);
        shift = red.shift;
        quadrant = red.quadrant;
        negative = red.negative;
    }
    // u = r^2: 2 * 1.6 * 5.2 U + 1 U from the product, 1 U from the shift (19 U).
    Wide u = multiply(r, r, n);
    shiftRight(u, 2 * shift, n);
    // sin x is sin r, cos r, -sin r, -cos r for quadrants 0 to 3; cos x is sin(x + pi/2).
    const unsigned q = quadrant + (cosine ? 1 : 0);
    const bool useCos = (q & 1) != 0;
    Wide w = series(u, useCos, n);
    int scale = 0; // the value is w 2^-scale
    if (!useCos) {
        w = multiply(r, w, n);
        scale = shift;
    }
    const bool minus = (((q & 2) != 0) != (!useCos && negative)) != (!cosine && (xbits >> 63) != 0);

    // w >= 0.69 is off by at most 17 U; the rounding is settled if the bits after the 53 kept
    // stay on one side of the midpoint when moved by 64 U either way.
    std::uint32_t b[kMaxWords + 1] = {};
    const int count = n + 1;
    for (int k = 0; k < count; ++k)
        b[k] = w.w[n - k];
    const int top = topBit(b, count);
    std::uint64_t mant = ((std::uint64_t{window(b, count, top - 20)} << 32) | window(b, count, top - 52)) &
                         ((std::uint64_t{1} << 53) - 1);
    for (int k = 0; k < count; ++k) // keep the bits below the 53 kept
        if (32 * k >= top - 52)
            b[k] = 0;
        else if (32 * k + 32 > top - 52)
            b[k] &= (std::uint32_t{1} << (top - 52 - 32 * k)) - 1;
    const int half = top - 53;
    std::uint32_t up[kMaxWords + 1], down[kMaxWords + 1];
    std::memcpy(up, b, sizeof up);
    std::memcpy(down, b, sizeof down);
    const bool upInRange = addSmall(up, count, 64, false);
    const bool downInRange = addSmall(down, count, 64, true);
    const bool roundDown = upInRange && compareWithPowerOfTwo(up, count, half) < 0;
    const bool roundUp = downInRange && compareWithPowerOfTwo(down, count, half) > 0;
    int exponent = top - 32 * n - scale + 1023; // of mant 2^(top - 52 - 32 n - scale)
    if (roundUp || (!roundDown && compareWithPowerOfTwo(b, count, half) >= 0))
        ++mant;
    if (mant >> 53) {
        mant >>= 1;
        ++exponent;
    }
    result = fromBits((minus ? std::uint64_t{1} << 63 : 0) | (static_cast<std::uint64_t>(exponent) << 52) |
                      (mant & ((std::uint64_t{1} << 52) - 1)));
    return roundUp || roundDown;
}

double accurate(double x, bool cosine) noexcept
{
    double r;
    if (!accurate(x, cosine, 8, r))
        accurate(x, cosine, kMaxWords, r); // never seen: 256 bits settle every known hard case
    return r;
}
} // namespace quillon::trig
