// SPDX-License-Identifier: MIT
// The set operations on regions, and the check of the canonical form they keep (see
// RegionAlgebra.h).
#define QUILLON_BUILDING_REGION
#include <quillon/Region>

#include "RegionAlgebra.h"

#include <limits>

namespace quillon::region_detail {

// Whether the rectangles are in the canonical form described in RegionAlgebra.h.
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

// ----- set operations --------------------------------------------------------------------------

// How many rectangles a set operation may give, counted without making it (or, with exact
// false, a bound on it from the bands' sizes alone). Row by row a pixel
// is in the result when keep(in a, in b) says so; stretches of rows where neither operand
// changes its band give one band each, and a band that repeats the one just above it adds
// nothing. Touching rectangles are counted as one, so the count can fall short of the result by
// rectangles kept apart; the result is checked again once it is made. Stops early once the
// count passes stopAbove.
template <class Keep>
std::size_t countResult(const Region& a, const Region& b, Keep keep, std::size_t stopAbove, bool exact)
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
        if (!exact) { // at most the two bands' rectangles together
            count += std::size_t(inA ? ea - ia : 0) + std::size_t(inB ? eb - ib : 0);
            if (count > stopAbove) return count;
            y = end;
            continue;
        }
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

// First the bound that costs one step per band: no stretch of rows gives more rectangles than the
// two operands' bands there hold together. Only past the limit is the count made exactly, with the
// work of the operation itself.
template <class Keep>
std::size_t resultSize(const Region& a, const Region& b, Keep keep, std::size_t stopAbove)
{
    const std::size_t bound = countResult(a, b, keep, stopAbove, false);
    return bound <= stopAbove ? bound : countResult(a, b, keep, stopAbove, true);
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

// ----- the union of many pieces ----------------------------------------------------------------

// The union of many regions at once, the same, rectangle for rectangle, as joining them one by
// one with the union above: a row that one part alone covers keeps that part's rectangles as they
// are (touching pairs included), a row that two or more parts cover gets their spans joined where
// they overlap or touch, and neighbouring bands with the same spans are one band. Parts are
// swept from top to bottom; the work is the rectangles of the parts and of the result, with a
// sort of each row's spans.
bool unionAll(const std::vector<BoxRun>& parts, Region& out)
{
    struct Band {
        std::int32_t top, bottom;
        const Box* first;
        int n;
    };
    std::size_t total = 0;
    for (const BoxRun& part : parts) total += static_cast<std::size_t>(part.n);
    std::vector<Band> bands;
    bands.reserve(total);
    for (const BoxRun& part : parts) {
        const int n = part.n;
        const Box* b = part.first;
        for (int i = 0; i < n;) {
            int j = i + 1;
            while (j < n && b[j].y1 == b[i].y1) ++j;
            bands.push_back(Band{b[i].y1, b[i].y2, b + i, j - i});
            i = j;
        }
    }
    std::stable_sort(bands.begin(), bands.end(), [](const Band& a, const Band& b) { return a.top < b.top; });
    BoxBuffer boxes;
    if (!boxes.reserveMore(std::min(total, kMaxRects))) return false; // the usual size of a union
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

} // namespace quillon::region_detail
