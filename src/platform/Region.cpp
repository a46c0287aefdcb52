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

// Work limits: past them a creation fails as an allocation would.
constexpr std::size_t kMaxRects = std::size_t(1) << 24;
constexpr std::int64_t kMaxRows = std::int64_t(1) << 26;

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
    bool copyFrom(const Region& other) noexcept
    {
        if (&other == this) return true;
        if (!pixman_region32_copy(&r_, const_cast<pixman_region32_t*>(&other.r_))) return false;
        wrapped = other.wrapped;
        return true;
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

inline void stillStep(Edge& e, std::int64_t k) noexcept
{
    e.d = wrap(std::int64_t(e.d) + k * e.incr2);
}

struct Span {
    std::int32_t x1, x2;
    bool operator==(const Span& o) const noexcept { return x1 == o.x1 && x2 == o.x2; }
};

// Collects the rows' spans as rectangles, joining a row to the band above when its spans are the
// same.
class BandWriter {
public:
    bool add(std::int64_t top, std::int64_t bottom, const std::vector<Span>& spans)
    {
        if (spans.empty()) return true;
        if (!boxes_.empty() && lastBottom_ == top && spans == lastSpans_) {
            for (std::size_t i = boxes_.size() - spans.size(); i < boxes_.size(); ++i)
                boxes_[i].y2 = wrap(bottom);
            lastBottom_ = bottom;
            return true;
        }
        if (boxes_.size() + spans.size() > kMaxRects) return false;
        for (const Span& s : spans) {
            boxes_.push_back(Box{s.x1, wrap(top), s.x2, wrap(bottom)});
            bound_.x1 = boxes_.size() == 1 ? s.x1 : std::min(bound_.x1, s.x1);
            bound_.x2 = boxes_.size() == 1 ? s.x2 : std::max(bound_.x2, s.x2);
        }
        if (boxes_.size() == spans.size()) bound_.y1 = wrap(top);
        lastSpans_ = spans;
        lastBottom_ = bottom;
        return true;
    }
    bool finish(Region& region)
    {
        bound_.y2 = wrap(lastBottom_);
        return region.assign(boxes_.data(), boxes_.size(), bound_);
    }

private:
    std::vector<Box> boxes_;
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
    std::int64_t rowsDone = 0;
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
        // Rows after y that repeat this one: no edge starts, ends or moves.
        std::int64_t repeat = next < edges.size() ? edges[next].top - y - 1
                                                  : std::numeric_limits<std::int64_t>::max();
        for (const Edge* e : active) {
            repeat = std::min(repeat, e->last - y);
            repeat = std::min(repeat, stillSteps(*e));
        }
        if (++rowsDone > kMaxRows) return false;
        if (!writer.add(y, y + repeat + 1, spans)) return false;
        if (repeat > 0)
            for (Edge* e : active) stillStep(*e, repeat);
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
    }
    if (total > 0 && !points) return false;
    if (polygons == 1 && isRectangle(points, counts[0])) {
        setRect(out, normalized(points[0].x, points[0].y, points[2].x, points[2].y));
        return true;
    }
    std::vector<Edge> edges;
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
    return scanConvert(edges, mode == WINDING, out);
}

// ----- set operations --------------------------------------------------------------------------

bool combine(Region& dest, const Region& a, const Region& b, int mode)
{
    pixman_region32_t* d = dest.get();
    auto* ra = const_cast<pixman_region32_t*>(a.get());
    auto* rb = const_cast<pixman_region32_t*>(b.get());
    const bool wrapped = a.wrapped || (mode != RGN_COPY && b.wrapped);
    bool ok = true;
    switch (mode) {
    case RGN_AND: ok = pixman_region32_intersect(d, ra, rb); break;
    case RGN_OR: ok = pixman_region32_union(d, ra, rb); break;
    case RGN_DIFF: ok = pixman_region32_subtract(d, ra, rb); break;
    case RGN_COPY: ok = dest.copyFrom(a); break;
    case RGN_XOR: {
        Region ab, ba;
        ok = pixman_region32_subtract(ab.get(), ra, rb) && pixman_region32_subtract(ba.get(), rb, ra) &&
             pixman_region32_union(d, ab.get(), ba.get());
        break;
    }
    default: return false;
    }
    if (!ok) {
        dest.clear();
        return false;
    }
    dest.wrapped = wrapped;
    if (!dest.count()) dest.clear();
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

constexpr unsigned kIndexBits = sizeof(std::uintptr_t) >= 8 ? 32 : 16;
constexpr std::uintptr_t kIndexMask = (std::uintptr_t(1) << kIndexBits) - 1;
constexpr std::uint32_t kGenerationMask = sizeof(std::uintptr_t) >= 8 ? 0xFFFFFFFFu : 0xFFFFu;
constexpr std::size_t kMaxSlots = std::min<std::size_t>(kIndexMask - 1, std::size_t(1) << 24);

class Table {
public:
    // A handle is (generation << kIndexBits) | (slot + 1); generations start at 1, so no handle
    // is a small number, and a slot's next region gets a new generation.
    HRGN insert(std::unique_ptr<Region> region)
    {
        std::unique_lock lock(mutex_);
        std::size_t index;
        if (!free_.empty()) {
            index = free_.back();
            free_.pop_back();
        } else {
            if (slots_.size() >= kMaxSlots) return nullptr;
            try {
                slots_.emplace_back();
                free_.reserve(slots_.size());
            } catch (const std::bad_alloc&) {
                return nullptr;
            }
            index = slots_.size() - 1;
        }
        Slot& s = slots_[index];
        s.region = std::move(region);
        ++live_;
        const std::uintptr_t token =
            (std::uintptr_t(s.generation) << kIndexBits) | std::uintptr_t(index + 1);
        return reinterpret_cast<HRGN>(token);
    }

    bool erase(HRGN handle)
    {
        std::unique_ptr<Region> doomed;
        {
            std::unique_lock lock(mutex_);
            Slot* s = find(handle);
            if (!s) return false;
            doomed = std::move(s->region);
            s->generation = (s->generation + 1) & kGenerationMask;
            if (s->generation == 0) s->generation = 1;
            free_.push_back(static_cast<std::size_t>(s - slots_.data()));
            --live_;
        }
        return true;
    }

    // Runs f(region...) with the handles' regions under a shared lock; false if one is invalid.
    template <class F>
    bool read(HRGN h, F&& f)
    {
        std::shared_lock lock(mutex_);
        Slot* s = find(h);
        if (!s) return false;
        f(static_cast<const Region&>(*s->region));
        return true;
    }
    template <class F>
    bool write(HRGN h, F&& f)
    {
        std::unique_lock lock(mutex_);
        Slot* s = find(h);
        if (!s) return false;
        return f(*s->region);
    }
    // The destination changes, the sources are read; any of them may be the same region.
    template <class F>
    bool writeWith(HRGN dest, HRGN a, HRGN b, bool needB, F&& f)
    {
        std::unique_lock lock(mutex_);
        Slot* sd = find(dest);
        Slot* sa = find(a);
        Slot* sb = needB ? find(b) : nullptr;
        if (!sd || !sa || (needB && !sb)) return false;
        return f(*sd->region, *sa->region, sb ? *sb->region : *sa->region);
    }
    template <class F>
    bool readTwo(HRGN a, HRGN b, F&& f)
    {
        std::shared_lock lock(mutex_);
        Slot* sa = find(a);
        Slot* sb = find(b);
        if (!sa || !sb) return false;
        f(static_cast<const Region&>(*sa->region), static_cast<const Region&>(*sb->region));
        return true;
    }

    DWORD live()
    {
        std::shared_lock lock(mutex_);
        return static_cast<DWORD>(live_);
    }

private:
    struct Slot {
        std::uint32_t generation = 1;
        std::unique_ptr<Region> region;
    };

    Slot* find(HRGN handle) noexcept
    {
        const std::uintptr_t token = reinterpret_cast<std::uintptr_t>(handle);
        const std::uintptr_t index = token & kIndexMask;
        const std::uintptr_t generation = token >> kIndexBits;
        if (index == 0 || index > slots_.size()) return nullptr;
        Slot& s = slots_[index - 1];
        if (!s.region || generation != s.generation) return nullptr;
        return &s;
    }

    std::shared_mutex mutex_;
    std::vector<Slot> slots_;
    std::vector<std::size_t> free_;
    std::size_t live_ = 0;
};

// Never destroyed: handles stay usable from threads that outlive static destruction.
Table& table()
{
    static Table* t = new Table;
    return *t;
}

HRGN publish(std::unique_ptr<Region> region, const char* operation)
{
    checkForm(*region, operation);
    return table().insert(std::move(region));
}

std::unique_ptr<Region> newRegion() { return std::unique_ptr<Region>(new (std::nothrow) Region); }

} // namespace

// ----- the functions -----------------------------------------------------------------------------

extern "C" {

HRGN CreateRectRgn(int left, int top, int right, int bottom)
{
    auto region = newRegion();
    if (!region) return nullptr;
    setRect(*region, normalized(left, top, right, bottom));
    return publish(std::move(region), "CreateRectRgn");
}

HRGN CreateRectRgnIndirect(const RECT* rect)
{
    if (!rect) return nullptr;
    return CreateRectRgn(rect->left, rect->top, rect->right, rect->bottom);
}

BOOL SetRectRgn(HRGN handle, int left, int top, int right, int bottom)
{
    return table().write(handle, [&](Region& r) {
        setRect(r, normalized(left, top, right, bottom));
        checkForm(r, "SetRectRgn");
        return true;
    });
}

HRGN CreatePolyPolygonRgn(const POINT* points, const INT* counts, int polygons, int mode)
{
    auto region = newRegion();
    if (!region) return nullptr;
    try {
        if (!makePolygons(points, counts, polygons, mode, *region)) return nullptr;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    return publish(std::move(region), "CreatePolyPolygonRgn");
}

HRGN CreatePolygonRgn(const POINT* points, int count, int mode)
{
    return CreatePolyPolygonRgn(points, &count, 1, mode);
}

HRGN ExtCreateRegion(const XFORM* xform, DWORD size, const RGNDATA* data)
{
    (void)size; // the platform reads nCount rectangles whatever the size says
    if (xform || !data || data->rdh.dwSize < sizeof(RGNDATAHEADER)) return nullptr;
    const DWORD n = data->rdh.nCount;
    if (n > kMaxRects) return nullptr;
    auto region = newRegion();
    if (!region) return nullptr;
    try {
        std::vector<Box> boxes;
        boxes.reserve(n);
        const char* at = reinterpret_cast<const char*>(data) + sizeof(RGNDATAHEADER);
        for (DWORD i = 0; i < n; ++i) {
            RECT r;
            std::memcpy(&r, at + i * sizeof(RECT), sizeof r);
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
        }
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    return publish(std::move(region), "ExtCreateRegion");
}

int CombineRgn(HRGN destination, HRGN source1, HRGN source2, int mode)
{
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
}

int OffsetRgn(HRGN handle, int x, int y)
{
    int kind = ERROR;
    table().write(handle, [&](Region& r) {
        try {
            if (!offset(r, x, y)) return false;
        } catch (const std::bad_alloc&) {
            return false;
        }
        checkForm(r, "OffsetRgn");
        kind = r.kind();
        return true;
    });
    return kind;
}

DWORD GetRegionData(HRGN handle, DWORD size, LPRGNDATA data)
{
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
}

int GetRgnBox(HRGN handle, LPRECT rect)
{
    if (!rect) return ERROR;
    int kind = ERROR;
    table().read(handle, [&](const Region& r) {
        const Box b = r.bound();
        *rect = RECT{b.x1, b.y1, b.x2, b.y2};
        kind = r.kind();
    });
    return kind;
}

BOOL PtInRegion(HRGN handle, int x, int y)
{
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
}

BOOL RectInRegion(HRGN handle, const RECT* rect)
{
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
}

BOOL EqualRgn(HRGN region1, HRGN region2)
{
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
}

BOOL DeleteObject(HGDIOBJ object)
{
    return table().erase(static_cast<HRGN>(object)) ? TRUE : FALSE;
}

HANDLE GetCurrentProcess(void)
{
    return reinterpret_cast<HANDLE>(std::intptr_t(-1));
}

DWORD GetGuiResources(HANDLE process, DWORD flags)
{
    if (process != GetCurrentProcess() || flags != GR_GDIOBJECTS) return 0;
    return table().live();
}

} // extern "C"
