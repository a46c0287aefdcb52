// SPDX-License-Identifier: MIT
// The exact lines of polygon edges, sums along them and the rows where two of them part (see
// EdgeLines.h).
#define QUILLON_BUILDING_REGION
#include "EdgeLines.h"

#include "RegionAlgebra.h"
#include "Wide.h"
#include "WorkSteps.h"

#include <algorithm>
#include <limits>

namespace quillon::region_detail {

namespace {

constexpr std::int64_t kLowX = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kHighX = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t kTwo32 = std::int64_t(1) << 32;

// sum_{i < n} floor((a i + b) / m) for 0 <= a, b < m, modulo 2^64. The lattice points under the
// line are counted by swapping the roles of the axes: the whole part of the slope and of the
// offset are counted at once, and what is left is the same sum over the mirrored line, whose
// slope's denominator is the old numerator, so the numbers shrink as in Euclid's algorithm.
// With m and n below 2^32 every product below stays under 2^64.
std::uint64_t floorSumReduced(std::uint64_t n, std::uint64_t m, std::uint64_t a, std::uint64_t b) noexcept
{
    std::uint64_t sum = 0;
    while (true) {
        if (a >= m) {
            sum += n * (n - 1) / 2 * (a / m);
            a %= m;
        }
        if (b >= m) {
            sum += n * (b / m);
            b %= m;
        }
        const std::uint64_t top = a * n + b; // the line's height at i = n
        if (top < m) return sum;
        // The points under the line, counted along the other axis.
        n = top / m;
        b = top % m;
        const std::uint64_t swap = m;
        m = a;
        a = swap;
    }
}

// sum_{i < n} floor((a i + b) / m) for any a and b (|a| n and |b| below 2^62), m > 0, modulo 2^64.
std::uint64_t floorSum(std::int64_t n, std::int64_t m, std::int64_t a, std::int64_t b) noexcept
{
    if (n <= 0) return 0;
    const std::int64_t qa = floorDiv(a, m), qb = floorDiv(b, m);
    const std::uint64_t un = static_cast<std::uint64_t>(n);
    std::uint64_t sum = static_cast<std::uint64_t>(qa) * (un * (un - 1) / 2) + static_cast<std::uint64_t>(qb) * un;
    return sum + floorSumReduced(un, static_cast<std::uint64_t>(m), static_cast<std::uint64_t>(a - qa * m),
                                 static_cast<std::uint64_t>(b - qb * m));
}

constexpr std::int64_t floorMod(std::int64_t a, std::int64_t m) noexcept { return a - floorDiv(a, m) * m; }

// The smallest j >= 0 with (a j) mod m in [lo, hi], 0 < lo <= hi < m, 0 <= a < m; -1 if none.
// Before the first wrap past m the terms are the multiples of a; after the k-th wrap the least
// term is (-(k m)) mod a, so the wraps that reach [lo, hi] are the solutions of the same question
// modulo a. A multiplier above half the modulus is mirrored (j a -> j (m - a), [lo, hi] -> [m - hi,
// m - lo]), so that the modulus at least halves at each step.
std::int64_t firstMultipleInRange(std::int64_t a, std::int64_t m, std::int64_t lo, std::int64_t hi) noexcept
{
    if (a == 0) return -1;
    if (2 * a > m) {
        const std::int64_t mirroredLo = m - hi;
        hi = m - lo;
        lo = mirroredLo;
        a = m - a;
    }
    const std::int64_t j = (lo + a - 1) / a;
    if (a * j <= hi) return j;
    // The least k >= 1 with a multiple of a in [lo + k m, hi + k m]: (-(lo + k m)) mod a <= hi - lo.
    const std::int64_t k = firstInRange(floorMod(-m, a), floorMod(-lo, a), a, 0, hi - lo);
    if (k < 0) return -1;
    return (lo + k * m + a - 1) / a;
}

// A linear function e0 + slope j of the rows j = 0, 1, ... of a run, held wide.
struct Linear {
    Wide e0;
    std::int64_t slope;

    // The rows j of [0, n) with lo <= value <= hi (either bound may be absent), as [first, last];
    // first > last when there are none.
    void rows(const Wide* lo, const Wide* hi, std::int64_t n, std::int64_t& first, std::int64_t& last) const noexcept
    {
        first = 0;
        last = n - 1;
        auto clamp = [n](const Wide& v) {
            if (!v.fits64()) return v.negative() ? std::int64_t(-1) : n;
            return std::min(std::max(v.to64(), std::int64_t(-1)), n);
        };
        if (slope == 0) {
            if ((lo && e0 < *lo) || (hi && e0 > *hi)) first = n;
            return;
        }
        const std::int64_t s = slope > 0 ? slope : -slope;
        // With slope > 0: j >= ceil((lo - e0) / s) and j <= floor((hi - e0) / s); with slope < 0 the
        // bounds trade places: j >= ceil((e0 - hi) / s) and j <= floor((e0 - lo) / s).
        const Wide* low = slope > 0 ? lo : hi;
        const Wide* high = slope > 0 ? hi : lo;
        if (low) {
            const Wide num = slope > 0 ? *low - e0 : e0 - *low;
            first = std::max(first, clamp(-Wide::floorDiv(-num, s)));
        }
        if (high) {
            const Wide num = slope > 0 ? *high - e0 : e0 - *high;
            last = std::min(last, clamp(Wide::floorDiv(num, s)));
        }
    }
};

// Where two lines stand to each other on the rows from, from + 1, ...: e(j) = (q - p)(from + j)
// times dy_p dy_q, exactly. Less than a column apart (|e| < dy_p dy_q) their x differ by 0 or 1
// toward the side q lies on; a column or more apart, they always differ.
struct Pair {
    const Line& p;
    const Line& q;
    std::int64_t from;
    Linear e;
    Wide column; // dy_p dy_q

    Pair(const Line& p0, const Line& q0, std::int64_t from0) noexcept : p(p0), q(q0), from(from0)
    {
        const std::int64_t kp = from - p.y1, kq = from - q.y1; // below 2^27 + the line's own rows
        e.e0 = Wide::product(q.base - p.base, p.dy * q.dy) + Wide::product(kq * q.dx, p.dy) -
               Wide::product(kp * p.dx, q.dy);
        e.slope = q.dx * p.dy - p.dx * q.dy;
        column = Wide(p.dy * q.dy);
    }

    // The runs of rows of [0, n): a column or more left (q of p), less than a column left, level,
    // less than a column right, a column or more right.
    enum Kind { farLeft, nearLeft, level, nearRight, farRight };
    void run(Kind kind, std::int64_t n, std::int64_t& first, std::int64_t& last) const noexcept
    {
        const Wide zero(0), one(1), minusOne(-1), below = -column, nearBelow = -column + one,
                   nearAbove = column - one;
        switch (kind) {
        case farLeft: e.rows(nullptr, &below, n, first, last); break;
        case nearLeft: e.rows(&nearBelow, &minusOne, n, first, last); break;
        case level: e.rows(&zero, &zero, n, first, last); break;
        case nearRight: e.rows(&one, &nearAbove, n, first, last); break;
        case farRight: e.rows(&column, nullptr, n, first, last); break;
        }
    }
};

// The first row j of [first, last] (a run where 0 < e(j) < dy_l dy_r, r right of l by less than a
// column) on which an integer lies in [l, r), so that their x differ; -1 if none. With l's x on row
// y l.base + (k l.dx + rest(y)) / l.dy, rest(y) = (-k l.dx) mod l.dy and k = y - l.y1, that is
// rest(y) dy_r < e: a term of a sequence (a j + b) mod m below a bound that moves with j. The rows
// are taken in windows over which e at most doubles or halves; in each, the terms below the
// window's largest bound are found in turn and checked against the row's own. Where the terms and
// the bound move together, so that many terms found miss, the row is found instead by halving,
// from the count of rows where the lines differ (sums along them), in a number of steps that
// grows with the logarithm of the rows.
std::int64_t firstNear(const Line& l, const Line& r, std::int64_t from, std::int64_t e0, std::int64_t slope,
                       std::int64_t first, std::int64_t last) noexcept
{
    const std::int64_t m = l.dy, c = r.dy;
    const std::int64_t a = floorMod(-l.dx, m);
    const std::int64_t b = floorMod(floorMod(-(from - l.y1), m) * floorMod(l.dx, m), m);
    auto e = [&](std::int64_t j) { return e0 + slope * j; }; // |e| < 2^54 on the run
    auto rest = [&](std::int64_t j) { return (a * (j % m) + b) % m; };
    if (a == 0) { // the same rest on every row: e must pass b c
        const std::int64_t bound = b * c;
        if (e(first) > bound) return first;
        if (slope <= 0) return -1;
        const std::int64_t j = first + (bound - e(first)) / slope + 1;
        return j <= last ? j : -1;
    }
    StepCount steps; // a step a term found, and one a count taken
    // The rows of [j0, j1] where the lines differ: the sum of the differences of their x.
    auto apart = [&](std::int64_t j0, std::int64_t j1) {
        steps.add(1);
        return static_cast<std::int64_t>(sumX(r, from + j0, from + j1) - sumX(l, from + j0, from + j1));
    };
    auto byHalving = [&](std::int64_t j0) -> std::int64_t {
        if (j0 > last || apart(j0, last) == 0) return -1;
        std::int64_t span = 1; // the first row lies within [j0, j0 + span)
        while (j0 + span - 1 < last && apart(j0, j0 + span - 1) == 0) span *= 2;
        std::int64_t lo = j0, hi = std::min(j0 + span - 1, last); // apart(j0, hi) > 0
        while (lo < hi) {
            const std::int64_t mid = lo + (hi - lo) / 2;
            if (apart(j0, mid) > 0)
                hi = mid;
            else
                lo = mid + 1;
        }
        return lo;
    };
    constexpr int kMisses = 32;
    int misses = 0;
    std::int64_t start = first;
    while (start <= last) {
        const std::int64_t here = e(start);
        std::int64_t end = last;
        if (slope > 0)
            end = std::min(last, start + (here + c) / slope);
        else if (slope < 0)
            end = std::min(last, start + (here / 2) / -slope);
        while (start <= end) {
            const std::int64_t top = std::max(e(start), e(end));
            const std::int64_t w = std::min((top + c - 1) / c - 1, m - 1); // rest <= w: rest c < top
            const std::int64_t j = firstInRange(a, rest(start), m, 0, w);
            steps.add(1);
            if (j < 0 || j > end - start) break;
            const std::int64_t at = start + j;
            if (rest(at) * c < e(at)) return at;
            start = at + 1;
            if (++misses > kMisses) return byHalving(start);
        }
        start = end + 1;
    }
    return -1;
}

// The first row of a near run [first, last] on which the lines differ, the run on q's side given.
std::int64_t firstInNearRun(const Pair& pair, bool right, std::int64_t first, std::int64_t last) noexcept
{
    // e at the run's first row, exactly (below 2^54 on the run), then moved along it.
    const Wide atFirst = pair.e.e0 + Wide::product(pair.e.slope, first);
    const std::int64_t start = atFirst.to64();
    const std::int64_t from = pair.from + first;
    const std::int64_t j = right ? firstNear(pair.p, pair.q, from, start, pair.e.slope, 0, last - first)
                                 : firstNear(pair.q, pair.p, from, -start, -pair.e.slope, 0, last - first);
    return j < 0 ? -1 : first + j;
}

} // namespace

void addLines(const POINT& upper, const POINT& lower, int direction, std::vector<Line>& out)
{
    const std::int32_t dx = wrap(std::int64_t(lower.x) - upper.x), dy = wrap(std::int64_t(lower.y) - upper.y);
    std::int64_t shift = 0;
    const std::int64_t at = wrapRow(upper.x, upper.y, dx, dy, shift);
    const std::int64_t y1 = upper.y, last = y1 + dy - 1;
    out.push_back(Line{y1, std::min(at, last + 1) - 1, upper.x, y1, dx, dy, direction});
    if (at <= last) out.push_back(Line{at, last, std::int64_t(upper.x) + shift, y1, dx, dy, direction});
}

std::int64_t wrapRow(std::int32_t x1, std::int64_t y1, std::int32_t dx, std::int32_t dy, std::int64_t& shift) noexcept
{
    shift = 0;
    const std::int64_t end = std::int64_t(x1) + dx;
    if (dy <= 0 || (end >= kLowX && end <= kHighX)) return y1 + (dy > 0 ? dy : 0); // x moves one way only
    std::int64_t k = 0;
    if (dx > 0) { // past kHighX once ceil(k dx / dy) > kHighX - x1
        k = (kHighX - x1) * dy / dx + 1;
        shift = -kTwo32;
    } else { // below kLowX once k |dx| >= (x1 - kLowX + 1) dy
        k = ceilDiv((x1 - kLowX + 1) * dy, -std::int64_t(dx));
        shift = kTwo32;
    }
    return y1 + k;
}

std::uint64_t sumX(const Line& l, std::int64_t from, std::int64_t to) noexcept
{
    const std::int64_t n = to - from + 1;
    if (n <= 0) return 0;
    // ceil(k dx / dy) = -floor(k (-dx) / dy), k from from - y1.
    const std::int64_t k0 = from - l.y1;
    return static_cast<std::uint64_t>(n) * static_cast<std::uint64_t>(l.base) -
           floorSum(n, l.dy, -l.dx, -l.dx * k0);
}

std::int64_t firstInRange(std::int64_t a, std::int64_t b, std::int64_t m, std::int64_t lo, std::int64_t hi) noexcept
{
    // (a j + b) mod m in [lo, hi] is (a j) mod m in [lo - b, hi - b] taken modulo m, a range that
    // holds 0 (and so j = 0) exactly when b lies in [lo, hi].
    const std::int64_t from = floorMod(lo - b, m), to = floorMod(hi - b, m);
    if (from == 0 || from > to) return 0;
    return firstMultipleInRange(a, m, from, to);
}

std::int64_t rowsApart(const Line& p, const Line& q, std::int64_t from, std::int64_t to) noexcept
{
    const std::int64_t n = to - from + 1;
    if (n <= 0) return 0;
    const Pair pair(p, q, from);
    std::int64_t count = 0, first = 0, last = 0;
    for (const Pair::Kind kind : {Pair::farLeft, Pair::farRight}) {
        pair.run(kind, n, first, last);
        if (first <= last) count += last - first + 1;
    }
    // Less than a column apart, the difference of the x is 0 or 1 (or 0 or -1) on every row: its sum
    // counts the rows where they differ.
    pair.run(Pair::nearRight, n, first, last);
    if (first <= last)
        count += static_cast<std::int64_t>(sumX(q, from + first, from + last) - sumX(p, from + first, from + last));
    pair.run(Pair::nearLeft, n, first, last);
    if (first <= last)
        count += static_cast<std::int64_t>(sumX(p, from + first, from + last) - sumX(q, from + first, from + last));
    return count;
}

int runsApart(const Line& p, const Line& q, std::int64_t from, std::int64_t to, bool far,
              std::int64_t runs[2][3]) noexcept
{
    const std::int64_t n = to - from + 1;
    if (n <= 0) return 0;
    const Pair pair(p, q, from);
    int count = 0;
    for (const Pair::Kind kind : {far ? Pair::farLeft : Pair::nearLeft, far ? Pair::farRight : Pair::nearRight}) {
        std::int64_t first = 0, last = 0;
        pair.run(kind, n, first, last);
        if (first > last) continue;
        runs[count][0] = from + first;
        runs[count][1] = from + last;
        runs[count][2] = kind == Pair::farLeft || kind == Pair::nearLeft ? -1 : 1;
        ++count;
    }
    return count;
}

std::int64_t firstApart(const Line& p, const Line& q, std::int64_t from, std::int64_t to) noexcept
{
    const std::int64_t n = to - from + 1;
    if (n <= 0) return to + 1;
    const Pair pair(p, q, from);
    std::int64_t best = n, first = 0, last = 0;
    for (const Pair::Kind kind : {Pair::farLeft, Pair::farRight}) {
        pair.run(kind, n, first, last);
        if (first <= last) best = std::min(best, first);
    }
    for (const Pair::Kind kind : {Pair::nearLeft, Pair::nearRight}) {
        pair.run(kind, n, first, last);
        last = std::min(last, best - 1); // nothing past a row already found
        if (first > last) continue;
        const std::int64_t j = firstInNearRun(pair, kind == Pair::nearRight, first, last);
        if (j >= 0) best = std::min(best, j);
    }
    return from + best;
}

std::int64_t firstLeftOf(const Line& p, const Line& q, std::int64_t from, std::int64_t to) noexcept
{
    const std::int64_t n = to - from + 1;
    if (n <= 0) return to + 1;
    const Pair pair(p, q, from);
    std::int64_t best = n, first = 0, last = 0;
    pair.run(Pair::farLeft, n, first, last);
    if (first <= last) best = first;
    pair.run(Pair::nearLeft, n, first, last);
    last = std::min(last, best - 1);
    if (first <= last) {
        const std::int64_t j = firstInNearRun(pair, false, first, last);
        if (j >= 0) best = std::min(best, j);
    }
    return from + best;
}

} // namespace quillon::region_detail
