// SPDX-License-Identifier: MIT
// The constants of quillon::sine and quillon::cosine, written by tools/trig-tables from MPFR.
#pragma once

#include <cstdint>

namespace quillon::trig {
/// A value as an unevaluated sum hi + lo, |lo| <= ulp(hi) / 2.
struct Pair {
    double hi, lo;
};

/// 2/pi in 32-bit words, most significant first: word i is floor(2^(32 (i + 1)) * 2/pi) mod 2^32.
extern const std::uint32_t kTwoOverPi[64];
/// pi/2 in 32-bit words: word 0 the integer part (1), then the fraction, most significant first.
extern const std::uint32_t kPiOverTwo[18];
/// pi/2 split for reduction in double: 31, 31, 31 and 53 significant bits, off pi/2 by under 2^-146.
extern const double kCody[4];
/// pi/2 split for reduction by k < 2^8: 45, 45 and 53 significant bits, off pi/2 by under 2^-143.
extern const double kCodyShort[3];

/// sin(i/256) and cos(i/256) for i = 0 to 204 (just past pi/4): [i][0] the sine, [i][1] the
/// cosine, each as {hi, lo, lead, rest}: the nearest double and its nearest remainder (hi + lo), and
/// its leading 26 bits and the nearest double to the rest (lead + rest, for exact products).
extern const double kSinCos[205][2][4];
enum TableColumn { kHi, kLo, kLead, kRest };
} // namespace quillon::trig
