// SPDX-License-Identifier: MIT
// Region mapping with arbitrary matrices (any bits: NaNs, infinities, huge stretches) over small
// arbitrary regions: never a crash, never a region left behind, the argument never changed, and
// (for matrices whose results are not millions of rectangles) never slow.
#include "fuzz_support.h"

#include <quillon/Transform>

#include <algorithm>

namespace {

// Whether the mapping's result stays small enough to make within an input's second, or is so
// large that it must fail at once. Each rectangle's image is a four-sided piece whose rows change
// only where an edge moves: no more rows than the sum over its edges of the smaller of their
// width and height. Pieces with up to 2^18 such rows in all make a small region. One with more than
// 2^26, at least eight columns wide on average, has its long edges at least a column apart on
// nearly all its rows, each row a band of its own: far past the rectangle limit, which the
// mapping must notice without making it. In between lies a result of millions of rectangles, slow
// only for its size, and a thinner piece may hold a pixel on any share of its rows, up to millions
// of them, or have its edges too close to tell at once: such matrices are left out. Pieces of 2^27
// rows or more, or whose heights wrap, fail or come out empty before any walk.
template <class T>
bool sizeable(const Transform<T>& t, HRGN region)
{
    const DWORD n = GetRegionData(region, 0, nullptr);
    std::vector<std::uint32_t> store(n / 4 + 1);
    auto* data = reinterpret_cast<RGNDATA*>(store.data());
    if (GetRegionData(region, n, data) != n) return true;
    const RECT* rects = reinterpret_cast<const RECT*>(data->Buffer);
    auto wrap = [](std::int64_t v) { return static_cast<std::int32_t>(static_cast<std::uint32_t>(v)); };
    std::int64_t small = 0; // the moving rows of the pieces made, all together
    for (DWORD i = 0; i < data->rdh.nCount; ++i) {
        const RECT& r = rects[i];
        POINT c[4];
        const double xs[4] = {double(r.left), double(r.right), double(r.right), double(r.left)};
        const double ys[4] = {double(r.top), double(r.top), double(r.bottom), double(r.bottom)};
        for (int k = 0; k < 4; ++k) {
            const ThreeDVector<double> v = t * ThreeDVector<double>(xs[k], ys[k], 0.0);
            c[k] = POINT{quillon::truncate(v.GetX()), quillon::truncate(v.GetY())};
        }
        std::int32_t low = c[0].y, high = c[0].y;
        for (const POINT& p : c) low = std::min(low, p.y), high = std::max(high, p.y);
        const std::int64_t height = std::int64_t(high) - low;
        if (height >= (std::int64_t(1) << 27)) continue;
        std::int64_t moving = 0;
        __int128 twiceArea = 0;
        for (int k = 0; k < 4; ++k) {
            const POINT& p = c[k];
            const POINT& q = c[(k + 1) % 4];
            const std::int64_t dx = wrap(std::int64_t(q.x) - p.x);
            const std::int64_t dy = std::int64_t(q.y) - p.y;
            moving += std::min(dx < 0 ? -dx : dx, dy < 0 ? -dy : dy);
            twiceArea += __int128(p.x) * q.y - __int128(q.x) * p.y;
        }
        if (twiceArea < 0) twiceArea = -twiceArea;
        const bool wide = twiceArea >= 16 * __int128(height);
        if (moving > (std::int64_t(1) << 18) && (moving <= (std::int64_t(1) << 26) || !wide)) return false;
        if (moving <= (std::int64_t(1) << 18)) small += moving;
    }
    return small <= (std::int64_t(1) << 18);
}

template <class T>
void mapWith(FuzzedDataProvider& in, HRGN region)
{
    T e[16];
    for (T& x : e) {
        if (in.ConsumeBool()) {
            const std::uint64_t b = in.ConsumeIntegral<std::uint64_t>();
            double d;
            std::memcpy(&d, &b, 8);
            x = T(d);
        } else {
            x = T(in.ConsumeFloatingPointInRange<double>(-64.0, 64.0));
        }
    }
    const Transform<T> t(e);
    if (!sizeable(t, region)) return;
    HRGN mapped = t * region;
    readBack(mapped);
    if (mapped) DeleteObject(mapped);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    FuzzedDataProvider in(bytes, size);
    const DWORD before = liveRegions();
    const int type = in.ConsumeIntegralInRange<int>(0, 2);
    HRGN region = CreateRectRgn(0, 0, 0, 0);
    const int rects = in.ConsumeIntegralInRange<int>(0, 12);
    for (int i = 0; i < rects; ++i) {
        const int l = in.ConsumeIntegralInRange<int>(-300, 300), t = in.ConsumeIntegralInRange<int>(-300, 300);
        HRGN r = CreateRectRgn(l, t, l + in.ConsumeIntegralInRange<int>(0, 60), t + in.ConsumeIntegralInRange<int>(0, 60));
        CombineRgn(region, region, r, RGN_OR);
        DeleteObject(r);
    }
    const DWORD n = GetRegionData(region, 0, nullptr);
    std::vector<std::uint32_t> was(n / 4 + 1), now(n / 4 + 1);
    GetRegionData(region, n, reinterpret_cast<RGNDATA*>(was.data()));
    switch (type) {
    case 0: mapWith<float>(in, region); break;
    case 1: mapWith<double>(in, region); break;
    default: mapWith<guarddouble>(in, region); break;
    }
    GetRegionData(region, n, reinterpret_cast<RGNDATA*>(now.data()));
    if (was != now) std::abort();
    DeleteObject(region);
    if (liveRegions() != before) std::abort();
    return 0;
}
