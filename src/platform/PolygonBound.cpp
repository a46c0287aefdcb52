// SPDX-License-Identifier: MIT
/* A lower bound on the rectangles of a polygon call, without the walk (see PolygonBound.h).
 *
 * A polygon whose result would pass the rectangle limit fails, and the walk finds that out only
 * once it has written that many rectangles. This bound counts rows that must each start a new band,
 * from the edges alone, with the work of a few steps per stretch of rows between edge ends.
 *
 * Alone on a side. On every row of a stretch where one edge lies alone to the left of all others,
 * at least one column further on every row, that edge's x is where the row's first span starts
 * (ALTERNATE: it is the first crossing and the second lies further right; WINDING: it takes the sum
 * away from zero, and the sum comes back to zero further right, the directions of a row's edges
 * adding up to zero). The same holds for the right end of the last span and an edge alone to the
 * right. Each row on which that edge's x differs from the row above has other spans than that row,
 * so it starts a band of at least one rectangle: every row for an edge that moves a column a row or
 * more, one row per column crossed for a steeper one. A band that starts holds as many rectangles
 * as its row has spans, and groups of edges that stay apart give a number of spans every row of a
 * stretch holds (spansPerRow).
 *
 * Two edges. A stretch of two edges (the long stretches of triangles, of mapped rectangles and of
 * slivers of any width) holds one span on the rows where their x differ, and none elsewhere. When
 * either edge moves a column or more every row, each such row but at most one (where they cross)
 * starts a band: their count is exact, found from sums along the edges. When both are steeper, each
 * row where either moves while they lie a column or more apart starts one, and where they lie
 * closer, the bands are counted along the columns instead of the rows (see nearBands).
 */
#define QUILLON_BUILDING_REGION
#include "PolygonBound.h"

#include "EdgeLines.h"
#include "Wide.h"
#include "WorkSteps.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace quillon::region_detail {

namespace {

// Narrows [from, to] to the rows on which e lies at least m columns left of g (eLeft) or right of
// it, found from the exact lines: the condition is linear in y, (g - e - m)(y) >= 0 or
// (e - g - m)(y) >= 0, times dy_g dy_e. False when no row is left.
bool keepApart(const Line* e, const Line* g, bool eLeft, std::int64_t m, std::int64_t& from, std::int64_t& to) noexcept
{
    // dy < 2^27, |dx| <= 2^31, |y1| <= 2^31 and |base| < 2^34: every factor pair below fits 64 bits,
    // and only the sums of the products need the wide type.
    const std::int64_t dyProduct = g->dy * e->dy;
    // g(y) - e(y) - m = (g.base - e.base - m) + (y - g.y1) g.dx / g.dy - (y - e.y1) e.dx / e.dy
    std::int64_t slope = g->dx * e->dy - e->dx * g->dy;
    const Wide gTerm = Wide::product(g->y1 * g->dx, e->dy), eTerm = Wide::product(e->y1 * e->dx, g->dy);
    Wide at0 = Wide::product(g->base - e->base - m, dyProduct) - gTerm + eTerm;
    if (!eLeft) { // e(y) - g(y) - m
        slope = -slope;
        at0 = -Wide::product(g->base - e->base + m, dyProduct) + gTerm - eTerm;
    }
    // at0 + slope y >= 0
    if (slope == 0) {
        if (at0.negative()) return false;
    } else if (slope > 0) {
        const Wide lowest = -Wide::floorDiv(at0, slope); // ceil(-at0 / slope)
        if (lowest > Wide(to)) return false;
        if (lowest > Wide(from)) from = lowest.to64();
    } else {
        const Wide highest = Wide::floorDiv(at0, -slope);
        if (highest < Wide(from)) return false;
        if (highest < Wide(to)) to = highest.to64();
    }
    return from <= to;
}

// Whether two lines have the same x on every row: the same slope, and each anchor on the other's
// line (both x are then the same real number rounded up the same way).
bool sameLine(const Line& a, const Line& b) noexcept
{
    if (a.dx * b.dy != b.dx * a.dy) return false; // |dx dy| < 2^58
    return Wide::product(a.base - b.base, a.dy) == Wide::product(a.y1 - b.y1, a.dx);
}

// The active lines less those that cancel out on the same line (an even number of them for
// ALTERNATE, directions summing to zero for WINDING: needles, and an edge gone over twice), which
// change no row's pixels; they can only split a WINDING span into a touching pair, so the rows'
// rectangles without them are no more than with them.
void withoutNeedles(const std::vector<const Line*>& active, bool winding, std::vector<const Line*>& out)
{
    out.clear();
    if (active.size() > 24) {
        out = active;
        return;
    }
    std::uint32_t gone = 0; // bits of the lines dropped
    for (std::size_t i = 0; i < active.size(); ++i) {
        if (gone >> i & 1) continue;
        std::uint32_t group = std::uint32_t(1) << i;
        int count = 1, sum = active[i]->direction;
        for (std::size_t j = i + 1; j < active.size(); ++j)
            if (!(gone >> j & 1) && sameLine(*active[i], *active[j]))
                group |= std::uint32_t(1) << j, ++count, sum += active[j]->direction;
        if (winding ? sum == 0 : count % 2 == 0) gone |= group;
    }
    for (std::size_t i = 0; i < active.size(); ++i)
        if (!(gone >> i & 1)) out.push_back(active[i]);
}

// The rows of [from, to] on which e, with the lines that are the same line as it, lies at least m
// columns away from every other line, each staying on the side it holds on row y (none level with
// e there); how many lie left of e, and the sum of their directions; how many lines e stands for,
// and the sum of theirs.
bool isolatedOn(const std::vector<const Line*>& active, const Line* e, std::int64_t y, std::int64_t m,
                std::int64_t& from, std::int64_t& to, std::size_t& leftOf, int& leftSum, int& lines,
                int& sum) noexcept
{
    const std::int64_t x = xAt(*e, y);
    leftOf = 0;
    leftSum = 0;
    lines = 0;
    sum = 0;
    for (const Line* g : active) {
        if (sameLine(*g, *e)) {
            ++lines, sum += g->direction;
            continue;
        }
        const std::int64_t gx = xAt(*g, y);
        if (gx == x) return false;
        if (gx < x) ++leftOf, leftSum += g->direction;
        if (!keepApart(e, g, gx > x, m, from, to)) return false;
    }
    return from < to;
}

// The rows after a (up to b) on which a line's x moves, one at a time, for a line that moves less
// than a column a row: x then moves by one column at a time, on the first row past each column.
// Those rows are floor(num / |dx|) steps from the line's first row, num moving by dy a column;
// the quotient is carried with its remainder, so a step costs no division.
class Moves {
public:
    Moves(const Line& l, std::int64_t a, std::int64_t b) : end_(b), divisor_(l.dx < 0 ? -l.dx : l.dx)
    {
        // |c| stays within the 32-bit differences and dy below 2^27: the products fit 64 bits.
        const std::int64_t c = ceilDiv((a - l.y1) * l.dx, l.dy); // the column x reaches on row a
        // Rightward, column c is passed on row y1 + floor(c dy / dx) + 1; leftward, column c - 1
        // is reached on row y1 - floor((c - 1) dy / |dx|).
        const std::int64_t num = l.dx > 0 ? c * l.dy : (c - 1) * l.dy;
        const std::int64_t step = l.dx > 0 ? l.dy : -l.dy;
        quotient_ = floorDiv(num, divisor_);
        remainder_ = num - quotient_ * divisor_;
        stepQuotient_ = floorDiv(step, divisor_);
        stepRemainder_ = step - stepQuotient_ * divisor_;
        sign_ = l.dx > 0 ? 1 : -1;
        offset_ = l.dx > 0 ? l.y1 + 1 : l.y1;
        row_ = offset_ + sign_ * quotient_;
    }
    bool done() const noexcept { return row_ > end_; }
    std::int64_t row() const noexcept { return row_; }
    void advance() noexcept
    {
        quotient_ += stepQuotient_;
        remainder_ += stepRemainder_;
        if (remainder_ >= divisor_) remainder_ -= divisor_, ++quotient_;
        row_ = offset_ + sign_ * quotient_;
    }

private:
    std::int64_t end_, divisor_;
    std::int64_t quotient_ = 0, remainder_ = 0, stepQuotient_ = 0, stepRemainder_ = 0;
    std::int64_t sign_ = 1, offset_ = 0, row_ = 0;
};

// The rows of [from, to] (a stretch in which the same lines are active) that must each start a
// band. The candidates are the lines, each with the rows (a, b] on which it lies alone on its side
// (in a stretch of many lines, only those furthest left and right on its first and last rows). A line that moves a column a row or
// more moves on all of them; a steeper one on the rows where it passes a column. atOnce() is the
// larger side's count, or the rows of the first kind, found with no walk; counted() joins both
// kinds, each row once, walking the rows where steeper lines move.
class StretchRows {
public:
    StretchRows(const std::vector<const Line*>& active, bool winding, std::int64_t from, std::int64_t to)
    {
        if (to <= from || active.size() < 2) return;
        int sum = 0;
        for (const Line* l : active) sum += l->direction;
        if (winding ? sum != 0 : active.size() % 2 != 0) return;
        // A line alone at one end of the rows, a column or more from every other, is the end of the
        // row's pixels, so each row on which it moves starts a band. A line between others is an edge
        // of them (ALTERNATE: the parity changes there; WINDING: where the directions to its left,
        // or with it, sum to zero), and so is none where it was a row before, as long as every other
        // line lies further from it than it moves in a row: each row on which it moves starts a
        // band too. The rows of such lines that move every row are joined over all of them; the
        // others count their moves, the larger count of one line. The lines alone at one end hold
        // rows apart from each other, so the counts of one end add up.
        std::int64_t ends[2] = {0, 0}, single = 0;
        const Line* candidates[4 * kEveryLine];
        std::size_t count = 0;
        if (active.size() <= kEveryLine) {
            for (const Line* l : active) candidates[count++] = l;
        } else { // in a stretch of many lines, those furthest out at its ends
            for (const bool left : {true, false})
                for (const std::int64_t y : {from, to}) {
                    const Line* best = nullptr;
                    std::int64_t bestX = 0;
                    for (const Line* l : active) {
                        const std::int64_t x = xAt(*l, y);
                        if (!best || (left ? x < bestX : x > bestX)) best = l, bestX = x;
                    }
                    if (std::find(candidates, candidates + count, best) == candidates + count) candidates[count++] = best;
                }
        }
        for (std::size_t c = 0; c < count; ++c) {
            const Line* line = candidates[c];
            if (line->dx == 0) continue;
            bool twin = false; // the same line as one tried already
            for (std::size_t d = 0; d < c && !twin; ++d) twin = sameLine(*candidates[d], *line);
            if (twin) continue;
            const std::int64_t speed = ceilDiv(line->dx < 0 ? -line->dx : line->dx, line->dy);
            // The rows around the stretch's first, middle and last rows (where the line may be level
            // with another at one of them), each run of rows counted once.
            std::int64_t seen[3][2];
            int runs = 0;
            for (const std::int64_t y : {from, from + (to - from) / 2, to}) {
                std::int64_t a = from, b = to;
                std::size_t leftOf = 0;
                int leftSum = 0, lines = 0, sum = 0;
                if (!isolatedOn(active, line, y, 1, a, b, leftOf, leftSum, lines, sum)) continue;
                // The line and its twins change the parity (ALTERNATE) or take the sum to or from
                // zero (WINDING), or are no edge of the pixels.
                if (winding ? sum == 0 || (leftSum != 0 && leftSum + sum != 0) : lines % 2 == 0) continue;
                const bool atEnd = leftOf == 0 || leftOf + std::size_t(lines) == active.size();
                if (!atEnd) {
                    a = from, b = to;
                    if (!isolatedOn(active, line, y, speed + 1, a, b, leftOf, leftSum, lines, sum)) continue;
                }
                bool again = false;
                for (int k = 0; k < runs; ++k) again = again || (a <= seen[k][1] && b >= seen[k][0]);
                if (again) continue;
                seen[runs][0] = a, seen[runs][1] = b, ++runs;
                const bool fast = (line->dx < 0 ? -line->dx : line->dx) >= line->dy;
                if (fast)
                    covered_[coveredCount_++] = Range{a, b};
                else
                    steep_[steepCount_++] = Steep{line, a, b};
                // Each band that starts there holds as many rectangles as the rows there have spans,
                // counted over each quarter of the rows (where edges close in on each other, as at a
                // vertex, they stay apart on the quarters before).
                std::int64_t rectangles = 0;
                for (int q = 0; q < 4; ++q) {
                    const std::int64_t qa = a + (b - a) * q / 4, qb = a + (b - a) * (q + 1) / 4;
                    const std::int64_t moved = xAt(*line, qb) - xAt(*line, qa);
                    const std::int64_t rows = fast ? qb - qa : moved < 0 ? -moved : moved;
                    rectangles += rows * spansPerRow(active, winding, qa, qb);
                }
                if (leftOf == 0) ends[0] += rectangles;
                if (leftOf + std::size_t(lines) == active.size()) ends[1] += rectangles;
                single = std::max(single, rectangles);
            }
        }
        // A group of two edges alone in the pixels makes its own bands, counted over each quarter
        // of the stretch (edges closing in on it stay apart from it on the quarters before), each
        // holding as many rectangles as the rows there have spans.
        std::int64_t pairs = 0;
        if (active.size() > 2 && active.size() <= kEveryLine)
            for (int q = 0; q < 4; ++q) {
                const std::int64_t qa = from + (to - from) * q / 4, qb = from + (to - from) * (q + 1) / 4;
                pairs += pairGroupRows(active, winding, qa, qb) * spansPerRow(active, winding, qa, qb);
            }
        const std::int64_t most = std::max({ends[0], ends[1], single, pairs});
        // The ranges of lines that move every row, joined, as rows (a, b].
        std::sort(covered_, covered_ + coveredCount_, [](const Range& p, const Range& q) { return p.a < q.a; });
        std::size_t joined = 0;
        for (std::size_t i = 0; i < coveredCount_; ++i) {
            const Range r = covered_[i];
            if (joined > 0 && r.a <= covered_[joined - 1].b)
                covered_[joined - 1].b = std::max(covered_[joined - 1].b, r.b);
            else
                covered_[joined++] = r;
        }
        coveredCount_ = joined;
        for (std::size_t i = 0; i < coveredCount_; ++i) coveredRows_ += covered_[i].b - covered_[i].a;
        perRow_ = spansPerRow(active, winding, from, to);
        atOnce_ = std::max(most, coveredRows_ * perRow_);
        if (active.size() == 2) atOnce_ = std::max(atOnce_, pairRows(*active[0], *active[1], from, to));
    }

    std::int64_t atOnce() const noexcept { return atOnce_; }

    // The rows that start a band, counted up to more than budget (and never fewer than atOnce).
    std::int64_t counted(std::int64_t budget, StepCount& steps) const
    {
        if (atOnce_ > budget || steepCount_ == 0) return atOnce_;
        // The rows outside the covered ranges where some steeper line moves, each row once.
        std::vector<Moves> moves;
        for (std::size_t i = 0; i < steepCount_; ++i) {
            const Steep& s = steep_[i];
            std::int64_t at = s.a; // the rows (at, ...] not yet looked at
            for (std::size_t j = 0; j < coveredCount_; ++j) {
                const Range& r = covered_[j];
                if (r.b <= at) continue;
                if (r.a >= s.b) break;
                if (r.a > at) moves.emplace_back(*s.line, at, r.a);
                at = r.b;
            }
            if (at < s.b) moves.emplace_back(*s.line, at, s.b);
        }
        std::int64_t rows = coveredRows_;
        std::int64_t last = std::numeric_limits<std::int64_t>::min();
        while (rows <= budget) {
            Moves* next = nullptr;
            for (Moves& m : moves)
                if (!m.done() && (!next || m.row() < next->row())) next = &m;
            if (!next) break;
            steps.add(moves.size());
            const std::int64_t y = next->row();
            next->advance();
            if (y != last) ++rows;
            last = y;
        }
        return std::max(rows * perRow_, atOnce_);
    }

private:
    // A number of spans every row of the stretch holds. The edges, in their order on its first row,
    // fall into groups such that every edge of a group lies more than a column left of every edge of
    // the next, on the first row and on the last, and so on every row between (the distance from the
    // rightmost of one group to the leftmost of the next is convex). Between two groups lies at least
    // one pixel, in the region or out of it as the edges to its left fill (an odd number of them for
    // ALTERNATE, directions not summing to zero for WINDING), and so inside a group of two edges
    // that stay apart: every row has as many spans at least as there are runs of such places in the
    // region with places out of it between them.
    static std::int64_t spansPerRow(const std::vector<const Line*>& active, bool winding, std::int64_t from,
                                    std::int64_t to)
    {
        std::int64_t spans = 0;
        eachGroup(active, winding, from, to, spans, nullptr);
        return std::max<std::int64_t>(spans, 1);
    }

    // The bands of a group of two edges with no pixel beside it (every place around it out of the
    // pixels), which its span alone makes there: the most such a group gives. 0 if none.
    static std::int64_t pairGroupRows(const std::vector<const Line*>& active, bool winding, std::int64_t from,
                                      std::int64_t to)
    {
        std::int64_t spans = 0, rows = 0;
        eachGroup(active, winding, from, to, spans, &rows);
        return rows;
    }

    // The groups of the edges over [from, to] (see spansPerRow): counts the spans every row holds,
    // and, with pairs, the most bands a group of two edges alone in the pixels makes.
    static void eachGroup(const std::vector<const Line*>& active, bool winding, std::int64_t from, std::int64_t to,
                          std::int64_t& spans, std::int64_t* pairs)
    {
        if (active.size() <= 2) return;
        struct End {
            std::int64_t first, last;
            int direction;
            const Line* line;
        };
        std::vector<End> ends;
        ends.reserve(active.size());
        for (const Line* l : active) ends.push_back(End{xAt(*l, from), xAt(*l, to), l->direction, l});
        std::sort(ends.begin(), ends.end(), [](const End& p, const End& q) { return p.first < q.first; });
        const std::size_t n = ends.size();
        std::vector<std::int64_t> lowFirst(n + 1), lowLast(n + 1); // the least x of edges k.. on each row
        lowFirst[n] = lowLast[n] = std::numeric_limits<std::int64_t>::max();
        for (std::size_t k = n; k-- > 0;)
            lowFirst[k] = std::min(lowFirst[k + 1], ends[k].first), lowLast[k] = std::min(lowLast[k + 1], ends[k].last);
        // The regions from left to right, each in the pixels, out of them, or not known: the gaps
        // between groups, and the inside of each group (known for a group of two edges that stay
        // more than a column apart). A run of regions not out that holds one in is a span at least.
        enum State { out, in, unknown };
        bool open = false, holds = false;
        auto region = [&](State state) {
            if (state == out) {
                spans += open && holds;
                open = holds = false;
            } else {
                open = true;
                holds = holds || state == in;
            }
        };
        // In the pixels past the edges [0, k] with directions summing to sum to their left.
        auto past = [&](std::size_t k, int sum) { return winding ? sum != 0 : k % 2 == 1; };
        std::int64_t highFirst = std::numeric_limits<std::int64_t>::min(), highLast = highFirst;
        int sum = 0;
        std::size_t start = 0; // the group's first edge
        for (std::size_t k = 0; k < n; ++k) {
            highFirst = std::max(highFirst, ends[k].first);
            highLast = std::max(highLast, ends[k].last);
            if (k + 1 < n && (lowFirst[k + 1] - highFirst < 2 || lowLast[k + 1] - highLast < 2)) continue;
            if (k > start) { // the inside of the group [start, k]
                const bool apart = k == start + 1 && ends[k].first - ends[start].first >= 2 &&
                                   ends[k].last - ends[start].last >= 2;
                region(apart ? (past(start + 1, sum + ends[start].direction) ? in : out) : unknown);
                // A group of two with the pixels out of it on both sides: its own bands.
                const int after = sum + ends[start].direction + ends[k].direction;
                if (pairs && k == start + 1 && !past(start, sum) && !past(k + 1, after))
                    *pairs = std::max(*pairs, pairRows(*ends[start].line, *ends[k].line, from, to));
            }
            for (std::size_t i = start; i <= k; ++i) sum += ends[i].direction;
            if (k + 1 < n) region(past(k + 1, sum) ? in : out); // the gap after it
            start = k + 1;
        }
        region(out);
    }

    // The rows of (from, to] that start a band, for a stretch of two edges p and q (see the top).
    static std::int64_t pairRows(const Line& p, const Line& q, std::int64_t from, std::int64_t to) noexcept
    {
        auto fast = [](const Line& l) { return (l.dx < 0 ? -l.dx : l.dx) >= l.dy; };
        if (fast(p) || fast(q)) return std::max<std::int64_t>(0, rowsApart(p, q, from + 1, to) - 1);
        std::int64_t rows = 0;
        std::int64_t runs[2][3];
        for (int i = 0, n = runsApart(p, q, from, to, true, runs); i < n; ++i) {
            const std::int64_t a = runs[i][0], b = runs[i][1];
            const std::int64_t movedP = xAt(p, b) - xAt(p, a), movedQ = xAt(q, b) - xAt(q, a);
            rows += std::max(movedP < 0 ? -movedP : movedP, movedQ < 0 ? -movedQ : movedQ);
        }
        for (int i = 0, n = runsApart(p, q, from, to, false, runs); i < n; ++i)
            rows += nearBands(runs[i][2] > 0 ? p : q, runs[i][2] > 0 ? q : p, runs[i][0], runs[i][1]);
        return rows;
    }

    // The bands of a near run [a, b] of two steeper edges, r right of l by less than a column: each
    // row of it that holds a span holds [k, k + 1), k being l's x, and the rows of one k are one
    // band, so the bands are the columns k whose rows holding l at k and r at k + 1 meet. For edges
    // leaning right, these are the k where r reaches k on an earlier row than l does, rows rounded
    // down: a count of the rows where two lines differ, along the columns (x and y trade places;
    // rows are first mirrored for edges leaning left). Edges leaning apart, or standing upright,
    // stay that close over so few rows that they are not counted.
    static std::int64_t nearBands(Line l, Line r, std::int64_t a, std::int64_t b) noexcept
    {
        if (l.dx == 0 || r.dx == 0 || (l.dx > 0) != (r.dx > 0)) return 0;
        if (l.dx < 0) { // y -> -y: the same rows, upside down
            for (Line* e : {&l, &r}) *e = Line{-e->last, -e->first, e->base, -e->y1, -e->dx, e->dy, e->direction};
            const std::int64_t mirroredA = -b;
            b = -a;
            a = mirroredA;
        }
        // Only the columns whose rows lie inside the run: those strictly between l's ends.
        const std::int64_t first = xAt(l, a) + 1, last = xAt(l, b) - 1;
        if (first > last) return 0;
        // The row where a line reaches column k, rounded down, is -ceil(-(y1 + (k - base) dy / dx)).
        auto along = [](const Line& e) { return Line{e.base, e.base + e.dx, -e.y1, e.base, -e.dy, e.dx, e.direction}; };
        return rowsApart(along(l), along(r), first, last);
    }

    struct Range {
        std::int64_t a, b;
    };
    struct Steep {
        const Line* line;
        std::int64_t a, b;
    };
    // Every line of a stretch of up to kEveryLine is a candidate; of a larger one, those alone at an
    // end of the rows. Each line counts at most once from each of three rows of the stretch.
    static constexpr std::size_t kEveryLine = 24;
    Range covered_[4 * kEveryLine];
    Steep steep_[4 * kEveryLine];
    std::size_t coveredCount_ = 0, steepCount_ = 0;
    std::int64_t coveredRows_ = 0, atOnce_ = 0, perRow_ = 1;
};

} // namespace

// The stretches' bounds found at once come first, over the whole polygon; only when their sum stays
// within the limit are rows walked, each stretch's walk stopping once the counts so far and the
// other stretches' quick bounds pass the limit, so that the walks together take at most about the
// limit's rows. A stretch costs a step per active edge: once the stretches have taken some
// multiple of the edges' number in such steps, the rest count for nothing.
std::int64_t provenRectangles(const POINT* points, const INT* counts, int polygons, bool winding,
                              std::int64_t limit, bool walk)
{
    std::vector<Line> lines;
    const POINT* p = points;
    for (int i = 0; i < polygons; ++i) {
        const int n = counts[i];
        if (n >= 2) {
            const POINT* prev = &p[n - 1];
            for (int k = 0; k < n; ++k) {
                const POINT* cur = &p[k];
                if (prev->y < cur->y)
                    addLines(*prev, *cur, +1, lines);
                else if (prev->y > cur->y)
                    addLines(*cur, *prev, -1, lines);
                prev = cur;
            }
        }
        p += n;
    }
    std::sort(lines.begin(), lines.end(), [](const Line& a, const Line& b) { return a.first < b.first; });
    // Calls visit(stretch) for every stretch of rows in which the same lines are active, top to
    // bottom, until it returns false.
    std::vector<const Line*> active, visible;
    StepCount counted; // a step a stretch and an edge in it, and a step a row walked
    counted.add(lines.size());
    const std::size_t steps = 32 * lines.size() + (std::size_t(1) << 16);
    const auto eachStretch = [&](auto&& visit) {
        active.clear();
        std::size_t next = 0, taken = 0;
        std::int64_t y = 0;
        while (next < lines.size() || !active.empty()) {
            if ((taken += active.size()) > steps) return;
            counted.add(1 + active.size());
            if (active.empty()) y = lines[next].first;
            while (next < lines.size() && lines[next].first == y) active.push_back(&lines[next++]);
            std::int64_t to = next < lines.size() ? lines[next].first - 1 : std::numeric_limits<std::int64_t>::max();
            for (const Line* l : active) to = std::min(to, l->last);
            withoutNeedles(active, winding, visible);
            if (!visit(StretchRows(visible, winding, y, to))) return;
            active.erase(std::remove_if(active.begin(), active.end(), [to](const Line* l) { return l->last == to; }),
                         active.end());
            y = to + 1;
        }
    };
    std::int64_t total = 0;
    eachStretch([&](const StretchRows& s) {
        total += s.atOnce();
        return total <= limit;
    });
    if (total > limit || !walk) return total;
    // Each stretch's quick bound replaced by its count as it is walked.
    eachStretch([&](const StretchRows& s) {
        total -= s.atOnce();
        total += s.counted(limit - total, counted);
        return total <= limit;
    });
    return total;
}

} // namespace quillon::region_detail
