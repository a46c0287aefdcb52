// SPDX-License-Identifier: MIT
// The accurate path of quillon::sine and quillon::cosine: fixed-point arithmetic in 32-bit words
// (64-bit integers only), the argument reduced by the bits of 2/pi, and Taylor series. The error
// analysis is in README.md beside this file.
#pragma once

#include <cstdint>

namespace quillon::trig {
/// The most fraction words the accurate path uses (512 bits).
constexpr int kMaxWords = 16;

/// A fixed-point number below 2^32: w[0] the integer part, w[1..n] the fraction, most
/// significant first (word i weighs 2^(-32 i)).
struct Wide {
    std::uint32_t w[kMaxWords + 1];
};

/// |x| * 2/pi = 4j + quadrant + (negative ? -f : f), |f| <= 1/2, f = fraction * 2^-shift with
/// fraction in [1/2, 1) to n words (truncated: f's error is below one unit of word n).
struct Reduced {
    Wide fraction;
    int shift;
    unsigned quadrant;
    bool negative;
};

/// Reduces |x| (finite, at least pi/4) with the bits of 2/pi that matter, as many as n words of
/// f's significant bits need, whatever f's leading zeros.
void reduce(double ax, int n, Reduced& out) noexcept;

/// a * b, truncated to n fraction words (the product must be below 2^32).
Wide multiply(const Wide& a, const Wide& b, int n) noexcept;

/// pi/2 to n fraction words, truncated.
Wide piOverTwo(int n) noexcept;

/// sin x (or cos x) rounded to nearest from n-word arithmetic; false when the result lies too close
/// to a midpoint between two doubles for n words to tell (result is then the nearer guess).
bool accurate(double x, bool cosine, int n, double& result) noexcept;

/// sin x (or cos x) correctly rounded, for x finite and |x| >= 2^-26: 256 bits, then 512 if ever
/// needed.
double accurate(double x, bool cosine) noexcept;
} // namespace quillon::trig
