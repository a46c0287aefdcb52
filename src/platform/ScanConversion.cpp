// SPDX-License-Identifier: MIT
/* Polygon scan conversion: polygons made into regions in the canonical form of RegionAlgebra.h.
 *
 * Polygons are scan-converted here, row by row. An edge from the upper vertex (x1, y1) to the
 * lower (x2, y2) covers rows y1 to y2 - 1; its x on each row comes from an incremental error
 * term in 32-bit wrapping arithmetic, which for coordinates in range is the exact x rounded up.
 * On a row, ALTERNATE fills between the first and second crossing, the third and fourth, and so
 * on, joining spans that touch; WINDING fills from where the sum of edge directions leaves zero
 * to where it returns, taking the crossings in the order the edges hold on that row. A pixel is
 * in when its left end lies in a span. Rows with the same spans are joined into bands. Rows where
 * nothing changes, and rows where every edge is cancelled by its twin, are passed over at once,
 * so the work follows the result and the edges, not the rows spanned. A walk of more rows than
 * the rectangle limit is first bounded from the edges alone (provenRectangles), and not made when
 * its rows alone would pass the limit.
 */
#define QUILLON_BUILDING_REGION
#include <quillon/Region>

#include "ScanConversion.h"
#include "Wide.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <new>
#include <vector>

namespace quillon::region_detail {

namespace {

// ----- polygon scan conversion -----------------------------------------------------------------

struct Edge {
    std::int64_t top;  // first row
    std::int64_t last; // last row
    std::int32_t x;    // x on the current row
    std::int32_t d, m, m1, incr1, incr2;
    int direction;     // +1 downward, -1 upward
};

} // namespace

// The working arrays of scan conversion, kept between polygons by a caller that makes many.
struct ScanScratch {
    std::vector<Edge> edges;
    std::vector<Edge*> active, fresh, merged;
    std::vector<Span> spans, lastSpans;
};

namespace {

Edge makeEdge(const POINT& upper, const POINT& lower, int direction) noexcept
{
    Edge e;
    e.top = upper.y;
    e.last = std::int64_t(lower.y) - 1;
    e.direction = direction;
    e.x = upper.x;
    const std::int32_t dy = wrap(std::int64_t(lower.y) - upper.y);
    const std::int32_t dx = wrap(std::int64_t(lower.x) - upper.x);
    // 32-bit division truncating toward zero; the one quotient that overflows wraps.
    const std::int32_t m = dy == -1 ? wrap(-std::int64_t(dx)) : dx / dy;
    e.m = m;
    if (dx < 0) {
        e.m1 = wrap(std::int64_t(m) - 1);
        e.incr1 = wrap(-2 * std::int64_t(dx) + 2 * std::int64_t(dy) * e.m1);
        e.incr2 = wrap(-2 * std::int64_t(dx) + 2 * std::int64_t(dy) * m);
        e.d = wrap(2 * std::int64_t(m) * dy - 2 * std::int64_t(dx) - 2 * std::int64_t(dy));
    } else {
        e.m1 = wrap(std::int64_t(m) + 1);
        e.incr1 = wrap(2 * std::int64_t(dx) - 2 * std::int64_t(dy) * e.m1);
        e.incr2 = wrap(2 * std::int64_t(dx) - 2 * std::int64_t(dy) * m);
        e.d = wrap(-2 * std::int64_t(m) * dy + 2 * std::int64_t(dx));
    }
    return e;
}

inline bool takesLongStep(const Edge& e) noexcept { return e.m1 > 0 ? e.d > 0 : e.d >= 0; }

inline void step(Edge& e) noexcept
{
    if (takesLongStep(e)) {
        e.x = wrap(std::int64_t(e.x) + e.m1);
        e.d = wrap(std::int64_t(e.d) + e.incr1);
    } else {
        e.x = wrap(std::int64_t(e.x) + e.m);
        e.d = wrap(std::int64_t(e.d) + e.incr2);
    }
}

// How many steps from now add the same amount to x, and that amount: a run of short steps (m) while
// the error term stays on the short side, or of long steps (m1) while it stays on the long side.
// Counted only where the term cannot wrap; 0 where it might.
std::int64_t steadySteps(const Edge& e, std::int64_t& amount) noexcept
{
    constexpr std::int64_t kForever = std::numeric_limits<std::int64_t>::max();
    const bool strict = e.m1 > 0; // long steps while d > 0, else while d >= 0
    const std::int64_t d = e.d;
    if (!takesLongStep(e)) {
        amount = e.m;
        if (e.incr2 < 0) return 0;
        if (e.incr2 == 0) return kForever;
        return (strict ? -d : -d - 1) / e.incr2 + 1;
    }
    amount = e.m1;
    if (e.incr1 > 0) return 0;
    if (e.incr1 == 0) return kForever;
    return (strict ? d - 1 : d) / -std::int64_t(e.incr1) + 1;
}

// How many steps from now leave x where it is: only an edge with m = 0 stands still, for as
// long as its error term stays on the short side (advance() counts on short steps here).
std::int64_t stillSteps(const Edge& e) noexcept
{
    std::int64_t amount = 0;
    const std::int64_t run = steadySteps(e, amount);
    return !takesLongStep(e) && amount == 0 ? run : 0;
}

// Rows after this one that stay empty, for a row whose spans are empty: its edges stand in groups
// at one x each (ALTERNATE pairs and WINDING spans open and close within a group), and the rows stay
// empty for as long as every edge of a group adds the same amount to x on each step, no group
// reaches the next, and no x wraps: the order and the groups are then the same on every row. A
// sliver thinner than a pixel is passed over at once, however many rows it spans.
std::int64_t emptyRows(const std::vector<Edge*>& active) noexcept
{
    std::int64_t rows = std::numeric_limits<std::int64_t>::max();
    std::int64_t lastX = 0, lastAmount = 0;
    for (std::size_t i = 0; i < active.size();) {
        const std::int64_t x = active[i]->x;
        std::int64_t amount = 0;
        std::size_t j = i;
        for (; j < active.size() && active[j]->x == x; ++j) {
            std::int64_t a = 0;
            rows = std::min(rows, steadySteps(*active[j], a));
            if (j > i && a != amount) return 0;
            amount = a;
        }
        // Within the 32-bit range: stays in order with the group to its left.
        if (amount > 0) rows = std::min(rows, (std::int64_t(std::numeric_limits<std::int32_t>::max()) - x) / amount);
        if (amount < 0) rows = std::min(rows, (x - std::numeric_limits<std::int32_t>::min()) / -amount);
        if (i > 0 && lastAmount > amount) rows = std::min(rows, (x - lastX - 1) / (lastAmount - amount));
        lastX = x, lastAmount = amount;
        i = j;
    }
    return rows;
}

constexpr std::int64_t floorDiv(std::int64_t a, std::int64_t b) noexcept // b > 0
{
    return a >= 0 ? a / b : -((-a + b - 1) / b);
}

// k steps at once, with exactly the state that k calls of step() leave. With a = incr2 and
// b = incr2 - incr1 (twice the edge's height), 0 <= a < b, the error term never leaves the
// interval (a - b, a] (long steps while d > 0) or [a - b, a) (long steps while d >= 0) once it
// is in it, and after k steps d = d0 + k a - b L, L being the number of long steps; the interval
// fixes L. Edges made by makeEdge start inside it whenever their height is below 2^29. Any other
// state is stepped one row at a time.
void advance(Edge& e, std::int64_t k) noexcept
{
    if (k <= 0) return;
    const std::int64_t a = e.incr2;
    const std::int64_t b = a - e.incr1;
    const std::int64_t d = e.d;
    const bool strict = e.m1 > 0; // long steps while d > 0
    const bool closed = a >= 0 && a < b && b <= (std::int64_t(1) << 30) &&
                        (strict ? d > a - b && d <= a : d >= a - b && d < a);
    if (!closed) {
        if (stillSteps(e) >= k) { // x stays; the term only moves on its short steps
            e.d = wrap(d + k * a);
            return;
        }
        for (std::int64_t i = 0; i < k; ++i) step(e);
        return;
    }
    const std::int64_t n = d + (k - 1) * a;
    const std::int64_t longSteps = strict ? -floorDiv(-n, b) : floorDiv(n, b) + 1;
    const std::uint32_t m = static_cast<std::uint32_t>(e.m);
    const std::uint32_t extra = static_cast<std::uint32_t>(e.m1) - m;
    e.x = static_cast<std::int32_t>(static_cast<std::uint32_t>(e.x) +
                                    static_cast<std::uint32_t>(k) * m +
                                    static_cast<std::uint32_t>(longSteps) * extra);
    e.d = static_cast<std::int32_t>(d + k * a - b * longSteps);
}

// Whether two edges move alike on every row from now on: the same x and steps, and error terms
// in proportion (the same line from the same point), so that they take their long steps together.
bool sameCourse(const Edge& p, const Edge& q) noexcept
{
    if (p.x != q.x || p.m != q.m || p.m1 != q.m1) return false;
    const std::int64_t pd = p.d, p1 = p.incr1, p2 = p.incr2;
    const std::int64_t qd = q.d, q1 = q.incr1, q2 = q.incr2;
    auto sign = [](std::int64_t v) { return (v > 0) - (v < 0); };
    return sign(pd) == sign(qd) && sign(p1) == sign(q1) && sign(p2) == sign(q2) &&
           pd * q1 == qd * p1 && pd * q2 == qd * p2 && p1 * q2 == q1 * p2;
}

// Whether the active edges cancel each other out: they fall into runs of neighbours on the same
// course whose directions sum to zero (WINDING) or that are even in number (ALTERNATE). Such edges
// fill nothing on any row for as long as they all last and no edge joins them.
bool allCancel(const std::vector<Edge*>& active, bool winding) noexcept
{
    std::size_t i = 0;
    while (i < active.size()) {
        std::size_t j = i + 1;
        int sum = active[i]->direction;
        while (j < active.size() && sameCourse(*active[i], *active[j])) sum += active[j++]->direction;
        if (winding ? sum != 0 : (j - i) % 2 != 0) return false;
        i = j;
    }
    return true;
}

// Collects the rows' spans as rectangles in Boxes (a BoxBuffer, or a BoxList appending to a shared
// array), joining a row to the band above when its spans are the same.
template <class Boxes>
class BandWriter {
public:
    BandWriter(Boxes& boxes, std::vector<Span>& lastSpans) noexcept : boxes_(boxes), lastSpans_(lastSpans) {}

    bool add(std::int64_t top, std::int64_t bottom, const std::vector<Span>& spans)
    {
        if (spans.empty()) return true;
        if (boxes_.size() && lastBottom_ == top && spans == lastSpans_) {
            for (Box* b = boxes_.end() - spans.size(); b != boxes_.end(); ++b) b->y2 = wrap(bottom);
            lastBottom_ = bottom;
            return true;
        }
        if (!boxes_.reserveMore(spans.size())) return false;
        if (boxes_.size() == 0) bound_ = Box{spans.front().x1, wrap(top), spans.back().x2, 0};
        for (const Span& s : spans) {
            boxes_.push(Box{s.x1, wrap(top), s.x2, wrap(bottom)});
            bound_.x1 = std::min(bound_.x1, s.x1);
            bound_.x2 = std::max(bound_.x2, s.x2);
        }
        lastSpans_ = spans;
        lastBottom_ = bottom;
        return true;
    }
    // The bounding box of what was written.
    Box bound() const noexcept
    {
        if (boxes_.size() == 0) return Box{0, 0, 0, 0};
        Box b = bound_;
        b.y2 = wrap(lastBottom_);
        return b;
    }

private:
    Boxes& boxes_;
    std::vector<Span>& lastSpans_;
    std::int64_t lastBottom_ = 0;
    Box bound_{0, 0, 0, 0};
};

// Rectangles appended to a shared array from a starting place, with the limit of one region.
class BoxList {
public:
    explicit BoxList(std::vector<Box>& all) noexcept : all_(all), start_(all.size()) {}
    std::size_t size() const noexcept { return all_.size() - start_; }
    Box* end() noexcept { return all_.data() + all_.size(); }
    bool reserveMore(std::size_t k)
    {
        if (size() + k > kMaxRects) return false;
        if (all_.size() + k > all_.capacity()) all_.reserve(std::max(2 * all_.capacity(), all_.size() + k));
        return true;
    }
    void push(const Box& b) { all_.push_back(b); }
    void drop() noexcept { all_.resize(start_); } // takes back what was appended

private:
    std::vector<Box>& all_;
    std::size_t start_;
};

// Spans of one row from the active edges, which are in their order on that row.
void rowSpans(const std::vector<Edge*>& active, bool winding, std::vector<Span>& spans)
{
    spans.clear();
    if (!winding) {
        for (std::size_t i = 0; i + 1 < active.size(); i += 2) {
            std::int32_t a = active[i]->x, b = active[i + 1]->x;
            if (a >= b) continue;
            if (!spans.empty() && spans.back().x2 >= a)
                spans.back().x2 = std::max(spans.back().x2, b);
            else
                spans.push_back(Span{a, b});
        }
        return;
    }
    int sum = 0;
    std::int32_t start = 0;
    for (const Edge* e : active) {
        int before = sum;
        sum += e->direction;
        if (before == 0 && sum != 0) {
            start = e->x;
        } else if (before != 0 && sum == 0) {
            if (start < e->x) spans.push_back(Span{start, e->x});
        }
    }
}

template <class Writer>
bool scanConvert(ScanScratch& scratch, bool winding, Writer& writer)
{
    std::vector<Edge>& edges = scratch.edges;
    if (edges.empty()) return true;
    // Edges in the order they start; among edges starting on one row, by x, keeping the
    // polygon's order where x ties.
    const auto before = [](const Edge& a, const Edge& b) { return a.top != b.top ? a.top < b.top : a.x < b.x; };
    if (edges.size() <= 16) { // a mapped rectangle's four: in place, where stable_sort would allocate
        for (std::size_t i = 1; i < edges.size(); ++i)
            for (std::size_t j = i; j > 0 && before(edges[j], edges[j - 1]); --j) std::swap(edges[j], edges[j - 1]);
    } else {
        std::stable_sort(edges.begin(), edges.end(), before);
    }
    std::vector<Edge*>& active = scratch.active;
    std::vector<Edge*>& fresh = scratch.fresh;
    std::vector<Edge*>& merged = scratch.merged;
    std::vector<Span>& spans = scratch.spans;
    active.clear();
    std::size_t next = 0;
    std::int64_t y = edges[0].top;
    while (true) {
        if (active.empty()) {
            if (next == edges.size()) break;
            y = edges[next].top;
        }
        // New edges join in their own order, each before the active edges with the same x.
        if (next < edges.size() && edges[next].top == y) {
            fresh.clear();
            while (next < edges.size() && edges[next].top == y) fresh.push_back(&edges[next++]);
            merged.clear();
            std::merge(fresh.begin(), fresh.end(), active.begin(), active.end(),
                       std::back_inserter(merged),
                       [](const Edge* a, const Edge* b) { return a->x < b->x; });
            active.swap(merged);
        }
        rowSpans(active, winding, spans);
        // Rows after y that repeat this one: no edge starts or ends, and every edge stands still
        // or all of them cancel out (then they are moved on at once, row by row being no
        // different).
        std::int64_t repeat = next < edges.size() ? edges[next].top - y - 1
                                                  : std::numeric_limits<std::int64_t>::max();
        for (const Edge* e : active) repeat = std::min(repeat, e->last - y);
        if (!spans.empty()) {
            for (const Edge* e : active) repeat = std::min(repeat, stillSteps(*e));
        } else if (!allCancel(active, winding)) {
            repeat = std::min(repeat, emptyRows(active));
        }
        if (!writer.add(y, y + repeat + 1, spans)) return false;
        if (repeat > 0)
            for (Edge* e : active) advance(*e, repeat);
        y += repeat;
        // Leave row y: drop the edges that end here, step the others, restore the order.
        std::size_t kept = 0;
        for (Edge* e : active) {
            if (e->last == y) continue;
            step(*e);
            active[kept++] = e;
        }
        active.resize(kept);
        for (std::size_t i = 1; i < active.size(); ++i) {
            Edge* e = active[i];
            std::size_t j = i;
            while (j > 0 && active[j - 1]->x > e->x) {
                active[j] = active[j - 1];
                --j;
            }
            active[j] = e;
        }
        ++y;
    }
    return true;
}

// ----- a lower bound on the rectangles, without the walk ----------------------------------------
//
// A polygon whose result would pass the rectangle limit fails, and the walk finds that out only once
// it has written that many rectangles, one row at a time. Before a walk of more rows than the limit,
// this bound counts rows that must each start a new band, from the edges alone, with the work of
// one step per stretch of rows between edge ends. Past the limit the walk is not made.
//
// On every row of a stretch where one edge lies alone to the left of all others, at least one
// column further on every row, that edge's x is where the row's first span starts (ALTERNATE: it is
// the first crossing and the second lies further right; WINDING: it takes the sum away from zero,
// and the sum comes back to zero further right, the directions of a row's edges adding up to zero).
// The same holds for the right end of the last span and an edge alone to the right. Each row on
// which that edge's x differs from the row above has other spans than that row, so it starts a
// band of at least one rectangle: every row for an edge that moves a column a row or more, one
// row per column crossed for a steeper one.

// A part of an edge on which its x is exactly base + ceil((y - y1) dx / dy). The walk adds the
// 32-bit differences dx and dy of the edge's ends and wraps x to 32 bits: on the rows where
// x1 + ceil((y - y1) dx / dy) leaves the 32-bit range, x is that less (or plus) 2^32, so an edge
// is one line or two.
struct Line {
    std::int64_t first, last; // rows
    std::int64_t base, y1, dx, dy;
    int direction;
};

constexpr std::int64_t kTwo32 = std::int64_t(1) << 32;

std::int64_t ceilDiv(std::int64_t a, std::int64_t b) noexcept // b > 0
{
    // Division truncates toward zero, which is the ceiling unless a positive remainder is left.
    const std::int64_t q = a / b;
    return a % b > 0 ? q + 1 : q;
}

// x of an edge (upper end x1, y1; differences dx, dy) k rows below its upper end, before wrapping.
std::int64_t lineX(std::int64_t x1, std::int64_t dx, std::int64_t dy, std::int64_t k) noexcept
{
    return x1 + ceilDiv(k * dx, dy);
}

void addLines(const POINT& upper, const POINT& lower, int direction, std::vector<Line>& out)
{
    const std::int64_t dy = wrap(std::int64_t(lower.y) - upper.y); // below 2^27 here
    const std::int64_t dx = wrap(std::int64_t(lower.x) - upper.x);
    const std::int64_t x1 = upper.x, y1 = upper.y;
    const std::int64_t lowX = std::numeric_limits<std::int32_t>::min();
    const std::int64_t highX = std::numeric_limits<std::int32_t>::max();
    // The first row on which x leaves the 32-bit range, if any: x moves one way only.
    auto outside = [&](std::int64_t k) {
        const std::int64_t x = lineX(x1, dx, dy, k);
        return x < lowX || x > highX;
    };
    std::int64_t k = dy; // none
    if (outside(dy - 1)) {
        std::int64_t in = 0, out = dy - 1; // in range at in, outside at out
        while (out - in > 1) {
            const std::int64_t mid = in + (out - in) / 2;
            (outside(mid) ? out : in) = mid;
        }
        k = out;
    }
    out.push_back(Line{y1, y1 + k - 1, x1, y1, dx, dy, direction});
    if (k < dy) {
        const std::int64_t shift = lineX(x1, dx, dy, k) > highX ? -kTwo32 : kTwo32;
        out.push_back(Line{y1 + k, y1 + dy - 1, x1 + shift, y1, dx, dy, direction});
    }
}

std::int64_t xAt(const Line& l, std::int64_t y) noexcept { return lineX(l.base, l.dx, l.dy, y - l.y1); }

// The rows of [from, to] on which e lies at least one column left of every other line (left) or
// right of it, found from the exact lines: each other line g gives a condition linear in y,
// (g - e - 1)(y) >= 0 or (e - g - 1)(y) >= 0, times dy_g dy_e.
bool aloneOn(const std::vector<const Line*>& active, const Line* e, bool left, std::int64_t& from,
             std::int64_t& to) noexcept
{
    for (const Line* g : active) {
        if (g == e) continue;
        // dy < 2^27, |dx| <= 2^31, |y1| <= 2^31 and |base| < 2^34: every factor pair below fits
        // 64 bits, and only the sums of the products need the wide type.
        const std::int64_t dyProduct = g->dy * e->dy;
        // g(y) - e(y) - 1 = (g.base - e.base - 1) + (y - g.y1) g.dx / g.dy - (y - e.y1) e.dx / e.dy
        std::int64_t slope = g->dx * e->dy - e->dx * g->dy;
        const Wide gTerm = Wide::product(g->y1 * g->dx, e->dy), eTerm = Wide::product(e->y1 * e->dx, g->dy);
        Wide at0 = Wide::product(g->base - e->base - 1, dyProduct) - gTerm + eTerm;
        if (!left) { // e(y) - g(y) - 1
            slope = -slope;
            at0 = -Wide::product(g->base - e->base + 1, dyProduct) + gTerm - eTerm;
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
// band. The candidates are the lines furthest left and right on the stretch's first and last rows,
// each with the rows (a, b] on which it lies alone on its side. A line that moves a column a row or
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
        std::int64_t most = 0; // the lines of one side hold different rows, so each side's sum is a bound
        for (const bool left : {true, false}) {
            const Line* tried = nullptr;
            std::int64_t side = 0;
            for (const std::int64_t y : {from, to}) {
                const Line* best = nullptr;
                std::int64_t bestX = 0;
                for (const Line* l : active) {
                    const std::int64_t x = xAt(*l, y);
                    if (!best || (left ? x < bestX : x > bestX)) best = l, bestX = x;
                }
                if (best == tried || best->dx == 0) continue;
                tried = best;
                std::int64_t a = from, b = to;
                if (!aloneOn(active, best, left, a, b)) continue;
                if ((best->dx < 0 ? -best->dx : best->dx) >= best->dy) {
                    covered_[coveredCount_++] = Range{a, b};
                    side += b - a;
                } else {
                    steep_[steepCount_++] = Steep{best, a, b};
                    const std::int64_t moved = xAt(*best, b) - xAt(*best, a);
                    side += moved < 0 ? -moved : moved;
                }
            }
            most = std::max(most, side);
        }
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
        atOnce_ = std::max(most, coveredRows_);
    }

    std::int64_t atOnce() const noexcept { return atOnce_; }

    // The rows that start a band, counted up to more than budget (and never fewer than atOnce).
    std::int64_t counted(std::int64_t budget) const
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
            const std::int64_t y = next->row();
            next->advance();
            if (y != last) ++rows;
            last = y;
        }
        return std::max(rows, atOnce_);
    }

private:
    struct Range {
        std::int64_t a, b;
    };
    struct Steep {
        const Line* line;
        std::int64_t a, b;
    };
    // At most two candidates a side.
    Range covered_[4];
    Steep steep_[4];
    std::size_t coveredCount_ = 0, steepCount_ = 0;
    std::int64_t coveredRows_ = 0, atOnce_ = 0;
};

// A lower bound on the rectangles scanConvert makes of the polygons (all of two or more points,
// their heights and sum known not to wrap). Stops counting once past the limit. The stretches'
// bounds found at once come first, over the whole polygon; only when their sum stays within the
// limit are rows walked, each stretch's walk stopping once the counts so far and the other
// stretches' quick bounds pass the limit, so that the walks together take at most about the limit's
// rows.
std::int64_t provenRectangles(const POINT* points, const INT* counts, int polygons, bool winding)
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
    std::vector<const Line*> active;
    const auto eachStretch = [&](auto&& visit) {
        active.clear();
        std::size_t next = 0;
        std::int64_t y = 0;
        while (next < lines.size() || !active.empty()) {
            if (active.empty()) y = lines[next].first;
            while (next < lines.size() && lines[next].first == y) active.push_back(&lines[next++]);
            std::int64_t to = next < lines.size() ? lines[next].first - 1 : std::numeric_limits<std::int64_t>::max();
            for (const Line* l : active) to = std::min(to, l->last);
            if (!visit(StretchRows(active, winding, y, to))) return;
            active.erase(std::remove_if(active.begin(), active.end(), [to](const Line* l) { return l->last == to; }),
                         active.end());
            y = to + 1;
        }
    };
    const std::int64_t limit = std::int64_t(kMaxRects);
    std::int64_t total = 0;
    eachStretch([&](const StretchRows& s) {
        total += s.atOnce();
        return total <= limit;
    });
    if (total > limit) return total;
    // Each stretch's quick bound replaced by its count as it is walked.
    eachStretch([&](const StretchRows& s) {
        total -= s.atOnce();
        total += s.counted(limit - total);
        return total <= limit;
    });
    return total;
}

} // namespace

bool isRectangle(const POINT* p, int n) noexcept
{
    if (n == 5 && (p[4].x != p[0].x || p[4].y != p[0].y)) return false;
    if (n != 4 && n != 5) return false;
    return (p[0].y == p[1].y && p[1].x == p[2].x && p[2].y == p[3].y && p[3].x == p[0].x) ||
           (p[0].x == p[1].x && p[1].y == p[2].y && p[2].x == p[3].x && p[3].y == p[0].y);
}

// Polygon heights as the platform measures them: per polygon of two or more points, the
// difference of its lowest and highest y in 32-bit arithmetic, and the sum of these in 32-bit
// arithmetic too (the rows of its scan). A sum of 2^27 rows or more makes the call fail; a height
// whose difference wrapped around, or a sum that did, makes the whole region empty.
constexpr std::int32_t kMaxPolygonRows = std::int32_t(1) << 27;
// Points the edge list may hold; more fail as an allocation would, before anything is allocated.
constexpr std::int64_t kMaxPoints = std::int64_t(1) << 24;

namespace {

// What a polygon call makes before any scan: nothing (a failure), an empty region, one rectangle
// taken whole, or edges in scratch to scan.
enum class Outline { failed, empty, rectangle, edges };

Outline outline(const POINT* points, const INT* counts, int polygons, bool winding, ScanScratch& scratch,
                Box& rectangle)
{
    if (polygons <= 0) return Outline::empty;
    if (!counts) return Outline::failed;
    std::int64_t total = 0;
    for (int i = 0; i < polygons; ++i) {
        if (counts[i] < 0) return Outline::failed;
        total += counts[i];
        if (total > kMaxPoints) return Outline::failed;
    }
    if (total > 0 && !points) return Outline::failed;
    if (polygons == 1 && isRectangle(points, counts[0])) {
        rectangle = normalized(points[0].x, points[0].y, points[2].x, points[2].y);
        return rectangle.x1 == rectangle.x2 || rectangle.y1 == rectangle.y2 ? Outline::empty : Outline::rectangle;
    }
    bool wrapped = false;
    std::int64_t rows = 0;
    const POINT* p = points;
    for (int i = 0; i < polygons; ++i) {
        const int n = counts[i];
        if (n >= 2) {
            std::int32_t low = p[0].y, high = p[0].y;
            for (int k = 1; k < n; ++k) low = std::min(low, p[k].y), high = std::max(high, p[k].y);
            const std::int32_t height = wrap(std::int64_t(high) - low);
            wrapped |= height < 0;
            rows += height;
        }
        p += n;
    }
    if (!wrapped && wrap(rows) >= kMaxPolygonRows) return Outline::failed;
    if (wrapped || rows >= kMaxPolygonRows) return Outline::empty;
    // A walk of more rows than the limit first asks the bound whether it could succeed.
    if (rows > std::int64_t(kMaxRects) && provenRectangles(points, counts, polygons, winding) > std::int64_t(kMaxRects))
        return Outline::failed;
    std::vector<Edge>& edges = scratch.edges;
    edges.clear();
    edges.reserve(static_cast<std::size_t>(total));
    p = points;
    for (int i = 0; i < polygons; ++i) {
        const int n = counts[i];
        if (n >= 2) {
            const POINT* prev = &p[n - 1];
            for (int k = 0; k < n; ++k) {
                const POINT* cur = &p[k];
                if (prev->y < cur->y)
                    edges.push_back(makeEdge(*prev, *cur, +1));
                else if (prev->y > cur->y)
                    edges.push_back(makeEdge(*cur, *prev, -1));
                prev = cur;
            }
        }
        p += n;
    }
    return Outline::edges;
}

} // namespace

ScanScratchPtr newScanScratch() noexcept { return ScanScratchPtr(new (std::nothrow) ScanScratch); }
void ScanScratchDeleter::operator()(ScanScratch* scratch) const noexcept { delete scratch; }

bool makePolygons(const POINT* points, const INT* counts, int polygons, int mode, Region& out)
{
    ScanScratch scratch;
    Box rectangle;
    switch (outline(points, counts, polygons, mode == WINDING, scratch, rectangle)) {
    case Outline::failed: return false;
    case Outline::empty: out.clear(); return true;
    case Outline::rectangle: setRect(out, rectangle); return true;
    case Outline::edges: break;
    }
    BoxBuffer boxes;
    BandWriter<BoxBuffer> writer(boxes, scratch.lastSpans);
    return scanConvert(scratch, mode == WINDING, writer) && boxes.handOver(out, writer.bound());
}

bool appendPolygon(const POINT* points, INT n, int mode, ScanScratch& scratch, std::vector<Box>& boxes)
{
    Box rectangle;
    switch (outline(points, &n, 1, mode == WINDING, scratch, rectangle)) {
    case Outline::failed: return false;
    case Outline::empty: return true;
    case Outline::rectangle: boxes.push_back(rectangle); return true;
    case Outline::edges: break;
    }
    BoxList list(boxes);
    BandWriter<BoxList> writer(list, scratch.lastSpans);
    if (scanConvert(scratch, mode == WINDING, writer)) return true;
    list.drop();
    return false;
}

} // namespace quillon::region_detail
