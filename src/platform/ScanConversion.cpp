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
 * nothing changes (needles passing included), and rows without a span up to the next row with one
 * (found from the edges' exact lines, EdgeLines.h), are passed over at once, so the work follows the
 * result and the edges, not the rows spanned. A walk that could pass the rectangle limit (its rows
 * times half its points) is first bounded from the edges alone (PolygonBound.h), and not made when
 * the bound passes the limit.
 */
#define QUILLON_BUILDING_REGION
#include <quillon/Region>

#include "ScanConversion.h"

#include "EdgeLines.h"
#include "PolygonBound.h"
#include "WorkSteps.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <new>
#include <utility>
#include <vector>

namespace quillon::region_detail {

namespace {

// ----- polygon scan conversion -----------------------------------------------------------------

struct Edge {
    std::int64_t top;  // first row
    std::int64_t last; // last row
    std::int32_t x;    // x on the current row
    std::int32_t d, m, m1, incr1, incr2;
    std::int32_t x1, dx, dy; // the upper end's x, and the 32-bit differences of the ends
    int direction;     // +1 downward, -1 upward
};

} // namespace

// The working arrays of scan conversion, kept between polygons by a caller that makes many.
struct ScanScratch {
    std::vector<Edge> edges;
    std::vector<Edge*> active, fresh, merged;
    std::vector<Span> spans, lastSpans;
    std::vector<std::pair<std::size_t, std::size_t>> needles; // runs of active edges
};

namespace {

Edge makeEdge(const POINT& upper, const POINT& lower, int direction) noexcept
{
    Edge e;
    e.top = upper.y;
    e.last = std::int64_t(lower.y) - 1;
    e.direction = direction;
    e.x = e.x1 = upper.x;
    const std::int32_t dy = e.dy = wrap(std::int64_t(lower.y) - upper.y);
    const std::int32_t dx = e.dx = wrap(std::int64_t(lower.x) - upper.x);
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

// The exact line an edge's x follows on row y, up to the row before its x wraps or its last row.
Line lineOf(const Edge& e, std::int64_t y) noexcept
{
    std::int64_t shift = 0;
    const std::int64_t at = wrapRow(e.x1, e.top, e.dx, e.dy, shift);
    if (y < at) return Line{e.top, std::min(at - 1, e.last), e.x1, e.top, e.dx, e.dy, e.direction};
    return Line{at, e.last, std::int64_t(e.x1) + shift, e.top, e.dx, e.dy, e.direction};
}

// The rows after y, at most room, on which e stays no further left than the edge to its left
// (l): at once where they cannot meet that soon at their largest steps toward each other, else
// from their exact lines. Ties keep the order the edges hold; a strict crossing changes it.
std::int64_t rowsInOrder(const Edge& l, std::int64_t lHigh, const Edge& e, std::int64_t eLow, std::int64_t y,
                         std::int64_t room, bool exact) noexcept
{
    const std::int64_t closing = lHigh - eLow;
    if (closing <= 0) return room;
    const std::int64_t soon = (std::int64_t(e.x) - l.x) / closing;
    if (soon >= room || !exact) return std::min(soon, room);
    const Line a = lineOf(l, y + 1), b = lineOf(e, y + 1);
    const std::int64_t to = std::min({y + room, a.last, b.last});
    return std::min(room, firstLeftOf(a, b, y + 1, to) - y - 1);
}

// Rows after y, at most room, that stay empty, for a row whose spans are empty: its edges stand in
// groups at one x each, every group cancelling (ALTERNATE: even in number; WINDING: directions
// summing to zero), and a row stays empty for as long as every group does. Neighbours on the same
// course move together for good: a group of such runs that each cancel stays cancelling (its runs
// may part); a group of two runs that do not (a sliver thinner than a pixel) stays until the two
// part, the first row where they do found from their exact lines; any other group stays while all
// its edges add the same amount to x each step. ALTERNATE's spans follow the x alone, but WINDING's
// follow the order of the edges, which must then stay as it is: no run crosses its neighbour.
// Without exact, only what follows from the edges' steps at once is used (a sliver whose gaps are
// short is walked); with it, the exact lines, so that however many rows a sliver spans, the work is
// a few steps for each row with a span.
std::int64_t emptyRows(const std::vector<Edge*>& active, bool winding, std::int64_t y, std::int64_t room,
                       bool exact) noexcept
{
    constexpr std::int64_t kHighX = std::numeric_limits<std::int32_t>::max();
    constexpr std::int64_t kLowX = std::numeric_limits<std::int32_t>::min();
    std::int64_t rows = room;
    const Edge* left = nullptr; // the run to the left and the most its x moves in a row
    std::int64_t leftHigh = 0;
    auto follow = [&](const Edge& e, std::int64_t low, std::int64_t high) {
        if (!winding) return;
        // No wrap past either end of the 32-bit range, which reorders the edges.
        if (high > 0) rows = std::min(rows, (kHighX - e.x) / high);
        if (low < 0) rows = std::min(rows, (e.x - kLowX) / -low);
        if (left) rows = rowsInOrder(*left, leftHigh, e, low, y, rows, exact);
        left = &e;
        leftHigh = high;
    };
    auto steps = [](const Edge& e, std::int64_t& low, std::int64_t& high) {
        low = std::min(e.m, e.m1);
        high = std::max(e.m, e.m1);
    };
    // The end of the run of edges on one course that starts at k, inside the group ending at j, and
    // whether it cancels.
    auto runEnd = [&](std::size_t k, std::size_t j, bool& cancels) {
        std::size_t u = k + 1;
        int sum = active[k]->direction;
        while (u < j && sameCourse(*active[k], *active[u])) sum += active[u++]->direction;
        cancels = winding ? sum == 0 : (u - k) % 2 == 0;
        return u;
    };
    for (std::size_t i = 0; i < active.size() && rows > 0;) {
        const std::int32_t x = active[i]->x;
        std::size_t j = i;
        while (j < active.size() && active[j]->x == x) ++j;
        std::size_t runs = 0, second = j;
        bool cancelling = true, cancels = false;
        for (std::size_t k = i; k < j; ++runs) {
            k = runEnd(k, j, cancels);
            cancelling = cancelling && cancels;
            if (runs == 0) second = k;
        }
        std::int64_t low = 0, high = 0;
        if (cancelling) {
            for (std::size_t k = i; k < j; k = runEnd(k, j, cancels)) {
                steps(*active[k], low, high);
                follow(*active[k], low, high);
            }
        } else if (runs == 2 && exact) {
            const Edge& a = *active[i];
            const Line la = lineOf(a, y + 1), lb = lineOf(*active[second], y + 1);
            const std::int64_t to = std::min({y + rows, la.last, lb.last});
            rows = std::min(rows, firstApart(la, lb, y + 1, to) - y - 1);
            steps(a, low, high);
            follow(a, low, high);
        } else {
            std::int64_t amount = 0;
            for (std::size_t k = i; k < j; ++k) {
                std::int64_t a = 0;
                rows = std::min(rows, steadySteps(*active[k], a));
                if (k > i && a != amount) return 0;
                amount = a;
            }
            follow(*active[i], amount, amount);
        }
        i = j;
    }
    return std::max<std::int64_t>(rows, 0);
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
    BoxList(std::vector<Box>& all, std::size_t limit) noexcept : all_(all), start_(all.size()), limit_(limit) {}
    std::size_t size() const noexcept { return all_.size() - start_; }
    Box* end() noexcept { return all_.data() + all_.size(); }
    bool reserveMore(std::size_t k)
    {
        if (size() + k > limit_) return false;
        if (all_.size() + k > all_.capacity()) all_.reserve(std::max(2 * all_.capacity(), all_.size() + k));
        return true;
    }
    void push(const Box& b) { all_.push_back(b); }
    void drop() noexcept { all_.resize(start_); } // takes back what was appended

private:
    std::vector<Box>& all_;
    std::size_t start_, limit_;
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
    std::vector<std::pair<std::size_t, std::size_t>>& needles = scratch.needles;
    active.clear();
    std::size_t next = 0;
    std::int64_t y = edges[0].top;
    // Rows with no span walked since the last with one: a run of them long enough is passed over
    // with the edges' exact lines, which cost more than a row.
    constexpr int kWalksBeforeSearch = 8;
    int emptyWalks = 0;
    StepCount steps; // a step a row walked and an edge on it
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
        steps.add(1 + active.size());
        rowSpans(active, winding, spans);
        // Rows after y that repeat this one: no edge starts or ends, and every edge stands still
        // or all of them cancel out (then they are moved on at once, row by row being no
        // different).
        std::int64_t repeat = next < edges.size() ? edges[next].top - y - 1
                                                  : std::numeric_limits<std::int64_t>::max();
        for (const Edge* e : active) repeat = std::min(repeat, e->last - y);
        if (!spans.empty()) {
            // The row repeats while its edges stand still, but for needles: runs of neighbours on
            // one course that cancel. With ALTERNATE, whose spans follow the parity of the edges
            // left of each pixel, a needle changes nothing wherever it passes. With WINDING, one
            // where the directions to its left sum to zero, or whose own never bring that sum to
            // zero, changes nothing while it stays between the same neighbours (passing one changes
            // the sum to its left).
            // The edges that are not needles stand still first; only then, and only for as many
            // rows as they allow, are the needles kept between their neighbours.
            int sum = 0;
            needles.clear();
            for (std::size_t i = 0; i < active.size();) {
                std::size_t j = i + 1;
                while (j < active.size() && sameCourse(*active[i], *active[j])) ++j;
                int run = 0;
                bool closes = false; // the run brings a nonzero sum to zero
                for (std::size_t k = i; k < j; ++k) {
                    run += active[k]->direction;
                    closes = closes || (sum != 0 && sum + run == 0);
                }
                const bool needle = winding ? run == 0 && !closes : (j - i) % 2 == 0;
                if (!needle)
                    for (std::size_t k = i; k < j; ++k) repeat = std::min(repeat, stillSteps(*active[k]));
                else if (winding)
                    needles.emplace_back(i, j);
                sum += run;
                i = j;
            }
            for (const auto& [i, j] : needles) {
                if (repeat == 0) break;
                const Edge& e = *active[i];
                if (i > 0) {
                    const Edge& l = *active[i - 1];
                    repeat = rowsInOrder(l, std::max(l.m, l.m1), e, std::min(e.m, e.m1), y, repeat, true);
                }
                if (j < active.size()) {
                    const Edge& r = *active[j];
                    repeat = rowsInOrder(e, std::max(e.m, e.m1), r, std::min(r.m, r.m1), y, repeat, true);
                }
            }
            emptyWalks = 0;
        } else if (!allCancel(active, winding)) {
            repeat = emptyRows(active, winding, y, repeat, ++emptyWalks > kWalksBeforeSearch);
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

// What a polygon call makes before any scan: nothing (a failure as the platform fails), an empty
// region, one rectangle taken whole, edges in scratch to scan, or nothing because the result would
// pass the rectangles the caller allows.
enum class Outline { failed, empty, rectangle, edges, tooMany };

// The checks made before any edge: the counts, a rectangle taken whole, the heights. For a polygon
// to scan, its points and the rows of its scan.
Outline measure(const POINT* points, const INT* counts, int polygons, Box& rectangle, std::int64_t& total,
                std::int64_t& rows) noexcept
{
    if (polygons <= 0) return Outline::empty;
    if (!counts) return Outline::failed;
    total = 0;
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
    rows = 0;
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
    return Outline::edges;
}

// No band holds more rectangles than half the edges: a scan that could pass limit by this count
// first asks the bound from the edges whether it must.
bool mustPass(const POINT* points, const INT* counts, int polygons, bool winding, std::int64_t total,
              std::int64_t rows, std::int64_t limit)
{
    return rows * (total / 2) > limit && provenRectangles(points, counts, polygons, winding, limit, true) > limit;
}

Outline outline(const POINT* points, const INT* counts, int polygons, bool winding, ScanScratch& scratch,
                Box& rectangle, std::int64_t limit)
{
    std::int64_t total = 0, rows = 0;
    const Outline kind = measure(points, counts, polygons, rectangle, total, rows);
    if (kind != Outline::edges) return kind;
    if (mustPass(points, counts, polygons, winding, total, rows, limit)) return Outline::tooMany;
    std::vector<Edge>& edges = scratch.edges;
    edges.clear();
    edges.reserve(static_cast<std::size_t>(total));
    const POINT* p = points;
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
    switch (outline(points, counts, polygons, mode == WINDING, scratch, rectangle, kMaxRects)) {
    case Outline::failed:
    case Outline::tooMany: return false;
    case Outline::empty: out.clear(); return true;
    case Outline::rectangle: setRect(out, rectangle); return true;
    case Outline::edges: break;
    }
    BoxBuffer boxes;
    BandWriter<BoxBuffer> writer(boxes, scratch.lastSpans);
    return scanConvert(scratch, mode == WINDING, writer) && boxes.handOver(out, writer.bound());
}

std::int64_t polygonBound(const POINT* points, INT n, int mode, std::int64_t least)
{
    Box rectangle;
    std::int64_t total = 0, rows = 0;
    switch (measure(points, &n, 1, rectangle, total, rows)) {
    case Outline::rectangle: return 1;
    case Outline::edges: break;
    default: return 0;
    }
    if (rows * (total / 2) <= least) return 0;
    return provenRectangles(points, &n, 1, mode == WINDING, std::int64_t(kMaxRects), false);
}

Piece appendPolygon(const POINT* points, INT n, int mode, ScanScratch& scratch, std::vector<Box>& boxes,
                    std::size_t limit)
{
    Box rectangle;
    switch (outline(points, &n, 1, mode == WINDING, scratch, rectangle, std::int64_t(limit))) {
    case Outline::failed: return Piece::failed;
    case Outline::tooMany: return Piece::tooMany;
    case Outline::empty: return Piece::made;
    case Outline::rectangle:
        if (limit == 0) return Piece::tooMany;
        boxes.push_back(rectangle);
        return Piece::made;
    case Outline::edges: break;
    }
    BoxList list(boxes, limit);
    BandWriter<BoxList> writer(list, scratch.lastSpans);
    if (scanConvert(scratch, mode == WINDING, writer)) return Piece::made;
    list.drop();
    return Piece::tooMany;
}

} // namespace quillon::region_detail
