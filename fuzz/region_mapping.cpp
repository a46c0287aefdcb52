// SPDX-License-Identifier: MIT
// Region mapping with arbitrary matrices (any bits: NaNs, infinities, huge stretches, near-singular
// ones that make slivers of millions of rows) over small arbitrary regions, and over regions of up
// to 64 rectangles anywhere made from what is left of the input: never a crash, never a region left
// behind, the argument never changed. Nothing is left out for the size of its result: a mapping
// whose pieces pass the rectangle limit must fail at once, and one under it costs its rectangles.
#include "fuzz_support.h"

#include <quillon/Transform>

namespace {

// Maps the region and checks what comes back; the region must be as it was.
template <class T>
void mapOnce(const Transform<T>& t, HRGN region)
{
    const DWORD n = GetRegionData(region, 0, nullptr);
    std::vector<std::uint32_t> was(n / 4 + 1), now(n / 4 + 1);
    GetRegionData(region, n, reinterpret_cast<RGNDATA*>(was.data()));
    HRGN mapped = t * region;
    readBack(mapped);
    if (mapped) DeleteObject(mapped);
    GetRegionData(region, n, reinterpret_cast<RGNDATA*>(now.data()));
    if (was != now) std::abort();
}

// Up to 64 rectangles with any corners, small ones or ones spread over the 27-bit range.
HRGN wideRegion(FuzzedDataProvider& in)
{
    HRGN region = CreateRectRgn(0, 0, 0, 0);
    const int rects = in.ConsumeIntegralInRange<int>(1, 64);
    const bool spread = in.ConsumeBool();
    for (int i = 0; i < rects && in.remaining_bytes() > 0; ++i) {
        const int reach = spread ? 1 << 26 : 1 << 12;
        const int l = in.ConsumeIntegralInRange<int>(-reach, reach), t = in.ConsumeIntegralInRange<int>(-reach, reach);
        HRGN r = CreateRectRgn(l, t, l + in.ConsumeIntegralInRange<int>(0, reach), t + in.ConsumeIntegralInRange<int>(0, reach));
        CombineRgn(region, region, r, RGN_OR);
        DeleteObject(r);
    }
    return region;
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
    mapOnce(t, region);
    // What is left of the input makes a wider region, mapped by the same matrix.
    if (in.remaining_bytes() == 0) return;
    HRGN wide = wideRegion(in);
    mapOnce(t, wide);
    DeleteObject(wide);
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
    switch (type) {
    case 0: mapWith<float>(in, region); break;
    case 1: mapWith<double>(in, region); break;
    default: mapWith<guarddouble>(in, region); break;
    }
    DeleteObject(region);
    if (liveRegions() != before) std::abort();
    return 0;
}
