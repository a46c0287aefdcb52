// SPDX-License-Identifier: MIT
// The set operations on regions, and the check of the canonical form they keep (see
// RegionAlgebra.h).
#define QUILLON_BUILDING_REGION
#include <quillon/Region>

#include "RegionAlgebra.h"
#include "WorkSteps.h"

#include <limits>

namespace quillon::region_detail {

thread_local std::uint64_t stepsTaken = 0;

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

namespace {

// A bound on how many rectangles a set operation may give, from the operands' bands alone: no
// stretch of rows where neither operand changes its band gives more rectangles than the two bands
// there hold together. One step per band; stops early once the bound passes stopAbove.
std::size_t resultBound(const Region& a, const Region& b, std::size_t stopAbove)
{
    int na = 0, nb = 0;
    const Box* ba = a.boxes(na);
    const Box* bb = b.boxes(nb);
    auto bandEnd = [](const Box* boxes, int n, int i) {
        int j = i + 1;
        while (j < n && boxes[j].y1 == boxes[i].y1) ++j;
        return j;
    };
    constexpr std::int64_t kNone = std::numeric_limits<std::int64_t>::max();
    std::size_t count = 0;
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
        count += std::size_t(inA ? ea - ia : 0) + std::size_t(inB ? eb - ib : 0);
        if (count > stopAbove) return count;
        y = std::min(inA ? aBottom : aTop, inB ? bBottom : bTop);
    }
    return count;
}

} // namespace

// ----- set operations band by band -------------------------------------------------------------
//
// The operations on regions in the canonical form, rectangle for rectangle what pixman's band
// algebra gives, with work that follows the sizes of the operands and of the result rather than
// their product. The rows are cut into stretches where neither operand changes its band, as
// pixman cuts them; a stretch covered by one operand alone keeps that band as it is (union, the
// first operand of a difference, and either operand of XOR), and a stretch covered by both gets
//  - intersection: every overlap of a rectangle of one band with a rectangle of the other;
//  - union: the spans of both bands, joined where they overlap or touch;
//  - difference: each rectangle of the first band less the second band, in its uncovered pieces;
//  - XOR: what the union of the two differences gives, made in the same one sweep.
// A stretch whose band is the one just above it, rectangle for rectangle, joins that band.
//
// A wide band met by a narrow one changes only near the narrow band's rectangles. Such a result
// is held as the wide band with runs of its rectangles replaced (found by binary search), and two
// such results over the same band are compared on the replaced runs alone, so that a narrow band
// moving down a wide one costs the narrow band's size, not the wide one's, unless the result
// itself is written out.

namespace {

using Index = std::size_t;

struct BandView {
    const Box* r = nullptr;
    Index n = 0;
};

// The first rectangle of the band whose right side lies past x (or reaches x, with reach).
Index firstEndingAfter(const BandView& b, std::int64_t x, bool reach) noexcept
{
    Index lo = 0, hi = b.n;
    while (lo < hi) {
        const Index mid = lo + (hi - lo) / 2;
        if (reach ? b.r[mid].x2 >= x : b.r[mid].x2 > x)
            hi = mid;
        else
            lo = mid + 1;
    }
    return lo;
}

// The first rectangle of the band whose left side lies at or past x (or past x, with strict).
Index firstStartingFrom(const BandView& b, std::int64_t x, bool strict) noexcept
{
    Index lo = 0, hi = b.n;
    while (lo < hi) {
        const Index mid = lo + (hi - lo) / 2;
        if (strict ? b.r[mid].x1 > x : b.r[mid].x1 >= x)
            hi = mid;
        else
            lo = mid + 1;
    }
    return lo;
}

// One band of a result: the base band's rectangles (their x only), with runs [from, to) replaced
// by spans. A result made outright has no base and one replacement at 0.
struct BandResult {
    struct Patch {
        Index from, to, first, count;
    };
    const Box* base = nullptr;
    Index baseN = 0;
    std::vector<Patch> patches;
    std::vector<Span> spans;
    Index length = 0;

    void start(const Box* b, Index n)
    {
        base = b;
        baseN = n;
        patches.clear();
        spans.clear();
        length = n;
    }
    // Replaces base [from, to) by the spans added since first.
    void patch(Index from, Index to, Index first)
    {
        patches.push_back(Patch{from, to, first, spans.size() - first});
        length = length - (to - from) + (spans.size() - first);
    }
    // The rectangles' x over base [from, to), with the patches inside it (all of them lie inside).
    template <class F>
    void each(Index from, Index to, const Patch* p, const Patch* pEnd, F&& f) const
    {
        Index at = from;
        for (; p != pEnd; ++p) {
            for (; at < p->from; ++at) f(Span{base[at].x1, base[at].x2});
            for (Index k = 0; k < p->count; ++k) f(spans[p->first + k]);
            at = p->to;
        }
        for (; at < to; ++at) f(Span{base[at].x1, base[at].x2});
    }
    template <class F>
    void each(F&& f) const
    {
        each(0, baseN, patches.data(), patches.data() + patches.size(), f);
    }
};

bool sameSpans(const BandResult& a, Index af, Index at, const BandResult::Patch* ap, const BandResult::Patch* ape,
               const BandResult& b, Index bf, Index bt, const BandResult::Patch* bp, const BandResult::Patch* bpe,
               std::vector<Span>& sa, std::vector<Span>& sb)
{
    sa.clear();
    sb.clear();
    a.each(af, at, ap, ape, [&](const Span& s) { sa.push_back(s); });
    b.each(bf, bt, bp, bpe, [&](const Span& s) { sb.push_back(s); });
    return sa == sb;
}

// Whether two results are the same rectangles. Over the same base, only the runs that either
// replaces are compared, each cluster of overlapping runs as a whole.
bool sameBand(const BandResult& a, const BandResult& b, std::vector<Span>& sa, std::vector<Span>& sb)
{
    if (a.length != b.length) return false;
    using P = BandResult::Patch;
    const P* ap = a.patches.data();
    const P* ape = ap + a.patches.size();
    const P* bp = b.patches.data();
    const P* bpe = bp + b.patches.size();
    if (a.base != b.base || a.baseN != b.baseN) return sameSpans(a, 0, a.baseN, ap, ape, b, 0, b.baseN, bp, bpe, sa, sb);
    while (ap != ape || bp != bpe) {
        const bool fromA = bp == bpe || (ap != ape && ap->from <= bp->from);
        Index from = fromA ? ap->from : bp->from, to = fromA ? ap->to : bp->to;
        const P *a0 = ap, *b0 = bp;
        (fromA ? ap : bp)++;
        for (bool grew = true; grew;) {
            grew = false;
            if (ap != ape && ap->from <= to) to = std::max(to, ap->to), ++ap, grew = true;
            if (bp != bpe && bp->from <= to) to = std::max(to, bp->to), ++bp, grew = true;
        }
        // The same single replacement on both sides needs no look at the base.
        if (ap - a0 == 1 && bp - b0 == 1 && a0->from == b0->from && a0->to == b0->to && a0->count == b0->count &&
            std::equal(a.spans.begin() + a0->first, a.spans.begin() + a0->first + a0->count,
                       b.spans.begin() + b0->first))
            continue;
        Index la = to - from, lb = to - from;
        for (const P* p = a0; p != ap; ++p) la = la - (p->to - p->from) + p->count;
        for (const P* p = b0; p != bp; ++p) lb = lb - (p->to - p->from) + p->count;
        if (la != lb || !sameSpans(a, from, to, a0, ap, b, from, to, b0, bp, sa, sb)) return false;
    }
    return true;
}

enum class Op { Intersect, Union, Subtract, Exclusive };

// The band algebra over two regions in the canonical form; with writing false it only counts.
class BandSweep {
public:
    BandSweep(Op op, const Region& a, const Region& b, bool writing, std::size_t limit)
        : op_(op), writing_(writing), limit_(limit)
    {
        int na = 0, nb = 0;
        a_ = a.boxes(na);
        b_ = b.boxes(nb);
        na_ = static_cast<Index>(na);
        nb_ = static_cast<Index>(nb);
    }

    // False past the limit (or when memory runs out).
    bool run()
    {
        constexpr std::int64_t kNone = std::numeric_limits<std::int64_t>::max();
        Index ia = 0, ib = 0;
        Index ea = na_ ? bandEnd(a_, na_, 0) : 0, eb = nb_ ? bandEnd(b_, nb_, 0) : 0;
        std::int64_t y = std::numeric_limits<std::int64_t>::min();
        while (ia < na_ || ib < nb_) {
            const std::int64_t aTop = ia < na_ ? a_[ia].y1 : kNone, aBottom = ia < na_ ? a_[ia].y2 : kNone;
            const std::int64_t bTop = ib < nb_ ? b_[ib].y1 : kNone, bBottom = ib < nb_ ? b_[ib].y2 : kNone;
            if (ia < na_ && aBottom <= y) {
                ia = ea;
                if (ia < na_) ea = bandEnd(a_, na_, ia);
                continue;
            }
            if (ib < nb_ && bBottom <= y) {
                ib = eb;
                if (ib < nb_) eb = bandEnd(b_, nb_, ib);
                continue;
            }
            y = std::max(y, std::min(aTop, bTop));
            const bool inA = aTop <= y, inB = bTop <= y;
            const std::int64_t end = std::min(inA ? aBottom : aTop, inB ? bBottom : bTop);
            const BandView va{inA ? a_ + ia : nullptr, inA ? ea - ia : 0};
            const BandView vb{inB ? b_ + ib : nullptr, inB ? eb - ib : 0};
            if (!stretch(va, vb, y, end)) return false;
            y = end;
        }
        return true;
    }

    std::size_t count() const noexcept { return count_; }
    bool finish(Region& out) { return boxes_.handOver(out, count_ ? bound_ : Box{0, 0, 0, 0}); }

private:
    static Index bandEnd(const Box* boxes, Index n, Index i) noexcept
    {
        Index j = i + 1;
        while (j < n && boxes[j].y1 == boxes[i].y1) ++j;
        return j;
    }

    bool stretch(const BandView& a, const BandView& b, std::int64_t top, std::int64_t bottom)
    {
        BandResult& cur = results_[current_];
        // The work of a stretch: a step for each rectangle of the smaller band, and for each span
        // made, compared or written.
        steps_.add(1 + std::min(a.n, b.n));
        if (a.n && b.n) {
            switch (op_) {
            case Op::Intersect: intersect(a, b, cur); break;
            case Op::Union: unite(a, b, cur); break;
            case Op::Subtract: subtract(a, b, cur); break;
            case Op::Exclusive: exclusive(a, b, cur); break;
            }
        } else if (a.n && op_ != Op::Intersect) {
            cur.start(a.r, a.n);
        } else if (b.n && (op_ == Op::Union || op_ == Op::Exclusive)) {
            cur.start(b.r, b.n);
        } else {
            cur.start(nullptr, 0);
        }
        steps_.add(cur.spans.size() + cur.patches.size());
        if (cur.length == 0) { // nothing here: the band above is not continued
            havePrevious_ = false;
            return true;
        }
        const BandResult& prev = results_[1 - current_];
        sa_.clear();
        sb_.clear();
        const bool same = havePrevious_ && previousBottom_ == top && sameBand(prev, cur, sa_, sb_);
        steps_.add(sa_.size() + sb_.size());
        if (same) {
            if (writing_)
                for (Box* box = boxes_.begin() + previousStart_; box != boxes_.end(); ++box)
                    box->y2 = static_cast<std::int32_t>(bottom);
            bound_.y2 = static_cast<std::int32_t>(bottom);
            previousBottom_ = bottom;
            current_ = 1 - current_; // the same band, over bases that are still there
            return true;
        }
        if (cur.length > limit_ - count_) return false;
        if (writing_) {
            steps_.add(cur.length);
            if (!boxes_.reserveMore(cur.length)) return false;
            previousStart_ = boxes_.size();
            const auto t = static_cast<std::int32_t>(top), b2 = static_cast<std::int32_t>(bottom);
            cur.each([&](const Span& s) {
                boxes_.push(Box{s.x1, t, s.x2, b2});
                if (count_ == 0 && boxes_.size() == 1) bound_ = Box{s.x1, t, s.x2, b2};
                bound_.x1 = std::min(bound_.x1, s.x1);
                bound_.x2 = std::max(bound_.x2, s.x2);
            });
        }
        count_ += cur.length;
        bound_.y2 = static_cast<std::int32_t>(bottom);
        havePrevious_ = true;
        previousBottom_ = bottom;
        current_ = 1 - current_;
        return true;
    }

    // Every overlap of a rectangle of a with one of b, from left to right. Each rectangle of the
    // smaller band meets a run of the larger band's rectangles, all whole but the two at its ends:
    // the result is held as the larger band with what lies outside the runs dropped and the ends
    // cut, so a band that meets many of the same rectangles on row after row costs its own size.
    void intersect(const BandView& a, const BandView& b, BandResult& out)
    {
        const BandView& small = a.n <= b.n ? a : b;
        const BandView& large = a.n <= b.n ? b : a;
        if (large.n <= kSmall) {
            out.start(nullptr, 0);
            for (Index i = 0; i < small.n; ++i) {
                const Box& s = small.r[i];
                for (Index j = firstEndingAfter(large, s.x1, false); j < large.n && large.r[j].x1 < s.x2; ++j)
                    out.spans.push_back(Span{std::max(s.x1, large.r[j].x1), std::min(s.x2, large.r[j].x2)});
            }
            out.patch(0, 0, 0);
            return;
        }
        out.start(large.r, large.n);
        Index at = 0; // the larger band's rectangles before at are placed
        auto cut = [&](Index j, const Box& s) {
            const Index first = out.spans.size();
            out.spans.push_back(Span{std::max(s.x1, large.r[j].x1), std::min(s.x2, large.r[j].x2)});
            out.patch(j, j + 1, first);
        };
        for (Index i = 0; i < small.n; ++i) {
            const Box& s = small.r[i];
            Index lo = firstEndingAfter(large, s.x1, false);
            const Index hi = firstStartingFrom(large, s.x2, false);
            if (lo >= hi) continue;
            if (lo < at && !out.patches.empty()) {
                // The rectangle that spans the gap from the previous one, cut there already: its
                // second piece follows the first in the same replacement.
                out.spans.push_back(Span{std::max(s.x1, large.r[lo].x1), std::min(s.x2, large.r[lo].x2)});
                out.patches.back().count += 1;
                out.length += 1;
                if (++lo == hi) continue;
            } else if (lo > at) {
                out.patch(at, lo, out.spans.size());
            }
            if (large.r[lo].x1 < s.x1 || (hi - lo == 1 && large.r[lo].x2 > s.x2)) cut(lo, s);
            if (hi - lo > 1 && large.r[hi - 1].x2 > s.x2) cut(hi - 1, s);
            at = hi;
        }
        if (at < large.n) out.patch(at, large.n, out.spans.size());
    }

    // The uncovered pieces of m, less the band s, from left to right.
    static void piecesOf(const Box& m, const BandView& s, std::vector<Span>& out)
    {
        std::int32_t x = m.x1;
        for (Index k = firstEndingAfter(s, m.x1, false); k < s.n && s.r[k].x1 < m.x2; ++k) {
            if (s.r[k].x1 > x) out.push_back(Span{x, s.r[k].x1});
            x = std::max(x, s.r[k].x2);
            if (x >= m.x2) return;
        }
        if (x < m.x2) out.push_back(Span{x, m.x2});
    }

    // Each rectangle of m less the band s. A minuend wider than the subtrahend keeps its
    // rectangles but around those of s: those that s covers whole go, and only those at the ends of
    // each rectangle of s are cut.
    void subtract(const BandView& m, const BandView& s, BandResult& out)
    {
        if (m.n <= s.n || m.n <= kSmall) {
            out.start(nullptr, 0);
            for (Index i = 0; i < m.n; ++i) piecesOf(m.r[i], s, out.spans);
            out.patch(0, 0, 0);
            return;
        }
        out.start(m.r, m.n);
        Index from = 0, to = 0, lastCut = m.n; // the run being replaced; the last minuend cut
        bool open = false;
        Index first = 0;
        auto cut = [&](Index i) {
            if (i == lastCut) return;
            lastCut = i;
            piecesOf(m.r[i], s, out.spans);
        };
        for (Index k = 0; k < s.n; ++k) {
            const Index lo = firstEndingAfter(m, s.r[k].x1, false);
            const Index hi = firstStartingFrom(m, s.r[k].x2, false);
            if (lo >= hi) continue;
            if (open && lo < to) {
                to = std::max(to, hi);
            } else {
                if (open) out.patch(from, to, first);
                open = true;
                from = lo;
                to = hi;
                first = out.spans.size();
            }
            cut(lo);
            cut(hi - 1);
        }
        if (open) out.patch(from, to, first);
    }

    // The spans that one band covers and the other does not, as the union of the two differences
    // gives them: each band less the other, in its uncovered pieces; where both differences hold
    // pieces they are joined where they overlap or touch, and where one alone does its pieces stay
    // as they are. A wide band w met by a narrow one n: w less n is held as w patched (as
    // subtract holds it), n less w is made outright, and where both hold pieces the result is the
    // runs of what one band alone covers: w's runs (its touching rectangles joined), made again
    // only around n's rectangles.
    void exclusive(const BandView& a, const BandView& b, BandResult& out)
    {
        const bool aWide = a.n > b.n;
        const BandView& w = aWide ? a : b;
        const BandView& n = aWide ? b : a;
        onlyA_.clear();
        onlyB_.clear();
        for (Index i = 0; i < n.n; ++i) piecesOf(n.r[i], w, onlyB_);
        if (w.n <= kSmall) {
            for (Index i = 0; i < w.n; ++i) piecesOf(w.r[i], n, onlyA_);
            out.start(nullptr, 0);
            if (onlyA_.empty() || onlyB_.empty()) {
                const std::vector<Span>& alone = onlyA_.empty() ? onlyB_ : onlyA_;
                out.spans.assign(alone.begin(), alone.end());
            } else {
                std::size_t i = 0, j = 0;
                while (i < onlyA_.size() || j < onlyB_.size()) {
                    const bool fromA = j == onlyB_.size() || (i < onlyA_.size() && onlyA_[i].x1 < onlyB_[j].x1);
                    const Span s = fromA ? onlyA_[i++] : onlyB_[j++];
                    if (!out.spans.empty() && out.spans.back().x2 >= s.x1)
                        out.spans.back().x2 = std::max(out.spans.back().x2, s.x2);
                    else
                        out.spans.push_back(s);
                }
            }
            out.patch(0, 0, 0);
            return;
        }
        subtract(w, n, out); // w less n
        if (onlyB_.empty()) return;
        if (out.length == 0) { // n less w alone
            out.start(nullptr, 0);
            out.spans.assign(onlyB_.begin(), onlyB_.end());
            out.patch(0, 0, 0);
            return;
        }
        const BandView runs = joined(aWide ? 0 : 1, w);
        out.start(runs.r, runs.n);
        constexpr std::int64_t kNone = std::numeric_limits<std::int64_t>::max();
        // The runs that a rectangle of n overlaps or touches, and the stretch of x they and it cover.
        auto reach = [&](Index i, Index& lo, Index& hi, std::int64_t& left, std::int64_t& right) {
            lo = firstEndingAfter(runs, n.r[i].x1, true);
            hi = firstStartingFrom(runs, n.r[i].x2, true);
            left = lo < hi ? std::min(runs.r[lo].x1, n.r[i].x1) : n.r[i].x1;
            right = lo < hi ? std::max(runs.r[hi - 1].x2, n.r[i].x2) : n.r[i].x2;
        };
        Index i = 0;
        while (i < n.n) {
            // A cluster of n's rectangles whose stretches overlap or touch, made again as a whole.
            Index lo = 0, hi = 0;
            std::int64_t left = 0, right = 0;
            reach(i, lo, hi, left, right);
            Index j = i + 1;
            for (; j < n.n; ++j) {
                Index lo2 = 0, hi2 = 0;
                std::int64_t left2 = 0, right2 = 0;
                reach(j, lo2, hi2, left2, right2);
                if (left2 > right) break;
                if (lo2 < hi2) lo = std::min(lo, lo2), hi = std::max(hi, hi2);
                right = std::max(right, right2);
            }
            (void)left;
            // What one of runs [lo, hi) and n's rectangles [i, j) covers, in runs.
            const Index first = out.spans.size();
            Index p = lo, q = i;
            bool inW = false, inN = false;
            std::int64_t at = std::numeric_limits<std::int64_t>::min();
            while (true) {
                const std::int64_t nextW = p < hi ? (inW ? runs.r[p].x2 : runs.r[p].x1) : kNone;
                const std::int64_t nextN = q < j ? (inN ? n.r[q].x2 : n.r[q].x1) : kNone;
                const std::int64_t x = std::min(nextW, nextN);
                if (x == kNone) break;
                if (inW != inN && at < x) {
                    if (out.spans.size() > first && out.spans.back().x2 == at)
                        out.spans.back().x2 = static_cast<std::int32_t>(x);
                    else
                        out.spans.push_back(Span{static_cast<std::int32_t>(at), static_cast<std::int32_t>(x)});
                }
                at = x;
                if (nextW == x) {
                    if (inW) ++p;
                    inW = !inW;
                }
                if (nextN == x) {
                    if (inN) ++q;
                    inN = !inN;
                }
            }
            out.patch(lo, hi, first);
            i = j;
        }
    }

    // The spans of both bands joined. Over a wide band (its own touching rectangles joined
    // first), each run that the narrow band's rectangles reach becomes one span.
    void unite(const BandView& a, const BandView& b, BandResult& out)
    {
        const bool aLarge = a.n > b.n;
        const BandView& small = aLarge ? b : a;
        const BandView& large0 = aLarge ? a : b;
        if (large0.n <= kSmall) {
            out.start(nullptr, 0);
            Index i = 0, j = 0;
            auto take = [&](const Box& r) {
                if (!out.spans.empty() && r.x1 <= out.spans.back().x2)
                    out.spans.back().x2 = std::max(out.spans.back().x2, r.x2);
                else
                    out.spans.push_back(Span{r.x1, r.x2});
            };
            while (i < a.n || j < b.n) {
                if (j == b.n || (i < a.n && a.r[i].x1 < b.r[j].x1))
                    take(a.r[i++]);
                else
                    take(b.r[j++]);
            }
            out.patch(0, 0, 0);
            return;
        }
        const BandView large = joined(aLarge ? 0 : 1, large0);
        out.start(large.r, large.n);
        bool open = false;
        Index from = 0, to = 0;
        Span span{0, 0};
        auto close = [&]() {
            if (!open) return;
            if (to - from == 1 && large.r[from].x1 == span.x1 && large.r[from].x2 == span.x2) return;
            const Index first = out.spans.size();
            out.spans.push_back(span);
            out.patch(from, to, first);
        };
        for (Index k = 0; k < small.n; ++k) {
            const Box& s = small.r[k];
            const Index lo = firstEndingAfter(large, s.x1, true);
            const Index hi = firstStartingFrom(large, s.x2, true);
            Span here{s.x1, s.x2};
            if (lo < hi) here = Span{std::min(s.x1, large.r[lo].x1), std::max(s.x2, large.r[hi - 1].x2)};
            if (open && here.x1 <= span.x2) {
                to = std::max(to, hi);
                span.x2 = std::max(span.x2, here.x2);
            } else {
                close();
                open = true;
                from = lo;
                to = hi;
                span = here;
            }
        }
        close();
    }

    // The band with its touching rectangles joined: the band itself when none touch, else a copy,
    // kept while the band lasts (and one more, which the result above may still show).
    BandView joined(int which, const BandView& band)
    {
        Joined& j = joined_[which];
        if (band.r == j.source) return j.view;
        bool touching = false;
        for (Index i = 1; i < band.n && !touching; ++i) touching = band.r[i].x1 == band.r[i - 1].x2;
        j.source = band.r;
        if (!touching) {
            j.view = band;
            return j.view;
        }
        j.spare = 1 - j.spare;
        std::vector<Box>& copy = j.copies[j.spare];
        copy.clear();
        for (Index i = 0; i < band.n; ++i) {
            if (!copy.empty() && copy.back().x2 >= band.r[i].x1)
                copy.back().x2 = std::max(copy.back().x2, band.r[i].x2);
            else
                copy.push_back(band.r[i]);
        }
        j.view = BandView{copy.data(), copy.size()};
        return j.view;
    }

    static constexpr Index kSmall = 8;

    struct Joined {
        const Box* source = nullptr;
        BandView view;
        std::vector<Box> copies[2];
        int spare = 0;
    };

    Op op_;
    bool writing_;
    std::size_t limit_;
    const Box *a_ = nullptr, *b_ = nullptr;
    Index na_ = 0, nb_ = 0;
    BandResult results_[2];
    int current_ = 0;
    bool havePrevious_ = false;
    std::int64_t previousBottom_ = 0;
    std::size_t previousStart_ = 0;
    std::size_t count_ = 0;
    Box bound_{0, 0, 0, 0};
    BoxBuffer boxes_;
    Joined joined_[2];
    std::vector<Span> sa_, sb_;
    std::vector<Span> onlyA_, onlyB_;
    StepCount steps_;
};

bool extentsMeet(const Box& a, const Box& b) noexcept
{
    return a.x2 > b.x1 && a.x1 < b.x2 && a.y2 > b.y1 && a.y1 < b.y2;
}

bool holds(const Box& outer, const Box& inner) noexcept
{
    return outer.x1 <= inner.x1 && outer.x2 >= inner.x2 && outer.y1 <= inner.y1 && outer.y2 >= inner.y2;
}

// One operation on two regions in the canonical form, into out (neither a nor b). The cases that
// pixman settles without its band algebra (an empty operand, one rectangle holding the other,
// extents that do not meet, an operand with itself) are left to it; the others go band by band,
// first counted when the bound from the operands' band sizes passes the limit.
bool bandOperation(Op op, Region& out, const Region& a, const Region& b)
{
    auto* ra = const_cast<pixman_region32_t*>(a.get());
    auto* rb = const_cast<pixman_region32_t*>(b.get());
    const int na = a.count(), nb = b.count();
    const Box ea = ra->extents, eb = rb->extents;
    switch (op) {
    case Op::Intersect:
        if (na == 0 || nb == 0 || !extentsMeet(ea, eb) || (na == 1 && nb == 1) || (nb == 1 && holds(eb, ea)) ||
            (na == 1 && holds(ea, eb)) || &a == &b)
            return pixman_region32_intersect(out.get(), ra, rb);
        break;
    case Op::Union:
        if (&a == &b || na == 0 || nb == 0 || (na == 1 && holds(ea, eb)) || (nb == 1 && holds(eb, ea)))
            return pixman_region32_union(out.get(), ra, rb);
        break;
    case Op::Subtract:
        if (na == 0 || nb == 0 || !extentsMeet(ea, eb) || &a == &b)
            return pixman_region32_subtract(out.get(), ra, rb);
        break;
    case Op::Exclusive: // what the two differences and their union give in these cases
        if (&a == &b) {
            out.clear();
            return true;
        }
        if (na == 0 || nb == 0) return out.copyFrom(na == 0 ? b : a);
        break;
    }
    if (resultBound(a, b, kMaxRects) > kMaxRects) {
        BandSweep counting(op, a, b, false, kMaxRects);
        if (!counting.run()) return false;
    }
    BandSweep sweep(op, a, b, true, kMaxRects);
    return sweep.run() && sweep.finish(out);
}

} // namespace

// dest = a (mode) b. On any failure, a result over the rectangle limit among them, dest is left
// as it was. The result is made apart and moved in, since dest may be a or b.
bool combine(Region& dest, const Region& a, const Region& b, int mode)
{
    Region result;
    bool ok = true;
    switch (mode) {
    case RGN_AND: ok = bandOperation(Op::Intersect, result, a, b); break;
    case RGN_OR: ok = bandOperation(Op::Union, result, a, b); break;
    case RGN_DIFF: ok = bandOperation(Op::Subtract, result, a, b); break;
    case RGN_XOR: ok = bandOperation(Op::Exclusive, result, a, b); break;
    case RGN_COPY: ok = result.copyFrom(a); break;
    default: return false;
    }
    if (!ok || static_cast<std::size_t>(result.count()) > kMaxRects) return false;
    if (!result.count()) result.clear();
    dest.swap(result);
    return true;
}

// The moved bounding box is checked first, in 64 bits: every rectangle lies inside it, so once it
// fits the range no coordinate can pass 32 bits, and a refused move has touched nothing.
bool offset(Region& region, std::int32_t dx, std::int32_t dy)
{
    if (region.count() == 0) return true;
    const Box e = region.bound();
    auto fits = [](std::int64_t v) { return v >= kMinCoordinate && v <= kMaxCoordinate; };
    if (!fits(std::int64_t(e.x1) + dx) || !fits(std::int64_t(e.x2) + dx) ||
        !fits(std::int64_t(e.y1) + dy) || !fits(std::int64_t(e.y2) + dy))
        return false;
    pixman_region32_translate(region.get(), dx, dy);
    return true;
}

} // namespace quillon::region_detail
