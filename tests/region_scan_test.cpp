// SPDX-License-Identifier: MIT
// Polygons against a plain walk of their rows, one at a time, with the scan's own rules for the order
// of edges (edges starting on a row join by x, before those already there at the same x; each row
// sorted by x keeping the order of ties): rectangle for rectangle, WINDING included, whose touching
// pairs follow that order. The cases are those the scan passes over rows for: thin slivers and
// triangles over thousands of rows, slivers across the 32-bit wrap of x, needles crossing each
// other and crossing wide polygons, next to small polygons of any shape.
#include <quillon/Region>

#if !defined(_WIN32)

#include "region_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <numeric>
#include <random>
#include <vector>

namespace {

struct Edge {
    std::int64_t y1, y2, x1, dx, dy;
    int direction;
    LONG x;
};

LONG wrap32(std::int64_t v) { return static_cast<LONG>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(v))); }

std::int64_t ceilDiv(std::int64_t a, std::int64_t b) { return a / b + (a % b > 0 ? 1 : 0); }

std::vector<Rect> walked(const std::vector<POINT>& p, const std::vector<INT>& counts, bool winding)
{
    std::vector<Edge> edges;
    std::size_t first = 0;
    for (const INT n : counts) {
        for (INT k = 0; n >= 2 && k < n; ++k) {
            const POINT a = p[first + (k + n - 1) % n], b = p[first + k];
            if (a.y == b.y) continue;
            const POINT up = a.y < b.y ? a : b, down = a.y < b.y ? b : a;
            // x on row y: the upper x plus the 32-bit differences' share, rounded up, wrapped
            edges.push_back(Edge{up.y, down.y, up.x, wrap32(std::int64_t(down.x) - up.x), wrap32(std::int64_t(down.y) - up.y),
                                 a.y < b.y ? 1 : -1, up.x});
        }
        first += static_cast<std::size_t>(n);
    }
    std::stable_sort(edges.begin(), edges.end(), [](const Edge& a, const Edge& b) { return a.y1 != b.y1 ? a.y1 < b.y1 : a.x1 < b.x1; });
    std::vector<Rect> out;
    std::vector<std::pair<LONG, LONG>> last;
    std::size_t bandStart = 0;
    std::int64_t lastBottom = 0;
    std::vector<Edge*> active;
    std::size_t next = 0;
    std::int64_t y = edges.empty() ? 0 : edges[0].y1;
    while (next < edges.size() || !active.empty()) {
        if (active.empty()) y = edges[next].y1;
        for (Edge* e : active) e->x = wrap32(e->x1 + ceilDiv((y - e->y1) * e->dx, e->dy));
        for (std::size_t i = 1; i < active.size(); ++i)
            for (std::size_t j = i; j > 0 && active[j - 1]->x > active[j]->x; --j) std::swap(active[j], active[j - 1]);
        std::vector<Edge*> fresh, merged;
        while (next < edges.size() && edges[next].y1 == y) fresh.push_back(&edges[next++]);
        std::merge(fresh.begin(), fresh.end(), active.begin(), active.end(), std::back_inserter(merged),
                   [](const Edge* a, const Edge* b) { return a->x < b->x; });
        active.swap(merged);
        std::vector<std::pair<LONG, LONG>> spans;
        int sum = 0;
        LONG start = 0;
        for (std::size_t i = 0; i < active.size(); ++i) {
            const LONG x = active[i]->x;
            if (!winding) {
                if (i % 2 == 0 || active[i - 1]->x >= x) continue;
                if (!spans.empty() && spans.back().second >= active[i - 1]->x)
                    spans.back().second = std::max(spans.back().second, x);
                else
                    spans.push_back({active[i - 1]->x, x});
                continue;
            }
            const int before = sum;
            sum += active[i]->direction;
            if (before == 0 && sum != 0) start = x;
            if (before != 0 && sum == 0 && start < x) spans.push_back({start, x});
        }
        if (!spans.empty() && spans == last && lastBottom == y) {
            for (std::size_t i = bandStart; i < out.size(); ++i) out[i].b = LONG(y + 1);
        } else if (!spans.empty()) {
            bandStart = out.size();
            for (const auto& [a, b] : spans) out.push_back({a, LONG(y), b, LONG(y + 1)});
        }
        last = spans;
        lastBottom = y + 1;
        active.erase(std::remove_if(active.begin(), active.end(), [y](const Edge* e) { return e->y2 - 1 == y; }),
                     active.end());
        ++y;
    }
    return out;
}

TEST(RegionScan, PolygonsAreWhatAWalkOfTheirRowsGives)
{
    std::mt19937_64 rng(2024);
    auto pick = [&](std::int64_t lo, std::int64_t hi) { return LONG(lo + std::int64_t(rng() % std::uint64_t(hi - lo + 1))); };
    int kinds[7] = {};
    for (int round = 0; round < 300; ++round) {
        std::vector<POINT> p;
        std::vector<INT> counts;
        for (int s = 0, polygons = pick(1, 3); s < polygons; ++s) {
            const int kind = pick(0, 6);
            ++kinds[kind];
            const LONG x = pick(-20, 20), y = pick(-10, 10), H = pick(50, 3000);
            const LONG A = LONG(std::int64_t(pick(-30, 30)) * H + pick(-H, H));
            switch (kind) {
            case 0: // a thin parallelogram
                p.insert(p.end(), {{x, y}, {x + A, y + H}, {x + A + pick(-2, 2), y + H + pick(-2, 2)}, {x + pick(-2, 2), y + pick(-2, 2)}});
                counts.push_back(4);
                break;
            case 1: // a thin triangle from its apex
                p.insert(p.end(), {{x, y}, {x + A, y + H}, {x + A + pick(1, 3), y + H + pick(-1, 1)}});
                counts.push_back(3);
                break;
            case 2: { // a sliver across the 32-bit wrap of x
                const std::int64_t x0 = 2147483647 - pick(0, 40000), lean = std::int64_t(pick(10, 60)) * H + pick(-H, H);
                const LONG xe = wrap32(x0 + lean), u = pick(-2, 2), v = pick(-2, 2);
                p.insert(p.end(), {{LONG(x0), y}, {xe, y + H}, {xe + u, y + H + v}, {LONG(x0) + u, y + v}});
                counts.push_back(4);
                break;
            }
            case 3: { // two needles crossing
                const LONG a = pick(-50, 50), b = pick(-50, 50);
                p.insert(p.end(), {{a, y}, {b + pick(-3, 3), y + H}, {a, y}});
                p.insert(p.end(), {{b, y + pick(-5, 5)}, {a + pick(-3, 3), y + H}, {b + pick(0, 1), y}});
                counts.insert(counts.end(), {3, 3});
                break;
            }
            case 4: { // a needle, or a sliver from one point, across a wide quadrilateral
                p.insert(p.end(), {{-60, y}, {60, y + pick(-3, 3)}, {pick(50, 70), y + H}, {pick(-70, -50), y + H + pick(-3, 3)}});
                const LONG a = pick(-80, 80), t = y + pick(-20, 20);
                p.insert(p.end(), {{a, t}, {pick(-80, 80), y + H + pick(-20, 20)}, {a, pick(0, 1) ? t : y + pick(-20, 20)}});
                counts.insert(counts.end(), {4, 3});
                break;
            }
            case 5: { // two slivers one row apart, nearly parallel
                const LONG du = pick(-3, 3), dv = pick(-3, 3), B = LONG(std::int64_t(pick(-5, 5)) * H + pick(-H, H));
                p.insert(p.end(), {{x, y}, {x + B, y + H}, {x + B + du, y + H + dv}, {x + du, y + dv}});
                counts.push_back(4);
                break;
            }
            default: // any small polygon
                for (int k = 0, n = pick(3, 7); k < n; ++k) p.push_back({pick(-30, 30), pick(-30, 300)});
                counts.push_back(INT(p.size() - std::size_t(std::accumulate(counts.begin(), counts.end(), 0))));
            }
        }
        for (const int mode : {ALTERNATE, WINDING}) {
            HRGN h = CreatePolyPolygonRgn(p.data(), counts.data(), int(counts.size()), mode);
            ASSERT_NE(h, nullptr) << "round " << round;
            EXPECT_EQ(rectsOf(h), walked(p, counts, mode == WINDING)) << "round " << round << " mode " << mode;
            DeleteObject(h);
        }
    }
    for (const int k : kinds) EXPECT_GT(k, 50);
}

} // namespace

#endif
