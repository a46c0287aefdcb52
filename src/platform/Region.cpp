/* libquillon_region: regions and region handles where the platform has none.
 *
 * Canonical form. A region is a set of pixels, a pixel (x, y) being the unit square whose top
 * left corner is the integer point (x, y). It is held as a list of rectangles [left, right) x
 * [top, bottom), each with left < right and top < bottom, in y-x banded order:
 *
 *  - Rectangles with the same top form a band; all rectangles of a band share top and bottom.
 *    Bands are listed from top to bottom and do not overlap: a band's top is at or below the
 *    previous band's bottom.
 *  - Inside a band the rectangles are listed from left to right and do not overlap: a
 *    rectangle's left is at or right of the previous one's right.
 *  - Two bands that touch (the upper one's bottom is the lower one's top) never hold the same
 *    list of left and right values: such bands are one band.
 *  - Rectangles of one band that touch are joined, with one exception that the platform makes
 *    too: a polygon filled with WINDING keeps a span ending and a span starting at the same x on
 *    the same row as two rectangles, and the set operations carry such pairs along where a band
 *    comes from one source alone.
 *  - The bounding box is the smallest rectangle holding every rectangle, and 0, 0, 0, 0 for the
 *    empty region, which holds no rectangle.
 *
 * GetRegionData returns the rectangles in exactly this order. The set operations are pixman's
 * band algebra, which keeps this form. Coordinates are 32-bit and wrap: OffsetRgn adds without a
 * limit, as the platform does, and a region whose coordinates wrapped is kept as it is, outside
 * the form (it is then only read back and tested as the platform would).
 *
 * Polygons are scan-converted here, row by row. An edge from the upper vertex (x1, y1) to the
 * lower (x2, y2) covers rows y1 to y2 - 1; its x on each row comes from an incremental error
 * term in 32-bit wrapping arithmetic, which for coordinates in range is the exact x rounded up.
 * On a row, ALTERNATE fills between the first and second crossing, the third and fourth, and so
 * on, joining spans that touch; WINDING fills from where the sum of edge directions leaves zero
 * to where it returns, taking the crossings in the order the edges hold on that row. A pixel is
 * in when its left end lies in a span. Rows with the same spans are joined into bands.
 *
 * Handles are tokens of a slot index and a generation, looked up in one table guarded by a
 * reader-writer lock; a region lives in its slot until DeleteObject.
 */
#define QUILLON_BUILDING_REGION
#include <quillon/Region>

#include "HandleTable.h"
#include "RegionUnion.h"

#include <pixman.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>
#include <memory>
#include <mutex>
#include <new>
#include <shared_mutex>
#include <utility>
#include <vector>

static_assert(sizeof(RECT) == 16, "RECT is four 32-bit integers");
static_assert(sizeof(POINT) == 8, "POINT is two 32-bit integers");
static_assert(sizeof(RGNDATAHEADER) == 32, "RGNDATAHEADER is 32 bytes");
static_assert(offsetof(RGNDATA, Buffer) == 32, "the rectangles follow the header");

namespace {

using Box = pixman_box32_t;

constexpr std::int32_t wrap(std::int64_t v) noexcept
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(v)));
}

// The most rectangles a region may hold. Every operation that makes or changes a region checks
// it before it allocates, and one that would pass it fails as an allocation failure would.
constexpr std::size_t kMaxRects = std::size_t(1) << 24;

// ----- regions ---------------------------------------------------------------------------------

class Region {
public:
    Region() noexcept { pixman_region32_init(&r_); }
    ~Region() { pixman_region32_fini(&r_); }
    Region(const Region&) = delete;
    Region& operator=(const Region&) = delete;

    pixman_region32_t* get() noexcept { return &r_; }
    const pixman_region32_t* get() const noexcept { return &r_; }

    const Box* boxes(int& n) const noexcept
    {
        return pixman_region32_rectangles(const_cast<pixman_region32_t*>(&r_), &n);
    }
    int count() const noexcept { return pixman_region32_n_rects(const_cast<pixman_region32_t*>(&r_)); }
    Box bound() const noexcept { return count() ? r_.extents : Box{0, 0, 0, 0}; }
    int kind() const noexcept
    {
        int n = count();
        return n == 0 ? NULLREGION : n == 1 ? SIMPLEREGION : COMPLEXREGION;
    }

    void clear() noexcept
    {
        pixman_region32_fini(&r_);
        pixman_region32_init(&r_);
        wrapped = false;
    }
    // One rectangle, taken as it is (pixman would refuse one that wrapped).
    void setBox(const Box& b) noexcept
    {
        pixman_region32_fini(&r_);
        r_.extents = b;
        r_.data = nullptr;
        wrapped = false;
    }
    // Takes the rectangles as they are, already in order, with the given bounding box.
    bool assign(const Box* boxes, std::size_t n, const Box& bound) noexcept
    {
        if (n > kMaxRects) return false;
        if (n <= 1) {
            if (n == 0)
                clear();
            else
                setBox(boxes[0]);
            return true;
        }
        auto* data = static_cast<pixman_region32_data_t*>(
            std::malloc(sizeof(pixman_region32_data_t) + n * sizeof(Box)));
        if (!data) return false;
        data->size = static_cast<long>(n);
        data->numRects = static_cast<long>(n);
        std::memcpy(data + 1, boxes, n * sizeof(Box));
        pixman_region32_fini(&r_);
        r_.extents = bound;
        r_.data = data;
        wrapped = false;
        return true;
    }
    // Takes over a block of at least two rectangles in order, with the given bounding box.
    void adopt(pixman_region32_data_t* data, const Box& bound) noexcept
    {
        pixman_region32_fini(&r_);
        r_.extents = bound;
        r_.data = data;
        wrapped = false;
    }
    bool copyFrom(const Region& other) noexcept
    {
        if (&other == this) return true;
        if (!pixman_region32_copy(&r_, const_cast<pixman_region32_t*>(&other.r_))) return false;
        wrapped = other.wrapped;
        return true;
    }

    void swap(Region& other) noexcept
    {
        std::swap(r_, other.r_);
        std::swap(wrapped, other.wrapped);
    }

    // True once an offset has wrapped a coordinate and left the canonical form.
    bool wrapped = false;

private:
    pixman_region32_t r_;
};

// Whether the rectangles are in the canonical form described at the top of this file.
bool isCanonical(const Region& region) noexcept
{
    int n = 0;
    const Box* b = region.boxes(n);
    Box bound = region.bound();
    if (n == 0) return bound.x1 == 0 && bound.y1 == 0 && bound.x2 == 0 && bound.y2 == 0;
    Box ext = b[0];
    for (int i = 0; i < n; ++i) {
        if (b[i].x1 >= b[i].x2 || b[i].y1 >= b[i].y2) return false;
        ext.x1 = std::min(ext.x1, b[i].x1), ext.x2 = std::max(ext.x2, b[i].x2);
        ext.y2 = std::max(ext.y2, b[i].y2);
        if (i == 0) continue;
        if (b[i].y1 == b[i - 1].y1) {
            if (b[i].y2 != b[i - 1].y2 || b[i].x1 < b[i - 1].x2) return false;
            continue;
        }
        if (b[i].y1 < b[i - 1].y2) return false;
    }
    // Touching bands must differ.
    int start = 0;
    int prev = -1, prevLen = 0;
    for (int i = 1; i <= n; ++i) {
        if (i < n && b[i].y1 == b[start].y1) continue;
        int len = i - start;
        if (prev >= 0 && b[prev].y2 == b[start].y1 && prevLen == len) {
            bool same = true;
            for (int k = 0; k < len && same; ++k)
                same = b[prev + k].x1 == b[start + k].x1 && b[prev + k].x2 == b[start + k].x2;
            if (same) return false;
        }
        prev = start, prevLen = len, start = i;
    }
    return ext.x1 == bound.x1 && ext.y1 == bound.y1 && ext.x2 == bound.x2 && ext.y2 == bound.y2;
}

// Debug builds check the form after every operation that makes or changes a region.
inline void checkForm(const Region& region, const char* operation) noexcept
{
#ifndef NDEBUG
    if (!region.wrapped && !isCanonical(region)) {
        std::fprintf(stderr, "quillon_region: %s left a region outside the canonical form\n",
                     operation);
        std::abort();
    }
#else
    (void)region, (void)operation;
#endif
}

// ----- polygon scan conversion -----------------------------------------------------------------

struct Edge {
    std::int64_t top;  // first row
    std::int64_t last; // last row
    std::int32_t x;    // x on the current row
    std::int32_t d, m, m1, incr1, incr2;
    int direction;     // +1 downward, -1 upward
};

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

// How many steps from now leave x where it is: only an edge with m = 0 stands still, for as
// long as its error term stays on the short side. Counted only where the term cannot wrap.
std::int64_t stillSteps(const Edge& e) noexcept
{
    constexpr std::int64_t kForever = std::numeric_limits<std::int64_t>::max();
    if (e.m != 0 || takesLongStep(e)) return 0;
    if (e.incr2 < 0) return 0;
    if (e.incr2 == 0) return kForever;
    // Short steps go on while d <= 0 (m1 > 0) or d < 0 (m1 <= 0).
    const std::int64_t room = e.m1 > 0 ? -std::int64_t(e.d) : -std::int64_t(e.d) - 1;
    return room / e.incr2 + 1;
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

struct Span {
    std::int32_t x1, x2;
    bool operator==(const Span& o) const noexcept { return x1 == o.x1 && x2 == o.x2; }
};

// Rectangles written straight into the block a region keeps them in, so that a large result is
// neither copied nor held twice. Grows by doubling, up to the rectangle limit.
class BoxBuffer {
public:
    BoxBuffer() = default;
    BoxBuffer(const BoxBuffer&) = delete;
    BoxBuffer& operator=(const BoxBuffer&) = delete;
    ~BoxBuffer() { std::free(data_); }

    std::size_t size() const noexcept { return n_; }
    Box* begin() noexcept { return data_ ? reinterpret_cast<Box*>(data_ + 1) : nullptr; }
    Box* end() noexcept { return begin() + n_; }

    // Room for k more; false past the limit or when memory runs out.
    bool reserveMore(std::size_t k) noexcept
    {
        if (n_ + k > kMaxRects) return false;
        if (n_ + k <= capacity_) return true;
        std::size_t want = std::max<std::size_t>(64, 2 * capacity_);
        want = std::min(std::max(want, n_ + k), kMaxRects);
        void* grown = std::realloc(data_, sizeof(pixman_region32_data_t) + want * sizeof(Box));
        if (!grown) return false;
        data_ = static_cast<pixman_region32_data_t*>(grown);
        capacity_ = want;
        return true;
    }
    void push(const Box& b) noexcept { begin()[n_++] = b; } // after reserveMore

    // Gives the rectangles to the region, with the given bounding box; the buffer is then empty.
    bool handOver(Region& region, const Box& bound) noexcept
    {
        if (n_ <= 1) {
            const bool ok = region.assign(begin(), n_, bound);
            n_ = 0;
            return ok;
        }
        data_->size = static_cast<long>(capacity_);
        data_->numRects = static_cast<long>(n_);
        region.adopt(data_, bound);
        data_ = nullptr;
        n_ = capacity_ = 0;
        return true;
    }

private:
    pixman_region32_data_t* data_ = nullptr;
    std::size_t n_ = 0, capacity_ = 0;
};

// Collects the rows' spans as rectangles, joining a row to the band above when its spans are the
// same.
class BandWriter {
public:
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
    bool finish(Region& region)
    {
        bound_.y2 = wrap(lastBottom_);
        if (boxes_.size() == 0) bound_ = Box{0, 0, 0, 0};
        return boxes_.handOver(region, bound_);
    }

private:
    BoxBuffer boxes_;
    std::vector<Span> lastSpans_;
    std::int64_t lastBottom_ = 0;
    Box bound_{0, 0, 0, 0};
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

bool scanConvert(std::vector<Edge>& edges, bool winding, Region& out)
{
    BandWriter writer;
    if (edges.empty()) return writer.finish(out);
    // Edges in the order they start; among edges starting on one row, by x, keeping the
    // polygon's order where x ties.
    std::stable_sort(edges.begin(), edges.end(), [](const Edge& a, const Edge& b) {
        return a.top != b.top ? a.top < b.top : a.x < b.x;
    });
    std::vector<Edge*> active, fresh, merged;
    std::vector<Span> spans;
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
        if (!spans.empty() || !allCancel(active, winding))
            for (const Edge* e : active) repeat = std::min(repeat, stillSteps(*e));
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
    return writer.finish(out);
}

bool isRectangle(const POINT* p, int n) noexcept
{
    if (n == 5 && (p[4].x != p[0].x || p[4].y != p[0].y)) return false;
    if (n != 4 && n != 5) return false;
    return (p[0].y == p[1].y && p[1].x == p[2].x && p[2].y == p[3].y && p[3].x == p[0].x) ||
           (p[0].x == p[1].x && p[1].y == p[2].y && p[2].x == p[3].x && p[3].y == p[0].y);
}

Box normalized(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) noexcept
{
    if (l > r) std::swap(l, r);
    if (t > b) std::swap(t, b);
    return Box{l, t, r, b};
}

void setRect(Region& region, const Box& b) noexcept
{
    if (b.x1 == b.x2 || b.y1 == b.y2)
        region.clear();
    else
        region.setBox(b);
}

// Polygon heights as the platform measures them: per polygon of two or more points, the
// difference of its lowest and highest y in 32-bit arithmetic, and the sum of these in 32-bit
// arithmetic too (the rows of its scan). A sum of 2^27 rows or more makes the call fail; a height
// whose difference wrapped around, or a sum that did, makes the whole region empty.
constexpr std::int32_t kMaxPolygonRows = std::int32_t(1) << 27;
// Points the edge list may hold; more fail as an allocation would, before anything is allocated.
constexpr std::int64_t kMaxPoints = std::int64_t(1) << 24;

bool makePolygons(const POINT* points, const INT* counts, int polygons, int mode, Region& out)
{
    if (polygons <= 0) {
        out.clear();
        return true;
    }
    if (!counts) return false;
    std::int64_t total = 0;
    for (int i = 0; i < polygons; ++i) {
        if (counts[i] < 0) return false;
        total += counts[i];
        if (total > kMaxPoints) return false;
    }
    if (total > 0 && !points) return false;
    if (polygons == 1 && isRectangle(points, counts[0])) {
        setRect(out, normalized(points[0].x, points[0].y, points[2].x, points[2].y));
        return true;
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
    if (!wrapped && wrap(rows) >= kMaxPolygonRows) return false;
    if (wrapped || rows >= kMaxPolygonRows) {
        out.clear();
        return true;
    }
    std::vector<Edge> edges;
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
    return scanConvert(edges, mode == WINDING, out);
}

// ----- set operations --------------------------------------------------------------------------

// How many rectangles a set operation may give, counted without making it. Row by row a pixel
// is in the result when keep(in a, in b) says so; stretches of rows where neither operand
// changes its band give one band each, and a band that repeats the one just above it adds
// nothing. Touching rectangles are counted as one, so the count can fall short of the result by
// rectangles kept apart; the result is checked again once it is made. Stops early once the
// count passes stopAbove.
template <class Keep>
std::size_t resultSize(const Region& a, const Region& b, Keep keep, std::size_t stopAbove)
{
    int na = 0, nb = 0;
    const Box* ba = a.boxes(na);
    const Box* bb = b.boxes(nb);
    auto bandEnd = [](const Box* boxes, int n, int i) {
        int j = i + 1;
        while (j < n && boxes[j].y1 == boxes[i].y1) ++j;
        return j;
    };
    // The spans of one band, touching ones joined.
    auto spansOf = [](const Box* boxes, int from, int to, std::vector<Span>& out) {
        out.clear();
        for (int i = from; i < to; ++i) {
            if (!out.empty() && out.back().x2 >= boxes[i].x1)
                out.back().x2 = std::max(out.back().x2, boxes[i].x2);
            else
                out.push_back(Span{boxes[i].x1, boxes[i].x2});
        }
    };
    constexpr std::int64_t kNone = std::numeric_limits<std::int64_t>::max();
    std::vector<Span> sa, sb, cur, prev;
    std::size_t count = 0;
    std::int64_t prevBottom = kNone;
    std::int64_t y = std::numeric_limits<std::int64_t>::min();
    int ia = 0, ib = 0;
    int ea = na ? bandEnd(ba, na, 0) : 0, eb = nb ? bandEnd(bb, nb, 0) : 0;
    while (ia < na || ib < nb) {
        const std::int64_t aTop = ia < na ? ba[ia].y1 : kNone, aBottom = ia < na ? ba[ia].y2 : kNone;
        const std::int64_t bTop = ib < nb ? bb[ib].y1 : kNone, bBottom = ib < nb ? bb[ib].y2 : kNone;
        if (ia < na && aBottom <= y) {
            ia = ea;
            if (ia < na) ea = bandEnd(ba, na, ia);
            continue;
        }
        if (ib < nb && bBottom <= y) {
            ib = eb;
            if (ib < nb) eb = bandEnd(bb, nb, ib);
            continue;
        }
        y = std::max(y, std::min(aTop, bTop));
        const bool inA = aTop <= y, inB = bTop <= y;
        const std::int64_t end = std::min(inA ? aBottom : aTop, inB ? bBottom : bTop);
        if (inA) spansOf(ba, ia, ea, sa); else sa.clear();
        if (inB) spansOf(bb, ib, eb, sb); else sb.clear();
        // Walk the edges of both span lists from left to right.
        cur.clear();
        std::size_t i = 0, j = 0;
        bool overA = false, overB = false, was = false;
        std::int32_t start = 0;
        while (i < 2 * sa.size() || j < 2 * sb.size()) {
            auto edgeAt = [](const std::vector<Span>& s, std::size_t k) {
                return k % 2 == 0 ? s[k / 2].x1 : s[k / 2].x2;
            };
            const std::int64_t xa = i < 2 * sa.size() ? edgeAt(sa, i) : kNone;
            const std::int64_t xb = j < 2 * sb.size() ? edgeAt(sb, j) : kNone;
            const std::int64_t x = std::min(xa, xb);
            if (xa == x) overA = ++i % 2 == 1;
            if (xb == x) overB = ++j % 2 == 1;
            const bool now = keep(overA, overB);
            if (now && !was) start = static_cast<std::int32_t>(x);
            if (!now && was) cur.push_back(Span{start, static_cast<std::int32_t>(x)});
            was = now;
        }
        if (!cur.empty()) {
            if (!(prevBottom == y && cur == prev)) count += cur.size();
            prev.swap(cur);
            prevBottom = end;
        }
        if (count > stopAbove) return count;
        y = end;
    }
    return count;
}

bool keepBoth(bool a, bool b) noexcept { return a && b; }
bool keepEither(bool a, bool b) noexcept { return a || b; }
bool keepFirstOnly(bool a, bool b) noexcept { return a && !b; }
bool keepSecondOnly(bool a, bool b) noexcept { return b && !a; }
bool keepOne(bool a, bool b) noexcept { return a != b; }

// dest = a (mode) b. On any failure, a result over the rectangle limit among them, dest is left
// as it was. The result is made apart and moved in, since dest may be a or b.
bool combine(Region& dest, const Region& a, const Region& b, int mode)
{
    auto* ra = const_cast<pixman_region32_t*>(a.get());
    auto* rb = const_cast<pixman_region32_t*>(b.get());
    const bool wrapped = a.wrapped || (mode != RGN_COPY && b.wrapped);
    Region result;
    bool ok = true;
    switch (mode) {
    case RGN_AND:
        ok = resultSize(a, b, keepBoth, kMaxRects) <= kMaxRects &&
             pixman_region32_intersect(result.get(), ra, rb);
        break;
    case RGN_OR:
        ok = resultSize(a, b, keepEither, kMaxRects) <= kMaxRects &&
             pixman_region32_union(result.get(), ra, rb);
        break;
    case RGN_DIFF:
        ok = resultSize(a, b, keepFirstOnly, kMaxRects) <= kMaxRects &&
             pixman_region32_subtract(result.get(), ra, rb);
        break;
    case RGN_COPY: ok = result.copyFrom(a); break;
    case RGN_XOR: {
        Region ab, ba;
        ok = resultSize(a, b, keepOne, kMaxRects) <= kMaxRects &&
             resultSize(a, b, keepFirstOnly, kMaxRects) <= kMaxRects &&
             resultSize(a, b, keepSecondOnly, kMaxRects) <= kMaxRects &&
             pixman_region32_subtract(ab.get(), ra, rb) && pixman_region32_subtract(ba.get(), rb, ra) &&
             pixman_region32_union(result.get(), ab.get(), ba.get());
        break;
    }
    default: return false;
    }
    if (!ok || static_cast<std::size_t>(result.count()) > kMaxRects) return false;
    result.wrapped = wrapped;
    if (!result.count()) result.clear();
    dest.swap(result);
    return true;
}

// Adds without a limit; a region whose coordinates wrapped leaves the canonical form.
bool offset(Region& region, std::int32_t dx, std::int32_t dy)
{
    int n = 0;
    const Box* b = region.boxes(n);
    if (n == 0 || (dx == 0 && dy == 0)) return true;
    std::vector<Box> moved(b, b + n);
    bool overflow = false;
    auto add = [&overflow](std::int32_t v, std::int32_t by) {
        std::int64_t s = std::int64_t(v) + by;
        overflow |= s != wrap(s);
        return wrap(s);
    };
    for (Box& m : moved) m = Box{add(m.x1, dx), add(m.y1, dy), add(m.x2, dx), add(m.y2, dy)};
    Box bound = region.bound();
    bound = Box{add(bound.x1, dx), add(bound.y1, dy), add(bound.x2, dx), add(bound.y2, dy)};
    const bool wasWrapped = region.wrapped;
    if (!region.assign(moved.data(), moved.size(), bound)) return false;
    region.wrapped = wasWrapped || (overflow && !isCanonical(region));
    return true;
}

bool boxTouches(const Box& b, const RECT& r) noexcept
{
    return b.x2 > r.left && b.x1 < r.right && b.y2 > r.top && b.y1 < r.bottom;
}

// ----- handles ---------------------------------------------------------------------------------

using Table = quillon::region_detail::HandleTable<Region>;

// Never destroyed: handles stay usable from threads that outlive static destruction.
Table& table()
{
    static Table* t = new Table;
    return *t;
}

HRGN publish(std::unique_ptr<Region> region, const char* operation)
{
    checkForm(*region, operation);
    return static_cast<HRGN>(table().insert(std::move(region)));
}

// Runs f and returns what it returns; an exception from anywhere inside gives the failure value
// instead, so that none leaves a region function.
template <class R, class F>
R guarded(R failure, F&& f) noexcept
{
    try {
        return f();
    } catch (...) {
        return failure;
    }
}

std::unique_ptr<Region> newRegion() { return std::unique_ptr<Region>(new (std::nothrow) Region); }

} // namespace

// ----- the union of many pieces ----------------------------------------------------------------

// The union of many regions at once, the same, rectangle for rectangle, as joining them one by
// one with the union above: a row that one part alone covers keeps that part's rectangles as they
// are (touching pairs included), a row that two or more parts cover gets their spans joined where
// they overlap or touch, and neighbouring bands with the same spans are one band. Parts are
// swept from top to bottom; the work is the rectangles of the parts and of the result, with a
// sort of each row's spans.
bool unionAll(const std::vector<const Region*>& parts, Region& out)
{
    struct Band {
        std::int32_t top, bottom;
        const Box* first;
        int n;
    };
    std::vector<Band> bands;
    for (const Region* part : parts) {
        int n = 0;
        const Box* b = part->boxes(n);
        for (int i = 0; i < n;) {
            int j = i + 1;
            while (j < n && b[j].y1 == b[i].y1) ++j;
            bands.push_back(Band{b[i].y1, b[i].y2, b + i, j - i});
            i = j;
        }
    }
    std::stable_sort(bands.begin(), bands.end(),
                     [](const Band& a, const Band& b) { return a.top < b.top; });
    BoxBuffer boxes;
    std::vector<const Band*> active;
    std::vector<Span> row, prev;
    std::size_t prevStart = 0; // first box of the last band written
    std::int64_t prevBottom = std::numeric_limits<std::int64_t>::min();
    Box bound{0, 0, 0, 0};
    std::size_t next = 0;
    std::int64_t y = bands.empty() ? 0 : bands[0].top;
    while (next < bands.size() || !active.empty()) {
        active.erase(std::remove_if(active.begin(), active.end(),
                                    [y](const Band* b) { return b->bottom <= y; }),
                     active.end());
        if (active.empty() && next < bands.size() && bands[next].top > y) y = bands[next].top;
        while (next < bands.size() && bands[next].top <= y) active.push_back(&bands[next++]);
        if (active.empty()) continue;
        std::int64_t end = next < bands.size() ? bands[next].top : std::numeric_limits<std::int64_t>::max();
        for (const Band* b : active) end = std::min<std::int64_t>(end, b->bottom);
        row.clear();
        if (active.size() == 1) {
            const Band& b = *active[0];
            for (int i = 0; i < b.n; ++i) row.push_back(Span{b.first[i].x1, b.first[i].x2});
        } else {
            for (const Band* b : active)
                for (int i = 0; i < b->n; ++i) row.push_back(Span{b->first[i].x1, b->first[i].x2});
            std::sort(row.begin(), row.end(),
                      [](const Span& a, const Span& b) { return a.x1 < b.x1; });
            std::size_t kept = 0;
            for (const Span& s : row) {
                if (kept > 0 && row[kept - 1].x2 >= s.x1)
                    row[kept - 1].x2 = std::max(row[kept - 1].x2, s.x2);
                else
                    row[kept++] = s;
            }
            row.resize(kept);
        }
        if (prevBottom == y && row == prev) {
            for (Box* b = boxes.begin() + prevStart; b != boxes.end(); ++b) b->y2 = static_cast<std::int32_t>(end);
        } else {
            if (!boxes.reserveMore(row.size())) return false;
            prevStart = boxes.size();
            for (const Span& s : row)
                boxes.push(Box{s.x1, static_cast<std::int32_t>(y), s.x2, static_cast<std::int32_t>(end)});
            if (prevStart == 0) bound = Box{row.front().x1, static_cast<std::int32_t>(y), row.back().x2, 0};
            bound.x1 = std::min(bound.x1, row.front().x1);
            bound.x2 = std::max(bound.x2, row.back().x2);
            prev.swap(row);
        }
        bound.y2 = static_cast<std::int32_t>(end);
        prevBottom = end;
        y = end;
    }
    return boxes.handOver(out, bound);
}

// ----- the functions -----------------------------------------------------------------------------

extern "C" {

HRGN CreateRectRgn(int left, int top, int right, int bottom)
{
    return guarded(HRGN(nullptr), [&]() -> HRGN {
        auto region = newRegion();
        if (!region) return nullptr;
        setRect(*region, normalized(left, top, right, bottom));
        return publish(std::move(region), "CreateRectRgn");
    });
}

HRGN CreateRectRgnIndirect(const RECT* rect)
{
    if (!rect) return nullptr;
    return CreateRectRgn(rect->left, rect->top, rect->right, rect->bottom);
}

BOOL SetRectRgn(HRGN handle, int left, int top, int right, int bottom)
{
    return guarded(static_cast<BOOL>(FALSE), [&]() -> BOOL {
        return table().write(handle, [&](Region& r) {
            setRect(r, normalized(left, top, right, bottom));
            checkForm(r, "SetRectRgn");
            return true;
        });
    });
}

HRGN CreatePolyPolygonRgn(const POINT* points, const INT* counts, int polygons, int mode)
{
    return guarded(HRGN(nullptr), [&]() -> HRGN {
        auto region = newRegion();
        if (!region) return nullptr;
        if (!makePolygons(points, counts, polygons, mode, *region)) return nullptr;
        return publish(std::move(region), "CreatePolyPolygonRgn");
    });
}

HRGN CreatePolygonRgn(const POINT* points, int count, int mode)
{
    return CreatePolyPolygonRgn(points, &count, 1, mode);
}

HRGN ExtCreateRegion(const XFORM* xform, DWORD size, const RGNDATA* data)
{
    return guarded(HRGN(nullptr), [&]() -> HRGN {
        // The header and the nCount rectangles after it must lie inside the size bytes given;
        // nothing past them is read.
        if (xform || !data || size < sizeof(RGNDATAHEADER)) return nullptr;
        if (data->rdh.dwSize < sizeof(RGNDATAHEADER)) return nullptr;
        const DWORD n = data->rdh.nCount;
        if (n > kMaxRects || sizeof(RGNDATAHEADER) + std::uint64_t(n) * sizeof(RECT) > size)
            return nullptr;
        auto region = newRegion();
        if (!region) return nullptr;
        std::vector<Box> boxes;
        boxes.reserve(n);
        const char* at = reinterpret_cast<const char*>(data) + sizeof(RGNDATAHEADER);
        for (DWORD i = 0; i < n; ++i) {
            RECT r;
            std::memcpy(&r, at + std::size_t(i) * sizeof(RECT), sizeof r);
            if (r.left < r.right && r.top < r.bottom)
                boxes.push_back(Box{r.left, r.top, r.right, r.bottom});
        }
        if (!boxes.empty()) {
            pixman_region32_fini(region->get());
            if (!pixman_region32_init_rects(region->get(), boxes.data(),
                                            static_cast<int>(boxes.size()))) {
                pixman_region32_init(region->get());
                return nullptr;
            }
            if (static_cast<std::size_t>(region->count()) > kMaxRects) return nullptr;
        }
        return publish(std::move(region), "ExtCreateRegion");
    });
}

int CombineRgn(HRGN destination, HRGN source1, HRGN source2, int mode)
{
    return guarded(static_cast<int>(ERROR), [&]() -> int {
        if (mode < RGN_AND || mode > RGN_COPY) return ERROR;
        int kind = ERROR;
        table().writeWith(destination, source1, source2, mode != RGN_COPY,
                          [&](Region& d, const Region& a, const Region& b) {
                              if (!combine(d, a, b, mode)) return false;
                              checkForm(d, "CombineRgn");
                              kind = d.kind();
                              return true;
                          });
        return kind;
    });
}

int OffsetRgn(HRGN handle, int x, int y)
{
    return guarded(static_cast<int>(ERROR), [&]() -> int {
        int kind = ERROR;
        table().write(handle, [&](Region& r) {
            if (!offset(r, x, y)) return false;
            checkForm(r, "OffsetRgn");
            kind = r.kind();
            return true;
        });
        return kind;
    });
}

DWORD GetRegionData(HRGN handle, DWORD size, LPRGNDATA data)
{
    return guarded(static_cast<DWORD>(0), [&]() -> DWORD {
        DWORD result = 0;
        table().read(handle, [&](const Region& r) {
            int n = 0;
            const Box* boxes = r.boxes(n);
            const std::uint64_t need = sizeof(RGNDATAHEADER) + std::uint64_t(n) * sizeof(RECT);
            if (need > std::numeric_limits<DWORD>::max()) return;
            if (!data) {
                result = static_cast<DWORD>(need);
                return;
            }
            if (size < need) return;
            const Box bound = r.bound();
            data->rdh.dwSize = sizeof(RGNDATAHEADER);
            data->rdh.iType = RDH_RECTANGLES;
            data->rdh.nCount = static_cast<DWORD>(n);
            data->rdh.nRgnSize = static_cast<DWORD>(n * sizeof(RECT));
            data->rdh.rcBound = RECT{bound.x1, bound.y1, bound.x2, bound.y2};
            char* at = reinterpret_cast<char*>(data) + sizeof(RGNDATAHEADER);
            for (int i = 0; i < n; ++i) {
                const RECT rc{boxes[i].x1, boxes[i].y1, boxes[i].x2, boxes[i].y2};
                std::memcpy(at + i * sizeof(RECT), &rc, sizeof rc);
            }
            result = static_cast<DWORD>(need);
        });
        return result;
    });
}

int GetRgnBox(HRGN handle, LPRECT rect)
{
    return guarded(static_cast<int>(ERROR), [&]() -> int {
        if (!rect) return ERROR;
        int kind = ERROR;
        table().read(handle, [&](const Region& r) {
            const Box b = r.bound();
            *rect = RECT{b.x1, b.y1, b.x2, b.y2};
            kind = r.kind();
        });
        return kind;
    });
}

BOOL PtInRegion(HRGN handle, int x, int y)
{
    return guarded(static_cast<BOOL>(FALSE), [&]() -> BOOL {
        BOOL in = FALSE;
        table().read(handle, [&](const Region& r) {
            int n = 0;
            const Box* b = r.boxes(n);
            const Box e = r.bound();
            if (n == 0 || x < e.x1 || x >= e.x2 || y < e.y1 || y >= e.y2) return;
            for (int i = 0; i < n && !in; ++i)
                in = x >= b[i].x1 && x < b[i].x2 && y >= b[i].y1 && y < b[i].y2;
        });
        return in;
    });
}

BOOL RectInRegion(HRGN handle, const RECT* rect)
{
    return guarded(static_cast<BOOL>(FALSE), [&]() -> BOOL {
        if (!rect) return FALSE;
        const Box nb = normalized(rect->left, rect->top, rect->right, rect->bottom);
        const RECT rc{nb.x1, nb.y1, nb.x2, nb.y2};
        BOOL in = FALSE;
        table().read(handle, [&](const Region& r) {
            int n = 0;
            const Box* b = r.boxes(n);
            if (n == 0 || !boxTouches(r.bound(), rc)) return;
            // As on the platform: the rectangle's top left pixel counts, so an empty rectangle
            // whose corner lies in the region is in it.
            for (int i = 0; i < n && !in; ++i)
                in = boxTouches(b[i], rc) || (rc.left >= b[i].x1 && rc.left < b[i].x2 &&
                                              rc.top >= b[i].y1 && rc.top < b[i].y2);
        });
        return in;
    });
}

BOOL EqualRgn(HRGN region1, HRGN region2)
{
    return guarded(static_cast<BOOL>(FALSE), [&]() -> BOOL {
        BOOL equal = FALSE;
        table().readTwo(region1, region2, [&](const Region& a, const Region& b) {
            int na = 0, nb = 0;
            const Box* ba = a.boxes(na);
            const Box* bb = b.boxes(nb);
            if (na != nb) return;
            const Box ea = a.bound(), eb = b.bound();
            if (ea.x1 != eb.x1 || ea.y1 != eb.y1 || ea.x2 != eb.x2 || ea.y2 != eb.y2) return;
            for (int i = 0; i < na; ++i)
                if (ba[i].x1 != bb[i].x1 || ba[i].y1 != bb[i].y1 || ba[i].x2 != bb[i].x2 ||
                    ba[i].y2 != bb[i].y2)
                    return;
            equal = TRUE;
        });
        return equal;
    });
}

BOOL DeleteObject(HGDIOBJ object)
{
    return guarded(static_cast<BOOL>(FALSE), [&]() -> BOOL {
        return table().erase(static_cast<HRGN>(object)) ? TRUE : FALSE;
    });
}

HANDLE GetCurrentProcess(void)
{
    return reinterpret_cast<HANDLE>(std::intptr_t(-1));
}

DWORD GetGuiResources(HANDLE process, DWORD flags)
{
    return guarded(static_cast<DWORD>(0), [&]() -> DWORD {
        if (process != GetCurrentProcess() || flags != GR_GDIOBJECTS) return 0;
        return static_cast<DWORD>(table().live());
    });
}
HRGN quillon_region_union_polygons(HRGN base, const POINT* points, const INT* counts, int polygons,
                                   int mode)
{
    return guarded(HRGN(nullptr), [&]() -> HRGN {
        if (polygons < 0 || (polygons > 0 && (!points || !counts))) return nullptr;
        auto result = newRegion();
        if (!result) return nullptr;
        bool made = false;
        if (base) {
            bool wrapped = false;
            const bool read = table().read(base, [&](const Region& r) {
                wrapped = r.wrapped;
                made = result->copyFrom(r);
            });
            if (!read || !made || wrapped) return nullptr;
        }
        // Pieces are joined in batches of at most about kMaxRects rectangles, each batch with the
        // union so far: the same result, with the memory of one call bounded.
        std::vector<std::unique_ptr<Region>> batch;
        std::size_t batchRects = 0;
        auto flush = [&]() {
            std::vector<const Region*> parts;
            if (made) parts.push_back(result.get());
            for (const auto& piece : batch) parts.push_back(piece.get());
            Region joined;
            if (!unionAll(parts, joined)) return false;
            result->swap(joined);
            batch.clear();
            batchRects = 0;
            made = true;
            return true;
        };
        const POINT* p = points;
        for (int i = 0; i < polygons; ++i) {
            const INT n = counts[i];
            if (n < 0) return nullptr;
            auto piece = newRegion();
            if (!piece) return nullptr;
            if (makePolygons(p, &n, 1, mode, *piece)) {
                batchRects += static_cast<std::size_t>(piece->count());
                batch.push_back(std::move(piece));
                if (batchRects > kMaxRects && !flush()) return nullptr;
            }
            p += n;
        }
        if (!batch.empty() && !flush()) return nullptr;
        if (!made) return nullptr;
        return publish(std::move(result), "quillon_region_union_polygons");
    });
}

} // extern "C"
