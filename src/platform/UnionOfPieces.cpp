// SPDX-License-Identifier: MIT
/* The union of many regions at once (see UnionOfPieces.h).
 *
 * Rectangle for rectangle what joining the parts one by one gives: a row that one part alone
 * covers keeps that part's rectangles as they are (touching pairs included), a row that two or
 * more parts cover gets their spans joined where they overlap or touch, and neighbouring bands with
 * the same spans are one band.
 *
 * The parts' bands are swept from top to bottom. The spans of the bands that cover the current row
 * are kept in order of their left ends from one band top to the next: where bands begin and end,
 * the spans that stay are merged with the new bands' spans (sorted among themselves) and the ended
 * ones dropped, in one pass that also joins the row. No row sorts the spans it keeps, so the work is
 * the parts' rectangles, sorted once as they come in, and at each band top one pass over the spans
 * live there, besides the result.
 */
#define QUILLON_BUILDING_REGION
#include "UnionOfPieces.h"

#include "WorkSteps.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace quillon::region_detail {

namespace {

struct Band {
    std::int32_t top, bottom;
    const Box* first;
    int n;
};

// A span of a band that covers the current row, with that band's bottom.
struct Live {
    std::int32_t x1, x2, bottom;
};

// The parts' bands by top, bands of one top in their order. Where the tops span few rows for their
// number, as the pieces of a mapped region do, by counting; else by merging.
void sortByTop(std::vector<Band>& bands)
{
    if (bands.empty()) return;
    std::int64_t low = bands[0].top, high = bands[0].top;
    for (const Band& b : bands) low = std::min<std::int64_t>(low, b.top), high = std::max<std::int64_t>(high, b.top);
    if (high - low < 4 * std::int64_t(bands.size()) + 1024) {
        std::vector<std::size_t> at(static_cast<std::size_t>(high - low + 2), 0);
        for (const Band& b : bands) ++at[static_cast<std::size_t>(b.top - low + 1)];
        for (std::size_t k = 1; k < at.size(); ++k) at[k] += at[k - 1];
        std::vector<Band> sorted(bands.size());
        for (const Band& b : bands) sorted[at[static_cast<std::size_t>(b.top - low)]++] = b;
        bands.swap(sorted);
    } else {
        std::stable_sort(bands.begin(), bands.end(), [](const Band& a, const Band& b) { return a.top < b.top; });
    }
}

// The rectangles written band by band, each band's bottom set once the band is closed, so that a
// band continued over many band tops is not rewritten at each.
class Bands {
public:
    explicit Bands(BoxBuffer& boxes) noexcept : boxes_(boxes) {}

    // The row's spans from y to bottom: the open band continued, or a new band.
    bool add(std::int64_t y, std::int64_t bottom, const std::vector<Span>& row)
    {
        if (open_ && bottom_ == y && row == last_) {
            bottom_ = bottom;
            return true;
        }
        close();
        if (!boxes_.reserveMore(row.size())) return false;
        start_ = boxes_.size();
        for (const Span& s : row) boxes_.push(Box{s.x1, static_cast<std::int32_t>(y), s.x2, 0});
        if (start_ == 0) bound_ = Box{row.front().x1, static_cast<std::int32_t>(y), row.back().x2, 0};
        bound_.x1 = std::min(bound_.x1, row.front().x1);
        bound_.x2 = std::max(bound_.x2, row.back().x2);
        last_ = row;
        bottom_ = bottom;
        open_ = true;
        return true;
    }

    bool finish(Region& out)
    {
        close();
        bound_.y2 = static_cast<std::int32_t>(bottom_);
        return boxes_.handOver(out, boxes_.size() ? bound_ : Box{0, 0, 0, 0});
    }

private:
    void close() noexcept
    {
        if (!open_) return;
        for (Box* b = boxes_.begin() + start_; b != boxes_.end(); ++b) b->y2 = static_cast<std::int32_t>(bottom_);
        open_ = false;
    }

    BoxBuffer& boxes_;
    std::vector<Span> last_;
    std::size_t start_ = 0;
    std::int64_t bottom_ = 0;
    bool open_ = false;
    Box bound_{0, 0, 0, 0};
};

} // namespace

bool unionAll(const std::vector<BoxRun>& parts, Region& out)
{
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
    sortByTop(bands);
    BoxBuffer boxes;
    if (!boxes.reserveMore(std::min(total, kMaxRects))) return false; // the usual size of a union
    Bands written(boxes);
    std::vector<const Band*> covering; // the bands that cover the current row
    std::vector<Live> live, merged, fresh;
    std::vector<Span> row;
    StepCount steps; // a step a band top, and one for each span live, begun or joined there
    const auto byLeft = [](const Live& a, const Live& b) { return a.x1 < b.x1; };
    std::size_t next = 0;
    std::int64_t y = bands.empty() ? 0 : bands[0].top;
    while (next < bands.size() || !covering.empty()) {
        covering.erase(std::remove_if(covering.begin(), covering.end(),
                                      [y](const Band* b) { return b->bottom <= y; }),
                       covering.end());
        if (covering.empty() && next < bands.size() && bands[next].top > y) y = bands[next].top;
        // The bands that begin here, their spans sorted among themselves (one band's already are).
        fresh.clear();
        const std::size_t firstNew = next;
        while (next < bands.size() && bands[next].top <= y) {
            const Band& b = bands[next++];
            covering.push_back(&b);
            for (int i = 0; i < b.n; ++i) fresh.push_back(Live{b.first[i].x1, b.first[i].x2, b.bottom});
        }
        if (next - firstNew > 1) std::sort(fresh.begin(), fresh.end(), byLeft);
        // One pass: the spans that stay merged with the new ones, the ended ones dropped, the row
        // joined, and the nearest bottom found.
        std::int64_t end = next < bands.size() ? bands[next].top : std::numeric_limits<std::int64_t>::max();
        merged.clear();
        row.clear();
        std::size_t i = 0, j = 0;
        while (true) {
            while (i < live.size() && live[i].bottom <= y) ++i;
            const bool fromLive = i < live.size() && (j == fresh.size() || live[i].x1 <= fresh[j].x1);
            if (!fromLive && j == fresh.size()) break;
            const Live s = fromLive ? live[i++] : fresh[j++];
            merged.push_back(s);
            end = std::min<std::int64_t>(end, s.bottom);
            if (!row.empty() && row.back().x2 >= s.x1)
                row.back().x2 = std::max(row.back().x2, s.x2);
            else
                row.push_back(Span{s.x1, s.x2});
        }
        live.swap(merged);
        steps.add(1 + live.size() + fresh.size() + covering.size());
        if (covering.empty()) continue;
        if (covering.size() == 1) { // one part alone: its rectangles as they are
            const Band& b = *covering[0];
            row.clear();
            for (int k = 0; k < b.n; ++k) row.push_back(Span{b.first[k].x1, b.first[k].x2});
        }
        if (!written.add(y, end, row)) return false;
        y = end;
    }
    return written.finish(out);
}

} // namespace quillon::region_detail
