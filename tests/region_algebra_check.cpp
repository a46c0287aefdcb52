// SPDX-License-Identifier: MIT
// The region layer's set operations against pixman's own, rectangle for rectangle, on seeded
// random regions in the canonical form: rectangles, polygons (WINDING ones keep touching pairs),
// unions of random rectangles, wide bands of many columns over many rows, thin bands of one
// rectangle each, and bands of rectangles side by side that touch in pairs. Built with the region
// layer's own sources, since these functions are not exported.
#define QUILLON_BUILDING_REGION
#include <quillon/Region>

#include "../src/platform/RegionAlgebra.h"
#include "../src/platform/ScanConversion.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace {

using namespace quillon::region_detail;

class RandomRegions {
public:
    explicit RandomRegions(std::uint64_t seed) : rng_(seed) {}

    void make(Region& r)
    {
        switch (pick(0, 7)) {
        case 0: r.clear(); return;
        case 1: setRect(r, normalized(pick(-20, 20), pick(-20, 20), pick(-20, 20), pick(-20, 20))); return;
        case 2:
        case 3: { // a polygon
            const int n = pick(3, 8), span = pick(0, 1) ? 20 : 200;
            std::vector<POINT> p(n);
            for (POINT& q : p) q = POINT{pick(-span, span), pick(-span / 2, span / 2)};
            INT count = n;
            if (!makePolygons(p.data(), &count, 1, pick(1, 2), r)) r.clear();
            return;
        }
        case 4: { // one wide band of columns, or many thin bands
            std::vector<Box> boxes;
            const int w = pick(1, 60), h = pick(1, 60);
            if (pick(0, 1)) {
                for (int i = 0; i < w; ++i) boxes.push_back(Box{3 * i, 0, 3 * i + pick(1, 3), h});
            } else {
                for (int j = 0; j < h; ++j) {
                    const int x = pick(-5, 3 * w);
                    boxes.push_back(Box{x, j, x + pick(1, 4), j + 1});
                }
            }
            fromBoxes(r, boxes);
            return;
        }
        case 5: { // the union of random rectangles
            std::vector<Box> boxes;
            for (int n = pick(1, 30); n > 0; --n) {
                const int x = pick(-30, 30), y = pick(-30, 30);
                boxes.push_back(Box{x, y, x + pick(1, 15), y + pick(1, 15)});
            }
            fromBoxes(r, boxes);
            return;
        }
        default: { // rectangles side by side turning both ways: bands of touching pairs
            const int k = pick(2, 40);
            std::vector<POINT> p;
            std::vector<INT> counts;
            int x = pick(-10, 10);
            for (int i = 0; i < k; ++i) {
                const int w = pick(1, 4), t = pick(0, 5), b = t + pick(1, 30);
                if (pick(0, 4) == 0) x += pick(1, 3);
                if (i % 2)
                    p.insert(p.end(), {POINT{x, t}, POINT{x + w, t}, POINT{x + w, b}, POINT{x, b}});
                else
                    p.insert(p.end(), {POINT{x, t}, POINT{x, b}, POINT{x + w, b}, POINT{x + w, t}});
                counts.push_back(4);
                x += w;
            }
            if (!makePolygons(p.data(), counts.data(), k, WINDING, r)) r.clear();
            return;
        }
        }
    }
    int pick(int lo, int hi) { return lo + static_cast<int>(rng_() % static_cast<std::uint64_t>(hi - lo + 1)); }

private:
    static void fromBoxes(Region& r, std::vector<Box>& boxes)
    {
        pixman_region32_fini(r.get());
        if (!pixman_region32_init_rects(r.get(), boxes.data(), static_cast<int>(boxes.size())))
            pixman_region32_init(r.get());
    }
    std::mt19937_64 rng_;
};

// pixman's answer: its own intersection, union and difference, XOR as the union of both differences.
void expected(pixman_region32_t* out, const Region& a, const Region& b, int mode)
{
    auto* ra = const_cast<pixman_region32_t*>(a.get());
    auto* rb = const_cast<pixman_region32_t*>(b.get());
    switch (mode) {
    case RGN_AND: pixman_region32_intersect(out, ra, rb); break;
    case RGN_OR: pixman_region32_union(out, ra, rb); break;
    case RGN_DIFF: pixman_region32_subtract(out, ra, rb); break;
    default: {
        pixman_region32_t ab, ba;
        pixman_region32_init(&ab);
        pixman_region32_init(&ba);
        pixman_region32_subtract(&ab, ra, rb);
        pixman_region32_subtract(&ba, rb, ra);
        pixman_region32_union(out, &ab, &ba);
        pixman_region32_fini(&ab);
        pixman_region32_fini(&ba);
    }
    }
}

std::vector<Box> boxesOf(const Region& r)
{
    int n = 0;
    const Box* b = r.boxes(n);
    return std::vector<Box>(b, b + n);
}

std::vector<Box> boxesOf(pixman_region32_t* r)
{
    int n = 0;
    const Box* b = pixman_region32_rectangles(r, &n);
    return std::vector<Box>(b, b + n);
}

bool sameBoxes(const std::vector<Box>& a, const std::vector<Box>& b)
{
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(Box)) == 0);
}

TEST(RegionAlgebra, SetOperationsArePixmansRectangleForRectangle)
{
    const char* names[] = {"", "AND", "OR", "XOR", "DIFF"};
    for (std::uint64_t seed : {1, 2, 3}) {
        RandomRegions random(seed);
        int failures = 0;
        for (int n = 0; n < 2500 && failures < 3; ++n) {
            Region a, b;
            random.make(a);
            random.make(b);
            if (random.pick(0, 3) == 0) { // a union of two of them: regions of many bands
                Region c, joined;
                random.make(c);
                if (combine(joined, a, c, RGN_OR)) a.swap(joined);
            }
            const Region& second = random.pick(0, 15) == 0 ? a : b;
            for (int mode : {RGN_AND, RGN_OR, RGN_XOR, RGN_DIFF}) {
                Region got;
                ASSERT_TRUE(combine(got, a, second, mode));
                pixman_region32_t want;
                pixman_region32_init(&want);
                expected(&want, a, second, mode);
                const Box bound = got.bound();
                const bool same = sameBoxes(boxesOf(got), boxesOf(&want)) &&
                                  (got.count() == 0 || std::memcmp(&bound, &want.extents, sizeof bound) == 0);
                pixman_region32_fini(&want);
                if (!same) ++failures;
                EXPECT_TRUE(same) << names[mode] << ", seed " << seed << ", case " << n;
            }
        }
    }
}

} // namespace
