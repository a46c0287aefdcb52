// SPDX-License-Identifier: MIT
// The fast path of quillon::sine and quillon::cosine before rounding, for the test that holds its
// error to the bound it claims.
#pragma once

namespace quillon::trig {
/// sin x or cos x lies within `bound` of hi + lo (|lo| < 2^-16 |hi|; the pair is not normalized).
struct Estimate {
    double hi, lo, bound;
};

/// The double-double estimate, for finite x of at least 2^-26 (2^-27 for the cosine) in magnitude.
Estimate estimate(double x, bool cosine) noexcept;
} // namespace quillon::trig
