// SPDX-License-Identifier: MIT
// Region mapping: a grid of n squares turned by 30 degrees, the union of its n quadrilaterals made
// by the library, against pixman's pairwise tree union of the very same pieces (made beforehand,
// so the tree is timed on its union alone). Run with n, 2n and 4n to see how the time grows:
//   ./build/release/bench/quillon_bench --benchmark_filter=Turned\|Tree
#include <quillon/Region>
#include <quillon/Transform>

#include <benchmark/benchmark.h>
#include <pixman.h>

#include <cmath>
#include <cstdint>
#include <vector>

namespace {

// n squares of 6 x 6 on a grid of pitch 9, as near to square as n allows.
HRGN grid(int n)
{
    const int columns = static_cast<int>(std::sqrt(double(n)));
    std::vector<std::uint32_t> store(8 + 4 * std::size_t(n), 0);
    auto* data = reinterpret_cast<RGNDATA*>(store.data());
    data->rdh = RGNDATAHEADER{sizeof(RGNDATAHEADER), RDH_RECTANGLES, DWORD(n), DWORD(16 * n), {0, 0, 0, 0}};
    auto* r = reinterpret_cast<RECT*>(data->Buffer);
    for (int i = 0; i < n; ++i) {
        const LONG x = 9 * (i % columns), y = 9 * (i / columns);
        r[i] = RECT{x, y, x + 6, y + 6};
    }
    return ExtCreateRegion(nullptr, DWORD(32 + 16 * n), data);
}

Transform<double> turn30()
{
    Transform<double> t;
    t.Function_2424(30.0 * (3.141592653589793 / 180.0));
    return t;
}

void MapTurnedGrid(benchmark::State& state)
{
    HRGN region = grid(static_cast<int>(state.range(0)));
    const Transform<double> t = turn30();
    std::size_t rects = 0;
    for (auto _ : state) {
        HRGN mapped = t * region;
        rects = GetRegionData(mapped, 0, nullptr);
        DeleteObject(mapped);
    }
    state.counters["rects"] = double((rects - 32) / 16);
    DeleteObject(region);
}
BENCHMARK(MapTurnedGrid)->Arg(2500)->Arg(5000)->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);

// The same quadrilaterals, each scan-converted by the library, held as pixman regions.
std::vector<pixman_region32_t> pieces(int n)
{
    HRGN region = grid(n);
    const Transform<double> t = turn30();
    std::vector<std::uint32_t> store(GetRegionData(region, 0, nullptr) / 4 + 1);
    GetRegionData(region, DWORD(4 * store.size()), reinterpret_cast<RGNDATA*>(store.data()));
    const auto* rects = reinterpret_cast<const RECT*>(store.data() + 8);
    std::vector<pixman_region32_t> out(store[2]);
    for (std::uint32_t i = 0; i < store[2]; ++i) {
        const RECT& r = rects[i];
        POINT c[4];
        const double xs[4] = {double(r.left), double(r.right), double(r.right), double(r.left)};
        const double ys[4] = {double(r.top), double(r.top), double(r.bottom), double(r.bottom)};
        for (int k = 0; k < 4; ++k) {
            const ThreeDVector<double> v = t * ThreeDVector<double>(xs[k], ys[k], 0.0);
            c[k] = POINT{LONG(v.GetX()), LONG(v.GetY())};
        }
        HRGN piece = CreatePolygonRgn(c, 4, WINDING);
        std::vector<std::uint32_t> ps(GetRegionData(piece, 0, nullptr) / 4 + 1);
        GetRegionData(piece, DWORD(4 * ps.size()), reinterpret_cast<RGNDATA*>(ps.data()));
        pixman_region32_init_rects(&out[i], reinterpret_cast<const pixman_box32_t*>(ps.data() + 8),
                                   int(ps[2]));
        DeleteObject(piece);
    }
    DeleteObject(region);
    return out;
}

void PixmanTreeUnion(benchmark::State& state)
{
    std::vector<pixman_region32_t> p = pieces(static_cast<int>(state.range(0)));
    int rects = 0;
    for (auto _ : state) {
        std::vector<pixman_region32_t> level(p.size());
        for (std::size_t i = 0; i < p.size(); ++i) {
            pixman_region32_init(&level[i]);
            pixman_region32_copy(&level[i], &p[i]);
        }
        while (level.size() > 1) {
            std::vector<pixman_region32_t> up((level.size() + 1) / 2);
            for (std::size_t i = 0; i < up.size(); ++i) {
                pixman_region32_init(&up[i]);
                if (2 * i + 1 < level.size())
                    pixman_region32_union(&up[i], &level[2 * i], &level[2 * i + 1]);
                else
                    pixman_region32_copy(&up[i], &level[2 * i]);
            }
            for (auto& r : level) pixman_region32_fini(&r);
            level.swap(up);
        }
        rects = pixman_region32_n_rects(&level[0]);
        pixman_region32_fini(&level[0]);
    }
    state.counters["rects"] = rects;
    for (auto& r : p) pixman_region32_fini(&r);
}
BENCHMARK(PixmanTreeUnion)->Arg(2500)->Arg(5000)->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);

} // namespace
