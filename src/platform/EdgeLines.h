// SPDX-License-Identifier: MIT
/* The exact lines of polygon edges, and what can be counted along them without walking rows.
 *
 * Scan conversion walks an edge from its upper end (x1, y1) with an error term in 32-bit
 * arithmetic; on row y its x is x1 + ceil((y - y1) dx / dy), dx and dy being the 32-bit
 * differences of its ends, wrapped to 32 bits. A Line is a stretch of rows of one edge on which
 * that x, before wrapping, is base + ceil((y - y1) dx / dy): the whole edge, or the rows before
 * and after its x wraps.
 *
 * Sums of x over rows are floor sums, found in a number of steps that grows with the logarithm
 * of dy, not with the rows. Two lines whose x lie less than a column apart on a run of rows are
 * one column apart exactly on the rows where an integer lies between them; the sum of the
 * difference of their x over those rows counts them, and the first of them is found as the first
 * term of a sequence (a j + b) mod m that falls in a range.
 */
#pragma once

#include <quillon/Region>

#include <cstdint>
#include <vector>

namespace quillon::region_detail {

// Rows first to last of an edge on which its x before wrapping is base + ceil((y - y1) dx / dy),
// dy > 0 and below 2^27, |dx| at most 2^31, y1 <= first.
struct Line {
    std::int64_t first, last;
    std::int64_t base, y1, dx, dy;
    int direction; // +1 downward, -1 upward
};

constexpr std::int64_t floorDiv(std::int64_t a, std::int64_t b) noexcept // b > 0
{
    return a >= 0 ? a / b : -((-a + b - 1) / b);
}

constexpr std::int64_t ceilDiv(std::int64_t a, std::int64_t b) noexcept // b > 0
{
    return -floorDiv(-a, b);
}

inline std::int64_t xAt(const Line& l, std::int64_t y) noexcept { return l.base + ceilDiv((y - l.y1) * l.dx, l.dy); }

// The edge from upper to lower (upper.y < lower.y, their difference below 2^27) as one line, or two
// when its x leaves the 32-bit range partway down.
void addLines(const POINT& upper, const POINT& lower, int direction, std::vector<Line>& out);

// The first row of an edge on which its x leaves the 32-bit range before wrapping (x1 and the
// differences as makeEdge takes them), and the amount the walk's x then differs from it: 2^32 or
// -2^32. Rows past the edge, and 0, when x stays in range.
std::int64_t wrapRow(std::int32_t x1, std::int64_t y1, std::int32_t dx, std::int32_t dy, std::int64_t& shift) noexcept;

// The sum of xAt(l, y) over rows from to to (inside the line), modulo 2^64: the callers take
// differences of two such sums, which are small and so exact.
std::uint64_t sumX(const Line& l, std::int64_t from, std::int64_t to) noexcept;

// The smallest j >= 0 with (a j + b) mod m in [lo, hi], or -1 when there is none; 0 <= a, b < m,
// 0 <= lo <= hi < m, m <= 2^31.
std::int64_t firstInRange(std::int64_t a, std::int64_t b, std::int64_t m, std::int64_t lo, std::int64_t hi) noexcept;

// Two lines on the rows they share. The rows of [from, to] (inside both) on which their x differ,
// and the first of those rows (to + 1 when there is none).
std::int64_t rowsApart(const Line& p, const Line& q, std::int64_t from, std::int64_t to) noexcept;
std::int64_t firstApart(const Line& p, const Line& q, std::int64_t from, std::int64_t to) noexcept;
// The runs of rows of [from, to] on which they lie a column or more apart (far), or less than a
// column apart but not level (near): two at most, first and last rows of each and the side q lies
// on (-1 left, +1 right); how many.
int runsApart(const Line& p, const Line& q, std::int64_t from, std::int64_t to, bool far,
              std::int64_t runs[2][3]) noexcept;
// The first row of [from, to] on which q lies left of p, x below x (to + 1 when there is none).
std::int64_t firstLeftOf(const Line& p, const Line& q, std::int64_t from, std::int64_t to) noexcept;

} // namespace quillon::region_detail
